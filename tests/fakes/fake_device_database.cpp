#include "tests/fakes/fake_device_database.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "platform/device_informention.h"
#include "platform/device_property_keys.h"
#include "tests/fakes/fake_common.h"

namespace velhal::testing {
namespace {

bool SameKey(const DEVPROPKEY& a, const DEVPROPKEY& b) {
  return a.pid == b.pid && IsEqualGUID(a.fmtid, b.fmtid);
}

std::vector<BYTE> Utf16(const std::vector<std::wstring>& texts, bool list) {
  std::vector<BYTE> bytes;
  for (const std::wstring& text : texts) {
    const auto* data = reinterpret_cast<const BYTE*>(text.c_str());
    bytes.insert(bytes.end(), data, data + (text.size() + 1) * sizeof(wchar_t));
  }
  if (list) bytes.insert(bytes.end(), {0, 0});
  return bytes;
}

}  // namespace

FakeDevice& FakeDevice::Set(const DEVPROPKEY& key, DEVPROPTYPE type, std::vector<BYTE> bytes) {
  for (auto& [k, property] : properties) {
    if (SameKey(k, key)) {
      property = {type, std::move(bytes)};
      return *this;
    }
  }
  properties.emplace_back(key, Property{type, std::move(bytes)});
  return *this;
}

FakeDevice& FakeDevice::String(const DEVPROPKEY& key, const std::wstring& text) {
  return Set(key, DEVPROP_TYPE_STRING, Utf16({text}, false));
}

FakeDevice& FakeDevice::StringList(const DEVPROPKEY& key, const std::vector<std::wstring>& texts) {
  return Set(key, DEVPROP_TYPE_STRING_LIST, Utf16(texts, true));
}

FakeDevice& FakeDevice::HardwareIds(const std::vector<std::wstring>& ids) {
  return StringList(device_keys::kHardwareIds, ids);
}

FakeDevice& FakeDevice::Description(const std::wstring& text) {
  return String(device_keys::kDeviceDesc, text);
}

FakeDevice& FakeDevice::UInt32(const DEVPROPKEY& key, uint32_t value) {
  std::vector<BYTE> bytes(sizeof(value));
  std::memcpy(bytes.data(), &value, sizeof(value));
  return Set(key, DEVPROP_TYPE_UINT32, std::move(bytes));
}

const FakeDevice::Property* FakeDevice::Find(const DEVPROPKEY& key) const {
  for (const auto& [k, property] : properties) {
    if (SameKey(k, key)) return &property;
  }
  return nullptr;
}

FakeDevice& FakeDeviceDatabase::Add(const GUID& class_guid) {
  devices.emplace_back();
  devices.back().class_guid = class_guid;
  devices.back().instance_id = L"FAKE\\DEVICE\\" + std::to_wstring(devices.size() - 1);
  return devices.back();
}

const std::vector<size_t>* FakeDeviceDatabase::Members(HDEVINFO set) const {
  const auto found = sets_.find(set);
  return found == sets_.end() ? nullptr : &found->second;
}

// A record belongs to a set when the set handed it out: DevInst is the device index + 1 and
// Reserved names the set, as SetupAPI keeps its own pointer there.
FakeDevice* FakeDeviceDatabase::DeviceOf(HDEVINFO set, const SP_DEVINFO_DATA* device) {
  const std::vector<size_t>* members = Members(set);
  if (members == nullptr || device == nullptr || device->cbSize != sizeof(SP_DEVINFO_DATA) ||
      device->Reserved != reinterpret_cast<ULONG_PTR>(set) || device->DevInst == 0) {
    return nullptr;
  }
  const size_t index = device->DevInst - 1;
  if (std::find(members->begin(), members->end(), index) == members->end()) return nullptr;
  return &devices[index];
}

HDEVINFO FakeDeviceDatabase::SetupDiGetClassDevsW(const GUID* class_guid, const wchar_t*, HWND,
                                                  DWORD flags) {
  opens.push_back({class_guid ? std::optional<GUID>(*class_guid) : std::nullopt, flags});
  const bool all_classes = (flags & DIGCF_ALLCLASSES) != 0;
  if (!all_classes && class_guid == nullptr) {
    ::SetLastError(ERROR_INVALID_PARAMETER);
    return INVALID_HANDLE_VALUE;
  }
  // With DIGCF_DEVICEINTERFACE the GUID names an interface class, not a setup class.
  const bool by_interface = (flags & DIGCF_DEVICEINTERFACE) != 0;
  std::vector<size_t> members;
  for (size_t i = 0; i < devices.size(); ++i) {
    if ((flags & DIGCF_PRESENT) && !devices[i].present) continue;
    if (!all_classes) {
      const bool matches =
          by_interface ? std::any_of(devices[i].interfaces.begin(), devices[i].interfaces.end(),
                                     [&](const auto& i2) { return IsEqualGUID(i2.first, *class_guid); })
                       : IsEqualGUID(devices[i].class_guid, *class_guid);
      if (!matches) continue;
    }
    members.push_back(i);
  }
  const HDEVINFO set = reinterpret_cast<HDEVINFO>(next_set_);
  next_set_ += 0x10;
  sets_[set] = std::move(members);
  ++open_sets;
  return set;
}

BOOL FakeDeviceDatabase::SetupDiEnumDeviceInfo(HDEVINFO set, DWORD index,
                                               SP_DEVINFO_DATA* device) {
  const std::vector<size_t>* members = Members(set);
  if (members == nullptr) return Fail(ERROR_INVALID_HANDLE);
  if (device == nullptr || device->cbSize != sizeof(SP_DEVINFO_DATA)) {
    return Fail(ERROR_INVALID_USER_BUFFER);
  }
  if (index >= members->size()) return Fail(ERROR_NO_MORE_ITEMS);
  const size_t which = (*members)[index];
  device->ClassGuid = devices[which].class_guid;
  device->DevInst = static_cast<DWORD>(which + 1);
  device->Reserved = reinterpret_cast<ULONG_PTR>(set);
  return TRUE;
}

BOOL FakeDeviceDatabase::SetupDiGetDevicePropertyW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                                   const DEVPROPKEY* key, DEVPROPTYPE* type,
                                                   BYTE* buffer, DWORD buffer_size,
                                                   DWORD* required_size, DWORD flags) {
  if (Members(set) == nullptr) return Fail(ERROR_INVALID_HANDLE);
  const FakeDevice* owner = DeviceOf(set, device);
  if (owner == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  if (flags != 0) return Fail(ERROR_INVALID_FLAGS);
  if (key == nullptr || type == nullptr || (buffer == nullptr && buffer_size != 0)) {
    return Fail(ERROR_INVALID_USER_BUFFER);
  }
  const FakeDevice::Property* property = owner->Find(*key);
  if (property == nullptr) return Fail(ERROR_NOT_FOUND);
  const DWORD needed = static_cast<DWORD>(property->bytes.size());
  *type = property->type;
  if (required_size != nullptr) *required_size = needed;
  if (buffer_size < needed) return Fail(ERROR_INSUFFICIENT_BUFFER);
  std::copy(property->bytes.begin(), property->bytes.end(), buffer);
  return TRUE;
}

BOOL FakeDeviceDatabase::SetupDiDestroyDeviceInfoList(HDEVINFO set) {
  if (sets_.erase(set) == 0) {
    ++bad_destroys;
    return Fail(ERROR_INVALID_HANDLE);
  }
  --open_sets;
  return TRUE;
}

BOOL FakeDeviceDatabase::SetupDiGetDeviceRegistryPropertyW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                                           DWORD property, DWORD* type,
                                                           BYTE* buffer, DWORD buffer_size,
                                                           DWORD* required_size) {
  if (Members(set) == nullptr) return Fail(ERROR_INVALID_HANDLE);
  const FakeDevice* owner = DeviceOf(set, device);
  if (owner == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  if (buffer == nullptr && buffer_size != 0) return Fail(ERROR_INVALID_USER_BUFFER);
  if (owner->registry_read_error != 0) return Fail(owner->registry_read_error);
  const FakeDevice::Property* ids = owner->Find(device_keys::kHardwareIds);
  if (property != SPDRP_HARDWAREID || ids == nullptr) return Fail(ERROR_INVALID_DATA);
  const DWORD needed = static_cast<DWORD>(ids->bytes.size());
  if (type != nullptr) *type = REG_MULTI_SZ;
  if (required_size != nullptr) *required_size = needed;
  if (buffer_size < needed) return Fail(ERROR_INSUFFICIENT_BUFFER);
  std::copy(ids->bytes.begin(), ids->bytes.end(), buffer);
  return TRUE;
}

// Interfaces are addressed by Reserved = (device index << 16 | interface index) + 1.
BOOL FakeDeviceDatabase::SetupDiEnumDeviceInterfaces(HDEVINFO set, SP_DEVINFO_DATA* device,
                                                     const GUID* interface_class, DWORD index,
                                                     SP_DEVICE_INTERFACE_DATA* interface_data) {
  const std::vector<size_t>* members = Members(set);
  if (members == nullptr) return Fail(ERROR_INVALID_HANDLE);
  if (interface_class == nullptr || interface_data == nullptr ||
      interface_data->cbSize != sizeof(SP_DEVICE_INTERFACE_DATA)) {
    return Fail(ERROR_INVALID_USER_BUFFER);
  }
  DWORD seen = 0;
  for (size_t d : *members) {
    if (device != nullptr && device->DevInst != d + 1) continue;
    for (size_t i = 0; i < devices[d].interfaces.size(); ++i) {
      if (!IsEqualGUID(devices[d].interfaces[i].first, *interface_class)) continue;
      if (seen++ != index) continue;
      interface_data->InterfaceClassGuid = *interface_class;
      interface_data->Flags = SPINT_ACTIVE;
      interface_data->Reserved = ((d << 16) | i) + 1;
      return TRUE;
    }
  }
  return Fail(ERROR_NO_MORE_ITEMS);
}

BOOL FakeDeviceDatabase::SetupDiGetDeviceInterfaceDetailW(
    HDEVINFO set, SP_DEVICE_INTERFACE_DATA* interface_data,
    SP_DEVICE_INTERFACE_DETAIL_DATA_W* detail, DWORD detail_size, DWORD* required_size,
    SP_DEVINFO_DATA*) {
  if (Members(set) == nullptr) return Fail(ERROR_INVALID_HANDLE);
  if (interface_data == nullptr || interface_data->Reserved == 0) return Fail(ERROR_INVALID_PARAMETER);
  const size_t code = interface_data->Reserved - 1;
  const size_t d = code >> 16, i = code & 0xFFFF;
  if (d >= devices.size() || i >= devices[d].interfaces.size()) return Fail(ERROR_INVALID_PARAMETER);
  const std::wstring& path = devices[d].interfaces[i].second;
  const DWORD needed = static_cast<DWORD>(offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_W, DevicePath) +
                                          (path.size() + 1) * sizeof(wchar_t));
  if (required_size != nullptr) *required_size = needed;
  if (detail == nullptr) {
    return Fail(detail_size == 0 ? ERROR_INSUFFICIENT_BUFFER : ERROR_INVALID_USER_BUFFER);
  }
  if (detail->cbSize != sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W)) {
    return Fail(ERROR_INVALID_USER_BUFFER);
  }
  if (detail_size < needed) return Fail(ERROR_INSUFFICIENT_BUFFER);
  std::copy(path.begin(), path.end(), detail->DevicePath);
  detail->DevicePath[path.size()] = L'\0';
  return TRUE;
}

