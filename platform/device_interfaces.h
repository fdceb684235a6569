// Device paths from SetupAPI's interface enumeration.
#pragma once

#include "platform/win32.h"

#include <optional>
#include <string>

namespace velhal {

// The path of the first present device that exposes an interface of interface_class.
std::optional<std::wstring> FirstDeviceInterfacePath(const GUID& interface_class);

}  // namespace velhal
