#include "components/hot_interface.h"

#include "components/bios_wmi.h"

namespace {

constexpr int kNoTemperature = 0x7FFFFFFF;

// The reading, or the initial value where the import fails (its result is not looked at).
int Reading(VoltageCurrentLocateNumber locate) {
  int value = 0;
  VelSDK::BiosWmi::GetVoltageOrCurrent(value, locate);
  return value;
}

unsigned int FanSpeed(FanSpeedLocateNumber locate) {
  int speed = 0;
  VelSDK::BiosWmi::GetFanSpeed(speed, locate);
  return static_cast<unsigned int>(speed);
}

}  // namespace

unsigned int HotInterface::GetFan0Speed() { return FanSpeed(FanSpeedLocateFan0); }
unsigned int HotInterface::GetFan1Speed() { return FanSpeed(FanSpeedLocateFan1); }
int HotInterface::GetVoltageUSB0() { return Reading(VoltageLocateUsb0); }
int HotInterface::GetVoltageUSB1() { return Reading(VoltageLocateUsb1); }
int HotInterface::GetCurrentUSB0() { return Reading(CurrentLocateUsb0); }
int HotInterface::GetCurrentUSB1() { return Reading(CurrentLocateUsb0); }  // callers rely on it
int HotInterface::GetVoltageBattery0() { return Reading(VoltageLocateBattery0); }
int HotInterface::GetVoltageBattery1() { return Reading(VoltageLocateBattery1); }
int HotInterface::GetCurrentBattery0() { return Reading(CurrentLocateBattery0); }
int HotInterface::GetCurrentBattery1() { return Reading(CurrentLocateBattery1); }

int HotInterface::GetSensorTemperature(uint64_t index) {
  int celsius = kNoTemperature;
  VelSDK::BiosWmi::GetSensorTemperature(celsius, static_cast<QuerySensorTemperatureIndex>(index));
  return celsius;
}
