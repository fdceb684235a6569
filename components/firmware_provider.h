// The one place a machine maker's firmware interface plugs in. It is asked first; whatever it
// answers ERROR_NOT_SUPPORTED for falls to Windows' standard sources (components/bios_wmi.h).
// The real provider is no maker's: it answers ERROR_NOT_SUPPORTED for everything. A maker's
// provider (or a test's) is installed through the seam, like any operating-system backend, and
// overrides only what it has.
#pragma once

#include "platform/win32.h"

#include "components/bios_wmi.h"
#include "platform/os/seam.h"

namespace velhal {

class FirmwareProvider {
 public:
  virtual DWORD SetChargeThreshold(unsigned char first, unsigned char second) = 0;
  virtual DWORD GetChargeThreshold(unsigned char& first, unsigned char& second) = 0;
  // Units as BiosWmi gives them.
  virtual DWORD GetFanSpeed(int& /*rpm*/, FanSpeedLocateNumber /*locate*/) {
    return ERROR_NOT_SUPPORTED;
  }
  virtual DWORD GetSensorTemperature(int& /*celsius*/, QuerySensorTemperatureIndex /*index*/) {
    return ERROR_NOT_SUPPORTED;
  }
  virtual DWORD GetVoltageOrCurrent(int& /*value*/, VoltageCurrentLocateNumber /*locate*/) {
    return ERROR_NOT_SUPPORTED;
  }
  virtual DWORD GetDeviceBiosSwitchStatus(DeviceBiosSwitchNumber /*number*/, bool& /*status*/) {
    return ERROR_NOT_SUPPORTED;
  }

  static FirmwareProvider& Real() noexcept;

 protected:
  ~FirmwareProvider() = default;
};

inline FirmwareProvider& firmware_provider() noexcept { return os::Seam<FirmwareProvider>::Get(); }

}  // namespace velhal
