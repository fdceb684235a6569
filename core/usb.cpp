#include "core/usb.h"

#include <algorithm>

namespace velhal::usb {
namespace {

// Layouts of usbioctl.h (packed).
constexpr size_t kHubNameHeader = 4;          // USB_ROOT_HUB_NAME, USB_HCD_DRIVERKEY_NAME
constexpr size_t kConnectionNameHeader = 8;   // USB_NODE_CONNECTION_(DRIVERKEY_)NAME
constexpr size_t kNodeInformationSize = 76;   // USB_NODE_INFORMATION
constexpr size_t kPortsOffset = 6;            // its hub descriptor's bNumberOfPorts
constexpr size_t kConnectionHeaderSize = 35;  // USB_NODE_CONNECTION_INFORMATION_EX without pipes
constexpr size_t kConnectionAnswerSize = kConnectionHeaderSize + 32 * 11;  // and 32 pipes
constexpr size_t kV2Size = 16;         // USB_NODE_CONNECTION_INFORMATION_EX_V2
constexpr uint32_t kUsb1To3 = 0x7;     // SupportedUsbProtocols: 1.1, 2.0 and 3.0
constexpr size_t kRequestHeader = 12;  // USB_DESCRIPTOR_REQUEST before its data
constexpr size_t kMaxDescriptor = 255;
constexpr uint8_t kDeviceDescriptorType = 1;
constexpr uint8_t kDeviceDescriptorLength = 18;
constexpr uint8_t kStringDescriptorType = 3;
constexpr uint16_t kUsEnglish = 0x0409;

uint32_t U8(const std::vector<uint8_t>& b, size_t at) { return b[at]; }
uint32_t U16(const std::vector<uint8_t>& b, size_t at) { return b[at] | b[at + 1] << 8; }
uint32_t U32(const std::vector<uint8_t>& b, size_t at) {
  return U16(b, at) | static_cast<uint32_t>(U16(b, at + 2)) << 16;
}
void Put16(std::vector<uint8_t>& b, size_t at, uint32_t value) {
  b[at] = static_cast<uint8_t>(value);
  b[at + 1] = static_cast<uint8_t>(value >> 8);
}
void Put32(std::vector<uint8_t>& b, size_t at, uint32_t value) {
  Put16(b, at, value);
  Put16(b, at + 2, value >> 16);
}

// A request the size of its answer, as the hub driver reads the port from the same buffer.
std::vector<uint8_t> PortRequest(uint32_t port, size_t size) {
  std::vector<uint8_t> in(size, 0);
  Put32(in, 0, port);
  return in;
}

std::u16string Units(const std::vector<uint8_t>& b, size_t at, size_t count) {
  std::u16string text;
  for (size_t i = 0; i < count; ++i) {
    const char16_t unit = static_cast<char16_t>(U16(b, at + 2 * i));
    if (unit == 0) break;
    text += unit;
  }
  return text;
}

// A hub is opened as \\.\ + its name: a name with a path in it is refused.
bool PlainName(const std::u16string& name) {
  return name.find_first_of(u"\\/") == std::u16string::npos;
}

// A name by the two-call pattern: a first answer with room for one unit gives the size.
std::optional<std::u16string> ReadName(Device& device, uint32_t code, uint32_t port,
                                       size_t header) {
  const size_t first_size = header + 2;
  const auto first = device.Control(code, PortRequest(port, first_size), first_size);
  if (!first) return std::nullopt;
  const std::optional<uint32_t> size = NameSize(*first, header);
  if (!size) return std::nullopt;
  if (*size <= first_size) return NameText(*first, header);
  const auto whole = device.Control(code, PortRequest(port, *size), *size);
  return whole ? NameText(*whole, header) : std::nullopt;
}

std::vector<uint8_t> DescriptorRequest(uint32_t port, uint8_t index, uint16_t language) {
  std::vector<uint8_t> in = PortRequest(port, kRequestHeader + kMaxDescriptor);
  in[4] = 0x80;  // bmRequestType: device to host, standard, device
  in[5] = 6;     // GET_DESCRIPTOR
  Put16(in, 6, static_cast<uint32_t>(kStringDescriptorType) << 8 | index);
  Put16(in, 8, language);
  Put16(in, 10, kMaxDescriptor);
  return in;
}

std::optional<std::vector<uint8_t>> AskDescriptor(Device& device, uint32_t port, uint8_t index,
                                                  uint16_t language) {
  return device.Control(kGetDescriptor, DescriptorRequest(port, index, language),
                        kRequestHeader + kMaxDescriptor);
}

// Only where a device reports it, so that a device without strings is not asked for any.
void ReadStrings(Device& device, Port& port) {
  const DeviceDescriptor& d = *port.descriptor;
  if (d.manufacturer_index == 0 && d.product_index == 0 && d.serial_index == 0) return;
  const auto languages = AskDescriptor(device, port.number, 0, 0);
  const std::optional<uint16_t> language = languages ? PreferredLanguage(*languages) : std::nullopt;
  if (!language) return;
  const auto text = [&](uint8_t index) -> std::u16string {
    if (index == 0) return {};
    const auto answer = AskDescriptor(device, port.number, index, *language);
    return answer ? StringDescriptor(*answer).value_or(u"") : u"";
  };
  port.manufacturer = text(d.manufacturer_index);
  port.product = text(d.product_index);
  port.serial_number = text(d.serial_index);
}

bool SameName(const std::u16string& a, const std::u16string& b) {
  const auto fold = [](char16_t c) { return c >= u'A' && c <= u'Z' ? c - u'A' + u'a' : c; };
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(),
                    [&](char16_t x, char16_t y) { return fold(x) == fold(y); });
}

class Walk {
 public:
  explicit Walk(Transport& transport) : transport_(transport) {}

