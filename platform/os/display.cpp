// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/display.h"

namespace velhal::os {
namespace {

class RealDisplay final : public Display {
 public:
  int GetSystemMetrics(int index) override { return ::GetSystemMetrics(index); }
  BOOL EnumDisplaySettingsW(const wchar_t* device, DWORD mode, DEVMODEW* settings) override {
    return ::EnumDisplaySettingsW(device, mode, settings);
  }
  LONG GetDisplayConfigBufferSizes(UINT32 flags, UINT32* path_count, UINT32* mode_count) override {
    return ::GetDisplayConfigBufferSizes(flags, path_count, mode_count);
  }
  LONG QueryDisplayConfig(UINT32 flags, UINT32* path_count, DISPLAYCONFIG_PATH_INFO* paths,
                          UINT32* mode_count, DISPLAYCONFIG_MODE_INFO* modes,
                          DISPLAYCONFIG_TOPOLOGY_ID* topology) override {
    return ::QueryDisplayConfig(flags, path_count, paths, mode_count, modes, topology);
  }
  LONG DisplayConfigGetDeviceInfo(DISPLAYCONFIG_DEVICE_INFO_HEADER* request) override {
    return ::DisplayConfigGetDeviceInfo(request);
  }
  BOOL EnumDisplayDevicesW(const wchar_t* device, DWORD index, DISPLAY_DEVICEW* info,
                           DWORD flags) override {
    return ::EnumDisplayDevicesW(device, index, info, flags);
  }
  BOOL EnumDisplayMonitors(HDC dc, const RECT* clip, MONITORENUMPROC callback,
                           LPARAM data) override {
    return ::EnumDisplayMonitors(dc, clip, callback, data);
  }
  BOOL GetMonitorInfoW(HMONITOR monitor, MONITORINFO* info) override {
    return ::GetMonitorInfoW(monitor, info);
  }
};

}  // namespace

Display& Display::Real() noexcept {
  static RealDisplay backend;
  return backend;
}

}  // namespace velhal::os
