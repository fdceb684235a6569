// Display facility: the user32 calls that describe the screens: metrics, the current display
// mode, the display configuration, display devices and monitors.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

namespace velhal::os {

class Display {
 public:
  virtual int GetSystemMetrics(int index) = 0;
  virtual BOOL EnumDisplaySettingsW(const wchar_t* device, DWORD mode, DEVMODEW* settings) = 0;
  virtual LONG GetDisplayConfigBufferSizes(UINT32 flags, UINT32* path_count,
                                           UINT32* mode_count) = 0;
  virtual LONG QueryDisplayConfig(UINT32 flags, UINT32* path_count, DISPLAYCONFIG_PATH_INFO* paths,
                                  UINT32* mode_count, DISPLAYCONFIG_MODE_INFO* modes,
                                  DISPLAYCONFIG_TOPOLOGY_ID* topology) = 0;
  virtual LONG DisplayConfigGetDeviceInfo(DISPLAYCONFIG_DEVICE_INFO_HEADER* request) = 0;
  virtual BOOL EnumDisplayDevicesW(const wchar_t* device, DWORD index, DISPLAY_DEVICEW* info,
                                   DWORD flags) = 0;
  virtual BOOL EnumDisplayMonitors(HDC dc, const RECT* clip, MONITORENUMPROC callback,
                                   LPARAM data) = 0;
  virtual BOOL GetMonitorInfoW(HMONITOR monitor, MONITORINFO* info) = 0;

  static Display& Real() noexcept;

 protected:
  ~Display() = default;
};

inline Display& display() noexcept { return Seam<Display>::Get(); }

}  // namespace velhal::os
