// Device-database facility: the SetupAPI and CfgMgr32 calls the library makes. Results follow
// the Win32 contract, last error included (ERROR_INSUFFICIENT_BUFFER with the needed size,
// ERROR_NOT_FOUND for an absent property, ERROR_NO_MORE_ITEMS at the end of a set).
#pragma once

#include "platform/win32.h"

#include <cfgmgr32.h>
#include <devpropdef.h>
#include <setupapi.h>

#include "platform/os/seam.h"
#include "platform/unique_resource.h"

namespace velhal::os {

class DeviceDatabase {
 public:
  virtual HDEVINFO SetupDiGetClassDevsW(const GUID* class_guid, const wchar_t* enumerator,
                                        HWND parent, DWORD flags) = 0;
  virtual BOOL SetupDiEnumDeviceInfo(HDEVINFO set, DWORD index, SP_DEVINFO_DATA* device) = 0;
  virtual BOOL SetupDiGetDevicePropertyW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                         const DEVPROPKEY* key, DEVPROPTYPE* type, BYTE* buffer,
                                         DWORD buffer_size, DWORD* required_size, DWORD flags) = 0;
  virtual BOOL SetupDiDestroyDeviceInfoList(HDEVINFO set) = 0;
  virtual BOOL SetupDiGetDeviceRegistryPropertyW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                                 DWORD property, DWORD* type, BYTE* buffer,
                                                 DWORD buffer_size, DWORD* required_size) = 0;
  virtual BOOL SetupDiEnumDeviceInterfaces(HDEVINFO set, SP_DEVINFO_DATA* device,
                                           const GUID* interface_class, DWORD index,
                                           SP_DEVICE_INTERFACE_DATA* interface_data) = 0;
  virtual BOOL SetupDiGetDeviceInterfaceDetailW(HDEVINFO set,
                                                SP_DEVICE_INTERFACE_DATA* interface_data,
                                                SP_DEVICE_INTERFACE_DETAIL_DATA_W* detail,
                                                DWORD detail_size, DWORD* required_size,
                                                SP_DEVINFO_DATA* device) = 0;
  virtual BOOL SetupDiRemoveDevice(HDEVINFO set, SP_DEVINFO_DATA* device) = 0;
  virtual BOOL SetupDiGetDeviceInfoListDetailW(HDEVINFO set,
                                               SP_DEVINFO_LIST_DETAIL_DATA_W* detail) = 0;
  virtual BOOL SetupDiSetClassInstallParamsW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                             SP_CLASSINSTALL_HEADER* params, DWORD size) = 0;
  virtual BOOL SetupDiCallClassInstaller(DI_FUNCTION function, HDEVINFO set,
                                         SP_DEVINFO_DATA* device) = 0;
  virtual BOOL SetupDiGetDeviceInstallParamsW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                              SP_DEVINSTALL_PARAMS_W* params) = 0;
  virtual CONFIGRET CM_Get_DevNode_Status(ULONG* status, ULONG* problem, DEVINST device,
                                          ULONG flags) = 0;
  virtual CONFIGRET CM_Get_Device_ID_ExW(DEVINST device, wchar_t* buffer, ULONG length, ULONG flags,
                                         HMACHINE machine) = 0;
  virtual BOOL SetupDiClassGuidsFromNameExW(const wchar_t* class_name, GUID* guids,
                                            DWORD guids_size, DWORD* required_size,
                                            const wchar_t* machine, void* reserved) = 0;
  virtual HDEVINFO SetupDiGetClassDevsExW(const GUID* class_guid, const wchar_t* enumerator,
                                          HWND parent, DWORD flags, HDEVINFO set,
                                          const wchar_t* machine, void* reserved) = 0;
  virtual CONFIGRET CM_Locate_DevNodeW(DEVINST* device, const wchar_t* instance_id,
                                       ULONG flags) = 0;
  virtual CONFIGRET CM_Reenumerate_DevNode(DEVINST device, ULONG flags) = 0;

  static DeviceDatabase& Real() noexcept;

 protected:
  ~DeviceDatabase() = default;
};

inline DeviceDatabase& device_database() noexcept { return Seam<DeviceDatabase>::Get(); }

}  // namespace velhal::os

namespace velhal {

struct DeviceInfoSetTraits {
  using Handle = HDEVINFO;
  static HDEVINFO Invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static bool IsValid(HDEVINFO set) noexcept {
    return set != INVALID_HANDLE_VALUE && set != nullptr;
  }
  static void Close(HDEVINFO set) noexcept {
    os::device_database().SetupDiDestroyDeviceInfoList(set);
  }
};
using UniqueDeviceInfoSet = UniqueResource<DeviceInfoSetTraits>;

}  // namespace velhal
