// The library used over and over as a host uses it (class_exercise.h), with the process's
// handle count and private bytes sampled after a warm-up and at the end: nothing may grow.
// Every graphics inventory creates a DXGI factory; where the system's own factory creation
// keeps memory (Wine without a display keeps some 128 bytes a failed creation), the steps that
// take an inventory are left out, and the test command soaks them again in the display session.
//   soak [--cycles N]   (the test command runs a small count; by hand, 10^4 or more)
#include "platform/win32.h"

#include <objbase.h>
#include <psapi.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "hal/hal_batch.h"
#include "tests/robustness/class_exercise.h"

namespace {

constexpr int kWarmUp = 10;
// Heap growth that is noise (lookaside lists, a cache filled late); a leak of a few dozen bytes
// a cycle is above it. Private bytes move in whole pages and regions, so they are reported but
// judged by the heap and the handles.
constexpr double kHeapNoisePer1000 = 32 * 1024;

struct Sample {
  DWORD handles = 0;
  SIZE_T private_bytes = 0;
  SIZE_T heap_bytes = 0;  // busy blocks of every heap: sees small leaks that commit nothing new
};

// Wine answers 0 to both counters, so where they say nothing the process is measured directly:
// open handles by probing each handle value, private bytes by walking the address space.
DWORD CountHandles() {
  DWORD handles = 0;
  if (::GetProcessHandleCount(::GetCurrentProcess(), &handles) && handles > 0) return handles;
  DWORD flags = 0;
  for (uintptr_t value = 4; value < 0x10000; value += 4) {
    if (::GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) ++handles;
  }
  return handles;
}

SIZE_T PrivateBytes() {
  PROCESS_MEMORY_COUNTERS_EX memory{};
  memory.cb = sizeof(memory);
  if (::K32GetProcessMemoryInfo(::GetCurrentProcess(),
                                reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&memory),
                                sizeof(memory)) &&
      memory.PrivateUsage > 0) {
    return memory.PrivateUsage;
  }
  SIZE_T bytes = 0;
  MEMORY_BASIC_INFORMATION region{};
  for (const char* at = nullptr; ::VirtualQuery(at, &region, sizeof(region)) == sizeof(region);
       at = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
  }
  return bytes;
}

SIZE_T HeapBytes() {
  HANDLE heaps[64];
  const DWORD count = ::GetProcessHeaps(64, heaps);
  SIZE_T bytes = 0;
  for (DWORD i = 0; i < count && i < 64; ++i) {
    if (!::HeapLock(heaps[i])) continue;
    PROCESS_HEAP_ENTRY entry{};
    while (::HeapWalk(heaps[i], &entry)) {
      if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
    }
    ::HeapUnlock(heaps[i]);
  }
  return bytes;
}

Sample Take() { return {CountHandles(), PrivateBytes(), HeapBytes()}; }

// The heap bytes one DXGI factory creation keeps, as the graphics inventory makes it.
double DxgiCreationGrowth() {
  wchar_t system[MAX_PATH] = {};
  ::GetSystemDirectoryW(system, MAX_PATH);
  const HMODULE dxgi = ::LoadLibraryW((std::wstring(system) + L"\\dxgi.dll").c_str());
  using CreateFactory = HRESULT(WINAPI*)(REFIID, void**);
  const auto create = dxgi ? reinterpret_cast<CreateFactory>(reinterpret_cast<void*>(
                                 ::GetProcAddress(dxgi, "CreateDXGIFactory1")))
                           : nullptr;
  const auto once = [&] {
    IUnknown* factory = nullptr;
    if (create != nullptr && SUCCEEDED(create(IID_IUnknown, reinterpret_cast<void**>(&factory))) &&
        factory != nullptr) {
      factory->Release();
    }
  };
  constexpr int kCalls = 20;
  for (int i = 0; i < 3; ++i) once();
  const SIZE_T before = HeapBytes();
  for (int i = 0; i < kCalls; ++i) once();
  const SIZE_T after = HeapBytes();
  if (dxgi != nullptr) ::FreeLibrary(dxgi);
  return (static_cast<double>(after) - static_cast<double>(before)) / kCalls;
}

void Cycle(bool batched, bool graphics) {
  if (batched) {
    const HalBatch batch;
    velhal::robustness::ExerciseLibrary([] {}, graphics);
  } else {
    velhal::robustness::ExerciseLibrary([] {}, graphics);
  }
}

}  // namespace

int main(int argc, char** argv) {
  int cycles = 20;
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "--cycles") == 0) cycles = std::atoi(argv[i + 1]);
  }
  ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  const double dxgi_growth = DxgiCreationGrowth();
  const bool graphics = dxgi_growth <= 0;
  if (!graphics) {
    std::printf(
        "soak: graphics steps left out: this system's own DXGI factory creation keeps "
        "%.0f heap bytes a call\n",
        dxgi_growth);
  }
  for (int i = 0; i < kWarmUp; ++i) Cycle(i % 2 == 0, graphics);
  const Sample before = Take();
  for (int i = 0; i < cycles; ++i) Cycle(i % 2 == 0, graphics);
  const Sample after = Take();
  ::CoUninitialize();

  const double per_1000 = 1000.0 / cycles;
  const double handles = (static_cast<double>(after.handles) - before.handles) * per_1000;
  const auto growth = [&](SIZE_T from, SIZE_T to) {
    return (static_cast<double>(to) - static_cast<double>(from)) * per_1000;
  };
  const double bytes = growth(before.private_bytes, after.private_bytes);
  const double heap = growth(before.heap_bytes, after.heap_bytes);
  std::printf(
      "soak: %d cycles (half in a batch); handles %lu -> %lu, private bytes %zu -> %zu, "
      "heap bytes %zu -> %zu; per 1000 cycles: %+.0f handles, %+.0f private bytes, "
      "%+.0f heap bytes\n",
      cycles, before.handles, after.handles, before.private_bytes, after.private_bytes,
      before.heap_bytes, after.heap_bytes, handles, bytes, heap);
  const bool grew = after.handles > before.handles || heap > kHeapNoisePer1000;
  if (grew) std::fprintf(stderr, "soak: the process grew\n");
  return grew ? 1 : 0;
}