BOOL FakeDeviceDatabase::SetupDiRemoveDevice(HDEVINFO set, SP_DEVINFO_DATA* device) {
  FakeDevice* target = DeviceOf(set, device);
  if (target == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  if (target->remove_error != 0) return Fail(target->remove_error);
  target->present = false;
  removed.push_back(device->DevInst - 1);
  return TRUE;
}

BOOL FakeDeviceDatabase::SetupDiGetDeviceInfoListDetailW(HDEVINFO set,
                                                         SP_DEVINFO_LIST_DETAIL_DATA_W* detail) {
  if (Members(set) == nullptr) return Fail(ERROR_INVALID_HANDLE);
  if (detail == nullptr || detail->cbSize != sizeof(SP_DEVINFO_LIST_DETAIL_DATA_W)) {
    return Fail(ERROR_INVALID_USER_BUFFER);
  }
  if (fail_list_detail) return Fail(ERROR_ACCESS_DENIED);
  detail->RemoteMachineHandle = nullptr;
  return TRUE;
}

BOOL FakeDeviceDatabase::SetupDiSetClassInstallParamsW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                                       SP_CLASSINSTALL_HEADER* params,
                                                       DWORD size) {
  if (DeviceOf(set, device) == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  if (params == nullptr || params->cbSize != sizeof(SP_CLASSINSTALL_HEADER)) {
    return Fail(ERROR_INVALID_USER_BUFFER);
  }
  if (params->InstallFunction == DIF_REMOVE && size == sizeof(SP_REMOVEDEVICE_PARAMS)) {
    install_params.push_back(*reinterpret_cast<const SP_REMOVEDEVICE_PARAMS*>(params));
    return TRUE;
  }
  if (params->InstallFunction == DIF_PROPERTYCHANGE && size == sizeof(SP_PROPCHANGE_PARAMS)) {
    change_params.push_back(*reinterpret_cast<const SP_PROPCHANGE_PARAMS*>(params));
    return TRUE;
  }
  return Fail(ERROR_INVALID_USER_BUFFER);
}

BOOL FakeDeviceDatabase::SetupDiCallClassInstaller(DI_FUNCTION function, HDEVINFO set,
                                                   SP_DEVINFO_DATA* device) {
  FakeDevice* target = DeviceOf(set, device);
  if (target == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  if (function == DIF_PROPERTYCHANGE && !change_params.empty()) {
    if (target->change_error != 0) return Fail(target->change_error);
    target->state_change = change_params.back().StateChange;
    return TRUE;
  }
  if (function != DIF_REMOVE || install_params.empty()) return Fail(ERROR_DI_DO_DEFAULT);
  if (target->remove_error != 0) return Fail(target->remove_error);
  target->present = false;
  removed_by_installer.push_back(device->DevInst - 1);
  return TRUE;
}

BOOL FakeDeviceDatabase::SetupDiGetDeviceInstallParamsW(HDEVINFO set, SP_DEVINFO_DATA* device,
                                                        SP_DEVINSTALL_PARAMS_W* params) {
  if (DeviceOf(set, device) == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  if (params == nullptr || params->cbSize != sizeof(SP_DEVINSTALL_PARAMS_W)) {
    return Fail(ERROR_INVALID_USER_BUFFER);
  }
  return TRUE;
}

CONFIGRET FakeDeviceDatabase::CM_Get_DevNode_Status(ULONG* status, ULONG* problem,
                                                    DEVINST device, ULONG) {
  if (status == nullptr || problem == nullptr) return CR_INVALID_POINTER;
  if (device == 0 || device > devices.size()) return CR_INVALID_DEVNODE;
  const FakeDevice& node = devices[device - 1];
  if (node.status_result != CR_SUCCESS) return node.status_result;
  *status = node.status;
  *problem = 0;
  return CR_SUCCESS;
}

CONFIGRET FakeDeviceDatabase::CM_Get_Device_ID_ExW(DEVINST device, wchar_t* buffer, ULONG length,
                                                   ULONG, HMACHINE) {
  if (buffer == nullptr) return CR_INVALID_POINTER;
  if (device == 0 || device > devices.size()) return CR_INVALID_DEVNODE;
  if (fail_device_id) return CR_FAILURE;
  const std::wstring& id = devices[device - 1].instance_id;
  if (id.size() >= length) return CR_BUFFER_SMALL;
  std::copy(id.begin(), id.end(), buffer);
  buffer[id.size()] = L'\0';
  return CR_SUCCESS;
}

BOOL FakeDeviceDatabase::SetupDiClassGuidsFromNameExW(const wchar_t* class_name, GUID* guids,
                                                      DWORD guids_size, DWORD* required_size,
                                                      const wchar_t* machine, void*) {
  if (class_name == nullptr || required_size == nullptr || machine != nullptr) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  class_names_asked.emplace_back(class_name);
  *required_size = 0;
  for (const auto& [name, guid] : class_names) {
    if (!EqualsIgnoringCase(name, class_name)) continue;
    *required_size = 1;
    if (guids == nullptr || guids_size < 1) return Fail(ERROR_INSUFFICIENT_BUFFER);
    guids[0] = guid;
  }
  return TRUE;  // an unknown name is no error: no GUID
}

HDEVINFO FakeDeviceDatabase::SetupDiGetClassDevsExW(const GUID* class_guid,
                                                    const wchar_t* enumerator, HWND parent,
                                                    DWORD flags, HDEVINFO set,
                                                    const wchar_t* machine, void*) {
  if (set != nullptr || machine != nullptr) {
    ::SetLastError(ERROR_INVALID_PARAMETER);
    return INVALID_HANDLE_VALUE;
  }
  return SetupDiGetClassDevsW(class_guid, enumerator, parent, flags);
}

CONFIGRET FakeDeviceDatabase::CM_Locate_DevNodeW(DEVINST* device, const wchar_t* instance_id,
                                                 ULONG flags) {
  if (device == nullptr) return CR_INVALID_POINTER;
  if (instance_id != nullptr || flags != CM_LOCATE_DEVNODE_NORMAL) return CR_INVALID_DEVICE_ID;
  if (locate_result != CR_SUCCESS) return locate_result;
  *device = kRoot;
  return CR_SUCCESS;
}

CONFIGRET FakeDeviceDatabase::CM_Reenumerate_DevNode(DEVINST device, ULONG flags) {
  if (device != kRoot) return CR_INVALID_DEVNODE;
  reenumerate_flags.push_back(flags);
  if (reenumerate_result != CR_SUCCESS) return reenumerate_result;
  for (FakeDevice& node : devices) {
    const std::vector<uint32_t>& script = node.problems_after_rescan;
    if (script.empty()) continue;
    node.present = true;
    node.UInt32(device_keys::kByProperty[DeviceProperty_ProblemCode],
                script[std::min(node.rescans_seen++, script.size() - 1)]);
  }
  return CR_SUCCESS;
}

}  // namespace velhal::testing
