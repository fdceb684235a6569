// One present device of a component class (audio card, Bluetooth, biometric, keyboard), as the
// device-installation database describes it.
#pragma once

#include <cstdint>
#include <string>

struct ComponentDevice {
  std::wstring hardwareId;     // the first string of its hardware-ID list
  std::wstring description;    // DeviceDesc
  std::wstring manufacturer;   // the maker its driver package names
  std::wstring driverVersion;  // "31.0.101.4502"; empty without a driver
  std::wstring driverDate;     // the driver's date, "YYYY-MM-DD"; empty without a driver
  uint32_t problemCode = 0;    // Plug and Play problem code (CM_PROB_*); 0 without a problem
};
