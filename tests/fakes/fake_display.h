// Screens as a test sets them: metrics, the current display mode, the active paths of the
// display configuration with their modes and targets (a path's targetInfo.id indexes targets),
// display adapters with their monitors, and the desktop's monitors. Calls that would overrun the
// caller's structures fail as user32 does.
#pragma once

#include "platform/win32.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/os/display.h"

namespace velhal::testing {

class FakeDisplay final : public os::Display {
 public:
  struct MonitorDevice {
    std::wstring name;            // "\\.\DISPLAY1\Monitor0"
    std::wstring interface_name;  // DeviceID, asked with EDD_GET_DEVICE_INTERFACE_NAME
    DWORD flags = DISPLAY_DEVICE_ACTIVE | DISPLAY_DEVICE_ATTACHED;
  };
  struct Adapter {
    std::wstring name;  // "\\.\DISPLAY1"
    DWORD flags = DISPLAY_DEVICE_ACTIVE | DISPLAY_DEVICE_ATTACHED_TO_DESKTOP;
    std::vector<MonitorDevice> monitors;
  };
  struct DesktopMonitor {
    std::wstring device;  // the adapter's name, as MONITORINFOEXW::szDevice
    bool primary = false;
  };

  std::map<int, int> metrics;          // GetSystemMetrics; absent indexes answer 0
  std::optional<DEVMODEW> mode;        // ENUM_CURRENT_SETTINGS; nullopt fails
  std::vector<DWORD> mode_sizes_seen;  // dmSize of every EnumDisplaySettingsW call
  std::vector<DISPLAYCONFIG_PATH_INFO> paths;
  std::optional<UINT32> reported_paths;  // overrides paths.size() in GetDisplayConfigBufferSizes
  UINT32 mode_count = 1;
  std::vector<DISPLAYCONFIG_MODE_INFO> mode_entries;  // when set, handed out, not mode_count
  struct Target {
    std::wstring device_path, name;  // monitorDevicePath, monitorFriendlyDeviceName
    bool edid_ids = false;
    UINT16 manufacturer = 0, product = 0;
    UINT32 preferred_width = 0, preferred_height = 0;  // 0: the preferred mode is not served
  };
  std::vector<Target> targets;
  std::vector<Adapter> adapters;
  std::vector<DesktopMonitor> desktop;

  static DEVMODEW Mode(DWORD width, DWORD height, DWORD bits, DWORD frequency);
  static DISPLAYCONFIG_PATH_INFO Path(DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY technology,
                                      UINT32 numerator, UINT32 denominator);
  static DISPLAYCONFIG_MODE_INFO SourceMode(UINT32 width, UINT32 height, LONG x, LONG y);
  // One adapter with one active monitor and a primary desktop monitor on it, as Wine shows.
  void OneScreen(const std::wstring& interface_name);

  int GetSystemMetrics(int index) override;
  BOOL EnumDisplaySettingsW(const wchar_t* device, DWORD mode_number, DEVMODEW* out) override;
  LONG GetDisplayConfigBufferSizes(UINT32 flags, UINT32* path_count, UINT32* mode_count) override;
  LONG QueryDisplayConfig(UINT32 flags, UINT32* path_count, DISPLAYCONFIG_PATH_INFO* path_array,
                          UINT32* modes, DISPLAYCONFIG_MODE_INFO* mode_array,
                          DISPLAYCONFIG_TOPOLOGY_ID* topology) override;
  LONG DisplayConfigGetDeviceInfo(DISPLAYCONFIG_DEVICE_INFO_HEADER* request) override;
  BOOL EnumDisplayDevicesW(const wchar_t* device, DWORD index, DISPLAY_DEVICEW* info,
                           DWORD flags) override;
  BOOL EnumDisplayMonitors(HDC dc, const RECT* clip, MONITORENUMPROC callback,
                           LPARAM data) override;
  BOOL GetMonitorInfoW(HMONITOR monitor, MONITORINFO* info) override;
};

}  // namespace velhal::testing
