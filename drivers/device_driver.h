// Driver maintenance: remove a device so that Plug and Play installs it afresh, rescan for
// hardware, wait for a device to come back without a problem, enable or disable a device, list
// devices without a driver; and the driver version of one device of a kind. Devices are named
// by their first hardware ID (exact, letter case included); the kind selects the setup class.
// Status results are Windows error codes, 0 for success, 0xFFFFFFFF when the kind selects no
// class or no device matched.
//
// UnInstallDeviceDriver and GetUnkownHardId are spelt so in the export table; hosts bind those
// names.
#pragma once

#include <string>
#include <vector>

#include "drivers/device_driver_type.h"
#include "hal/velhal_export.h"

class VELHAL_API DeviceDriver {
 public:
  // Removes the device, then up to ten times rescans, waits a second and reads its problem
  // code: 0 as soon as the code reads 0 (also when the device has not come back: callers rely
  // on it), 0xFFFFFFFF after the tenth. Kinds 0, 1, 3, 5, 7. Blocks for up to ten seconds.
  unsigned long ResetDeviceDriver(const std::wstring& hardwareId, DeviceDriverType type);
  // Removes the present device of the kind's class. Kinds 0, 1, 3, 5, 7, 9.
  unsigned long UnInstallDeviceDriver(const std::wstring& hardwareId, DeviceDriverType type);
  // The Plug and Play problem code of the present device with the ID, of any class; 0 when it
  // has none or is not found. Kinds 0, 1, 3, 5, 7.
  unsigned long GetDeviceDriverErrorCode(const std::wstring& hardwareId, DeviceDriverType type);
  // Asks Plug and Play to rescan the whole device tree and returns at once; a failure is
  // written to the debugger output.
  void ScanForHardwareChange();
  // Enables or disables the present device whose first hardware ID it is, through its class
  // installer; true when the class installer did it.
  bool SetDriverStatus(bool enable, const std::wstring& hardwareId);
  // First hardware IDs of present devices without a setup class (no driver). The last device
  // may be listed twice; callers tolerate it.
  std::vector<std::wstring> GetUnkownHardId();
};

// The driver version of the device of a kind: the first wireless card (0), the Bluetooth radio
// (1), the fingerprint sensor (3), the audio card (5), the built-in keyboard (6), the display
// adapter (7); empty for another kind or when there is none.
VELHAL_API std::wstring GetDeviceDriverVersion(DeviceDriverType type);
