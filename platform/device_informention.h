// The gateway to the device-installation database: find a device by the exact first string of
// its hardware-ID list (or by its description), read its properties, list the devices of a
// setup class, find devices without a driver, remove a device. Stateless: every operation opens
// its own device-information set and destroys it before it returns.
//
// The class name is spelt so in the export table (as are GetLastIntallTime and
// UnstallDeviceByHardwareId); hosts bind these names.
#pragma once

#include <guiddef.h>

#include <cstdint>
#include <string>
#include <vector>

#include "hal/velhal_export.h"

// Which device property to read; each value stands for one unified property key.
enum EnumDeviceProperty : uint32_t {
  DeviceProperty_DeviceDesc = 0,
  DeviceProperty_Manufacturer = 1,
  DeviceProperty_DriverVersion = 2,
  DeviceProperty_HardwareIds = 3,
  DeviceProperty_EnumeratorName = 4,
  DeviceProperty_InstanceSetKey90 = 5,  // {78c34fc8-104a-4aca-9ea4-524d52996e57}, 90
  DeviceProperty_FriendlyName = 6,
  DeviceProperty_Name = 7,
  DeviceProperty_DriverInfPath = 8,
  DeviceProperty_InstanceId = 9,
  DeviceProperty_DriverProvider = 10,
  DeviceProperty_Stack = 11,
  DeviceProperty_Parent = 12,
  DeviceProperty_LocationInfo = 13,
  DeviceProperty_ProblemCode = 14,
  DeviceProperty_Address = 15,
};

struct HardWareIdInfo {
  std::wstring hardwareId;  // the first string of the device's hardware-ID list
  int32_t internal;         // 1 when the device node is not removable, else 0
};

class VELHAL_API DeviceInformention {
 public:
  // Class-scoped lists: one entry per present device of the class, in enumeration order; a
  // device without the property gives an empty string.
  std::vector<std::wstring> GetDeviceHardwareId(GUID classGuid);
  std::vector<std::wstring> GetDeviceDesc(GUID classGuid);
  // Every string of the hardware-ID list of the class's device whose first ID is hardwareId.
  std::vector<std::wstring> GetDeviceHardwareIDList(GUID classGuid, const std::wstring& hardwareId);

  // Property getters. They search every present device of every class: the class GUID does
  // not narrow the search (callers rely on finding a device whatever class they name).
  std::wstring GetDeviceStrInfoByHardwareId(const std::wstring& hardwareId, GUID classGuid,
                                            EnumDeviceProperty property);
  std::wstring GetDeviceStrInfoByHardwareIdEx(const std::wstring& hardwareId, GUID classGuid,
                                              EnumDeviceProperty property, bool omitClassGuid);
  uint32_t GetDeviceULONGInfoByHardwareId(const std::wstring& hardwareId, GUID classGuid,
                                          EnumDeviceProperty property);
  uint32_t GetDeviceULONGInfoByHardwareIdEx(const std::wstring& hardwareId, GUID classGuid,
                                            EnumDeviceProperty property, bool omitClassGuid);
  std::wstring GetDeviceStrInfoByDesc(const std::wstring& description, GUID classGuid,
                                      EnumDeviceProperty property);
  std::wstring GetDeviceStrInfoByDescEx(const std::wstring& description, GUID classGuid,
                                        EnumDeviceProperty property, bool omitClassGuid);
  uint32_t GetDeviceULONGInfoByDesc(const std::wstring& description, GUID classGuid,
                                    EnumDeviceProperty property);
  uint32_t GetDeviceULONGInfoByDescEx(const std::wstring& description, GUID classGuid,
                                      EnumDeviceProperty property, bool omitClassGuid);
  // Appends every non-empty string of a string or string-list property.
  void GetDevicePropertyByhardId(GUID classGuid, const std::wstring& hardwareId,
                                 EnumDeviceProperty property, std::vector<std::wstring>& values);

  // The device's first install date, in milliseconds since 1970-01-01 UTC; 0 when unknown.
  uint64_t GetLastIntallTime(const std::wstring& hardwareId, GUID classGuid);

  void GetAllDeviceHardwareId(std::vector<std::wstring>& hardwareIds);  // prefix "PCI"
  void GetAllDeviceHardwareIdEx(std::vector<std::wstring>& hardwareIds, const std::wstring& prefix);
  // Devices without a setup class. The last device may be listed twice; callers tolerate it.
  std::vector<std::wstring> GetUnknownDeviceHardId();
  // Appends the first hardware ID of every device whose parent's instance ID contains fragment.
  void GetSoftComponentItems(std::vector<std::wstring>& hardwareIds, const std::wstring& fragment);
  std::vector<HardWareIdInfo> GetInternalDeviceHardwareId(GUID classGuid);

  // 0 on success, the system's error code on failure, 0xFFFFFFFF when no device matched.
  uint32_t UnstallDeviceByHardwareId(const std::wstring& hardwareId, GUID classGuid);
  uint32_t UnstallDeviceByHardwareIdEx(const std::wstring& hardwareId, GUID classGuid);
};
