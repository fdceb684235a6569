#include "platform/win32.h"

#include "platform/device_informention.h"

#include <array>
#include <cstring>
#include <cwchar>
#include <optional>

#include "platform/boundary.h"
#include "platform/device_property_keys.h"
#include "platform/device_property_read.h"
#include "platform/device_sets.h"
#include "platform/os/device_database.h"

namespace {

using velhal::DeviceSetForReading;
using velhal::UniqueDeviceInfoSet;
using velhal::os::device_database;
namespace keys = velhal::device_keys;

constexpr DWORD kClassFlags = DIGCF_PRESENT;
constexpr DWORD kSystemWideFlags = DIGCF_PRESENT | DIGCF_ALLCLASSES;
static_assert(kClassFlags == 2 && kSystemWideFlags == 6);
constexpr DWORD kNoFlags = 0;
constexpr DWORD kOffered = 520;      // bytes offered to most string reads (260 units)
constexpr DWORD kOfferedWide = 522;  // ... and to the system-wide walks (261 units)
constexpr uint32_t kNoMatch = 0xFFFFFFFF;
constexpr uint64_t kUnixEpochAsFileTime = 116444736000000000ULL;

// A zeroed buffer two units longer than anything offered, so text read from it always ends.
using TextBuffer = std::array<wchar_t, kOfferedWide / sizeof(wchar_t) + 1>;

enum class Match { kHardwareId = 0, kDescription = 1 };

// For the calls that change devices: a set of their own, never a batch's.
UniqueDeviceInfoSet OpenOwnSet(const GUID* class_guid, DWORD flags) {
  return UniqueDeviceInfoSet(
      device_database().SetupDiGetClassDevsW(class_guid, nullptr, nullptr, flags));
}

bool EnumDevice(HDEVINFO set, DWORD index, SP_DEVINFO_DATA& device) {
  device = {};
  device.cbSize = sizeof(SP_DEVINFO_DATA);
  return device_database().SetupDiEnumDeviceInfo(set, index, &device) != FALSE;
}

// Visits the set's devices from index 0 until the enumeration ends or visit returns true.
template <class Visit>
void ForEachDevice(HDEVINFO set, Visit&& visit) {
  SP_DEVINFO_DATA device;
  for (DWORD index = 0; EnumDevice(set, index, device); ++index) {
    if (visit(device)) return;
  }
}

// Reads a property into the zeroed buffer; true on success.
bool ReadInto(HDEVINFO set, SP_DEVINFO_DATA& device, const DEVPROPKEY& key, TextBuffer& buffer,
              DWORD offered, DEVPROPTYPE* type = nullptr, DWORD* size = nullptr) {
  buffer.fill(L'\0');
  DEVPROPTYPE read_type = DEVPROP_TYPE_EMPTY;
  DWORD required = 0;
  const BOOL ok = device_database().SetupDiGetDevicePropertyW(
      set, &device, &key, &read_type, reinterpret_cast<BYTE*>(buffer.data()), offered, &required,
      kNoFlags);
  if (type != nullptr) *type = read_type;
  if (size != nullptr) *size = required;
  return ok != FALSE;
}

// The text of a string property up to its first NUL (of a list, its first string), or nullopt.
std::optional<std::wstring> ReadFirstString(HDEVINFO set, SP_DEVINFO_DATA& device,
                                            const DEVPROPKEY& key, DWORD offered = kOffered) {
  TextBuffer buffer;
  if (!ReadInto(set, device, key, buffer, offered)) return std::nullopt;
  return std::wstring(buffer.data());
}

// The first device whose first hardware ID (or description) equals key exactly; devices whose
// read fails are passed over.
std::optional<SP_DEVINFO_DATA> FindDevice(HDEVINFO set, const std::wstring& key, Match mode,
                                          TextBuffer* value = nullptr) {
  const DEVPROPKEY& property =
      mode == Match::kHardwareId ? keys::kHardwareIds : keys::kDeviceDesc;
  std::optional<SP_DEVINFO_DATA> found;
  TextBuffer buffer;
  ForEachDevice(set, [&](SP_DEVINFO_DATA& device) {
    if (!ReadInto(set, device, property, buffer, kOffered)) return false;
    if (key != buffer.data()) return false;
    found = device;
    if (value != nullptr) *value = buffer;
    return true;
  });
  return found;
}

const GUID* GuidOrNull(const GUID& guid, bool omit) { return omit ? nullptr : &guid; }

std::wstring StringProperty(const std::wstring& key, Match mode, const GUID* class_guid,
                            uint32_t property) {
  const std::optional<DEVPROPKEY> wanted = keys::ForProperty(property);
  if (!wanted) return {};
  const DeviceSetForReading set(class_guid, kSystemWideFlags);
  if (!set.IsValid()) return {};
  std::optional<SP_DEVINFO_DATA> device = FindDevice(set.Get(), key, mode);
  if (!device) return {};
  const std::optional<velhal::DevicePropertyValue> value =
      velhal::ReadDeviceProperty(set.Get(), *device, *wanted);
  if (!value || !velhal::IsStringProperty(value->type)) return {};
  return std::wstring(value->units.data());
}

uint32_t NumberProperty(const std::wstring& key, Match mode, const GUID* class_guid,
                        uint32_t property) {
  const std::optional<DEVPROPKEY> wanted = keys::ForProperty(property);
  if (!wanted) return 0;
  const DeviceSetForReading set(class_guid, kSystemWideFlags);
  if (!set.IsValid()) return 0;
  std::optional<SP_DEVINFO_DATA> device = FindDevice(set.Get(), key, mode);
  if (!device) return 0;
  const std::optional<velhal::DevicePropertyValue> value =
      velhal::ReadDeviceProperty(set.Get(), *device, *wanted);
  if (!value || value->type != DEVPROP_TYPE_UINT32 || value->size < sizeof(uint32_t)) return 0;
  uint32_t number = 0;
  std::memcpy(&number, value->units.data(), sizeof(number));
  return number;
}

// Appends each string of a class's devices' property, one entry per device, read or not.
std::vector<std::wstring> ClassList(const GUID& class_guid, const DEVPROPKEY& key) {
  std::vector<std::wstring> list;
  const DeviceSetForReading set(&class_guid, kClassFlags);
  if (!set.IsValid()) return list;
  TextBuffer buffer;
  ForEachDevice(set.Get(), [&](SP_DEVINFO_DATA& device) {
    ReadInto(set.Get(), device, key, buffer, kOffered);  // a failed read leaves it empty
    list.emplace_back(buffer.data());
    return false;
  });
  return list;
}

}  // namespace

