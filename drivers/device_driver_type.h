// The kinds of device the driver-maintenance, driver-version and firmware-switch operations
// take, each selecting a setup class. The numbers are the interface's; 2, 4 and 8 select
// nothing, and each operation says which kinds it accepts.
#pragma once

enum DeviceDriverType : unsigned int {
  DriverType_WirelessNetwork = 0,  // GUID_DEVCLASS_NET
  DriverType_Bluetooth = 1,        // GUID_DEVCLASS_BLUETOOTH
  DriverType_Biometric = 3,        // GUID_DEVCLASS_BIOMETRIC
  DriverType_Audio = 5,            // GUID_DEVCLASS_MEDIA
  DriverType_Keyboard = 6,         // GUID_DEVCLASS_KEYBOARD
  DriverType_DisplayAdapter = 7,   // GUID_DEVCLASS_DISPLAY
  DriverType_Usb = 9,              // GUID_DEVCLASS_USB
};
