// Monitors: VideoCard's caption and main-device check, and every monitor on the desktop through
// MonitorDeviceInterface, with the facts of its EDID where the registry holds one (the same as
// --edid-file prints).
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "components/monitor_device_interface.h"
#include "components/video_card.h"
#include "tools/halinfo/edid_report.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

// DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY as the connector is called.
std::string ConnectionText(uint32_t technology) {
  static const char* const kNames[] = {"VGA",
                                       "S-Video",
                                       "composite",
                                       "component",
                                       "DVI",
                                       "HDMI",
                                       "LVDS",
                                       "",
                                       "D-Jpn",
                                       "SDI",
                                       "DisplayPort",
                                       "embedded DisplayPort",
                                       "UDI",
                                       "embedded UDI",
                                       "SDTV dongle",
                                       "Miracast",
                                       "indirect wired",
                                       "indirect virtual"};
  if (technology == 0x80000000u) return "internal";
  if (technology < std::size(kNames) && kNames[technology][0] != '\0') return kNames[technology];
  return technology == 0xFFFFFFFFu ? "other" : "technology " + std::to_string(technology);
}

Node MonitorNode(const MonitorInfo& monitor, size_t index) {
  std::vector<Node> members = {
      Text("device", "device", ToUtf8(monitor.deviceName)),
      Text("deviceId", "device ID", ToUtf8(monitor.deviceId)),
      Text("name", "name", ToUtf8(monitor.friendlyName)),
      Flag("primary", "primary", monitor.primary),
      Flag("builtIn", "built-in", monitor.internal),
      Text("connection", "connection", ConnectionText(monitor.outputTechnology)),
      Number("positionX", "left", monitor.positionX, "pixels"),
      Number("positionY", "top", monitor.positionY, "pixels"),
      Number("width", "width", Reported(monitor.width), "pixels"),
      Number("height", "height", Reported(monitor.height), "pixels"),
      Number("nativeWidth", "native width", Reported(monitor.nativeWidth), "pixels"),
      Number("nativeHeight", "native height", Reported(monitor.nativeHeight), "pixels"),
      Text("manufacturerId", "maker", ToUtf8(monitor.manufacturerId)),
      Number("productCode", "product code", Reported(monitor.productCode)),
      Number("brightnessPercent", "brightness",
             monitor.brightness >= 0 ? std::optional<int32_t>(monitor.brightness) : std::nullopt,
             "%")};
  // An EDID the registry does not hold leaves the key out, as the entry has none to show.
  if (!monitor.edid.empty()) members.push_back(EdidNode(monitor.edid.data(), monitor.edid.size()));
  return Object("", "Monitor " + std::to_string(index), std::move(members));
}

}  // namespace

Node MonitorsSection() {
  VideoCard card;
  std::vector<Node> monitors;
  for (const MonitorInfo& monitor : MonitorDeviceInterface().GetMonitors())
    monitors.push_back(MonitorNode(monitor, monitors.size()));
  return Object("monitors", "Monitors",
                {Text("caption", "caption", ToUtf8(card.GetMonitorCaption())),
                 Flag("mainDeviceActive", "main device active", card.IsMainDeviceActive()),
                 Array("items", "monitors", std::move(monitors))});
}

}  // namespace halinfo