std::vector<std::wstring> DeviceInformention::GetDeviceHardwareId(GUID classGuid) {
  return velhal::CallGuarded(std::vector<std::wstring>{},
                             [&] { return ClassList(classGuid, keys::kHardwareIds); });
}

std::vector<std::wstring> DeviceInformention::GetDeviceDesc(GUID classGuid) {
  return velhal::CallGuarded(std::vector<std::wstring>{},
                             [&] { return ClassList(classGuid, keys::kDeviceDesc); });
}

std::vector<std::wstring> DeviceInformention::GetDeviceHardwareIDList(
    GUID classGuid, const std::wstring& hardwareId) {
  return velhal::CallGuarded(std::vector<std::wstring>{}, [&] {
    std::vector<std::wstring> list;
    const DeviceSetForReading set(&classGuid, kClassFlags);
    if (!set.IsValid()) return list;
    TextBuffer ids;
    if (!FindDevice(set.Get(), hardwareId, Match::kHardwareId, &ids)) return list;
    constexpr size_t kUnits = kOffered / sizeof(wchar_t);  // 260
    list.emplace_back(ids.data());
    size_t next = list.back().size() + 1;
    if (list.back().size() >= kUnits) return list;
    while (next < kUnits && ids[next] != L'\0') {
      list.emplace_back(&ids[next]);
      next += list.back().size() + 1;
    }
    return list;
  });
}

std::wstring DeviceInformention::GetDeviceStrInfoByHardwareId(const std::wstring& hardwareId,
                                                              GUID classGuid,
                                                              EnumDeviceProperty property) {
  return velhal::CallGuarded(std::wstring{}, [&]() -> std::wstring {
    if (hardwareId.empty()) return {};
    if (property == DeviceProperty_HardwareIds) return hardwareId;
    return StringProperty(hardwareId, Match::kHardwareId, &classGuid, property);
  });
}

