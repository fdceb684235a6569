// Display facility: the user32 calls that describe the screens: metrics, the current display
// mode, the display configuration, display devices and monitors, and the screens' DPI. The DPI
// functions newer than Windows 7 are bound at run time: GetDpiForSystem and
// SetThreadDpiAwarenessContext (Windows 10 1607) answer 0 and null without their function,
// GetDpiForMonitor (shcore, Windows 8.1) HRESULT_FROM_WIN32 of ERROR_MOD_NOT_FOUND or
// ERROR_PROC_NOT_FOUND.
#pragma once

#include "platform/win32.h"

#include <shellscalingapi.h>

#include "platform/os/seam.h"
#include "platform/unique_resource.h"

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
  virtual HDC GetDC(HWND window) = 0;
  virtual int ReleaseDC(HWND window, HDC dc) = 0;
  virtual int GetDeviceCaps(HDC dc, int index) = 0;
  virtual UINT GetDpiForSystem() = 0;
  virtual HRESULT GetDpiForMonitor(HMONITOR monitor, MONITOR_DPI_TYPE type, UINT* dpi_x,
                                   UINT* dpi_y) = 0;
  virtual DPI_AWARENESS_CONTEXT SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT context) = 0;

  static Display& Real() noexcept;

 protected:
  ~Display() = default;
};

inline Display& display() noexcept { return Seam<Display>::Get(); }

}  // namespace velhal::os

namespace velhal {

// The screen's device context (GetDC of no window).
struct ScreenDcTraits {
  using Handle = HDC;
  static HDC Invalid() noexcept { return nullptr; }
  static bool IsValid(HDC dc) noexcept { return dc != nullptr; }
  static void Close(HDC dc) noexcept { os::display().ReleaseDC(nullptr, dc); }
};
using UniqueScreenDc = UniqueResource<ScreenDcTraits>;

}  // namespace velhal
