// Power status, battery state, memory status and CPUID as a test sets them, each able to fail a
// given number of times first (the modules retry).
#pragma once

#include "platform/win32.h"

#include <array>
#include <cstring>
#include <map>
#include <vector>

#include "platform/os/power.h"

namespace velhal::testing {

class FakePower final : public os::Power {
 public:
  SYSTEM_POWER_STATUS status{};  // ACLineStatus 1, BatteryFlag 128: a desktop on mains
  int status_failures = 0;       // calls that fail before one succeeds (-1: always)
  SYSTEM_BATTERY_STATE battery{};
  int battery_failures = 0;
  MEMORYSTATUSEX memory{};
  bool memory_fails = false;
  std::map<int, std::array<int, 4>> cpuid;
  std::vector<int> cpuid_leaves;
  int status_calls = 0, battery_calls = 0;

  FakePower() {
    status.ACLineStatus = 1;
    status.BatteryFlag = 128;
    status.BatteryLifePercent = 255;
    memory.dwLength = sizeof(memory);
  }

  BOOL GetSystemPowerStatus(SYSTEM_POWER_STATUS* out) override {
    ++status_calls;
    if (status_failures != 0) {
      if (status_failures > 0) --status_failures;
      return FALSE;
    }
    *out = status;
    return TRUE;
  }
  LONG CallNtPowerInformation(POWER_INFORMATION_LEVEL level, void*, ULONG, void* out,
                              ULONG out_size) override {
    ++battery_calls;
    if (level != SystemBatteryState || out_size != sizeof(SYSTEM_BATTERY_STATE)) {
      return static_cast<LONG>(0xC000000D);  // STATUS_INVALID_PARAMETER
    }
    if (battery_failures != 0) {
      if (battery_failures > 0) --battery_failures;
      return static_cast<LONG>(0xC0000001);  // STATUS_UNSUCCESSFUL
    }
    std::memcpy(out, &battery, sizeof(battery));
    return 0;
  }
  BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* out) override {
    if (memory_fails || out->dwLength != sizeof(MEMORYSTATUSEX)) return FALSE;
    *out = memory;
    return TRUE;
  }
  void Cpuid(int registers[4], int leaf) override {
    cpuid_leaves.push_back(leaf);
    const auto found = cpuid.find(leaf);
    for (int i = 0; i < 4; ++i) registers[i] = found == cpuid.end() ? 0 : found->second[i];
  }
};

}  // namespace velhal::testing
