// Monitors: VideoCard's caption and main-device check, and every active monitor with the facts
// of its EDID where the registry holds one.
//
// Past the public interface: the monitors are listed with EnumDisplayDevicesW and their EDID read
// from the registry, since the library hands out only the name it takes from it.
#include "platform/win32.h"

#include <string>
#include <vector>

#include "components/video_card.h"
#include "tools/halinfo/edid_report.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

struct Monitor {
  std::wstring device;     // \\.\DISPLAY1\Monitor0
  std::wstring device_id;  // DISPLAY\MODEL\INSTANCE, from the device interface name
};

// \\?\DISPLAY#MODEL#INSTANCE#{class} as the device's instance ID.
std::wstring InstanceId(const std::wstring& interface_name) {
  std::vector<std::wstring> parts;
  size_t start = 0;
  for (size_t end; (end = interface_name.find(L'#', start)) != std::wstring::npos; start = end + 1)
    parts.push_back(interface_name.substr(start, end - start));
  return parts.size() >= 3 ? L"DISPLAY\\" + parts[1] + L"\\" + parts[2] : std::wstring();
}

std::vector<Monitor> ActiveMonitors() {
  std::vector<Monitor> monitors;
  DISPLAY_DEVICEW adapter{};
  adapter.cb = sizeof(adapter);
  for (DWORD a = 0; ::EnumDisplayDevicesW(nullptr, a, &adapter, 0); ++a) {
    DISPLAY_DEVICEW monitor{};
    monitor.cb = sizeof(monitor);
    for (DWORD m = 0;
         ::EnumDisplayDevicesW(adapter.DeviceName, m, &monitor, EDD_GET_DEVICE_INTERFACE_NAME);
         ++m) {
      if (monitor.StateFlags & DISPLAY_DEVICE_ACTIVE)
        monitors.push_back({monitor.DeviceName, InstanceId(monitor.DeviceID)});
    }
  }
  return monitors;
}

std::vector<uint8_t> Edid(const std::wstring& device_id) {
  if (device_id.empty()) return {};
  const std::wstring key =
      L"SYSTEM\\CurrentControlSet\\Enum\\" + device_id + L"\\Device Parameters";
  DWORD size = 0;
  if (::RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"EDID", RRF_RT_REG_BINARY, nullptr, nullptr,
                     &size) != ERROR_SUCCESS) {
    return {};
  }
  std::vector<uint8_t> edid(size);
  if (::RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"EDID", RRF_RT_REG_BINARY, nullptr,
                     edid.data(), &size) != ERROR_SUCCESS) {
    return {};
  }
  edid.resize(size);
  return edid;
}

Node MonitorNode(const Monitor& monitor, size_t index) {
  std::vector<Node> members = {Text("device", "device", ToUtf8(monitor.device)),
                               Text("deviceId", "device ID", ToUtf8(monitor.device_id))};
  // An EDID the registry does not hold leaves the key out, as the entry has none to show.
  const std::vector<uint8_t> edid = Edid(monitor.device_id);
  if (!edid.empty()) members.push_back(EdidNode(edid.data(), edid.size()));
  return Object("", "Monitor " + std::to_string(index), std::move(members));
}

}  // namespace

Node MonitorsSection() {
  VideoCard card;
  std::vector<Node> monitors;
  for (const Monitor& monitor : ActiveMonitors())
    monitors.push_back(MonitorNode(monitor, monitors.size()));
  return Object("monitors", "Monitors",
                {Text("caption", "caption", ToUtf8(card.GetMonitorCaption())),
                 Flag("mainDeviceActive", "main device active", card.IsMainDeviceActive()),
                 Array("items", "monitors", std::move(monitors))});
}

}  // namespace halinfo
