// The real backend: each member forwards to the Win32 function of the same name; the DPI
// functions newer than Windows 7 are looked up by name on first use.
#include "platform/os/display.h"

#include "platform/os/run_time_binding.h"

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
  HDC GetDC(HWND window) override { return ::GetDC(window); }
  int ReleaseDC(HWND window, HDC dc) override { return ::ReleaseDC(window, dc); }
  int GetDeviceCaps(HDC dc, int index) override { return ::GetDeviceCaps(dc, index); }
  UINT GetDpiForSystem() override {
    static const Bound<UINT WINAPI()> call(L"user32.dll", "GetDpiForSystem");
    return call.CallOr(0u);
  }
  HRESULT GetDpiForMonitor(HMONITOR monitor, MONITOR_DPI_TYPE type, UINT* dpi_x,
                           UINT* dpi_y) override {
    static const Bound<HRESULT WINAPI(HMONITOR, MONITOR_DPI_TYPE, UINT*, UINT*)> call(
        L"shcore.dll", "GetDpiForMonitor");
    return call.CallOr(HRESULT_FROM_WIN32(call.MissingError()), monitor, type, dpi_x, dpi_y);
  }
  DPI_AWARENESS_CONTEXT SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT context) override {
    static const Bound<DPI_AWARENESS_CONTEXT WINAPI(DPI_AWARENESS_CONTEXT)> call(
        L"user32.dll", "SetThreadDpiAwarenessContext");
    return call.CallOr(DPI_AWARENESS_CONTEXT{}, context);
  }
};

}  // namespace

Display& Display::Real() noexcept {
  static RealDisplay backend;
  return backend;
}

}  // namespace velhal::os
