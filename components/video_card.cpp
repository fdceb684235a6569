#include "platform/win32.h"

#include "components/video_card.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cwchar>
#include <cwctype>
#include <vector>

#include "core/edid.h"
#include "hal/graphics_module.h"
#include "platform/boundary.h"
#include "platform/os/display.h"
#include "platform/os/registry.h"
#include "platform/string_conversion.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace {

using velhal::CallGuarded;
namespace os = velhal::os;

constexpr uint32_t kTextBytes = 520;  // 260 UTF-16 units

std::wstring MonitorPnpIdFromWmi() {
  std::wstring id;
  WmiQueryFirstString(velhal::wmi::kCimV2, velhal::hal::kMonitorPnpIdQuery, L"PNPDeviceID", id);
  return id;
}

template <size_t N>
std::wstring Text(const wchar_t (&field)[N]) {
  return std::wstring(field, wcsnlen(field, N));
}

// The adapters the desktop's monitors are shown on (EnumDisplayMonitors), the primary one
// apart.
struct Desktop {
  std::vector<std::wstring> adapters;
  std::wstring primary;
};

BOOL CALLBACK CollectMonitor(HMONITOR monitor, HDC, RECT*, LPARAM data) {
  Desktop& desktop = *reinterpret_cast<Desktop*>(data);
  MONITORINFOEXW info{};
  info.cbSize = sizeof(info);
  if (os::display().GetMonitorInfoW(monitor, &info)) {
    desktop.adapters.push_back(Text(info.szDevice));
    if ((info.dwFlags & MONITORINFOF_PRIMARY) != 0) desktop.primary = desktop.adapters.back();
  }
  return TRUE;
}

// A monitor's device interface name, \\?\DISPLAY#DELA0B3#5&2a3b4c5d&0&UID4352#{e6f07b5f-...},
// read as DISPLAY\DELA0B3\5&2A3B4C5D&0&UID4352: the parts between the first three "#" are the
// model and the instance, and upper case is how the device database and WMI write instance IDs
// (interface names carry them in lower case).
std::wstring DeviceIdOfInterface(const std::wstring& interface_name) {
  const size_t model = interface_name.find(L'#');
  if (model == std::wstring::npos) return {};
  const size_t instance = interface_name.find(L'#', model + 1);
  if (instance == std::wstring::npos) return {};
  const size_t end = interface_name.find(L'#', instance + 1);
  if (end == std::wstring::npos || instance == model + 1 || end == instance + 1) return {};
  std::wstring id = L"DISPLAY\\" + interface_name.substr(model + 1, instance - model - 1) + L"\\" +
                    interface_name.substr(instance + 1, end - instance - 1);
  for (wchar_t& c : id) {
    if (c >= L'a' && c <= L'z') c = static_cast<wchar_t>(c - L'a' + L'A');
  }
  return id;
}

// The first active monitor of the adapter showing the primary desktop monitor (or, with none
// marked primary, of the first adapter showing any).
std::wstring ActiveDisplayDeviceId() {
  Desktop desktop;
  os::display().EnumDisplayMonitors(nullptr, nullptr, &CollectMonitor,
                                    reinterpret_cast<LPARAM>(&desktop));
  for (DWORD a = 0;; ++a) {
    DISPLAY_DEVICEW adapter{};
    adapter.cb = sizeof(adapter);
    if (!os::display().EnumDisplayDevicesW(nullptr, a, &adapter, 0)) return {};
    const std::wstring name = Text(adapter.DeviceName);
    const bool shown = desktop.primary.empty()
                           ? std::find(desktop.adapters.begin(), desktop.adapters.end(), name) !=
                                 desktop.adapters.end()
                           : name == desktop.primary;
    if (!shown) continue;
    for (DWORD m = 0;; ++m) {
      DISPLAY_DEVICEW monitor{};
      monitor.cb = sizeof(monitor);
      if (!os::display().EnumDisplayDevicesW(name.c_str(), m, &monitor,
                                             EDD_GET_DEVICE_INTERFACE_NAME)) {
        break;
      }
      if ((monitor.StateFlags & DISPLAY_DEVICE_ACTIVE) == 0) continue;
      const std::wstring id = DeviceIdOfInterface(Text(monitor.DeviceID));
      if (!id.empty()) return id;
    }
  }
}

}  // namespace

