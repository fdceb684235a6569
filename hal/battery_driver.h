// The battery driver's own interface (IOCTL_BATTERY_*), read by the battery module and by the
// firmware readings' battery voltage and current.
#pragma once

#include "platform/win32.h"

#include <winioctl.h>

#include <batclass.h>

#include <optional>
#include <string>

namespace velhal::hal {

struct BatteryDriverReading {
  BATTERY_INFORMATION information;  // capacities in mWh unless BATTERY_CAPACITY_RELATIVE
  BATTERY_STATUS status;            // voltage in mV; rate in mW, negative while discharging
};

// The index-th battery (0 the first, in SetupAPI's order): tag, information and status in one
// go. Any failed step fails the whole read.
std::optional<BatteryDriverReading> ReadBatteryDriver(DWORD index = 0);

// A name the first battery's driver gives at an information level (device or manufacturer).
std::optional<std::wstring> ReadBatteryDriverName(BATTERY_QUERY_INFORMATION_LEVEL level);

}  // namespace velhal::hal