std::wstring DeviceInformention::GetDeviceStrInfoByHardwareIdEx(const std::wstring& hardwareId,
                                                                GUID classGuid,
                                                                EnumDeviceProperty property,
                                                                bool omitClassGuid) {
  return velhal::CallGuarded(std::wstring{}, [&]() -> std::wstring {
    if (property == DeviceProperty_HardwareIds) return hardwareId;
    return StringProperty(hardwareId, Match::kHardwareId, GuidOrNull(classGuid, omitClassGuid),
                          property);
  });
}

uint32_t DeviceInformention::GetDeviceULONGInfoByHardwareId(const std::wstring& hardwareId,
                                                            GUID classGuid,
                                                            EnumDeviceProperty property) {
  return velhal::CallGuarded(0u, [&] {
    return NumberProperty(hardwareId, Match::kHardwareId, &classGuid, property);
  });
}

uint32_t DeviceInformention::GetDeviceULONGInfoByHardwareIdEx(const std::wstring& hardwareId,
                                                              GUID classGuid,
                                                              EnumDeviceProperty property,
                                                              bool omitClassGuid) {
  return velhal::CallGuarded(0u, [&] {
    return NumberProperty(hardwareId, Match::kHardwareId, GuidOrNull(classGuid, omitClassGuid),
                          property);
  });
}

std::wstring DeviceInformention::GetDeviceStrInfoByDesc(const std::wstring& description,
                                                        GUID classGuid,
                                                        EnumDeviceProperty property) {
  return velhal::CallGuarded(std::wstring{}, [&]() -> std::wstring {
    if (property == DeviceProperty_DeviceDesc) return description;
    return StringProperty(description, Match::kDescription, &classGuid, property);
  });
}

std::wstring DeviceInformention::GetDeviceStrInfoByDescEx(const std::wstring& description,
                                                          GUID classGuid,
                                                          EnumDeviceProperty property,
                                                          bool omitClassGuid) {
  return velhal::CallGuarded(std::wstring{}, [&]() -> std::wstring {
    if (property == DeviceProperty_DeviceDesc) return description;
    return StringProperty(description, Match::kDescription, GuidOrNull(classGuid, omitClassGuid),
                          property);
  });
}

uint32_t DeviceInformention::GetDeviceULONGInfoByDesc(const std::wstring& description,
                                                      GUID classGuid,
                                                      EnumDeviceProperty property) {
  return velhal::CallGuarded(0u, [&] {
    return NumberProperty(description, Match::kDescription, &classGuid, property);
  });
}

uint32_t DeviceInformention::GetDeviceULONGInfoByDescEx(const std::wstring& description,
                                                        GUID classGuid,
                                                        EnumDeviceProperty property,
                                                        bool omitClassGuid) {
  return velhal::CallGuarded(0u, [&] {
    return NumberProperty(description, Match::kDescription, GuidOrNull(classGuid, omitClassGuid),
                          property);
  });
}

void DeviceInformention::GetDevicePropertyByhardId(GUID classGuid, const std::wstring& hardwareId,
                                                   EnumDeviceProperty property,
                                                   std::vector<std::wstring>& values) {
  velhal::CallGuarded(false, [&] {
    const std::optional<DEVPROPKEY> wanted = keys::ForProperty(property);
    if (!wanted) return false;
    const DeviceSetForReading set(&classGuid, kSystemWideFlags);
    if (!set.IsValid()) return false;
    std::optional<SP_DEVINFO_DATA> device = FindDevice(set.Get(), hardwareId, Match::kHardwareId);
    if (!device) return false;
    const std::optional<velhal::DevicePropertyValue> value =
        velhal::ReadDeviceProperty(set.Get(), *device, *wanted);
    if (!value || !velhal::IsStringProperty(value->type) || value->size < sizeof(wchar_t))
      return false;
    const size_t end = value->size / sizeof(wchar_t);
    for (size_t at = 0; at < end;) {
      const wchar_t* text = &value->units[at];
      const size_t length = std::wcslen(text);  // the zeroed tail bounds it
      if (length > 0) values.emplace_back(text, length);
      at += length + 1;
    }
    return true;
  });
}

