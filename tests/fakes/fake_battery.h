// A battery driver behind the device database and device I/O fakes: its interface path, tag,
// information, status and names, answering IOCTL_BATTERY_* as a driver does.
#pragma once

#include "platform/win32.h"

#include <winioctl.h>

#include <batclass.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/device_classes.h"
#include "tests/fakes/fake_common.h"
#include "tests/fakes/fake_device_database.h"
#include "tests/fakes/fake_device_io.h"

namespace velhal::testing {

struct FakeBattery {
  ULONG tag = 7;
  BATTERY_INFORMATION information{};
  BATTERY_STATUS status{};
  std::wstring name, maker;

  // Adds the battery after any already there: its interface comes next in SetupAPI's order.
  // Returns its device path.
  std::wstring Install(FakeDeviceDatabase& devices, FakeDeviceIo& io) const {
    const std::wstring path = L"\\\\?\\acpi#pnp0c0a#" + std::to_wstring(devices.devices.size()) +
                              L"#{72631e54-78a4-11d0-bcf7-00aa00b7b32a}";
    devices.Add(device_class::kBattery).interfaces.emplace_back(device_interface::kBattery, path);
    auto& device = io.devices[path];
    device.ioctls[IOCTL_BATTERY_QUERY_TAG] = FakeDeviceIo::Answer(Bytes(tag));
    FakeDeviceIo::Ioctl information_ioctl;
    information_ioctl.by_input = [battery = *this](const std::vector<BYTE>& in) {
      BATTERY_QUERY_INFORMATION query{};
      std::memcpy(&query, in.data(), std::min(in.size(), sizeof(query)));
      if (query.BatteryTag != battery.tag) return FakeDeviceIo::Failure(ERROR_FILE_NOT_FOUND);
      switch (query.InformationLevel) {
        case BatteryInformation: return FakeDeviceIo::Answer(Bytes(battery.information));
        case BatteryDeviceName: return FakeDeviceIo::Answer(Utf16Bytes(battery.name));
        case BatteryManufactureName: return FakeDeviceIo::Answer(Utf16Bytes(battery.maker));
        default: return FakeDeviceIo::Failure(ERROR_INVALID_FUNCTION);
      }
    };
    device.ioctls[IOCTL_BATTERY_QUERY_INFORMATION] = information_ioctl;
    // Drivers refuse a wait-status input shorter than the published 20 bytes.
    FakeDeviceIo::Ioctl status_ioctl;
    status_ioctl.by_input = [answer = status](const std::vector<BYTE>& in) {
      if (in.size() < sizeof(BATTERY_WAIT_STATUS))
        return FakeDeviceIo::Failure(ERROR_INVALID_PARAMETER);
      return FakeDeviceIo::Answer(Bytes(answer));
    };
    device.ioctls[IOCTL_BATTERY_QUERY_STATUS] = status_ioctl;
    return path;
  }
};

}  // namespace velhal::testing
