// The readings Windows offers in standard form, behind BiosWmi when no maker's firmware
// interface answers. Each returns 0 with the reading, ERROR_NOT_SUPPORTED when the machine has
// no such reading (out is then unchanged). Units as components/bios_wmi.h gives them.
#pragma once

#include "platform/win32.h"

#include <cstdint>

namespace velhal::sensors {

DWORD ThermalZoneCelsius(uint32_t index, int& celsius);
DWORD FanRpm(uint32_t index, int& rpm);
// battery: 0 the first; current: mA (else the voltage in mV).
DWORD BatteryVoltageOrCurrent(uint32_t battery, bool current, int& value);

}  // namespace velhal::sensors
