// A USB tree as a test sets it, served through the device-I/O and device-database fakes: host
// controllers (devices with a host-controller interface), hubs by name, and on each hub's ports
// devices with a descriptor, strings, a driver key and maybe a hub below. The hub driver's I/O
// controls are answered from these rows with usbioctl.h's own structures, names as the driver
// gives them (truncated to a short buffer, with their whole size). A hostile answer is a test's
// own entry in os_.io.devices[hub path].ioctls, over the one the tree made.
#pragma once

#include "platform/win32.h"

#include <cstdint>
#include <string>
#include <vector>

#include "tests/fakes/fake_device_database.h"
#include "tests/fakes/fake_device_io.h"

namespace velhal::testing {

struct FakeUsbDevice {
  uint32_t port = 0;
  uint16_t vendor_id = 0, product_id = 0;
  uint8_t speed = 2;  // UsbHighSpeed
  uint32_t v2_flags = 0;
  // Manufacturer, product and serial; an empty text has no descriptor index. No strings at all:
  // the device has no string descriptors.
  std::vector<std::wstring> strings;
  std::wstring driver_key;   // empty: the driver key cannot be read
  std::wstring description;  // of the driver key's device in the database
  std::wstring hub;          // a hub below this port: its name
};

struct FakeUsbHub {
  std::wstring name;  // opened as \\.\ + name
  uint8_t ports = 4;
  std::vector<FakeUsbDevice> devices;  // connected; the other ports are empty
};

class FakeUsb {
 public:
  FakeUsb(FakeDeviceIo& io, FakeDeviceDatabase& database) : io_(io), database_(database) {}

  // A controller at path with its driver key (and description) and root hub.
  void Controller(const std::wstring& path, const std::wstring& driver_key,
                  const std::wstring& description, const std::wstring& root_hub);
  void Hub(const FakeUsbHub& hub);

  static std::wstring HubPath(const std::wstring& name) { return L"\\\\.\\" + name; }

 private:
  void DatabaseDevice(const std::wstring& driver_key, const std::wstring& description);

  FakeDeviceIo& io_;
  FakeDeviceDatabase& database_;
};

// A name answer as the driver lays it out: ConnectionIndex (when port_header), ActualLength,
// then the NUL-terminated UTF-16 name; it copies what fits and succeeds.
FakeDeviceIo::Ioctl UsbNameAnswer(const std::wstring& name, bool port_header);

}  // namespace velhal::testing
