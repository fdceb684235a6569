// Live firmware-side readings, one member per reading, through VelSDK::BiosWmi (units there):
// fan speeds in RPM, voltages in mV, currents in mA, the temperature in degrees Celsius. A
// failed reading is 0, except the temperature's, which is 0x7FFFFFFF. GetCurrentUSB1 reads the
// first port's current, as GetCurrentUSB0 does; callers rely on it.
#pragma once

#include <cstdint>

#include "hal/velhal_export.h"

class VELHAL_API HotInterface {
 public:
  unsigned int GetFan0Speed();
  unsigned int GetFan1Speed();
  int GetVoltageUSB0();
  int GetVoltageUSB1();
  int GetCurrentUSB0();
  int GetCurrentUSB1();
  int GetVoltageBattery0();
  int GetVoltageBattery1();
  int GetCurrentBattery0();
  int GetCurrentBattery1();
  // The index-th sensor (its low 32 bits); 0x7FFFFFFF when there is no reading.
  int GetSensorTemperature(uint64_t index);
};
