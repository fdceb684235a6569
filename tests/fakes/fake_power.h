// Power status and battery state as a test sets them, each able to fail a given number of times
// first (the modules retry).
#pragma once

#include "platform/win32.h"

#include <cstring>

#include "platform/os/power.h"

namespace velhal::testing {

class FakePower final : public os::Power {
 public:
  SYSTEM_POWER_STATUS status{};  // ACLineStatus 1, BatteryFlag 128: a desktop on mains
  int status_failures = 0;       // calls that fail before one succeeds (-1: always)
  SYSTEM_BATTERY_STATE battery{};
  int battery_failures = 0;
  int status_calls = 0, battery_calls = 0;
  POWER_PLATFORM_ROLE role = PlatformRoleDesktop;  // PlatformRoleUnspecified: the call is missing

  FakePower() {
    status.ACLineStatus = 1;
    status.BatteryFlag = 128;
    status.BatteryLifePercent = 255;
  }

  BOOL GetSystemPowerStatus(SYSTEM_POWER_STATUS* out) override {
    ++status_calls;
    if (Fails(status_failures)) return FALSE;
    *out = status;
    return TRUE;
  }
  LONG CallNtPowerInformation(POWER_INFORMATION_LEVEL level, void*, ULONG, void* out,
                              ULONG out_size) override {
    ++battery_calls;
    if (level != SystemBatteryState || out_size != sizeof(SYSTEM_BATTERY_STATE)) {
      return static_cast<LONG>(0xC000000D);  // STATUS_INVALID_PARAMETER
    }
    if (Fails(battery_failures)) return static_cast<LONG>(0xC0000001);  // STATUS_UNSUCCESSFUL
    std::memcpy(out, &battery, sizeof(battery));
    return 0;
  }
  POWER_PLATFORM_ROLE PowerDeterminePlatformRoleEx(ULONG version) override {
    return version == POWER_PLATFORM_ROLE_V2 ? role : PlatformRoleUnspecified;
  }

 private:
  static bool Fails(int& failures) {
    if (failures == 0) return false;
    if (failures > 0) --failures;
    return true;
  }
};

}  // namespace velhal::testing
