// An in-memory device database behind the SetupAPI/CfgMgr32 facility. Devices are rows with a
// class, a present flag, unified properties and a device-node status; the fake keeps the Win32
// contract (cbSize checks, ERROR_INSUFFICIENT_BUFFER with the needed size, ERROR_NOT_FOUND,
// ERROR_NO_MORE_ITEMS) and records each set opened, so a test sees flags, GUIDs and leaks.
// The registry-property read serves SPDRP_HARDWAREID from the same hardware-ID list. The class
// installer removes (DIF_REMOVE) or enables and disables (DIF_PROPERTYCHANGE) a device; a rescan
// of the tree brings removed devices back as each device's script says.
#pragma once

#include "platform/win32.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/os/device_database.h"

namespace velhal::testing {

struct FakeDevice {
  struct Property {
    DEVPROPTYPE type;
    std::vector<BYTE> bytes;
  };

  GUID class_guid{};
  bool present = true;
  std::wstring instance_id;
  std::vector<std::pair<DEVPROPKEY, Property>> properties;
  CONFIGRET status_result = CR_SUCCESS;
  ULONG status = 0;
  DWORD remove_error = 0;  // non-zero: removal fails with this last error
  DWORD registry_read_error = 0;  // non-zero: SetupDiGetDeviceRegistryPropertyW fails so
  DWORD change_error = 0;  // non-zero: DIF_PROPERTYCHANGE fails with this last error
  DWORD state_change = 0;  // the last DICS_ENABLE / DICS_DISABLE the installer applied
  // Each rescan makes the device present with the next problem code of the list (the last one
  // repeating); an empty list leaves the device as it is.
  std::vector<uint32_t> problems_after_rescan;
  size_t rescans_seen = 0;
  std::vector<std::pair<GUID, std::wstring>> interfaces;  // interface class, device path

  FakeDevice& Set(const DEVPROPKEY& key, DEVPROPTYPE type, std::vector<BYTE> bytes);
  FakeDevice& String(const DEVPROPKEY& key, const std::wstring& text);
  FakeDevice& StringList(const DEVPROPKEY& key, const std::vector<std::wstring>& texts);
  FakeDevice& HardwareIds(const std::vector<std::wstring>& ids);
  FakeDevice& Description(const std::wstring& text);
  FakeDevice& UInt32(const DEVPROPKEY& key, uint32_t value);
  const Property* Find(const DEVPROPKEY& key) const;
};

class FakeDeviceDatabase final : public os::DeviceDatabase {
 public:
  struct Open {
    std::optional<GUID> class_guid;
    DWORD flags;
  };

  FakeDevice& Add(const GUID& class_guid);

  std::vector<FakeDevice> devices;
  std::vector<Open> opens;
  int open_sets = 0;
  int bad_destroys = 0;
  std::vector<size_t> removed;                // device indexes, by SetupDiRemoveDevice
  std::vector<size_t> removed_by_installer;   // device indexes, by DIF_REMOVE
  std::vector<SP_REMOVEDEVICE_PARAMS> install_params;
  std::vector<SP_PROPCHANGE_PARAMS> change_params;
  bool fail_list_detail = false;
  bool fail_device_id = false;
  // Setup-class names SetupDiClassGuidsFromNameExW knows (any case), and the names it was asked.
  std::map<std::wstring, GUID> class_names;
  std::vector<std::wstring> class_names_asked;
  CONFIGRET locate_result = CR_SUCCESS;       // of CM_Locate_DevNodeW for the root
  CONFIGRET reenumerate_result = CR_SUCCESS;  // of CM_Reenumerate_DevNode
  std::vector<ULONG> reenumerate_flags;       // one entry per rescan asked for
  static constexpr DEVINST kRoot = 0x7F00;

  HDEVINFO SetupDiGetClassDevsW(const GUID* class_guid, const wchar_t* enumerator, HWND parent,
                                DWORD flags) override;
  BOOL SetupDiEnumDeviceInfo(HDEVINFO set, DWORD index, SP_DEVINFO_DATA* device) override;
  BOOL SetupDiGetDevicePropertyW(HDEVINFO set, SP_DEVINFO_DATA* device, const DEVPROPKEY* key,
                                 DEVPROPTYPE* type, BYTE* buffer, DWORD buffer_size,
                                 DWORD* required_size, DWORD flags) override;
  BOOL SetupDiDestroyDeviceInfoList(HDEVINFO set) override;
  BOOL SetupDiGetDeviceRegistryPropertyW(HDEVINFO set, SP_DEVINFO_DATA* device, DWORD property,
                                         DWORD* type, BYTE* buffer, DWORD buffer_size,
                                         DWORD* required_size) override;
  BOOL SetupDiEnumDeviceInterfaces(HDEVINFO set, SP_DEVINFO_DATA* device,
                                   const GUID* interface_class, DWORD index,
                                   SP_DEVICE_INTERFACE_DATA* interface_data) override;
  BOOL SetupDiGetDeviceInterfaceDetailW(HDEVINFO set, SP_DEVICE_INTERFACE_DATA* interface_data,
                                        SP_DEVICE_INTERFACE_DETAIL_DATA_W* detail,
                                        DWORD detail_size, DWORD* required_size,
                                        SP_DEVINFO_DATA* device) override;
  BOOL SetupDiRemoveDevice(HDEVINFO set, SP_DEVINFO_DATA* device) override;
  BOOL SetupDiGetDeviceInfoListDetailW(HDEVINFO set,
                                       SP_DEVINFO_LIST_DETAIL_DATA_W* detail) override;
  BOOL SetupDiSetClassInstallParamsW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                     SP_CLASSINSTALL_HEADER* params, DWORD size) override;
  BOOL SetupDiCallClassInstaller(DI_FUNCTION function, HDEVINFO set,
                                 SP_DEVINFO_DATA* device) override;
  BOOL SetupDiGetDeviceInstallParamsW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                      SP_DEVINSTALL_PARAMS_W* params) override;
  CONFIGRET CM_Get_DevNode_Status(ULONG* status, ULONG* problem, DEVINST device,
                                  ULONG flags) override;
  CONFIGRET CM_Get_Device_ID_ExW(DEVINST device, wchar_t* buffer, ULONG length, ULONG flags,
                                 HMACHINE machine) override;
  BOOL SetupDiClassGuidsFromNameExW(const wchar_t* class_name, GUID* guids, DWORD guids_size,
                                    DWORD* required_size, const wchar_t* machine,
                                    void* reserved) override;
  HDEVINFO SetupDiGetClassDevsExW(const GUID* class_guid, const wchar_t* enumerator, HWND parent,
                                  DWORD flags, HDEVINFO set, const wchar_t* machine,
                                  void* reserved) override;
  CONFIGRET CM_Locate_DevNodeW(DEVINST* device, const wchar_t* instance_id, ULONG flags) override;
  CONFIGRET CM_Reenumerate_DevNode(DEVINST device, ULONG flags) override;

 private:
  // A set is the list of device indexes it holds; its handle is a token into sets_.
  std::map<HDEVINFO, std::vector<size_t>> sets_;
  uintptr_t next_set_ = 0x5E70;

  const std::vector<size_t>* Members(HDEVINFO set) const;
  FakeDevice* DeviceOf(HDEVINFO set, const SP_DEVINFO_DATA* device);
};

}  // namespace velhal::testing
