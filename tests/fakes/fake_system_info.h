// Memory status and CPUID as a test sets them; CPUID records the leaves asked for. The address
// space is the test's own, so it is answered by the real VirtualQuery.
#pragma once

#include "platform/win32.h"

#include <array>
#include <map>
#include <vector>

#include "platform/os/system_info.h"

namespace velhal::testing {

class FakeSystemInfo final : public os::SystemInfo {
 public:
  MEMORYSTATUSEX memory{};
  bool memory_fails = false;
  std::map<int, std::array<int, 4>> cpuid;
  std::vector<int> cpuid_leaves;

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
};

}  // namespace velhal::testing
