#include "tests/fakes/fake_usb.h"

#include <winioctl.h>
#include <usbioctl.h>

#include <cstring>

#include "platform/device_classes.h"
#include "platform/device_property_keys.h"
#include "tests/fakes/fake_common.h"

namespace velhal::testing {
namespace {

using Ioctl = FakeDeviceIo::Ioctl;

ULONG PortOf(const std::vector<BYTE>& in) {
  ULONG port = 0;
  if (in.size() >= sizeof(port)) std::memcpy(&port, in.data(), sizeof(port));
  return port;
}

const FakeUsbDevice* On(const std::vector<FakeUsbDevice>& devices, ULONG port) {
  for (const FakeUsbDevice& device : devices) {
    if (device.port == port) return &device;
  }
  return nullptr;
}

UCHAR StringIndex(const FakeUsbDevice& device, size_t which) {
  return which < device.strings.size() && !device.strings[which].empty()
             ? static_cast<UCHAR>(which + 1)
             : 0;
}

Ioctl Connection(ULONG port, const FakeUsbDevice* device) {
  USB_NODE_CONNECTION_INFORMATION_EX info{};
  info.ConnectionIndex = port;
  if (device != nullptr) {
    USB_DEVICE_DESCRIPTOR& d = info.DeviceDescriptor;
    d.bLength = sizeof(d);
    d.bDescriptorType = USB_DEVICE_DESCRIPTOR_TYPE;
    d.bcdUSB = 0x0210;
    d.bDeviceClass = device->hub.empty() ? 0 : 9;
    d.idVendor = device->vendor_id;
    d.idProduct = device->product_id;
    d.bcdDevice = 0x0100;
    d.iManufacturer = StringIndex(*device, 0);
    d.iProduct = StringIndex(*device, 1);
    d.iSerialNumber = StringIndex(*device, 2);
    info.Speed = device->speed;
    info.DeviceIsHub = !device->hub.empty();
    info.DeviceAddress = static_cast<USHORT>(port + 1);
    info.ConnectionStatus = DeviceConnected;
  }
  return FakeDeviceIo::Answer(Bytes(info));
}

// The request's header, then the string descriptor: language IDs for index 0.
Ioctl StringDescriptor(const std::vector<BYTE>& request, const FakeUsbDevice& device) {
  USB_DESCRIPTOR_REQUEST header{};
  std::memcpy(&header, request.data(), std::min(request.size(), sizeof(header)));
  const size_t index = header.SetupPacket.wValue & 0xFF;
  std::wstring text = index == 0 ? std::wstring(1, L'\x0409') : L"";
  if (index != 0 && index <= device.strings.size()) text = device.strings[index - 1];
  if (device.strings.empty() || (index != 0 && text.empty())) return FakeDeviceIo::Failure(31);
  std::vector<BYTE> answer = Bytes(header);
  answer.push_back(static_cast<BYTE>(2 + 2 * text.size()));
  answer.push_back(USB_STRING_DESCRIPTOR_TYPE);
  const std::vector<BYTE> units = Utf16Bytes(text, false);
  answer.insert(answer.end(), units.begin(), units.end());
  return FakeDeviceIo::Answer(answer);
}

}  // namespace

Ioctl UsbNameAnswer(const std::wstring& name, bool port_header) {
  const std::vector<BYTE> text = Utf16Bytes(name);
  std::vector<BYTE> answer(port_header ? 8 : 4, 0);
  const ULONG actual = static_cast<ULONG>(answer.size() + text.size());
  std::memcpy(answer.data() + answer.size() - 4, &actual, sizeof(actual));
  answer.insert(answer.end(), text.begin(), text.end());
  Ioctl ioctl = FakeDeviceIo::Answer(answer);
  ioctl.truncates = true;
  return ioctl;
}

void FakeUsb::DatabaseDevice(const std::wstring& driver_key, const std::wstring& description) {
  if (driver_key.empty()) return;
  database_.Add(device_class::kUsb)
      .String(DEVPROPKEY{device_keys::kDeviceSet, 11}, driver_key)
      .Description(description);
}

void FakeUsb::Controller(const std::wstring& path, const std::wstring& driver_key,
                         const std::wstring& description, const std::wstring& root_hub) {
  database_.Add(device_class::kUsb).interfaces = {{device_interface::kUsbHostController, path}};
  DatabaseDevice(driver_key, description);
  FakeDeviceIo::Device& device = io_.devices[path];
  device.ioctls[IOCTL_USB_GET_ROOT_HUB_NAME] = UsbNameAnswer(root_hub, false);
  device.ioctls[IOCTL_GET_HCD_DRIVERKEY_NAME] = UsbNameAnswer(driver_key, false);
}

void FakeUsb::Hub(const FakeUsbHub& hub) {
  for (const FakeUsbDevice& attached : hub.devices)
    DatabaseDevice(attached.driver_key, attached.description);
  FakeDeviceIo::Device& device = io_.devices[HubPath(hub.name)];
  USB_NODE_INFORMATION node{};
  node.NodeType = UsbHub;
  node.u.HubInformation.HubDescriptor.bDescriptorLength = 9;
  node.u.HubInformation.HubDescriptor.bDescriptorType = 0x29;
  node.u.HubInformation.HubDescriptor.bNumberOfPorts = hub.ports;
  device.ioctls[IOCTL_USB_GET_NODE_INFORMATION] = FakeDeviceIo::Answer(Bytes(node));
  const std::vector<FakeUsbDevice> devices = hub.devices;
  const auto per_port = [devices](Ioctl (*answer)(ULONG, const FakeUsbDevice&)) {
    Ioctl ioctl;
    ioctl.by_input = [devices, answer](const std::vector<BYTE>& in) {
      const FakeUsbDevice* attached = On(devices, PortOf(in));
      return attached ? answer(PortOf(in), *attached)
                      : FakeDeviceIo::Failure(ERROR_INVALID_PARAMETER);
    };
    return ioctl;
  };
  Ioctl connection;
  connection.by_input = [devices](const std::vector<BYTE>& in) {
    return Connection(PortOf(in), On(devices, PortOf(in)));
  };
  device.ioctls[IOCTL_USB_GET_NODE_CONNECTION_INFORMATION_EX] = connection;
  device.ioctls[IOCTL_USB_GET_NODE_CONNECTION_INFORMATION_EX_V2] =
      per_port([](ULONG port, const FakeUsbDevice& d) {
        USB_NODE_CONNECTION_INFORMATION_EX_V2 v2{};
        v2.ConnectionIndex = port;
        v2.Length = sizeof(v2);
        v2.Flags.ul = d.v2_flags;
        return FakeDeviceIo::Answer(Bytes(v2));
      });
  device.ioctls[IOCTL_USB_GET_NODE_CONNECTION_NAME] =
      per_port([](ULONG, const FakeUsbDevice& d) { return UsbNameAnswer(d.hub, true); });
  device.ioctls[IOCTL_USB_GET_NODE_CONNECTION_DRIVERKEY_NAME] =
      per_port([](ULONG, const FakeUsbDevice& d) {
        return d.driver_key.empty() ? FakeDeviceIo::Failure(ERROR_NOT_FOUND)
                                    : UsbNameAnswer(d.driver_key, true);
      });
  Ioctl strings;
  strings.by_input = [devices](const std::vector<BYTE>& in) {
    const FakeUsbDevice* attached = On(devices, PortOf(in));
    return attached ? StringDescriptor(in, *attached)
                    : FakeDeviceIo::Failure(ERROR_INVALID_PARAMETER);
  };
  device.ioctls[IOCTL_USB_GET_DESCRIPTOR_FROM_NODE_CONNECTION] = strings;
}

}  // namespace velhal::testing
