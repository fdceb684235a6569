// The driver version of a device class's first device that has one, shared by the component
// classes whose kind is one setup class; and the rule that picks a kind's device by the start
// of its first hardware ID, shared by the driver versions by kind and CDeviceId.
#pragma once

#include <guiddef.h>

#include <span>
#include <string>

namespace velhal::components {

// Visits the present devices of the class in enumeration order; empty when none has a driver
// version.
std::wstring FirstDriverVersionOfClass(const GUID& setup_class);

// The first hardware ID, among the class's present devices in enumeration order, that begins
// with one of the prefixes (letter case included); empty when there is none.
std::wstring FirstHardwareIdWith(const GUID& setup_class, std::span<const wchar_t* const> prefixes);
// That device's driver version; empty when there is no such device.
std::wstring DriverVersionOfFirstWith(const GUID& setup_class,
                                      std::span<const wchar_t* const> prefixes);

}  // namespace velhal::components
