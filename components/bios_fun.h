// Whether a device is switched on in the firmware setup, through VelSDK::BiosWmi. Known for the
// wireless network, Bluetooth, biometric and audio devices.
#pragma once

#include "drivers/device_driver_type.h"
#include "hal/velhal_export.h"

class VELHAL_API BiosFun {
 public:
  // status is set to true first. True when the firmware answered for a known device type;
  // false for any other type (status then stays true) or when the firmware did not answer.
  bool GetBiosSwitch(bool& status, DeviceDriverType type);
};