VideoCard::VideoCard() : list_(nullptr) {}

VideoCard::~VideoCard() { std::free(list_); }

void VideoCard::Init() {
  CallGuarded(0, [&] {
    if (list_ != nullptr) return 0;
    GpAdapterList* list = nullptr;
    if (GpInit(&list) != 0) {
      list_ = list;
    } else {
      std::free(list);  // a block left by a failed GpInit is not fully written
    }
    return 0;
  });
}

std::wstring VideoCard::GetStrProperty(EnumHalGraphicQueryInfo infoClass) {
  if (list_ == nullptr) Init();
  std::array<wchar_t, kTextBytes / sizeof(wchar_t) + 1> text{};  // one unit more: always ends
  uint32_t returned = 0;
  if (!GpQueryInforamtion(list_, infoClass, text.data(), kTextBytes, &returned)) return {};
  return std::wstring(text.data());
}

unsigned long VideoCard::GetUlongProperty(EnumHalGraphicQueryInfo infoClass) {
  if (list_ == nullptr) Init();
  uint32_t value = 0, returned = 0;
  return GpQueryInforamtion(list_, infoClass, &value, sizeof(value), &returned) ? value : 0;
}

unsigned long VideoCard::GetVideoCardNumber() {
  return CallGuarded(0ul, [&] { return GetUlongProperty(HalGraphicCount); });
}

std::wstring VideoCard::GetInternalVideoCardName() {
  return CallGuarded(std::wstring(), [&] { return GetStrProperty(HalGraphicDiscreteName); });
}
std::wstring VideoCard::GetUsedVideoCardName() { return GetInternalVideoCardName(); }

std::wstring VideoCard::GetInternalVideoCardStatus() {
  return CallGuarded(std::wstring(), [&] { return GetStrProperty(HalGraphicDiscreteStatus); });
}
std::wstring VideoCard::GetUsedVideoCardStatus() { return GetInternalVideoCardStatus(); }

std::wstring VideoCard::GetInternalVideoCardDriverVersion() {
  return CallGuarded(std::wstring(),
                     [&] { return GetStrProperty(HalGraphicDiscreteDriverVersion); });
}
std::wstring VideoCard::GetUsedVideoCardDriverVersion() {
  return GetInternalVideoCardDriverVersion();
}

std::wstring VideoCard::GetInternalVideoCardDriverDate() {
  return CallGuarded(std::wstring(), [&] { return GetStrProperty(HalGraphicDiscreteDriverDate); });
}
std::wstring VideoCard::GetUsedVideoCardDriverDate() { return GetInternalVideoCardDriverDate(); }

unsigned long VideoCard::GetInternalVedioCardMemorySize() {
  return CallGuarded(0ul, [&] { return GetUlongProperty(HalGraphicDiscreteVideoMemory); });
}
unsigned long VideoCard::GetUsedVedioCardMemorySize() { return GetInternalVedioCardMemorySize(); }

unsigned long VideoCard::GetInternalVedioCardErrorCode() {
  return CallGuarded(0ul, [&] { return GetUlongProperty(HalGraphicDiscreteProblemCode); });
}

std::wstring VideoCard::GetIndependentVideoCardName() {
  return CallGuarded(std::wstring(), [&] { return GetStrProperty(HalGraphicIntegratedName); });
}
std::wstring VideoCard::GetUnUsedVideoCardName() { return GetIndependentVideoCardName(); }

std::wstring VideoCard::GetIndependentVideoCardStatus() {
  return CallGuarded(std::wstring(), [&] { return GetStrProperty(HalGraphicIntegratedStatus); });
}
std::wstring VideoCard::GetUnUsedVideoCardStatus() { return GetIndependentVideoCardStatus(); }

std::wstring VideoCard::GetIndependentVideoCardDriverVersion() {
  return CallGuarded(std::wstring(),
                     [&] { return GetStrProperty(HalGraphicIntegratedDriverVersion); });
}
std::wstring VideoCard::GetUnUsedVideoCardDriverVersion() {
  return GetIndependentVideoCardDriverVersion();
}

std::wstring VideoCard::GetIndependentVideoCardDriverDate() {
  return CallGuarded(std::wstring(),
                     [&] { return GetStrProperty(HalGraphicIntegratedDriverDate); });
}
std::wstring VideoCard::GetUnUsedVideoCardDriverDate() {
  return GetIndependentVideoCardDriverDate();
}