uint64_t DeviceInformention::GetLastIntallTime(const std::wstring& hardwareId, GUID classGuid) {
  return velhal::CallGuarded(uint64_t{0}, [&]() -> uint64_t {
    const DeviceSetForReading set(&classGuid, kClassFlags);
    if (!set.IsValid()) return 0;
    std::optional<SP_DEVINFO_DATA> device = FindDevice(set.Get(), hardwareId, Match::kHardwareId);
    if (!device) return 0;
    TextBuffer buffer;
    DWORD size = 0;
    if (!ReadInto(set.Get(), *device, keys::kFirstInstallDate, buffer, kOffered, nullptr, &size) ||
        size > sizeof(uint64_t)) {
      return 0;
    }
    uint64_t file_time = 0;
    std::memcpy(&file_time, buffer.data(), sizeof(file_time));
    // Unsigned on purpose: a date before 1970 wraps, as callers have always seen it.
    return (file_time - kUnixEpochAsFileTime) / 10000;
  });
}

void DeviceInformention::GetAllDeviceHardwareId(std::vector<std::wstring>& hardwareIds) {
  GetAllDeviceHardwareIdEx(hardwareIds, L"PCI");
}

void DeviceInformention::GetAllDeviceHardwareIdEx(std::vector<std::wstring>& hardwareIds,
                                                  const std::wstring& prefix) {
  velhal::CallGuarded(false, [&] {
    hardwareIds.clear();
    const DeviceSetForReading set(nullptr, kSystemWideFlags);
    if (!set.IsValid()) return false;
    ForEachDevice(set.Get(), [&](SP_DEVINFO_DATA& device) {
      std::optional<std::wstring> id =
          ReadFirstString(set.Get(), device, keys::kHardwareIds, kOfferedWide);
      if (id && id->compare(0, prefix.size(), prefix) == 0) hardwareIds.push_back(std::move(*id));
      return false;
    });
    return true;
  });
}

std::vector<std::wstring> DeviceInformention::GetUnknownDeviceHardId() {
  return velhal::CallGuarded(std::vector<std::wstring>{}, [&] {
    std::vector<std::wstring> unknown;
    const DeviceSetForReading set(nullptr, kSystemWideFlags);
    if (!set.IsValid()) return unknown;
    // The enumeration's result is looked at only after the record was examined, so the last
    // device is examined once more at the end: callers tolerate the duplicate this can give.
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof(SP_DEVINFO_DATA);
    for (DWORD index = 0;; ++index) {
      const bool more =
          device_database().SetupDiEnumDeviceInfo(set.Get(), index, &device) != FALSE;
      std::array<BYTE, sizeof(GUID)> class_guid{};
      DEVPROPTYPE type = DEVPROP_TYPE_EMPTY;
      DWORD required = 0;
      const BOOL has_class = device_database().SetupDiGetDevicePropertyW(
          set.Get(), &device, &keys::kClass, &type, class_guid.data(), sizeof(class_guid),
          &required, kNoFlags);
      if (!has_class && ::GetLastError() == ERROR_NOT_FOUND) {
        TextBuffer id;
        ReadInto(set.Get(), device, keys::kHardwareIds, id, kOfferedWide);
        unknown.emplace_back(id.data());
      }
      if (!more) break;
    }
    return unknown;
  });
}

void DeviceInformention::GetSoftComponentItems(std::vector<std::wstring>& hardwareIds,
                                               const std::wstring& fragment) {
  velhal::CallGuarded(false, [&] {
    const DeviceSetForReading set(nullptr, kSystemWideFlags);
    if (!set.IsValid()) return false;
    ForEachDevice(set.Get(), [&](SP_DEVINFO_DATA& device) {
      const std::optional<std::wstring> parent =
          ReadFirstString(set.Get(), device, keys::kParent, kOfferedWide);
      // A substring test like StrStrW's: an empty fragment occurs nowhere.
      if (!parent || fragment.empty() || parent->find(fragment) == std::wstring::npos) {
        return false;
      }
      if (std::optional<std::wstring> id =
              ReadFirstString(set.Get(), device, keys::kHardwareIds, kOfferedWide)) {
        hardwareIds.push_back(std::move(*id));
      }
      return false;
    });
    return true;
  });
}

