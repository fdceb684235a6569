#include "platform/win32.h"

#include "components/monitor_device_interface.h"

#include <map>
#include <optional>

#include "core/edid.h"
#include "platform/boundary.h"
#include "platform/display_config.h"
#include "platform/os/display.h"
#include "platform/os/dxva2.h"
#include "platform/os/registry.h"
#include "platform/string_conversion.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace {

namespace os = velhal::os;
using velhal::CallGuarded;

constexpr DWORD kMaxEdidBytes = 32 * 1024;
constexpr DWORD kMaxPhysicalMonitors = 16;

template <size_t N>
std::wstring Text(const wchar_t (&field)[N]) {
  return std::wstring(field, wcsnlen(field, N));
}

bool SameText(const std::wstring& a, const std::wstring& b) {
  return ::CompareStringOrdinal(a.c_str(), static_cast<int>(a.size()), b.c_str(),
                                static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

bool IsBuiltIn(uint32_t technology) {
  switch (static_cast<DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY>(technology)) {
    case DISPLAYCONFIG_OUTPUT_TECHNOLOGY_INTERNAL:
    case DISPLAYCONFIG_OUTPUT_TECHNOLOGY_LVDS:
    case DISPLAYCONFIG_OUTPUT_TECHNOLOGY_DISPLAYPORT_EMBEDDED:
    case DISPLAYCONFIG_OUTPUT_TECHNOLOGY_UDI_EMBEDDED: return true;
    default: return false;
  }
}

// What the display configuration tells of one active path's monitor.
struct PathFacts {
  std::wstring device_path;  // the monitor's device interface name
  std::wstring name;
  uint32_t technology = 0;
  std::optional<DISPLAYCONFIG_SOURCE_MODE> source;
  uint32_t native_width = 0, native_height = 0;
  bool edid_ids = false;
  uint16_t manufacturer = 0, product = 0;
};

template <class Request>
bool Ask(Request& request, DISPLAYCONFIG_DEVICE_INFO_TYPE type, const LUID& adapter, UINT32 id) {
  request.header.type = type;
  request.header.size = sizeof(Request);
  request.header.adapterId = adapter;
  request.header.id = id;
  return os::display().DisplayConfigGetDeviceInfo(&request.header) == ERROR_SUCCESS;
}

std::vector<PathFacts> ActivePaths() {
  std::vector<PathFacts> paths;
  const std::optional<velhal::DisplayConfig> config = velhal::ActiveDisplayConfig();
  if (!config) return paths;
  for (const DISPLAYCONFIG_PATH_INFO& path : config->paths) {
    PathFacts facts;
    const DISPLAYCONFIG_PATH_TARGET_INFO& target = path.targetInfo;
    facts.technology = static_cast<uint32_t>(target.outputTechnology);
    DISPLAYCONFIG_TARGET_DEVICE_NAME name{};
    if (Ask(name, DISPLAYCONFIG_DEVICE_INFO_GET_TARGET_NAME, target.adapterId, target.id)) {
      facts.device_path = Text(name.monitorDevicePath);
      facts.name = Text(name.monitorFriendlyDeviceName);
      facts.edid_ids = name.flags.edidIdsValid;
      facts.manufacturer = name.edidManufactureId;
      facts.product = name.edidProductCodeId;
    }
    const UINT32 mode = path.sourceInfo.modeInfoIdx;
    if (mode < config->modes.size() &&
        config->modes[mode].infoType == DISPLAYCONFIG_MODE_INFO_TYPE_SOURCE) {
      facts.source = config->modes[mode].sourceMode;
    }
    DISPLAYCONFIG_TARGET_PREFERRED_MODE preferred{};
    if (Ask(preferred, DISPLAYCONFIG_DEVICE_INFO_GET_TARGET_PREFERRED_MODE, target.adapterId,
            target.id)) {
      facts.native_width = preferred.width;
      facts.native_height = preferred.height;
    }
    paths.push_back(std::move(facts));
  }
  return paths;
}

std::vector<uint8_t> RegistryEdid(const std::wstring& device_id) {
  if (device_id.empty()) return {};
  const std::wstring key_path =
      L"SYSTEM\\CurrentControlSet\\Enum\\" + device_id + L"\\Device Parameters";
  velhal::UniqueRegistryKey key;
  if (os::registry().RegOpenKeyExW(HKEY_LOCAL_MACHINE, key_path.c_str(), 0, KEY_READ, key.Put()) !=
      ERROR_SUCCESS) {
    return {};
  }
  DWORD type = 0, size = 0;
  if (os::registry().RegQueryValueExW(key.Get(), L"EDID", nullptr, &type, nullptr, &size) !=
          ERROR_SUCCESS ||
      type != REG_BINARY || size == 0 || size > kMaxEdidBytes) {
    return {};
  }
  std::vector<uint8_t> edid(size);
  if (os::registry().RegQueryValueExW(key.Get(), L"EDID", nullptr, &type, edid.data(), &size) !=
      ERROR_SUCCESS) {
    return {};
  }
  edid.resize(std::min<size_t>(size, edid.size()));
  return edid;
}

void AddEdidFacts(MonitorInfo& monitor, const PathFacts* path) {
  monitor.edid = RegistryEdid(monitor.deviceId);
  if (!monitor.edid.empty()) {
    const velhal::edid::Facts facts =
        velhal::edid::Decode(monitor.edid.data(), monitor.edid.size());
    monitor.edidName = AnsiToWide(facts.monitor_name);
    monitor.manufacturerId = AnsiToWide(facts.manufacturer_id);
    monitor.productCode = facts.product_code;
    monitor.serialNumber = facts.serial_number;
    monitor.manufactureWeek = facts.manufacture_week;
    monitor.manufactureYear = facts.manufacture_year;
    monitor.edidVersion = AnsiToWide(facts.version);
    if (monitor.nativeWidth == 0 && facts.preferred_mode) {
      monitor.nativeWidth = facts.preferred_mode->width;
      monitor.nativeHeight = facts.preferred_mode->height;
    }
  } else if (path != nullptr && path->edid_ids) {
    // The configuration holds the EDID's bytes 8-9 as a little-endian number.
    const uint32_t packed = (path->manufacturer & 0xFFu) << 8 | path->manufacturer >> 8;
    monitor.manufacturerId = AnsiToWide(velhal::edid::ManufacturerLetters(packed));
    monitor.productCode = path->product;
  }
  if (monitor.friendlyName.empty()) monitor.friendlyName = monitor.edidName;
}

void AddPathFacts(MonitorInfo& monitor, const PathFacts& path) {
  monitor.friendlyName = path.name;
  monitor.outputTechnology = path.technology;
  monitor.internal = IsBuiltIn(path.technology);
  if (path.source) {
    monitor.positionX = path.source->position.x;
    monitor.positionY = path.source->position.y;
    monitor.width = path.source->width;
    monitor.height = path.source->height;
  }
  monitor.nativeWidth = path.native_width;
  monitor.nativeHeight = path.native_height;
}

// WQL text inside single quotes: backslashes and quotes escaped.
std::wstring WqlQuoted(const std::wstring& text) {
  std::wstring quoted;
  for (const wchar_t c : text) {
    if (c == L'\\' || c == L'\'') quoted += L'\\';
    quoted += c;
  }
  return quoted;
}

// A built-in panel's brightness from WMI; its instance is the monitor's instance ID with "_0".
int32_t PanelBrightness(const std::wstring& device_id) {
  unsigned int level = 0;
  const std::wstring query =
      L"SELECT CurrentBrightness FROM WmiMonitorBrightness WHERE InstanceName = '" +
      WqlQuoted(device_id + L"_0") + L"'";
  if (device_id.empty() ||
      !WmiQueryFirstUInt(velhal::wmi::kRootWmi, query, L"CurrentBrightness", &level) ||
      level > 100) {
    return -1;
  }
  return static_cast<int32_t>(level);
}

BOOL CALLBACK CollectSource(HMONITOR monitor, HDC, RECT*, LPARAM data) {
  MONITORINFOEXW info{};
  info.cbSize = sizeof(info);
  if (os::display().GetMonitorInfoW(monitor, &info))
    (*reinterpret_cast<std::map<std::wstring, HMONITOR>*>(data))[Text(info.szDevice)] = monitor;
  return TRUE;
}

// An external monitor's brightness over DDC/CI: the index-th physical monitor of its desktop
// source, as a percent of the range it reports.
int32_t DdcBrightness(const os::dxva2::Library& dxva2, HMONITOR source, DWORD index) {
  DWORD count = 0;
  if (!dxva2.get_count(source, &count) || index >= count || count > kMaxPhysicalMonitors) return -1;
  std::vector<PHYSICAL_MONITOR> physical(count);
  if (!dxva2.get_monitors(source, count, physical.data())) return -1;
  DWORD minimum = 0, current = 0, maximum = 0;
  const BOOL read =
      dxva2.get_brightness(physical[index].hPhysicalMonitor, &minimum, &current, &maximum);
  dxva2.destroy(count, physical.data());
  if (!read || maximum <= minimum || current < minimum || current > maximum) return -1;
  return static_cast<int32_t>((uint64_t{current - minimum} * 100 + (maximum - minimum) / 2) /
                              (maximum - minimum));
}

// An active monitor of an adapter on the desktop, as the adapter lists it.
struct Attached {
  MonitorInfo info;
  std::wstring interface_name;  // joins it to its display-configuration path
  std::wstring device_string;   // Generic PnP Monitor
  DWORD index = 0;  // among its adapter's active monitors: its source's physical monitor
};

std::vector<Attached> DesktopMonitors() {
  std::vector<Attached> monitors;
  DISPLAY_DEVICEW adapter{};
  adapter.cb = sizeof(adapter);
  for (DWORD a = 0; os::display().EnumDisplayDevicesW(nullptr, a, &adapter, 0); ++a) {
    if ((adapter.StateFlags & DISPLAY_DEVICE_ATTACHED_TO_DESKTOP) == 0) continue;
    DWORD active = 0;
    DISPLAY_DEVICEW device{};
    device.cb = sizeof(device);
    for (DWORD m = 0; os::display().EnumDisplayDevicesW(adapter.DeviceName, m, &device,
                                                        EDD_GET_DEVICE_INTERFACE_NAME);
         ++m) {
      if ((device.StateFlags & DISPLAY_DEVICE_ACTIVE) == 0) continue;
      Attached attached{{}, Text(device.DeviceID), Text(device.DeviceString), active++};
      attached.info.deviceName = Text(device.DeviceName);
      attached.info.adapterName = Text(adapter.DeviceName);
      attached.info.deviceId = velhal::MonitorDeviceId(attached.interface_name);
      attached.info.primary = (adapter.StateFlags & DISPLAY_DEVICE_PRIMARY_DEVICE) != 0;
      monitors.push_back(std::move(attached));
    }
  }
  return monitors;
}

// Brightness over DDC/CI for the external monitors, the library loaded on first need.
class Ddc {
 public:
  int32_t Brightness(const Attached& monitor) {
    if (!library_) {
      library_ = os::dxva2::Load();
      os::display().EnumDisplayMonitors(nullptr, nullptr, &CollectSource,
                                        reinterpret_cast<LPARAM>(&sources_));
    }
    const auto source = sources_.find(monitor.info.adapterName);
    if (!library_->Usable() || source == sources_.end()) return -1;
    return DdcBrightness(*library_, source->second, monitor.index);
  }

 private:
  std::optional<os::dxva2::Library> library_;
  std::map<std::wstring, HMONITOR> sources_;
};

std::vector<MonitorInfo> Monitors() {
  const std::vector<PathFacts> paths = ActivePaths();
  Ddc ddc;
  std::vector<MonitorInfo> monitors;
  for (Attached& attached : DesktopMonitors()) {
    MonitorInfo& monitor = attached.info;
    const PathFacts* path = nullptr;
    for (const PathFacts& candidate : paths) {
      if (!candidate.device_path.empty() &&
          SameText(candidate.device_path, attached.interface_name))
        path = &candidate;
    }
    if (path != nullptr) AddPathFacts(monitor, *path);
    AddEdidFacts(monitor, path);
    if (monitor.friendlyName.empty()) monitor.friendlyName = attached.device_string;
    monitor.brightness =
        monitor.internal ? PanelBrightness(monitor.deviceId) : ddc.Brightness(attached);
    monitors.push_back(std::move(monitor));
  }
  return monitors;
}

}  // namespace

std::vector<MonitorInfo> MonitorDeviceInterface::GetMonitors() {
  return CallGuarded(std::vector<MonitorInfo>(), [] { return Monitors(); });
}

unsigned long MonitorDeviceInterface::GetMonitorNumber() {
  return CallGuarded(0ul, [] { return static_cast<unsigned long>(DesktopMonitors().size()); });
}

int MonitorDeviceInterface::GetMonitorByIndex(unsigned long index, MonitorInfo& info) {
  return CallGuarded(0, [&] {
    std::vector<MonitorInfo> monitors = Monitors();
    if (index >= monitors.size()) return 0;
    info = std::move(monitors[index]);
    return 1;
  });
}
