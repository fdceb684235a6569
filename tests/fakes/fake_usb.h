// A USB tree as a test sets it, served through the device-I/O and device-database fakes: host
// controllers (devices with a host-controller interface), hubs by name, and on their ports
// devices with a descriptor, strings, a description (reached through a driver key) and maybe a
// hub below. The hub driver's I/O controls are answered with usbioctl.h's own structures, names
// as the driver gives them (cut to a short buffer, with their whole size). A hostile answer is a
// test's own entry in os_.io.devices[hub path].ioctls, over the one the tree made.
#pragma once

#include "platform/win32.h"

#include <cstdint>
#include <string>
#include <vector>

#include "tests/fakes/fake_device_database.h"
#include "tests/fakes/fake_device_io.h"

namespace velhal::testing {

struct FakeUsbDevice {
  uint32_t port;
  uint16_t vendor_id, product_id;
  // Manufacturer, product, serial (an empty text has no index); none: no string descriptors.
  std::vector<std::wstring> strings = {};
  std::wstring hub = {};          // a hub below this port: its name
  std::wstring description = {};  // empty: no driver key
  uint8_t speed = 2;              // UsbHighSpeed
  uint32_t v2_flags = 0;          // USB_NODE_CONNECTION_INFORMATION_EX_V2_FLAGS
};

class FakeUsb {
 public:
  FakeUsb(FakeDeviceIo& io, FakeDeviceDatabase& database) : io_(io), database_(database) {}

  void Controller(const std::wstring& path, const std::wstring& description,
                  const std::wstring& root_hub);
  // The hub's ports: `ports` reported, the devices connected, the other ports empty.
  void Hub(const std::wstring& name, uint8_t ports, const std::vector<FakeUsbDevice>& devices);

  static std::wstring HubPath(const std::wstring& name) { return L"\\\\.\\" + name; }

 private:
  std::wstring DriverKey(const std::wstring& description);

  FakeDeviceIo& io_;
  FakeDeviceDatabase& database_;
};

// A name answer: ConnectionIndex (with port_header), ActualLength, then the name and a NUL.
FakeDeviceIo::Ioctl UsbNameAnswer(const std::wstring& name, bool port_header);

}  // namespace velhal::testing
