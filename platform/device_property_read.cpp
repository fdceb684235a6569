#include "platform/device_property_read.h"

#include "platform/os/device_database.h"

namespace velhal {

std::optional<DevicePropertyValue> ReadDeviceProperty(HDEVINFO set, SP_DEVINFO_DATA& device,
                                                      const DEVPROPKEY& key) {
  auto& db = os::device_database();
  DevicePropertyValue value;
  DWORD required = 0;
  if (db.SetupDiGetDevicePropertyW(set, &device, &key, &value.type, nullptr, 0, &required, 0) ||
      ::GetLastError() != ERROR_INSUFFICIENT_BUFFER || required == 0) {
    return std::nullopt;
  }
  value.units.assign(required / sizeof(wchar_t) + 1, L'\0');
  if (!db.SetupDiGetDevicePropertyW(set, &device, &key, &value.type,
                                    reinterpret_cast<BYTE*>(value.units.data()), required,
                                    &value.size, 0)) {
    return std::nullopt;
  }
  return value;
}

}  // namespace velhal
