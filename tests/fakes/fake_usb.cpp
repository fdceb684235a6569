#include "tests/fakes/fake_usb.h"

#include <winioctl.h>
#include <usbioctl.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>

#include "platform/device_classes.h"
#include "platform/device_property_keys.h"
#include "tests/fakes/fake_common.h"

namespace velhal::testing {
namespace {

using Ioctl = FakeDeviceIo::Ioctl;

// An answer by the port the request names; a port without a device gets `empty`.
Ioctl PerPort(std::vector<FakeUsbDevice> devices,
              std::function<Ioctl(const FakeUsbDevice&, const std::vector<BYTE>&)> answer,
              Ioctl empty = FakeDeviceIo::Failure(ERROR_INVALID_PARAMETER)) {
  Ioctl ioctl;
  ioctl.by_input = [devices, answer, empty](const std::vector<BYTE>& in) {
    ULONG port = 0;
    std::memcpy(&port, in.data(), std::min(in.size(), sizeof(port)));
    for (const FakeUsbDevice& device : devices) {
      if (device.port == port) return answer(device, in);
    }
    return empty;
  };
  return ioctl;
}

UCHAR Index(const FakeUsbDevice& device, size_t which) {
  return which < device.strings.size() && !device.strings[which].empty() ? which + 1 : 0;
}

Ioctl Connection(const FakeUsbDevice& device, const std::vector<BYTE>& in) {
  USB_NODE_CONNECTION_INFORMATION_EX info{};
  std::memcpy(&info.ConnectionIndex, in.data(), sizeof(ULONG));
  info.DeviceDescriptor = {sizeof(USB_DEVICE_DESCRIPTOR),
                           USB_DEVICE_DESCRIPTOR_TYPE,
                           0x0210,
                           static_cast<UCHAR>(device.hub.empty() ? 0 : 9),
                           0,
                           0,
                           64,
                           device.vendor_id,
                           device.product_id,
                           0x0100,
                           Index(device, 0),
                           Index(device, 1),
                           Index(device, 2),
                           1};
  info.Speed = device.speed;
  info.DeviceIsHub = !device.hub.empty();
  info.DeviceAddress = static_cast<USHORT>(info.ConnectionIndex + 1);
  info.ConnectionStatus = DeviceConnected;
  return FakeDeviceIo::Answer(Bytes(info));
}

// The request's header, then the string descriptor: the language IDs for index 0.
Ioctl StringDescriptor(const FakeUsbDevice& device, const std::vector<BYTE>& in) {
  USB_DESCRIPTOR_REQUEST header{};
  std::memcpy(&header, in.data(), sizeof(header));
  const size_t index = header.SetupPacket.wValue & 0xFF;
  const std::wstring text = index == 0 ? L"\x0409" : device.strings.at(index - 1);
  if (device.strings.empty()) return FakeDeviceIo::Failure(ERROR_GEN_FAILURE);  // a stall
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

std::wstring FakeUsb::DriverKey(const std::wstring& description) {
  if (description.empty()) return {};
  const std::wstring key =
      L"{36fc9e60-c465-11cf-8056-444553540000}\\" + std::to_wstring(database_.devices.size());
  database_.Add(device_class::kUsb)
      .String(DEVPROPKEY{device_keys::kDeviceSet, 11}, key)  // DEVPKEY_Device_Driver
      .Description(description);
  return key;
}

void FakeUsb::Controller(const std::wstring& path, const std::wstring& description,
                         const std::wstring& root_hub) {
  database_.Add(device_class::kUsb).interfaces = {{device_interface::kUsbHostController, path}};
  FakeDeviceIo::Device& device = io_.devices[path];
  device.ioctls[IOCTL_USB_GET_ROOT_HUB_NAME] = UsbNameAnswer(root_hub, false);
  device.ioctls[IOCTL_GET_HCD_DRIVERKEY_NAME] = UsbNameAnswer(DriverKey(description), false);
}

void FakeUsb::Hub(const std::wstring& name, uint8_t ports,
                  const std::vector<FakeUsbDevice>& devices) {
  std::map<uint32_t, std::wstring> keys;  // by port
  for (const FakeUsbDevice& device : devices) keys[device.port] = DriverKey(device.description);
  auto& ioctls = io_.devices[HubPath(name)].ioctls;
  USB_NODE_INFORMATION node{};
  node.u.HubInformation.HubDescriptor = {9, 0x29, ports, 0, 0, 0, {}};
  ioctls[IOCTL_USB_GET_NODE_INFORMATION] = FakeDeviceIo::Answer(Bytes(node));
  // An empty port answers a zeroed structure: NoDeviceConnected.
  ioctls[IOCTL_USB_GET_NODE_CONNECTION_INFORMATION_EX] = PerPort(
      devices, Connection, FakeDeviceIo::Answer(Bytes(USB_NODE_CONNECTION_INFORMATION_EX{})));
  ioctls[IOCTL_USB_GET_NODE_CONNECTION_INFORMATION_EX_V2] = PerPort(devices, [](auto& d, auto&) {
    USB_NODE_CONNECTION_INFORMATION_EX_V2 v2{};
    v2.Flags.ul = d.v2_flags;
    return FakeDeviceIo::Answer(Bytes(v2));
  });
  ioctls[IOCTL_USB_GET_NODE_CONNECTION_NAME] =
      PerPort(devices, [](auto& d, auto&) { return UsbNameAnswer(d.hub, true); });
  ioctls[IOCTL_USB_GET_NODE_CONNECTION_DRIVERKEY_NAME] = PerPort(devices, [keys](auto& d, auto&) {
    const std::wstring& key = keys.at(d.port);
    return key.empty() ? FakeDeviceIo::Failure(ERROR_NOT_FOUND) : UsbNameAnswer(key, true);
  });
  ioctls[IOCTL_USB_GET_DESCRIPTOR_FROM_NODE_CONNECTION] = PerPort(devices, StringDescriptor);
}

}  // namespace velhal::testing
