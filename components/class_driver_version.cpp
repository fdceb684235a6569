#include "components/class_driver_version.h"

#include "platform/device_informention.h"
#include "platform/text_search.h"

namespace velhal::components {

std::wstring FirstDriverVersionOfClass(const GUID& setup_class) {
  DeviceInformention devices;
  for (const std::wstring& id : devices.GetDeviceHardwareId(setup_class)) {
    std::wstring version =
        devices.GetDeviceStrInfoByHardwareId(id, setup_class, DeviceProperty_DriverVersion);
    if (!version.empty()) return version;
  }
  return {};
}

std::wstring FirstHardwareIdWith(const GUID& setup_class,
                                 std::span<const wchar_t* const> prefixes) {
  for (const std::wstring& id : DeviceInformention().GetDeviceHardwareId(setup_class)) {
    for (const wchar_t* prefix : prefixes) {
      if (StartsWith(id, prefix)) return id;
    }
  }
  return {};
}

std::wstring DriverVersionOfFirstWith(const GUID& setup_class,
                                      std::span<const wchar_t* const> prefixes) {
  const std::wstring id = FirstHardwareIdWith(setup_class, prefixes);
  if (id.empty()) return {};
  return DeviceInformention().GetDeviceStrInfoByHardwareId(id, setup_class,
                                                           DeviceProperty_DriverVersion);
}

}  // namespace velhal::components
