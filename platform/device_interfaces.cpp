#include "platform/device_interfaces.h"

#include <cstddef>
#include <cwchar>
#include <vector>

#include "platform/os/device_database.h"

namespace velhal {

std::optional<std::wstring> DeviceInterfacePath(const GUID& interface_class, DWORD index) {
  auto& db = os::device_database();
  const UniqueDeviceInfoSet set(db.SetupDiGetClassDevsW(&interface_class, nullptr, nullptr,
                                                        DIGCF_PRESENT | DIGCF_DEVICEINTERFACE));
  if (!set.IsValid()) return std::nullopt;
  SP_DEVICE_INTERFACE_DATA interface_data{};
  interface_data.cbSize = sizeof(interface_data);
  if (!db.SetupDiEnumDeviceInterfaces(set.Get(), nullptr, &interface_class, index,
                                      &interface_data)) {
    return std::nullopt;
  }
  DWORD required = 0;
  if (db.SetupDiGetDeviceInterfaceDetailW(set.Get(), &interface_data, nullptr, 0, &required,
                                          nullptr) ||
      ::GetLastError() != ERROR_INSUFFICIENT_BUFFER ||
      required < offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_W, DevicePath) + sizeof(wchar_t)) {
    return std::nullopt;
  }
  // Sized in whole structures so that the detail is suitably aligned; one spare unit at the end
  // keeps the path terminated whatever the call wrote.
  std::vector<SP_DEVICE_INTERFACE_DETAIL_DATA_W> storage(
      required / sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W) + 2);
  auto* detail = storage.data();
  detail->cbSize = sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W);
  if (!db.SetupDiGetDeviceInterfaceDetailW(set.Get(), &interface_data, detail, required, nullptr,
                                           nullptr)) {
    return std::nullopt;
  }
  const size_t units = (required - offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_W, DevicePath)) /
                       sizeof(wchar_t);
  std::wstring path(detail->DevicePath, units);
  path.resize(std::wcslen(path.c_str()));
  return path;
}

}  // namespace velhal