unsigned long VideoCard::GetIndependentVedioCardMemorySize() {
  return CallGuarded(0ul, [&] { return GetUlongProperty(HalGraphicIntegratedVideoMemory); });
}
unsigned long VideoCard::GetUnUsedVedioCardMemorySize() {
  return GetIndependentVedioCardMemorySize();
}

unsigned long VideoCard::GetIndependentVedioCardErrorCode() {
  return CallGuarded(0ul, [&] { return GetUlongProperty(HalGraphicIntegratedProblemCode); });
}

std::wstring VideoCard::GetDisplayResolution() {
  return CallGuarded(std::wstring(), [&] { return GetStrProperty(HalGraphicResolution); });
}

unsigned long VideoCard::GetHorizontalResolution() {
  return CallGuarded(0ul, [&] { return GetUlongProperty(HalGraphicScreenWidth); });
}

unsigned long VideoCard::GetVerticalResolution() {
  return CallGuarded(0ul, [&] { return GetUlongProperty(HalGraphicScreenHeight); });
}

unsigned long VideoCard::GetRefreshRate() {
  return CallGuarded(0ul, [&] { return GetUlongProperty(HalGraphicRefreshRate); });
}

unsigned long VideoCard::GetBitPerPixel() {
  return CallGuarded(0ul, [&] { return GetUlongProperty(HalGraphicBitsPerPixel); });
}

std::wstring VideoCard::GetMonitorCaption() {
  return CallGuarded(std::wstring(), [&] {
    std::wstring name;
    GetLcdEdidData(name);
    return name.empty() ? GetStrProperty(HalGraphicMonitor) : name;
  });
}

bool VideoCard::IsMainDeviceActive() {
  return CallGuarded(
      false, [&] { return WideToAnsi(GetActiveDeviceID()) == WideToAnsi(MonitorPnpIdFromWmi()); });
}

// name is left as it is when there is no EDID to read.
void VideoCard::GetLcdEdidData(std::wstring& name) {
  const std::string path = GetEdidDataPath();
  if (path.empty()) return;
  velhal::UniqueRegistryKey key;
  if (os::registry().RegOpenKeyExW(HKEY_LOCAL_MACHINE, AnsiToWide(path).c_str(), 0, KEY_READ,
                                   key.Put()) != ERROR_SUCCESS) {
    return;
  }
  DWORD size = 0;
  if (os::registry().RegQueryValueExW(key.Get(), L"EDID", nullptr, nullptr, nullptr, &size) !=
          ERROR_SUCCESS ||
      size == 0) {
    return;
  }
  std::vector<unsigned char> data(size, 0);
  if (os::registry().RegQueryValueExW(key.Get(), L"EDID", nullptr, nullptr, data.data(), &size) ==
      ERROR_SUCCESS) {
    ParseEdidData(data.data(), std::min<unsigned long>(size, data.size()), name);
  }
}

std::string VideoCard::GetEdidDataPath() {
  const std::string id = GetPnpDeviceID();
  if (id.empty()) return {};
  return "SYSTEM\\CurrentControlSet\\Enum\\" + id + "\\Device Parameters\\";
}

// WMI's monitor PNP ID when it holds an instance path (two backslashes or more), else the
// active display's device ID.
std::string VideoCard::GetPnpDeviceID() {
  const std::wstring id = MonitorPnpIdFromWmi();
  if (id.empty()) return WideToAnsi(GetActiveDeviceID());
  const std::string narrow = WideToAnsi(id);
  return std::count(narrow.begin(), narrow.end(), '\\') >= 2 ? narrow : std::string();
}

std::wstring VideoCard::GetActiveDeviceID() { return ActiveDisplayDeviceId(); }

void VideoCard::ParseEdidData(unsigned char* data, unsigned long size, std::wstring& name) {
  if (const std::optional<std::string> found = velhal::edid::DisplayProductName(data, size))
    name = AnsiToWide(*found);
}

std::wstring VideoCard::GetLCDNameByWMI() {
  std::wstring caption;
  WmiQueryFirstString(velhal::wmi::kCimV2, L"SELECT Caption FROM Win32_DesktopMonitor", L"Caption",
                      caption);
  return caption;
}