std::vector<HardWareIdInfo> DeviceInformention::GetInternalDeviceHardwareId(GUID classGuid) {
  return velhal::CallGuarded(std::vector<HardWareIdInfo>{}, [&] {
    std::vector<HardWareIdInfo> devices;
    const DeviceSetForReading set(&classGuid, kClassFlags);
    if (!set.IsValid()) return devices;
    ForEachDevice(set.Get(), [&](SP_DEVINFO_DATA& device) {
      std::optional<std::wstring> id = ReadFirstString(set.Get(), device, keys::kHardwareIds);
      ULONG status = 0;
      ULONG problem = 0;
      if (id && device_database().CM_Get_DevNode_Status(&status, &problem, device.DevInst,
                                                        kNoFlags) == CR_SUCCESS) {
        devices.push_back({std::move(*id), (status & DN_REMOVABLE) ? 0 : 1});
      }
      return false;
    });
    return devices;
  });
}

uint32_t DeviceInformention::UnstallDeviceByHardwareId(const std::wstring& hardwareId,
                                                       GUID classGuid) {
  return velhal::CallGuarded(kNoMatch, [&]() -> uint32_t {
    const UniqueDeviceInfoSet set = OpenOwnSet(&classGuid, kClassFlags);
    if (!set.IsValid()) return kNoMatch;
    std::optional<SP_DEVINFO_DATA> device = FindDevice(set.Get(), hardwareId, Match::kHardwareId);
    if (!device) return kNoMatch;
    velhal::ForgetKeptDeviceSets();  // the devices change from here
    if (!device_database().SetupDiRemoveDevice(set.Get(), &*device)) return ::GetLastError();
    return 0;
  });
}

uint32_t DeviceInformention::UnstallDeviceByHardwareIdEx(const std::wstring& hardwareId,
                                                         GUID classGuid) {
  return velhal::CallGuarded(kNoMatch, [&]() -> uint32_t {
    const UniqueDeviceInfoSet set = OpenOwnSet(&classGuid, kClassFlags);
    if (!set.IsValid()) return kNoMatch;
    std::optional<SP_DEVINFO_DATA> device = FindDevice(set.Get(), hardwareId, Match::kHardwareId);
    if (!device) return kNoMatch;
    auto& db = device_database();

    SP_DEVINFO_LIST_DETAIL_DATA_W detail{};
    static_assert(sizeof(detail) == 560);
    detail.cbSize = sizeof(detail);
    if (!db.SetupDiGetDeviceInfoListDetailW(set.Get(), &detail)) return ::GetLastError();

    std::array<wchar_t, 200> instance_id{};
    if (db.CM_Get_Device_ID_ExW(device->DevInst, instance_id.data(),
                                static_cast<ULONG>(instance_id.size()), kNoFlags,
                                detail.RemoteMachineHandle) != CR_SUCCESS) {
      return ::GetLastError();  // CfgMgr32 sets no last error; kept as callers know it
    }

    SP_REMOVEDEVICE_PARAMS remove{};
    static_assert(sizeof(SP_CLASSINSTALL_HEADER) == 8 && sizeof(remove) == 16);
    remove.ClassInstallHeader.cbSize = sizeof(SP_CLASSINSTALL_HEADER);
    remove.ClassInstallHeader.InstallFunction = DIF_REMOVE;
    remove.Scope = DI_REMOVEDEVICE_GLOBAL;
    remove.HwProfile = 0;
    velhal::ForgetKeptDeviceSets();  // the devices change from here
    if (!db.SetupDiSetClassInstallParamsW(set.Get(), &*device, &remove.ClassInstallHeader,
                                          sizeof(remove))) {
      return ::GetLastError();
    }
    if (!db.SetupDiCallClassInstaller(DIF_REMOVE, set.Get(), &*device)) return ::GetLastError();

    // Whether a restart is needed is not reported.
    SP_DEVINSTALL_PARAMS_W install{};
    static_assert(sizeof(install) == 584);
    install.cbSize = sizeof(install);
    db.SetupDiGetDeviceInstallParamsW(set.Get(), &*device, &install);
    return 0;
  });
}

static_assert(sizeof(SP_DEVINFO_DATA) == 32);
static_assert(sizeof(SP_DEVINFO_LIST_DETAIL_DATA_W) == 560);
static_assert(sizeof(SP_REMOVEDEVICE_PARAMS) == 16);
static_assert(sizeof(SP_DEVINSTALL_PARAMS_W) == 584);
