#include "hal/battery_driver.h"

#include <array>

#include "platform/device_classes.h"
#include "platform/device_interfaces.h"
#include "platform/os/device_io.h"

namespace velhal::hal {
namespace {

constexpr ULONG kDontWaitForTag = 0;

// A battery's driver, opened and tagged.
struct BatteryDevice {
  UniqueFileHandle handle;
  ULONG tag = 0;

  static std::optional<BatteryDevice> Open(DWORD index) {
    const std::optional<std::wstring> path = DeviceInterfacePath(device_interface::kBattery, index);
    if (!path) return std::nullopt;
    BatteryDevice device;
    device.handle = UniqueFileHandle(os::device_io().CreateFileW(
        path->c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!device.handle.IsValid()) return std::nullopt;
    ULONG wait = kDontWaitForTag;
    DWORD bytes = 0;
    if (!os::device_io().DeviceIoControl(device.handle.Get(), IOCTL_BATTERY_QUERY_TAG, &wait,
                                         sizeof(wait), &device.tag, sizeof(device.tag), &bytes,
                                         nullptr) ||
        device.tag == 0) {  // 0: no battery in the slot
      return std::nullopt;
    }
    return device;
  }

  bool QueryInformation(BATTERY_QUERY_INFORMATION_LEVEL level, void* out, DWORD out_size,
                        DWORD* bytes) {
    BATTERY_QUERY_INFORMATION query{};
    query.BatteryTag = tag;
    query.InformationLevel = level;
    return os::device_io().DeviceIoControl(handle.Get(), IOCTL_BATTERY_QUERY_INFORMATION, &query,
                                           sizeof(query), out, out_size, bytes, nullptr) != FALSE;
  }
};

}  // namespace

std::optional<BatteryDriverReading> ReadBatteryDriver(DWORD index) {
  std::optional<BatteryDevice> device = BatteryDevice::Open(index);
  if (!device) return std::nullopt;
  BatteryDriverReading reading{};
  DWORD bytes = 0;
  if (!device->QueryInformation(BatteryInformation, &reading.information,
                                sizeof(reading.information), &bytes)) {
    return std::nullopt;
  }
  // The published 20-byte BATTERY_WAIT_STATUS, not a 16-byte one: drivers refuse a shorter
  // input, which would send every voltage read to WMI. The one deviation kept on purpose.
  static_assert(sizeof(BATTERY_WAIT_STATUS) == 20);
  BATTERY_WAIT_STATUS wait{};
  wait.BatteryTag = device->tag;
  if (!os::device_io().DeviceIoControl(device->handle.Get(), IOCTL_BATTERY_QUERY_STATUS, &wait,
                                       sizeof(wait), &reading.status, sizeof(reading.status),
                                       &bytes, nullptr)) {
    return std::nullopt;
  }
  return reading;
}

std::optional<std::wstring> ReadBatteryDriverName(BATTERY_QUERY_INFORMATION_LEVEL level) {
  std::optional<BatteryDevice> device = BatteryDevice::Open(0);
  if (!device) return std::nullopt;
  std::array<wchar_t, 257> name{};  // one spare unit keeps it terminated
  DWORD bytes = 0;
  if (!device->QueryInformation(level, name.data(), (name.size() - 1) * sizeof(wchar_t), &bytes)) {
    return std::nullopt;
  }
  return std::wstring(name.data());
}

}  // namespace velhal::hal
