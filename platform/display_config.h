// The display facts more than one module reads: the active paths of the display configuration,
// and a monitor's device instance ID from its device interface name.
#pragma once

#include "platform/win32.h"

#include <optional>
#include <string>
#include <vector>

namespace velhal {

struct DisplayConfig {
  std::vector<DISPLAYCONFIG_PATH_INFO> paths;
  std::vector<DISPLAYCONFIG_MODE_INFO> modes;
};

// QueryDisplayConfig(QDC_ONLY_ACTIVE_PATHS) when both counts are between 1 and 61,440; nullopt
// otherwise or when the query fails.
std::optional<DisplayConfig> ActiveDisplayConfig();

// A monitor's device interface name, \\?\DISPLAY#DELA0B3#5&2a3b4c5d&0&UID4352#{e6f07b5f-...},
// read as DISPLAY\DELA0B3\5&2A3B4C5D&0&UID4352: the parts between the first three "#" are the
// model and the instance, and upper case is how the device database and WMI write instance IDs
// (interface names carry them in lower case). Empty when the name has no such parts.
std::wstring MonitorDeviceId(const std::wstring& interface_name);

}  // namespace velhal
