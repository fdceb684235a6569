#include "platform/win32.h"

#include "components/class_devices.h"

#include <cstdio>
#include <cstring>
#include <optional>
#include <string>

#include "platform/device_informention.h"
#include "platform/device_property_keys.h"
#include "platform/device_property_read.h"
#include "platform/device_sets.h"
#include "platform/os/device_database.h"

namespace velhal::components {
namespace {

namespace keys = device_keys;

DeviceSetForReading OpenPresent(const GUID& setup_class) {
  return DeviceSetForReading(&setup_class, DIGCF_PRESENT);
}

bool EnumDevice(HDEVINFO set, DWORD index, SP_DEVINFO_DATA& device) {
  device = {};
  device.cbSize = sizeof(SP_DEVINFO_DATA);
  return os::device_database().SetupDiEnumDeviceInfo(set, index, &device) != FALSE;
}

// A string or string-list property up to its first NUL; empty for any other type.
std::wstring Text(HDEVINFO set, SP_DEVINFO_DATA& device, const DEVPROPKEY& key) {
  const std::optional<DevicePropertyValue> value = ReadDeviceProperty(set, device, key);
  if (!value || !IsStringProperty(value->type)) return {};
  return std::wstring(value->units.data());
}

template <class T>
std::optional<T> Fixed(HDEVINFO set, SP_DEVINFO_DATA& device, const DEVPROPKEY& key,
                       DEVPROPTYPE type) {
  const std::optional<DevicePropertyValue> value = ReadDeviceProperty(set, device, key);
  if (!value || value->type != type || value->size < sizeof(T)) return std::nullopt;
  T number{};
  std::memcpy(&number, value->units.data(), sizeof(T));
  return number;
}

// The driver's date is a FILETIME at midnight UTC of the day its package names.
std::wstring DateText(const std::optional<FILETIME>& time) {
  SYSTEMTIME day{};
  if (!time || !::FileTimeToSystemTime(&*time, &day)) return {};
  wchar_t text[16] = {};
  std::swprintf(text, 16, L"%04u-%02u-%02u", day.wYear, day.wMonth, day.wDay);
  return text;
}

ComponentDevice Describe(HDEVINFO set, SP_DEVINFO_DATA& device) {
  ComponentDevice entry;
  entry.hardwareId = Text(set, device, keys::kHardwareIds);
  entry.description = Text(set, device, keys::kDeviceDesc);
  entry.manufacturer = Text(set, device, keys::kByProperty[DeviceProperty_Manufacturer]);
  entry.driverVersion = Text(set, device, keys::kByProperty[DeviceProperty_DriverVersion]);
  entry.driverDate =
      DateText(Fixed<FILETIME>(set, device, keys::kDriverDate, DEVPROP_TYPE_FILETIME));
  entry.problemCode = Fixed<uint32_t>(set, device, keys::kByProperty[DeviceProperty_ProblemCode],
                                      DEVPROP_TYPE_UINT32)
                          .value_or(0);
  return entry;
}

}  // namespace

std::vector<ComponentDevice> PresentDevices(const GUID& setup_class) {
  std::vector<ComponentDevice> devices;
  const DeviceSetForReading set = OpenPresent(setup_class);
  if (!set.IsValid()) return devices;
  SP_DEVINFO_DATA device;
  for (DWORD index = 0; EnumDevice(set.Get(), index, device); ++index) {
    devices.push_back(Describe(set.Get(), device));
  }
  return devices;
}

bool AnyPresentDevice(const GUID& setup_class) {
  const DeviceSetForReading set = OpenPresent(setup_class);
  SP_DEVINFO_DATA device;
  return set.IsValid() && EnumDevice(set.Get(), 0, device);
}

}  // namespace velhal::components
