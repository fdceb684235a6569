// Firmware-side readings and settings: fan speeds, temperatures, voltages and currents, the
// firmware-setup switches and the charge thresholds. A machine maker's firmware interface, when
// one is plugged in (components/firmware_provider.h), answers first; what it does not answer
// comes from Windows' standard sources where Windows has one:
//
//   temperature n   the n-th ACPI thermal zone (WMI MSAcpi_ThermalZoneTemperature; where WMI
//                   gives none, as it refuses users without administrator rights, the thermal-
//                   zone performance counters), in whole degrees Celsius, rounded
//   fan speed n     the n-th Win32_Fan instance that reports a speed (DesiredSpeed), in RPM
//   battery n       the n-th battery's driver: voltage in mV; current in mA, from the driver's
//                   rate and voltage, negative while discharging
//   USB readings, firmware switches, charge thresholds: only a maker's interface has them
//
// Every member returns 0 on success and a Windows error code otherwise; a failed reading leaves
// its output unchanged. A reading the machine does not have is ERROR_NOT_SUPPORTED; a locate
// number outside the enumeration is ERROR_INVALID_PARAMETER.
#pragma once

#include <cstdint>

#include "hal/velhal_export.h"

enum FanSpeedLocateNumber : uint32_t {
  FanSpeedLocateFan0 = 0,
  FanSpeedLocateFan1 = 1,
};

// Any index n selects the n-th sensor; the two below are named for convenience.
enum QuerySensorTemperatureIndex : uint32_t {
  QuerySensorTemperature0 = 0,
  QuerySensorTemperature1 = 1,
};

// Low nibble: port or battery number; high nibble: the kind of reading.
enum VoltageCurrentLocateNumber : uint32_t {
  VoltageLocateUsb0 = 0x00,  // mV
  VoltageLocateUsb1 = 0x01,
  CurrentLocateUsb0 = 0x10,  // mA
  CurrentLocateUsb1 = 0x11,
  VoltageLocateBattery0 = 0x20,  // mV
  VoltageLocateBattery1 = 0x21,
  CurrentLocateBattery0 = 0x30,  // mA, negative while discharging
  CurrentLocateBattery1 = 0x31,
};

// The firmware's item codes of the switchable devices.
enum DeviceBiosSwitchNumber : uint32_t {
  DeviceBiosSwitchAudio = 0x24,
  DeviceBiosSwitchWirelessNetwork = 0x25,
  DeviceBiosSwitchBluetooth = 0x26,
  DeviceBiosSwitchBiometric = 0x27,
};

namespace VelSDK {

class VELHAL_API BiosWmi {
 public:
  static int GetFanSpeed(int& rpm, FanSpeedLocateNumber locate);
  static int GetSensorTemperature(int& celsius, QuerySensorTemperatureIndex index);
  static int GetVoltageOrCurrent(int& value, VoltageCurrentLocateNumber locate);
  // status: true when the device is switched on in the firmware setup.
  static int GetDeviceBiosSwitchStatus(DeviceBiosSwitchNumber number, bool& status);

  // The two charge-threshold bytes, first then second, in the order the firmware takes them.
  // SetBatteryChargeThreshlod is spelt so in the export table; hosts bind that name.
  static int SetBatteryChargeThreshlod(unsigned char first, unsigned char second);
  static int GetBatteryChargeThreshold(unsigned char& first, unsigned char& second);
};

}  // namespace VelSDK