  // The hub's reported port count and its ports, as far as the bounds allow.
  void Hub(const std::u16string& name, size_t tier, uint32_t& reported, std::vector<Port>& ports) {
    if (tier > kMaxHubTier || !PlainName(name)) return;
    for (const std::u16string& seen : entered_) {
      if (SameName(seen, name)) return;  // a hub that names an ancestor, or itself
    }
    entered_.push_back(name);
    const std::unique_ptr<Device> hub = transport_.Open(u"\\\\.\\" + name);
    if (!hub) return;
    const auto information = hub->Control(
        kGetNodeInformation, std::vector<uint8_t>(kNodeInformationSize, 0), kNodeInformationSize);
    reported = information ? HubPorts(*information).value_or(0) : 0;
    const size_t walked = std::min<size_t>(reported, kMaxPortsPerHub);
    for (uint32_t number = 1; number <= walked && devices_ < kMaxDevicesPerBus; ++number) {
      std::optional<Port> port = ReadPort(*hub, number);
      if (!port) continue;
      if (port->is_hub && port->status == kDeviceConnected) {
        port->hub_name =
            ReadName(*hub, kGetConnectionName, number, kConnectionNameHeader).value_or(u"");
        if (!port->hub_name.empty()) Hub(port->hub_name, tier + 1, port->hub_ports, port->ports);
      }
      ports.push_back(std::move(*port));
    }
  }

 private:
  std::optional<Port> ReadPort(Device& hub, uint32_t number) {
    const auto answer =
        hub.Control(kGetConnectionInformationEx, PortRequest(number, kConnectionAnswerSize),
                    kConnectionAnswerSize);
    std::optional<Port> port = answer ? ConnectionInformation(*answer) : std::nullopt;
    if (!port) return std::nullopt;
    port->number = number;
    if (port->status != kDeviceConnected) return port;
    ++devices_;
    std::vector<uint8_t> v2 = PortRequest(number, kV2Size);
    Put32(v2, 4, kV2Size);
    Put32(v2, 8, kUsb1To3);
    if (const auto flags = hub.Control(kGetConnectionInformationExV2, v2, kV2Size))
      port->speed = SpeedWithV2(port->speed, *flags);
    port->driver_key =
        ReadName(hub, kGetConnectionDriverKey, number, kConnectionNameHeader).value_or(u"");
    if (port->descriptor) ReadStrings(hub, *port);
    return port;
  }

  Transport& transport_;
  std::vector<std::u16string> entered_;
  size_t devices_ = 0;
};

}  // namespace

std::optional<uint32_t> NameSize(const std::vector<uint8_t>& answer, size_t header) {
  if (header < 4 || answer.size() < header) return std::nullopt;
  const uint32_t size = U32(answer, header - 4);
  if (size < header + 2 || size > kMaxNameBytes) return std::nullopt;
  return size;
}

