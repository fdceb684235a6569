// Memory status, CPUID and the kernel's identity as a test sets them; CPUID records the leaves
// asked for. The address space is the test's own, so it is answered by the real VirtualQuery.
#pragma once

#include "platform/win32.h"

#include <array>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/os/system_info.h"
#include "tests/fakes/fake_common.h"

namespace velhal::testing {

class FakeSystemInfo final : public os::SystemInfo {
 public:
  MEMORYSTATUSEX memory{};
  bool memory_fails = false;
  std::map<int, std::array<int, 4>> cpuid;
  std::vector<int> cpuid_leaves;
  OSVERSIONINFOEXW version{};                               // what RtlGetVersion answers
  LONG version_status = 0;                                  // non-zero: RtlGetVersion fails with it
  WORD native_architecture = PROCESSOR_ARCHITECTURE_AMD64;  // GetNativeSystemInfo's
  std::optional<USHORT> native_machine;  // IsWow64Process2's; nullopt: the function is missing
  std::wstring computer_name;            // empty: GetComputerNameExW fails
  ULONGLONG tick_count = 0;

  FakeSystemInfo() { memory.dwLength = sizeof(memory); }

  BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* out) override {
    if (memory_fails || out->dwLength != sizeof(MEMORYSTATUSEX)) return FALSE;
    *out = memory;
    return TRUE;
  }
  SIZE_T VirtualQuery(const void* address, MEMORY_BASIC_INFORMATION* region, SIZE_T size) override {
    return ::VirtualQuery(address, region, size);
  }
  void Cpuid(int registers[4], int leaf) override {
    cpuid_leaves.push_back(leaf);
    const auto found = cpuid.find(leaf);
    for (int i = 0; i < 4; ++i) registers[i] = found == cpuid.end() ? 0 : found->second[i];
  }
  LONG RtlGetVersion(OSVERSIONINFOEXW* out) override {
    if (version_status != 0) return version_status;
    const DWORD size = out->dwOSVersionInfoSize;
    if (size != sizeof(OSVERSIONINFOW) && size != sizeof(OSVERSIONINFOEXW)) {
      return static_cast<LONG>(0xC000000D);  // STATUS_INVALID_PARAMETER
    }
    std::memcpy(out, &version, size);
    out->dwOSVersionInfoSize = size;
    return 0;
  }
  void GetNativeSystemInfo(SYSTEM_INFO* info) override {
    *info = {};
    info->wProcessorArchitecture = native_architecture;
  }
  BOOL IsWow64Process2(HANDLE, USHORT* process_machine, USHORT* native) override {
    if (!native_machine) return Fail(ERROR_PROC_NOT_FOUND);
    *process_machine = 0;  // IMAGE_FILE_MACHINE_UNKNOWN: not a WOW64 process
    *native = *native_machine;
    return TRUE;
  }
  BOOL GetComputerNameExW(COMPUTER_NAME_FORMAT format, wchar_t* buffer, DWORD* size) override {
    if (format != ComputerNamePhysicalDnsHostname || computer_name.empty()) {
      return Fail(ERROR_INVALID_PARAMETER);
    }
    const DWORD needed = static_cast<DWORD>(computer_name.size() + 1);
    if (buffer == nullptr || *size < needed) {
      *size = needed;
      return Fail(ERROR_MORE_DATA);
    }
    std::memcpy(buffer, computer_name.c_str(), needed * sizeof(wchar_t));
    *size = needed - 1;
    return TRUE;
  }
  ULONGLONG GetTickCount64() override { return tick_count; }
};

}  // namespace velhal::testing
