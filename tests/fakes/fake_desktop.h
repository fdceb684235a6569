// The interactive desktop as a test sets it: system metrics, monitors with their DPI, the
// thread's DPI awareness and the keyboard layouts. As on Windows, a thread that is not per-monitor
// aware sees every DPI as 96. A missing DPI function (an older Windows) answers as the real
// backend does without it. Screen device contexts are counted, so a test sees a leak.
#pragma once

#include "platform/win32.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/os/desktop.h"
#include "tests/fakes/fake_common.h"

namespace velhal::testing {

class FakeDesktop final : public os::Desktop {
 public:
  struct Monitor {
    UINT dpi = 96;
    HRESULT result = S_OK;  // of GetDpiForMonitor
  };

  std::map<int, int> metrics;  // GetSystemMetrics; 0 for any other index
  int screen_dpi = 96;         // LOGPIXELSX of the screen
  UINT system_dpi = 96;
  std::vector<Monitor> monitors;
  bool system_dpi_missing = false;   // no GetDpiForSystem (before Windows 10 1607)
  bool monitor_dpi_missing = false;  // no GetDpiForMonitor (before Windows 8.1)
  bool awareness_missing = false;    // no SetThreadDpiAwarenessContext (before Windows 10 1607)
  bool v2_refused = false;           // PER_MONITOR_AWARE_V2 unknown (before 1703, Wine 8)
  DPI_AWARENESS_CONTEXT awareness =
      DPI_AWARENESS_CONTEXT_UNAWARE;  // the thread's, as the host set it
  std::wstring layout_name = L"00000409";
  std::vector<HKL> layouts = {reinterpret_cast<HKL>(0x04090409)};  // the first is the active one
  std::map<int, int> keyboard_type = {{0, 4}, {1, 0}, {2, 12}};
  int open_dcs = 0;

  int GetSystemMetrics(int index) override {
    const auto found = metrics.find(index);
    return found == metrics.end() ? 0 : found->second;
  }
  HDC GetDC(HWND) override {
    ++open_dcs;
    return reinterpret_cast<HDC>(0x0DC0);
  }
  int ReleaseDC(HWND, HDC dc) override {
    if (dc != reinterpret_cast<HDC>(0x0DC0)) return 0;
    --open_dcs;
    return 1;
  }
  int GetDeviceCaps(HDC, int index) override { return index == LOGPIXELSX ? Seen(screen_dpi) : 0; }
  BOOL EnumDisplayMonitors(HDC, const RECT*, MONITORENUMPROC callback, LPARAM data) override {
    RECT area{0, 0, 1920, 1080};
    for (size_t i = 0; i < monitors.size(); ++i) {
      if (!callback(reinterpret_cast<HMONITOR>(i + 1), nullptr, &area, data)) break;
    }
    return TRUE;
  }
  UINT GetDpiForSystem() override {
    if (system_dpi_missing) {
      Fail(ERROR_PROC_NOT_FOUND);
      return 0;
    }
    return static_cast<UINT>(Seen(static_cast<int>(system_dpi)));
  }
  HRESULT GetDpiForMonitor(HMONITOR monitor, MONITOR_DPI_TYPE type, UINT* x, UINT* y) override {
    if (monitor_dpi_missing) return HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND);
    const size_t index = reinterpret_cast<size_t>(monitor) - 1;
    if (index >= monitors.size() || type != MDT_EFFECTIVE_DPI) return E_INVALIDARG;
    if (FAILED(monitors[index].result)) return monitors[index].result;
    *x = *y = static_cast<UINT>(Seen(static_cast<int>(monitors[index].dpi)));
    return S_OK;
  }
  DPI_AWARENESS_CONTEXT SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT context) override {
    if (awareness_missing ||
        (context == DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2 && v2_refused)) {
      Fail(awareness_missing ? ERROR_PROC_NOT_FOUND : ERROR_INVALID_PARAMETER);
      return nullptr;
    }
    const DPI_AWARENESS_CONTEXT previous = awareness;
    awareness = context;
    return previous;
  }
  BOOL GetKeyboardLayoutNameW(wchar_t name[KL_NAMELENGTH]) override {
    if (layout_name.empty() || layout_name.size() >= KL_NAMELENGTH) return Fail(ERROR_INVALID_DATA);
    layout_name.copy(name, layout_name.size());
    name[layout_name.size()] = L'\0';
    return TRUE;
  }
  HKL GetKeyboardLayout(DWORD) override { return layouts.empty() ? nullptr : layouts.front(); }
  int GetKeyboardLayoutList(int count, HKL* out) override {
    if (count == 0) return static_cast<int>(layouts.size());
    const int copied = std::min(count, static_cast<int>(layouts.size()));
    std::copy(layouts.begin(), layouts.begin() + copied, out);
    return copied;
  }
  int GetKeyboardType(int what) override {
    const auto found = keyboard_type.find(what);
    return found == keyboard_type.end() ? 0 : found->second;
  }

 private:
  // A thread that is not per-monitor aware sees the system scaled to 96.
  int Seen(int dpi) const {
    const bool per_monitor = awareness == DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE ||
                             awareness == DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2;
    return per_monitor ? dpi : 96;
  }
};

}  // namespace velhal::testing
