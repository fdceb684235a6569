// Device paths from SetupAPI's interface enumeration.
#pragma once

#include "platform/win32.h"

#include <optional>
#include <string>

namespace velhal {

// The path of the index-th (0 the first) interface of interface_class on a present device, in
// SetupAPI's order.
std::optional<std::wstring> DeviceInterfacePath(const GUID& interface_class, DWORD index);

inline std::optional<std::wstring> FirstDeviceInterfacePath(const GUID& interface_class) {
  return DeviceInterfacePath(interface_class, 0);
}

}  // namespace velhal
