// The USB topology as the hub driver reports it through its I/O controls, walked from a host
// controller down: the root hub, each hub's ports, the device on each port with its device
// descriptor and string descriptors, and hubs below hubs. The answers are laid out as usbioctl.h
// lays them out (packed, little-endian) around the standard descriptors (USB 2.0 chapter 9, the
// hub descriptor of 11.23.2.1); every field is read byte by byte at its published offset.
//
// Portable: no Windows header. The system is reached through a Transport, so the same walk
// runs over the hub driver (components/usb_device_interface.cpp), a test's fake and a fuzzer.
//
// Every byte a driver or device returns is untrusted: name sizes and descriptor lengths are
// checked against the bytes actually returned, a hub's port count is bounded, and the walk is
// bounded in hub tiers and in devices per bus and enters no hub twice, so no answer can make it
// read past a buffer or recurse without end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velhal::usb {

// CTL_CODE(FILE_DEVICE_USB, function, METHOD_BUFFERED, FILE_ANY_ACCESS).
constexpr uint32_t ControlCode(uint32_t function) { return 0x220000u | function << 2; }
// Asked of a host controller.
inline constexpr uint32_t kGetRootHubName = ControlCode(258);
inline constexpr uint32_t kGetControllerDriverKey = ControlCode(265);
// Asked of a hub (the node information shares its code with the root hub's name).
inline constexpr uint32_t kGetNodeInformation = ControlCode(258);
inline constexpr uint32_t kGetDescriptor = ControlCode(260);
inline constexpr uint32_t kGetConnectionName = ControlCode(261);
inline constexpr uint32_t kGetConnectionDriverKey = ControlCode(264);
inline constexpr uint32_t kGetConnectionInformationEx = ControlCode(274);
inline constexpr uint32_t kGetConnectionInformationExV2 = ControlCode(279);

// Bounds on what the walk believes. A bus addresses at most 127 devices, so no hub can use more
// ports; USB chains at most five hubs below the root hub (USB 2.0 4.1.1).
inline constexpr size_t kMaxPortsPerHub = 127;
inline constexpr size_t kMaxDevicesPerBus = 127;
inline constexpr size_t kMaxHubTier = 6;  // the root hub is tier 1
inline constexpr size_t kMaxNameBytes = 2048;

inline constexpr uint32_t kDeviceConnected = 1;  // USB_CONNECTION_STATUS DeviceConnected

enum class Speed : uint8_t { kLow, kFull, kHigh, kSuper, kSuperPlus, kUnknown };

// The standard device descriptor (USB 2.0 9.6.1).
struct DeviceDescriptor {
  uint16_t usb_version = 0;  // bcdUSB, 0x0200 for 2.00
  uint8_t device_class = 0, device_subclass = 0, device_protocol = 0;
  uint16_t vendor_id = 0, product_id = 0;
  uint16_t device_version = 0;  // bcdDevice
  uint8_t manufacturer_index = 0, product_index = 0, serial_index = 0;
};

struct Port {
  uint32_t number = 0;  // 1-based, on its hub
  uint32_t status = 0;  // USB_CONNECTION_STATUS: 0 empty, 1 connected, 2-10 failures
  Speed speed = Speed::kUnknown;
  bool is_hub = false;
  uint16_t address = 0;
  std::optional<DeviceDescriptor> descriptor;
  std::u16string manufacturer, product, serial_number;  // empty where the device has none
  std::u16string driver_key;  // the device's driver key, "{36fc9e60-...}\0005"
  std::u16string hub_name;    // a hub: its name, opened as \\.\ + name
  uint32_t hub_ports = 0;     // a hub: the ports it reports, whether walked or not
  std::vector<Port> ports;    // a hub: the ports walked
};

struct Controller {
  std::u16string driver_key;
  std::u16string root_hub_name;
  uint32_t root_hub_ports = 0;
  std::vector<Port> ports;
};

// A device the walk opened.
class Device {
 public:
  virtual ~Device() = default;
  // One buffered I/O control: the output buffer holds out_size bytes. The bytes the call
  // reports returning (never more than out_size), or nullopt when it failed.
  virtual std::optional<std::vector<uint8_t>> Control(uint32_t code, const std::vector<uint8_t>& in,
                                                      size_t out_size) = 0;
};

class Transport {
 public:
  virtual ~Transport() = default;
  // A controller's device path, or \\.\ + a hub's name; null when it cannot be opened.
  virtual std::unique_ptr<Device> Open(const std::u16string& path) = 0;
};

// The controller at path with its root hub and everything below it; what cannot be read is
// left empty.
Controller WalkController(Transport& transport, const std::u16string& path);

// The rules of the walk, one answer each.
//
// A name answer: a u32 ActualLength (bytes of the whole answer, NUL included) at header - 4,
// then UTF-16 text. ActualLength when it is plausible (room for one unit, at most kMaxNameBytes).
std::optional<uint32_t> NameSize(const std::vector<uint8_t>& answer, size_t header);
// The name itself: refused when ActualLength says more than was returned or when it is empty;
// it ends at the first NUL. (A hub's name is also refused for walking when it holds a path
// separator, as the hub is opened by it.)
std::optional<std::u16string> NameText(const std::vector<uint8_t>& answer, size_t header);
// USB_NODE_INFORMATION of a hub: its bNumberOfPorts.
std::optional<uint32_t> HubPorts(const std::vector<uint8_t>& answer);
// USB_NODE_CONNECTION_INFORMATION_EX: the port's status, speed, address and device descriptor
// (taken only when its bLength and type are those of a device descriptor).
std::optional<Port> ConnectionInformation(const std::vector<uint8_t>& answer);
// USB_NODE_CONNECTION_INFORMATION_EX_V2's flags: SuperSpeed (Plus) operation, which the older
// answer reports as high speed.
Speed SpeedWithV2(Speed reported, const std::vector<uint8_t>& v2_answer);
// A USB_DESCRIPTOR_REQUEST answer: the string descriptor after its 12-byte header, refused when
// bLength is below 2, past the returned bytes or the type is not a string's.
std::optional<std::u16string> StringDescriptor(const std::vector<uint8_t>& answer);
// String descriptor 0's language IDs: US English when listed, else the first.
std::optional<uint16_t> PreferredLanguage(const std::vector<uint8_t>& answer);

}  // namespace velhal::usb
