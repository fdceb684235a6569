// The real backend: each member forwards to the Win32 function of the same name; the DPI
// functions newer than Windows 7 are looked up by name on first use.
#include "platform/os/desktop.h"

#include "platform/os/run_time_binding.h"

namespace velhal::os {
namespace {

class RealDesktop final : public Desktop {
 public:
  int GetSystemMetrics(int index) override { return ::GetSystemMetrics(index); }
  HDC GetDC(HWND window) override { return ::GetDC(window); }
  int ReleaseDC(HWND window, HDC dc) override { return ::ReleaseDC(window, dc); }
  int GetDeviceCaps(HDC dc, int index) override { return ::GetDeviceCaps(dc, index); }
  BOOL EnumDisplayMonitors(HDC dc, const RECT* clip, MONITORENUMPROC callback,
                           LPARAM data) override {
    return ::EnumDisplayMonitors(dc, clip, callback, data);
  }
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
  BOOL GetKeyboardLayoutNameW(wchar_t name[KL_NAMELENGTH]) override {
    return ::GetKeyboardLayoutNameW(name);
  }
  HKL GetKeyboardLayout(DWORD thread) override { return ::GetKeyboardLayout(thread); }
  int GetKeyboardLayoutList(int count, HKL* layouts) override {
    return ::GetKeyboardLayoutList(count, layouts);
  }
  int GetKeyboardType(int what) override { return ::GetKeyboardType(what); }
};

}  // namespace

Desktop& Desktop::Real() noexcept {
  static RealDesktop backend;
  return backend;
}

}  // namespace velhal::os
