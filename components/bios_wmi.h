// Firmware-side readings and settings that only a machine maker's firmware interface offers
// (fan speeds, vendor sensors, charge thresholds, firmware-setup switches). Windows has no
// standard form for these, so without a maker's provider each call answers ERROR_NOT_SUPPORTED.
// Every member returns 0 on success and a Windows error code otherwise.
#pragma once

#include "hal/velhal_export.h"

namespace VelSDK {

class VELHAL_API BiosWmi {
 public:
  // The two charge-threshold bytes, first then second, in the order the firmware takes them.
  // SetBatteryChargeThreshlod is spelt so in the export table; hosts bind that name.
  static int SetBatteryChargeThreshlod(unsigned char first, unsigned char second);
  static int GetBatteryChargeThreshold(unsigned char& first, unsigned char& second);
};

}  // namespace VelSDK
