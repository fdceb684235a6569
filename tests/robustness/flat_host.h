// VelHal.dll as a host that loads it at run time sees it: the flat exports bound by name, and
// the read paths of every class as probes that a robustness program can call from anywhere.
#pragma once

#include "platform/win32.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "hal/hal_api.h"

namespace velhal::robustness {

struct FlatApi {
  HMODULE module = nullptr;
  decltype(&::HalInit) HalInit = nullptr;
  decltype(&::HalOpenDevice) HalOpenDevice = nullptr;
  decltype(&::HalCloseDevice) HalCloseDevice = nullptr;
  decltype(&::HalRead) HalRead = nullptr;
  decltype(&::HalWrite) HalWrite = nullptr;
  decltype(&::HalQueryInformation) HalQueryInformation = nullptr;
  decltype(&::HalSetInformation) HalSetInformation = nullptr;
  decltype(&::HalSetCallback) HalSetCallback = nullptr;
  decltype(&::HalBeginBatch) HalBeginBatch = nullptr;
  decltype(&::HalEndBatch) HalEndBatch = nullptr;
  decltype(&::CpuInit) CpuInit = nullptr;
  decltype(&::CpuQueryInformation) CpuQueryInformation = nullptr;
  decltype(&::BtInit) BtInit = nullptr;
  decltype(&::BtQueryInformation) BtQueryInformation = nullptr;
  decltype(&::BtSetInformation) BtSetInformation = nullptr;
  decltype(&::MmInit) MmInit = nullptr;
  decltype(&::MmQueryInformation) MmQueryInformation = nullptr;
  decltype(&::IsTypeDetachablePC) IsTypeDetachablePC = nullptr;
  decltype(&::GpInit) GpInit = nullptr;
  decltype(&::HalFreeBlock) HalFreeBlock = nullptr;

  // Loads the library beside the program and binds every export; exits with a message when
  // one is missing, as a host would refuse to start.
  static FlatApi Load() {
    FlatApi api;
    api.module = ::LoadLibraryW(L"VelHal.dll");
    if (api.module == nullptr) Fail("cannot load VelHal.dll");
    api.Bind(api.HalInit, "HalInit");
    api.Bind(api.HalOpenDevice, "HalOpenDevice");
    api.Bind(api.HalCloseDevice, "HalCloseDevice");
    api.Bind(api.HalRead, "HalRead");
    api.Bind(api.HalWrite, "HalWrite");
    api.Bind(api.HalQueryInformation, "HalQueryInformation");
    api.Bind(api.HalSetInformation, "HalSetInformation");
    api.Bind(api.HalSetCallback, "HalSetCallback");
    api.Bind(api.HalBeginBatch, "HalBeginBatch");
    api.Bind(api.HalEndBatch, "HalEndBatch");
    api.Bind(api.CpuInit, "CpuInit");
    api.Bind(api.CpuQueryInformation, "CpuQueryInformation");
    api.Bind(api.BtInit, "BtInit");
    api.Bind(api.BtQueryInformation, "BtQueryInformation");
    api.Bind(api.BtSetInformation, "BtSetInformation");
    api.Bind(api.MmInit, "MmInit");
    api.Bind(api.MmQueryInformation, "MmQueryInformation");
    api.Bind(api.IsTypeDetachablePC, "IsTypeDetachablePC");
    api.Bind(api.GpInit, "GpInit");
    api.Bind(api.HalFreeBlock, "HalFreeBlock");
    return api;
  }

  [[noreturn]] static void Fail(const std::string& why) {
    std::fprintf(stderr, "%s\n", why.c_str());
    std::fflush(stderr);
    std::exit(1);
  }

