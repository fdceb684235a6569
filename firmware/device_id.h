// The device of each kind: a name for people of every DeviceDriverType, and the first hardware
// ID and description of the kind's present device. The kind's device is picked among its setup
// class's present devices by the start of the first hardware ID (a constant table: "USB" or
// "QCA_SHB" for the Bluetooth radio, "ACPI" for the built-in keyboard, "PCI" for the display
// adapter and the USB host controller, ...); the wireless network card by the network-card
// classification. The answers are read afresh at every call: devices come and go.
//
// CDeviceId is spelt so in the export table; hosts bind that name.
#pragma once

#include <string>

#include "drivers/device_driver_type.h"
#include "hal/velhal_export.h"

class VELHAL_API CDeviceId {
 public:
  // The one instance, made on first use; it lives until the library unloads. Null only when
  // memory ran out.
  static CDeviceId* GetInstance();

  // "Wireless network card", "Bluetooth radio", "Biometric sensor", "Audio device",
  // "Built-in keyboard", "Display adapter", "USB host controller"; empty for 2, 4, 8 and any
  // number above 9.
  std::wstring GetDeviceTypeName(DeviceDriverType type);
  // The first hardware ID of the kind's present device; empty when there is none.
  std::wstring GetHardwareId(DeviceDriverType type);
  // That device's description (DeviceDesc); empty when there is none.
  std::wstring GetHardwareDesc(DeviceDriverType type);
};
