// USB: every host controller, its root hub and the ports below it, hubs below hubs, through
// UsbDeviceInterface. An empty port is one line; a connected one names its device.
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

#include "components/usb_device_interface.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

constexpr uint32_t kConnected = 1;

std::string Hex4(uint16_t value) {
  char text[8] = {};
  std::snprintf(text, sizeof(text), "%04X", value);
  return text;
}

// A binary-coded decimal version, 0x0210 as 2.10.
std::string Bcd(uint16_t value) {
  char text[8] = {};
  std::snprintf(text, sizeof(text), "%x.%02x", value >> 8, value & 0xFF);
  return text;
}

const char* SpeedText(UsbDeviceSpeed speed) {
  switch (speed) {
    case UsbSpeed_Low: return "low (1.5 Mbit/s)";
    case UsbSpeed_Full: return "full (12 Mbit/s)";
    case UsbSpeed_High: return "high (480 Mbit/s)";
    case UsbSpeed_Super: return "SuperSpeed (5 Gbit/s)";
    case UsbSpeed_SuperPlus: return "SuperSpeed+ (10 Gbit/s or more)";
    case UsbSpeed_Unknown: break;
  }
  return "";
}

std::string StatusText(uint32_t status) {
  static const char* const kStatus[] = {"empty",
                                        "connected",
                                        "enumeration failed",
                                        "general failure",
                                        "overcurrent",
                                        "not enough power",
                                        "not enough bandwidth",
                                        "hubs nested too deeply",
                                        "in a legacy hub",
                                        "enumerating",
                                        "reset"};
  return status < std::size(kStatus) ? kStatus[status] : "status " + std::to_string(status);
}

// Text that prints only where there is some; its key is always in the JSON.
Node Known(std::string key, std::string label, const std::wstring& text) {
  return Text(std::move(key), text.empty() ? "" : std::move(label), ToUtf8(text));
}

Node PortNode(const UsbPortInfo& port, size_t& devices) {
  const std::string label = "Port " + std::to_string(port.port);
  if (port.connectionStatus != kConnected) {
    return Object(
        "", "",
        {Number("port", "", port.port), Text("status", label, StatusText(port.connectionStatus))});
  }
  ++devices;
  const std::wstring& name = !port.product.empty() ? port.product : port.description;
  std::vector<Node> members = {Number("port", "", port.port),
                               Text("status", "", StatusText(port.connectionStatus)),
                               Text("vendorId", "vendor ID", Hex4(port.vendorId)),
                               Text("productId", "product ID", Hex4(port.productId)),
                               Text("usbVersion", "USB version", Bcd(port.usbVersion)),
                               Text("speed", "speed", SpeedText(port.speed)),
                               Known("manufacturer", "manufacturer", port.manufacturer),
                               Known("product", "", port.product),
                               Known("serialNumber", "serial number", port.serialNumber),
                               Known("description", "description", port.description),
                               Known("driverKey", "", port.driverKey)};
  if (port.isHub) {
    std::vector<Node> ports;
    for (const UsbPortInfo& below : port.ports) ports.push_back(PortNode(below, devices));
    members.push_back(Number("hubPorts", "ports reported", port.hubPorts));
    members.push_back(Array("ports", "ports", std::move(ports)));
  }
  return Object("", label + ": " + (name.empty() ? "device" : ToUtf8(name)), std::move(members));
}

}  // namespace

Node UsbSection() {
  size_t devices = 0;
  std::vector<Node> controllers;
  for (const UsbHostControllerInfo& controller : UsbDeviceInterface().GetUsbTree()) {
    std::vector<Node> ports;
    for (const UsbPortInfo& port : controller.ports) ports.push_back(PortNode(port, devices));
    controllers.push_back(Object(
        "", controller.description.empty() ? "Host controller" : ToUtf8(controller.description),
        {Known("description", "", controller.description),
         Text("devicePath", "device path", ToUtf8(controller.devicePath)),
         Text("rootHub", "root hub", ToUtf8(controller.rootHubName)),
         Number("rootHubPorts", "root hub ports", controller.rootHubPorts),
         Array("ports", "ports", std::move(ports))}));
  }
  return Object("usb", "USB",
                {Number("deviceCount", "devices", devices),
                 Array("controllers", "host controllers", std::move(controllers))});
}

}  // namespace halinfo
