// Desktop facility: the user32 and gdi32 calls about the interactive desktop the host runs on:
// system metrics, the screens' DPI, the keyboard layouts. The DPI functions newer than Windows 7
// are bound at run time: GetDpiForSystem and SetThreadDpiAwarenessContext (Windows 10 1607)
// answer 0 and null without their function, GetDpiForMonitor (shcore, Windows 8.1) answers
// HRESULT_FROM_WIN32 of ERROR_MOD_NOT_FOUND or ERROR_PROC_NOT_FOUND.
#pragma once

#include "platform/win32.h"

#include <shellscalingapi.h>

#include "platform/os/seam.h"
#include "platform/unique_resource.h"

namespace velhal::os {

class Desktop {
 public:
  virtual int GetSystemMetrics(int index) = 0;
  virtual HDC GetDC(HWND window) = 0;
  virtual int ReleaseDC(HWND window, HDC dc) = 0;
  virtual int GetDeviceCaps(HDC dc, int index) = 0;
  virtual BOOL EnumDisplayMonitors(HDC dc, const RECT* clip, MONITORENUMPROC callback,
                                   LPARAM data) = 0;
  virtual UINT GetDpiForSystem() = 0;
  virtual HRESULT GetDpiForMonitor(HMONITOR monitor, MONITOR_DPI_TYPE type, UINT* dpi_x,
                                   UINT* dpi_y) = 0;
  virtual DPI_AWARENESS_CONTEXT SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT context) = 0;
  virtual BOOL GetKeyboardLayoutNameW(wchar_t name[KL_NAMELENGTH]) = 0;
  virtual HKL GetKeyboardLayout(DWORD thread) = 0;
  virtual int GetKeyboardLayoutList(int count, HKL* layouts) = 0;
  virtual int GetKeyboardType(int what) = 0;

  static Desktop& Real() noexcept;

 protected:
  ~Desktop() = default;
};

inline Desktop& desktop() noexcept { return Seam<Desktop>::Get(); }

}  // namespace velhal::os

namespace velhal {

// The screen's device context (GetDC of no window).
struct ScreenDcTraits {
  using Handle = HDC;
  static HDC Invalid() noexcept { return nullptr; }
  static bool IsValid(HDC dc) noexcept { return dc != nullptr; }
  static void Close(HDC dc) noexcept { os::desktop().ReleaseDC(nullptr, dc); }
};
using UniqueScreenDc = UniqueResource<ScreenDcTraits>;

}  // namespace velhal
