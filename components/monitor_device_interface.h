// The monitors attached to the desktop: each active monitor of the display adapters
// (EnumDisplayDevicesW), joined with its path of the display configuration by its device
// interface name, its EDID from the monitor's registry key, and its brightness where Windows
// offers it in standard form. Read-only and stateless: every call reads afresh. What cannot be
// read is 0, empty or the value named below; nothing is thrown or logged.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hal/velhal_export.h"

struct MonitorInfo {
  std::wstring deviceName;   // \\.\DISPLAY1\Monitor0
  std::wstring adapterName;  // \\.\DISPLAY1: the desktop source it shows
  std::wstring deviceId;     // DISPLAY\DELA0B3\5&2A3B4C5D&0&UID4352, its device instance ID
  // The display configuration's monitor name, else the EDID's product name, else the device
  // string (Generic PnP Monitor).
  std::wstring friendlyName;
  bool primary = false;  // on the adapter showing the primary desktop
  // DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY of its path: 5 HDMI, 10 DisplayPort, 0x80000000
  // internal; 0xFFFFFFFF (other) when it has no path.
  uint32_t outputTechnology = 0xFFFFFFFF;
  bool internal = false;  // a built-in panel: internal, LVDS or embedded DisplayPort/UDI
  int32_t positionX = 0, positionY = 0;  // its source's top-left corner on the desktop, pixels
  uint32_t width = 0, height = 0;        // its source's current mode, pixels
  // The preferred mode: the display configuration's, else the EDID's first detailed timing.
  uint32_t nativeWidth = 0, nativeHeight = 0;
  // The EDID (HKLM\SYSTEM\CurrentControlSet\Enum\<deviceId>\Device Parameters\EDID) as stored,
  // and what it says; the maker and product code come from the display configuration when the
  // registry holds no EDID.
  std::vector<uint8_t> edid;
  std::wstring edidName;        // display product name descriptor
  std::wstring manufacturerId;  // three letters, DEL
  uint32_t productCode = 0;
  uint32_t serialNumber = 0;
  uint32_t manufactureWeek = 0, manufactureYear = 0;
  std::wstring edidVersion;  // 1.4
  // Percent of the monitor's range: WMI's WmiMonitorBrightness for a built-in panel, DDC/CI
  // (the monitor-configuration API) for an external one; -1 where neither answers.
  int32_t brightness = -1;
};

class VELHAL_API MonitorDeviceInterface {
 public:
  std::vector<MonitorInfo> GetMonitors();  // adapters' order, then each adapter's monitors
  unsigned long GetMonitorNumber();        // entries of GetMonitors
  // 1 with monitor index of GetMonitors, else 0 with info left as it was.
  int GetMonitorByIndex(unsigned long index, MonitorInfo& info);
};
