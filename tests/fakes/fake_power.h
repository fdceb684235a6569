// Power status and battery state as a test sets them, each able to fail a given number of times
// first (the modules retry); and an active power scheme whose brightness values a test sets and
// whose reads and writes it sees. Scheme GUIDs handed out are counted until LocalFree.
#pragma once

#include "platform/win32.h"

#include <cstring>
#include <set>
#include <vector>

#include "platform/os/power.h"

namespace velhal::testing {

class FakePower final : public os::Power {
 public:
  SYSTEM_POWER_STATUS status{};  // ACLineStatus 1, BatteryFlag 128: a desktop on mains
  int status_failures = 0;       // calls that fail before one succeeds (-1: always)
  SYSTEM_BATTERY_STATE battery{};
  int battery_failures = 0;
  int status_calls = 0, battery_calls = 0;
  DWORD status_error = ERROR_GEN_FAILURE;  // the last error a failed GetSystemPowerStatus leaves

  // The scheme calls answer these results (ERROR_CALL_NOT_IMPLEMENTED is what a system without
  // the function gives).
  GUID scheme{0x381b4222, 0xf694, 0x41f0, {0x96, 0x85, 0xff, 0x5b, 0xb2, 0x60, 0xdf, 0x2e}};
  DWORD get_scheme_result = ERROR_SUCCESS, set_scheme_result = ERROR_SUCCESS;
  DWORD read_result = ERROR_SUCCESS, write_result = ERROR_SUCCESS;
  DWORD ac_value = 0, dc_value = 0;
  struct Access {
    bool ac;
    GUID scheme, subgroup, setting;
    DWORD value;  // written, or read
  };
  std::vector<Access> reads, writes;
  std::vector<GUID> activated;
  int bad_frees = 0;
  size_t schemes_held() const { return handed_out_.size(); }
  POWER_PLATFORM_ROLE role = PlatformRoleDesktop;  // PlatformRoleUnspecified: the call is missing

  FakePower() {
    status.ACLineStatus = 1;
    status.BatteryFlag = 128;
    status.BatteryLifePercent = 255;
  }

  ~FakePower() {
    for (GUID* left : handed_out_) delete left;
  }

  BOOL GetSystemPowerStatus(SYSTEM_POWER_STATUS* out) override {
    ++status_calls;
    if (Fails(status_failures)) {
      ::SetLastError(status_error);
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
    if (Fails(battery_failures)) return static_cast<LONG>(0xC0000001);  // STATUS_UNSUCCESSFUL
    std::memcpy(out, &battery, sizeof(battery));
    return 0;
  }
  POWER_PLATFORM_ROLE PowerDeterminePlatformRoleEx(ULONG version) override {
    return version == POWER_PLATFORM_ROLE_V2 ? role : PlatformRoleUnspecified;
  }

  DWORD PowerGetActiveScheme(HKEY, GUID** out) override {
    *out = nullptr;
    if (get_scheme_result != ERROR_SUCCESS) return get_scheme_result;
    *out = new GUID(scheme);
    handed_out_.insert(*out);
    return ERROR_SUCCESS;
  }
  DWORD PowerSetActiveScheme(HKEY, const GUID* chosen) override {
    activated.push_back(chosen ? *chosen : GUID{});
    return set_scheme_result;
  }
  DWORD PowerReadACValueIndex(HKEY, const GUID* chosen, const GUID* subgroup, const GUID* setting,
                              DWORD* value) override {
    return Read(true, chosen, subgroup, setting, value);
  }
  DWORD PowerReadDCValueIndex(HKEY, const GUID* chosen, const GUID* subgroup, const GUID* setting,
                              DWORD* value) override {
    return Read(false, chosen, subgroup, setting, value);
  }
  DWORD PowerWriteACValueIndex(HKEY, const GUID* chosen, const GUID* subgroup, const GUID* setting,
                               DWORD value) override {
    writes.push_back({true, Or(chosen), Or(subgroup), Or(setting), value});
    return write_result;
  }
  DWORD PowerWriteDCValueIndex(HKEY, const GUID* chosen, const GUID* subgroup, const GUID* setting,
                               DWORD value) override {
    writes.push_back({false, Or(chosen), Or(subgroup), Or(setting), value});
    return write_result;
  }
  HLOCAL LocalFree(HLOCAL memory) override {
    auto* guid = static_cast<GUID*>(memory);
    if (handed_out_.erase(guid) == 0) {
      ++bad_frees;
      return memory;
    }
    delete guid;
    return nullptr;
  }

 private:
  static GUID Or(const GUID* guid) { return guid ? *guid : GUID{}; }
  DWORD Read(bool ac, const GUID* chosen, const GUID* subgroup, const GUID* setting, DWORD* value) {
    const DWORD stored = ac ? ac_value : dc_value;
    reads.push_back({ac, Or(chosen), Or(subgroup), Or(setting), stored});
    if (read_result == ERROR_SUCCESS) *value = stored;
    return read_result;
  }

  std::set<GUID*> handed_out_;

  static bool Fails(int& failures) {
    if (failures == 0) return false;
    if (failures > 0) --failures;
    return true;
  }
};

}  // namespace velhal::testing
