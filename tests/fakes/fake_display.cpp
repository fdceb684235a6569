#include "tests/fakes/fake_display.h"

#include <cwchar>
#include <utility>

#include "tests/fakes/fake_common.h"

namespace velhal::testing {
namespace {

template <size_t N>
void CopyText(wchar_t (&field)[N], const std::wstring& text) {
  wcsncpy(field, text.c_str(), N - 1);
  field[N - 1] = L'\0';
}

}  // namespace

DEVMODEW FakeDisplay::Mode(DWORD width, DWORD height, DWORD bits, DWORD frequency) {
  DEVMODEW mode{};
  mode.dmSize = sizeof(mode);
  mode.dmPelsWidth = width;
  mode.dmPelsHeight = height;
  mode.dmBitsPerPel = bits;
  mode.dmDisplayFrequency = frequency;
  return mode;
}

DISPLAYCONFIG_PATH_INFO FakeDisplay::Path(DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY technology,
                                          UINT32 numerator, UINT32 denominator) {
  DISPLAYCONFIG_PATH_INFO path{};
  path.targetInfo.outputTechnology = technology;
  path.targetInfo.refreshRate = {numerator, denominator};
  return path;
}

DISPLAYCONFIG_MODE_INFO FakeDisplay::SourceMode(UINT32 width, UINT32 height, LONG x, LONG y) {
  DISPLAYCONFIG_MODE_INFO mode{};
  mode.infoType = DISPLAYCONFIG_MODE_INFO_TYPE_SOURCE;
  mode.sourceMode = {width, height, DISPLAYCONFIG_PIXELFORMAT_32BPP, {x, y}};
  return mode;
}

void FakeDisplay::OneScreen(const std::wstring& interface_name) {
  adapters = {{L"\\\\.\\DISPLAY1",
               DISPLAY_DEVICE_ACTIVE | DISPLAY_DEVICE_PRIMARY_DEVICE,
               {{L"\\\\.\\DISPLAY1\\Monitor0", interface_name}}}};
  desktop = {{L"\\\\.\\DISPLAY1", true}};
}

int FakeDisplay::GetSystemMetrics(int index) {
  const auto found = metrics.find(index);
  return found == metrics.end() ? 0 : found->second;
}

BOOL FakeDisplay::EnumDisplaySettingsW(const wchar_t* device, DWORD mode_number, DEVMODEW* out) {
  mode_sizes_seen.push_back(out->dmSize);
  if (device != nullptr || mode_number != ENUM_CURRENT_SETTINGS || !mode ||
      out->dmSize != sizeof(DEVMODEW)) {
    return FALSE;
  }
  *out = *mode;
  return TRUE;
}

LONG FakeDisplay::GetDisplayConfigBufferSizes(UINT32 flags, UINT32* path_count, UINT32* modes) {
  if (flags != QDC_ONLY_ACTIVE_PATHS) return ERROR_INVALID_PARAMETER;
  *path_count = reported_paths.value_or(static_cast<UINT32>(paths.size()));
  *modes = mode_entries.empty() ? mode_count : static_cast<UINT32>(mode_entries.size());
  return ERROR_SUCCESS;
}

LONG FakeDisplay::QueryDisplayConfig(UINT32 flags, UINT32* path_count,
                                     DISPLAYCONFIG_PATH_INFO* path_array, UINT32* modes,
                                     DISPLAYCONFIG_MODE_INFO* mode_array,
                                     DISPLAYCONFIG_TOPOLOGY_ID* topology) {
  if (flags != QDC_ONLY_ACTIVE_PATHS || topology != nullptr) return ERROR_INVALID_PARAMETER;
  const UINT32 offered =
      mode_entries.empty() ? mode_count : static_cast<UINT32>(mode_entries.size());
  if (*path_count < paths.size() || *modes < offered) return ERROR_INSUFFICIENT_BUFFER;
  for (size_t i = 0; i < paths.size(); ++i) path_array[i] = paths[i];
  for (size_t i = 0; i < mode_entries.size(); ++i) mode_array[i] = mode_entries[i];
  *path_count = static_cast<UINT32>(paths.size());
  *modes = offered;
  return ERROR_SUCCESS;
}

LONG FakeDisplay::DisplayConfigGetDeviceInfo(DISPLAYCONFIG_DEVICE_INFO_HEADER* request) {
  if (request == nullptr || request->id >= targets.size()) return ERROR_INVALID_PARAMETER;
  const Target& target = targets[request->id];
  if (request->type == DISPLAYCONFIG_DEVICE_INFO_GET_TARGET_NAME &&
      request->size == sizeof(DISPLAYCONFIG_TARGET_DEVICE_NAME)) {
    auto& name = *reinterpret_cast<DISPLAYCONFIG_TARGET_DEVICE_NAME*>(request);
    CopyText(name.monitorDevicePath, target.device_path);
    CopyText(name.monitorFriendlyDeviceName, target.name);
    name.flags.edidIdsValid = target.edid_ids;
    name.edidManufactureId = target.manufacturer;
    name.edidProductCodeId = target.product;
    return ERROR_SUCCESS;
  }
  if (request->type == DISPLAYCONFIG_DEVICE_INFO_GET_TARGET_PREFERRED_MODE &&
      request->size == sizeof(DISPLAYCONFIG_TARGET_PREFERRED_MODE)) {
    if (target.preferred_width == 0) return ERROR_NOT_SUPPORTED;  // as Wine answers
    auto& preferred = *reinterpret_cast<DISPLAYCONFIG_TARGET_PREFERRED_MODE*>(request);
    preferred.width = target.preferred_width;
    preferred.height = target.preferred_height;
    return ERROR_SUCCESS;
  }
  return ERROR_INVALID_PARAMETER;
}

BOOL FakeDisplay::EnumDisplayDevicesW(const wchar_t* device, DWORD index, DISPLAY_DEVICEW* info,
                                      DWORD flags) {
  if (info == nullptr || info->cb != sizeof(DISPLAY_DEVICEW)) return FALSE;
  if (device == nullptr) {
    if (index >= adapters.size()) return FALSE;
    CopyText(info->DeviceName, adapters[index].name);
    CopyText(info->DeviceString, L"Fake Adapter");
    info->StateFlags = adapters[index].flags;
    return TRUE;
  }
  for (const Adapter& adapter : adapters) {
    if (adapter.name != device) continue;
    if (index >= adapter.monitors.size()) return FALSE;
    const MonitorDevice& monitor = adapter.monitors[index];
    CopyText(info->DeviceName, monitor.name);
    CopyText(info->DeviceString, L"Generic Monitor");
    CopyText(info->DeviceID,
             (flags & EDD_GET_DEVICE_INTERFACE_NAME) ? monitor.interface_name : std::wstring());
    info->StateFlags = monitor.flags;
    return TRUE;
  }
  return FALSE;
}

BOOL FakeDisplay::EnumDisplayMonitors(HDC, const RECT*, MONITORENUMPROC callback, LPARAM data) {
  for (size_t i = 0; i < desktop.size(); ++i) {
    RECT area{0, 0, 1920, 1080};
    if (!callback(reinterpret_cast<HMONITOR>(i + 1), nullptr, &area, data)) break;
  }
  return TRUE;
}

BOOL FakeDisplay::GetMonitorInfoW(HMONITOR monitor, MONITORINFO* info) {
  const size_t index = reinterpret_cast<size_t>(monitor) - 1;
  if (index >= desktop.size() || info == nullptr) return Fail(ERROR_INVALID_MONITOR_HANDLE);
  info->dwFlags = desktop[index].primary ? MONITORINFOF_PRIMARY : 0;
  if (info->cbSize == sizeof(MONITORINFOEXW))
    CopyText(reinterpret_cast<MONITORINFOEXW*>(info)->szDevice, desktop[index].device);
  return TRUE;
}

namespace {

const HDC kScreenDc = reinterpret_cast<HDC>(0x0DC0);

}  // namespace

HDC FakeDisplay::GetDC(HWND) {
  ++open_dcs;
  return kScreenDc;
}

int FakeDisplay::ReleaseDC(HWND, HDC dc) {
  if (dc != kScreenDc || open_dcs == 0) return 0;
  --open_dcs;
  return 1;
}

int FakeDisplay::GetDeviceCaps(HDC dc, int index) {
  if (dc != kScreenDc || index != LOGPIXELSX) return 0;
  return static_cast<int>(Seen(static_cast<UINT>(screen_dpi)));
}

UINT FakeDisplay::GetDpiForSystem() {
  if (system_dpi_missing) {
    ::SetLastError(ERROR_PROC_NOT_FOUND);
    return 0;
  }
  return Seen(system_dpi);
}

HRESULT FakeDisplay::GetDpiForMonitor(HMONITOR monitor, MONITOR_DPI_TYPE type, UINT* x, UINT* y) {
  if (monitor_dpi_missing) return HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND);
  const size_t index = reinterpret_cast<size_t>(monitor) - 1;
  if (index >= desktop.size() || type != MDT_EFFECTIVE_DPI) return E_INVALIDARG;
  if (FAILED(desktop[index].dpi_result)) return desktop[index].dpi_result;
  *x = *y = Seen(desktop[index].dpi);
  return S_OK;
}

DPI_AWARENESS_CONTEXT FakeDisplay::SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT context) {
  if (awareness_missing || (context == DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2 && v2_refused)) {
    ::SetLastError(awareness_missing ? ERROR_PROC_NOT_FOUND : ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  return std::exchange(awareness, context);
}

UINT FakeDisplay::Seen(UINT dpi) const {
  const bool per_monitor = awareness == DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE ||
                           awareness == DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2;
  return per_monitor ? dpi : 96;
}

}  // namespace velhal::testing
