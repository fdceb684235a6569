// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/system_info.h"

#include <intrin.h>

#include "platform/os/run_time_binding.h"

namespace velhal::os {
namespace {

constexpr LONG kStatusProcedureNotFound = static_cast<LONG>(0xC000007A);

class RealSystemInfo final : public SystemInfo {
 public:
  BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* status) override {
    return ::GlobalMemoryStatusEx(status);
  }
  void Cpuid(int registers[4], int leaf) override { __cpuid(registers, leaf); }
  SIZE_T VirtualQuery(const void* address, MEMORY_BASIC_INFORMATION* region, SIZE_T size) override {
    return ::VirtualQuery(address, region, size);
  }
  LONG RtlGetVersion(OSVERSIONINFOEXW* version) override {
    static const Bound<LONG WINAPI(OSVERSIONINFOEXW*)> call(L"ntdll.dll", "RtlGetVersion");
    return call.CallOr(kStatusProcedureNotFound, version);
  }
  void GetNativeSystemInfo(SYSTEM_INFO* info) override { ::GetNativeSystemInfo(info); }
  // Windows 10 1709 and later.
  BOOL IsWow64Process2(HANDLE process, USHORT* process_machine, USHORT* native_machine) override {
    static const Bound<BOOL WINAPI(HANDLE, USHORT*, USHORT*)> call(L"kernel32.dll",
                                                                   "IsWow64Process2");
    return call.CallOr(FALSE, process, process_machine, native_machine);
  }
  BOOL GetComputerNameExW(COMPUTER_NAME_FORMAT format, wchar_t* buffer, DWORD* size) override {
    return ::GetComputerNameExW(format, buffer, size);
  }
  ULONGLONG GetTickCount64() override { return ::GetTickCount64(); }
};

}  // namespace

SystemInfo& SystemInfo::Real() noexcept {
  static RealSystemInfo backend;
  return backend;
}

}  // namespace velhal::os