std::optional<std::u16string> NameText(const std::vector<uint8_t>& answer, size_t header) {
  const std::optional<uint32_t> size = NameSize(answer, header);
  if (!size || *size > answer.size()) return std::nullopt;
  std::u16string name = Units(answer, header, (*size - header) / 2);
  if (name.empty()) return std::nullopt;
  return name;
}

std::optional<uint32_t> HubPorts(const std::vector<uint8_t>& answer) {
  // NodeType 0 (UsbHub) then the hub descriptor; a composite parent has no ports.
  if (answer.size() <= kPortsOffset || U32(answer, 0) != 0) return std::nullopt;
  return U8(answer, kPortsOffset);
}

std::optional<Port> ConnectionInformation(const std::vector<uint8_t>& answer) {
  if (answer.size() < kConnectionHeaderSize) return std::nullopt;
  Port port;
  port.status = U32(answer, 31);
  const uint32_t speed = U8(answer, 23);
  port.speed = speed <= 3 ? static_cast<Speed>(speed) : Speed::kUnknown;
  port.is_hub = U8(answer, 24) != 0;
  port.address = static_cast<uint16_t>(U16(answer, 25));
  if (port.status == kDeviceConnected && U8(answer, 4) == kDeviceDescriptorLength &&
      U8(answer, 5) == kDeviceDescriptorType) {
    DeviceDescriptor d;
    d.usb_version = static_cast<uint16_t>(U16(answer, 6));
    d.device_class = static_cast<uint8_t>(U8(answer, 8));
    d.device_subclass = static_cast<uint8_t>(U8(answer, 9));
    d.device_protocol = static_cast<uint8_t>(U8(answer, 10));
    d.vendor_id = static_cast<uint16_t>(U16(answer, 12));
    d.product_id = static_cast<uint16_t>(U16(answer, 14));
    d.device_version = static_cast<uint16_t>(U16(answer, 16));
    d.manufacturer_index = static_cast<uint8_t>(U8(answer, 18));
    d.product_index = static_cast<uint8_t>(U8(answer, 19));
    d.serial_index = static_cast<uint8_t>(U8(answer, 20));
    port.descriptor = d;
  }
  return port;
}

Speed SpeedWithV2(Speed reported, const std::vector<uint8_t>& v2_answer) {
  if (v2_answer.size() < kV2Size) return reported;
  const uint32_t flags = U32(v2_answer, 12);
  if (flags & 0x4) return Speed::kSuperPlus;  // DeviceIsOperatingAtSuperSpeedPlusOrHigher
  if (flags & 0x1) return Speed::kSuper;      // DeviceIsOperatingAtSuperSpeedOrHigher
  return reported;
}

std::optional<std::u16string> StringDescriptor(const std::vector<uint8_t>& answer) {
  if (answer.size() < kRequestHeader + 2) return std::nullopt;
  const size_t length = U8(answer, kRequestHeader);
  if (length < 2 || length > answer.size() - kRequestHeader ||
      U8(answer, kRequestHeader + 1) != kStringDescriptorType) {
    return std::nullopt;
  }
  return Units(answer, kRequestHeader + 2, (length - 2) / 2);
}

std::optional<uint16_t> PreferredLanguage(const std::vector<uint8_t>& answer) {
  const std::optional<std::u16string> ids = StringDescriptor(answer);
  if (!ids || ids->empty()) return std::nullopt;
  if (ids->find(static_cast<char16_t>(kUsEnglish)) != std::u16string::npos) return kUsEnglish;
  return static_cast<uint16_t>(ids->front());
}

Controller WalkController(Transport& transport, const std::u16string& path) {
  Controller controller;
  const std::unique_ptr<Device> device = transport.Open(path);
  if (!device) return controller;
  controller.driver_key =
      ReadName(*device, kGetControllerDriverKey, 0, kHubNameHeader).value_or(u"");
  controller.root_hub_name = ReadName(*device, kGetRootHubName, 0, kHubNameHeader).value_or(u"");
  if (!controller.root_hub_name.empty()) {
    Walk(transport).Hub(controller.root_hub_name, 1, controller.root_hub_ports, controller.ports);
  }
  return controller;
}

}  // namespace velhal::usb
