// What each DeviceDriverType stands for: a name for people, its setup class, and the starts of
// the first hardware ID that mark the kind's physical device among the class's present devices
// (its software and virtual devices begin otherwise: SWD\, ROOT\, BTHENUM\...). A constant
// table: nothing is built at start-up.
#pragma once

#include <guiddef.h>

#include <array>
#include <span>

#include "drivers/device_driver_type.h"
#include "platform/device_classes.h"

namespace velhal::components {

struct DeviceKind {
  DeviceDriverType type;
  const wchar_t* name;
  GUID setup_class;
  std::array<const wchar_t*, 3> prefixes;  // unused slots are null
  size_t prefix_count;

  std::span<const wchar_t* const> Prefixes() const { return {prefixes.data(), prefix_count}; }
};

// Kind 0's device is picked by the network-card classification, not by a prefix.
inline constexpr DeviceKind kDeviceKinds[] = {
    {DriverType_WirelessNetwork, L"Wireless network card", device_class::kNet, {}, 0},
    {DriverType_Bluetooth, L"Bluetooth radio", device_class::kBluetooth, {L"USB", L"QCA_SHB"}, 2},
    {DriverType_Biometric, L"Biometric sensor", device_class::kBiometric, {L"USB", L"ACPI"}, 2},
    {DriverType_Audio,
     L"Audio device",
     device_class::kMedia,
     {L"HDAUDIO\\FUNC_01", L"INTELAUDIO\\FUNC_01", L"USB"},
     3},
    {DriverType_Keyboard, L"Built-in keyboard", device_class::kKeyboard, {L"ACPI"}, 1},
    {DriverType_DisplayAdapter, L"Display adapter", device_class::kDisplay, {L"PCI"}, 1},
    {DriverType_Usb, L"USB host controller", device_class::kUsb, {L"PCI"}, 1},
};

constexpr const DeviceKind* FindDeviceKind(DeviceDriverType type) {
  for (const DeviceKind& kind : kDeviceKinds) {
    if (kind.type == type) return &kind;
  }
  return nullptr;
}

}  // namespace velhal::components