 private:
  template <class Function>
  void Bind(Function& slot, const char* name) {
    slot = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
    if (slot == nullptr) Fail(std::string("VelHal.dll does not export ") + name);
  }
};

// One read whose answer a robustness program compares: the result byte, then what was
// returned. Probes marked volatile read values that change by themselves (loads, clocks, free
// space) and are compared only for their result.
struct Probe {
  std::string name;
  bool is_volatile;
  std::function<std::vector<uint8_t>()> read;
};

// The read paths of every class, through the flat interface only.
inline std::vector<Probe> ReadProbes(const FlatApi& api) {
  std::vector<Probe> probes;
  const auto answer = [](uint32_t result, const uint8_t* buffer, uint32_t size) {
    std::vector<uint8_t> bytes(1 + (result ? size : 0));
    bytes[0] = static_cast<uint8_t>(result);
    if (result && size > 0) std::memcpy(bytes.data() + 1, buffer, size);
    return bytes;
  };
  const auto add = [&](std::string name, bool is_volatile, auto read) {
    probes.push_back({std::move(name), is_volatile, read});
  };
  for (uint32_t info : {HAL_CPU_INFO_VENDOR, HAL_CPU_INFO_NAME, HAL_CPU_INFO_L1_ASSOCIATIVITY,
                        HAL_CPU_INFO_MAX_CLOCK, HAL_CPU_INFO_CORES, HAL_CPU_INFO_LOGICAL_PROCESSORS,
                        HAL_CPU_INFO_L2_CACHE_SIZE, HAL_CPU_INFO_TYPE, HAL_CPU_INFO_CURRENT_CLOCK,
                        HAL_CPU_INFO_LOAD_PERCENTAGE}) {
    const bool changes = info == HAL_CPU_INFO_CURRENT_CLOCK || info == HAL_CPU_INFO_LOAD_PERCENTAGE;
    add("cpu " + std::to_string(info), changes, [&api, answer, info] {
      uint8_t buffer[260] = {};
      uint32_t returned = 0;
      const uint32_t ok = api.CpuQueryInformation(info, buffer, sizeof(buffer), &returned);
      return answer(ok, buffer, info < 5 ? returned : 4);
    });
  }
  for (uint32_t info : {HAL_MEMORY_INFO_COUNT, HAL_MEMORY_INFO_LOCATOR, HAL_MEMORY_INFO_CAPACITY}) {
    add("memory " + std::to_string(info), false, [&api, answer, info] {
      uint8_t buffer[260] = {};
      uint32_t returned = 0;
      HalDeviceEntry entry{nullptr, 0, 0};
      return answer(api.MmQueryInformation(&entry, info, buffer, sizeof(buffer), &returned), buffer,
                    returned);
    });
  }
  for (uint32_t info :
       {HAL_BATTERY_INFO_PRESENT, HAL_BATTERY_INFO_AC_LINE_STATUS, HAL_BATTERY_INFO_DEVICE_NAME}) {
    add("battery " + std::to_string(info), false, [&api, answer, info] {
      uint8_t buffer[260] = {};
      uint32_t returned = 0;
      return answer(api.BtQueryInformation(info, buffer, sizeof(buffer), &returned), buffer,
                    returned);
    });
  }
  for (uint32_t info : {HAL_DISK_INFO_COUNT, HAL_DISK_INFO_SYSTEM_DISK_INDEX,
                        HAL_DISK_INFO_MEDIA_TYPE_TEXT, HAL_DISK_INFO_FREE_MIB}) {
    add("disk " + std::to_string(info), info == HAL_DISK_INFO_FREE_MIB, [&api, answer, info] {
      uint8_t buffer[520] = {};
      uint32_t returned = 0;
      HalDeviceEntry entry{nullptr, 0, 0};
      return answer(
          api.HalQueryInformation(HAL_CLASS_DISK, &entry, info, buffer, sizeof(buffer), &returned),
          buffer, returned);
    });
  }
  // The whole adapter block: the inventory a batch keeps for its thread.
  add("graphics adapters", false, [&api] {
    GpAdapterList* block = nullptr;
    const uint32_t ok = api.GpInit(&block);
    const auto* raw = reinterpret_cast<const uint8_t*>(block);
    std::vector<uint8_t> bytes(1 + (block != nullptr ? block->totalSize : 0));
    bytes[0] = static_cast<uint8_t>(ok);
    if (block != nullptr) std::memcpy(bytes.data() + 1, raw, block->totalSize);
    api.HalFreeBlock(block);
    return bytes;
  });
  add("detachable", false,
      [&api] { return std::vector<uint8_t>{static_cast<uint8_t>(api.IsTypeDetachablePC())}; });
  return probes;
}

}  // namespace velhal::robustness
