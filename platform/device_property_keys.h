// The unified property keys behind EnumDeviceProperty, and the keys read directly.
// A constant table: nothing is built at start-up.
#pragma once

#include "platform/win32.h"

#include <devpropdef.h>

#include <array>
#include <optional>

namespace velhal::device_keys {

inline constexpr GUID kDeviceSet{0xa45c254e, 0xdf1c, 0x4efd, {0x80, 0x20, 0x67, 0xd1, 0x46, 0xa8, 0x50, 0xe0}};
inline constexpr GUID kDriverSet{0xa8b865dd, 0x2e3d, 0x4094, {0xad, 0x97, 0xe5, 0x93, 0xa7, 0x0c, 0x75, 0xd6}};
inline constexpr GUID kInstanceSet{0x78c34fc8, 0x104a, 0x4aca, {0x9e, 0xa4, 0x52, 0x4d, 0x52, 0x99, 0x6e, 0x57}};
inline constexpr GUID kNameSet{0xb725f130, 0x47ef, 0x101a, {0xa5, 0xf1, 0x02, 0x60, 0x8c, 0x9e, 0xeb, 0xac}};
inline constexpr GUID kStackSet{0x540b947e, 0x8b40, 0x45bc, {0xa8, 0xa2, 0x6a, 0x0b, 0x89, 0x4c, 0xbd, 0xa2}};
inline constexpr GUID kNodeSet{0x4340a6c5, 0x93fa, 0x4706, {0x97, 0x2c, 0x7b, 0x64, 0x80, 0x08, 0xa5, 0xa7}};
inline constexpr GUID kInstallSet{0x83da6326, 0x97a6, 0x4088, {0x94, 0x53, 0xa1, 0x92, 0x3f, 0x57, 0x3b, 0x29}};

inline constexpr DEVPROPKEY kDeviceDesc{kDeviceSet, 2};
inline constexpr DEVPROPKEY kHardwareIds{kDeviceSet, 3};
inline constexpr DEVPROPKEY kClass{kDeviceSet, 9};
inline constexpr DEVPROPKEY kParent{kNodeSet, 8};
inline constexpr DEVPROPKEY kFirstInstallDate{kInstallSet, 101};
inline constexpr DEVPROPKEY kDriverDate{kDriverSet, 2};  // DEVPROP_TYPE_FILETIME

// Indexed by EnumDeviceProperty.
inline constexpr std::array<DEVPROPKEY, 16> kByProperty{{
    {kDeviceSet, 2},      // 0 DeviceDesc
    {kDeviceSet, 13},     // 1 Manufacturer
    {kDriverSet, 3},      // 2 DriverVersion
    {kDeviceSet, 3},      // 3 HardwareIds
    {kDeviceSet, 24},     // 4 EnumeratorName
    {kInstanceSet, 90},   // 5
    {kDeviceSet, 14},     // 6 FriendlyName
    {kNameSet, 10},       // 7 NAME
    {kDriverSet, 5},      // 8 DriverInfPath
    {kInstanceSet, 256},  // 9 InstanceId
    {kDriverSet, 9},      // 10 DriverProvider
    {kStackSet, 14},      // 11 Stack
    {kNodeSet, 8},        // 12 Parent
    {kDeviceSet, 15},     // 13 LocationInfo
    {kNodeSet, 3},        // 14 ProblemCode
    {kDeviceSet, 30},     // 15 Address
}};

inline std::optional<DEVPROPKEY> ForProperty(uint32_t property) {
  if (property >= kByProperty.size()) return std::nullopt;
  return kByProperty[property];
}

}  // namespace velhal::device_keys
