// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/device_database.h"

namespace velhal::os {
namespace {

class RealDeviceDatabase final : public DeviceDatabase {
 public:
  HDEVINFO SetupDiGetClassDevsW(const GUID* class_guid, const wchar_t* enumerator, HWND parent,
                                DWORD flags) override {
    return ::SetupDiGetClassDevsW(class_guid, enumerator, parent, flags);
  }
  BOOL SetupDiEnumDeviceInfo(HDEVINFO set, DWORD index, SP_DEVINFO_DATA* device) override {
    return ::SetupDiEnumDeviceInfo(set, index, device);
  }
  BOOL SetupDiGetDevicePropertyW(HDEVINFO set, SP_DEVINFO_DATA* device, const DEVPROPKEY* key,
                                 DEVPROPTYPE* type, BYTE* buffer, DWORD buffer_size,
                                 DWORD* required_size, DWORD flags) override {
    return ::SetupDiGetDevicePropertyW(set, device, key, type, buffer, buffer_size, required_size,
                                       flags);
  }
  BOOL SetupDiDestroyDeviceInfoList(HDEVINFO set) override {
    return ::SetupDiDestroyDeviceInfoList(set);
  }
  BOOL SetupDiGetDeviceRegistryPropertyW(HDEVINFO set, SP_DEVINFO_DATA* device, DWORD property,
                                         DWORD* type, BYTE* buffer, DWORD buffer_size,
                                         DWORD* required_size) override {
    return ::SetupDiGetDeviceRegistryPropertyW(set, device, property, type, buffer, buffer_size,
                                               required_size);
  }
  BOOL SetupDiEnumDeviceInterfaces(HDEVINFO set, SP_DEVINFO_DATA* device,
                                   const GUID* interface_class, DWORD index,
                                   SP_DEVICE_INTERFACE_DATA* interface_data) override {
    return ::SetupDiEnumDeviceInterfaces(set, device, interface_class, index, interface_data);
  }
  BOOL SetupDiGetDeviceInterfaceDetailW(HDEVINFO set, SP_DEVICE_INTERFACE_DATA* interface_data,
                                        SP_DEVICE_INTERFACE_DETAIL_DATA_W* detail,
                                        DWORD detail_size, DWORD* required_size,
                                        SP_DEVINFO_DATA* device) override {
    return ::SetupDiGetDeviceInterfaceDetailW(set, interface_data, detail, detail_size,
                                              required_size, device);
  }
  BOOL SetupDiRemoveDevice(HDEVINFO set, SP_DEVINFO_DATA* device) override {
    return ::SetupDiRemoveDevice(set, device);
  }
  BOOL SetupDiGetDeviceInfoListDetailW(HDEVINFO set,
                                       SP_DEVINFO_LIST_DETAIL_DATA_W* detail) override {
    return ::SetupDiGetDeviceInfoListDetailW(set, detail);
  }
  BOOL SetupDiSetClassInstallParamsW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                     SP_CLASSINSTALL_HEADER* params, DWORD size) override {
    return ::SetupDiSetClassInstallParamsW(set, device, params, size);
  }
  BOOL SetupDiCallClassInstaller(DI_FUNCTION function, HDEVINFO set,
                                 SP_DEVINFO_DATA* device) override {
    return ::SetupDiCallClassInstaller(function, set, device);
  }
  BOOL SetupDiGetDeviceInstallParamsW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                      SP_DEVINSTALL_PARAMS_W* params) override {
    return ::SetupDiGetDeviceInstallParamsW(set, device, params);
  }
  CONFIGRET CM_Get_DevNode_Status(ULONG* status, ULONG* problem, DEVINST device,
                                  ULONG flags) override {
    return ::CM_Get_DevNode_Status(status, problem, device, flags);
  }
  CONFIGRET CM_Get_Device_ID_ExW(DEVINST device, wchar_t* buffer, ULONG length, ULONG flags,
                                 HMACHINE machine) override {
    return ::CM_Get_Device_ID_ExW(device, buffer, length, flags, machine);
  }
  BOOL SetupDiClassGuidsFromNameExW(const wchar_t* class_name, GUID* guids, DWORD guids_size,
                                    DWORD* required_size, const wchar_t* machine,
                                    void* reserved) override {
    return ::SetupDiClassGuidsFromNameExW(class_name, guids, guids_size, required_size, machine,
                                          reserved);
  }
  HDEVINFO SetupDiGetClassDevsExW(const GUID* class_guid, const wchar_t* enumerator, HWND parent,
                                  DWORD flags, HDEVINFO set, const wchar_t* machine,
                                  void* reserved) override {
    return ::SetupDiGetClassDevsExW(class_guid, enumerator, parent, flags, set, machine, reserved);
  }
  CONFIGRET CM_Locate_DevNodeW(DEVINST* device, const wchar_t* instance_id, ULONG flags) override {
    // The system's declaration takes a non-const ID it never writes.
    return ::CM_Locate_DevNodeW(device, const_cast<wchar_t*>(instance_id), flags);
  }
  CONFIGRET CM_Reenumerate_DevNode(DEVINST device, ULONG flags) override {
    return ::CM_Reenumerate_DevNode(device, flags);
  }
};

}  // namespace

DeviceDatabase& DeviceDatabase::Real() noexcept {
  static RealDeviceDatabase backend;
  return backend;
}

}  // namespace velhal::os
