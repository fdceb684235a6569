#include "components/class_driver_version.h"

#include "platform/device_informention.h"

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

}  // namespace velhal::components
