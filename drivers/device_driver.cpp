#include "platform/win32.h"

#include "drivers/device_driver.h"

#include <cwchar>
#include <optional>
#include <string_view>

#include "components/audio_card.h"
#include "components/biometric.h"
#include "components/bluetooth.h"
#include "components/class_driver_version.h"
#include "components/device_kinds.h"
#include "components/keyboard.h"
#include "network/network_card.h"
#include "platform/boundary.h"
#include "platform/device_classes.h"
#include "platform/device_informention.h"
#include "platform/device_sets.h"
#include "platform/diagnostics.h"
#include "platform/os/device_database.h"
#include "platform/os/timing.h"

namespace {

using velhal::CallGuarded;
namespace device_class = velhal::device_class;

constexpr unsigned long kNoMatch = 0xFFFFFFFF;
constexpr int kRescanRounds = 10;
constexpr DWORD kRescanWaitMs = 1000;  // the rescan runs in the background
constexpr char kScanWhere[] = "DeviceDriver::ScanForHardwareChange";

std::optional<GUID> SetupClassOf(DeviceDriverType type) {
  const velhal::components::DeviceKind* kind = velhal::components::FindDeviceKind(type);
  if (kind == nullptr) return std::nullopt;
  return kind->setup_class;
}

// The class a repair operation works in: never the keyboard's, the USB class only for removal.
std::optional<GUID> RepairedClass(DeviceDriverType type, bool usb_accepted) {
  if (type == DriverType_Keyboard || (type == DriverType_Usb && !usb_accepted)) {
    return std::nullopt;
  }
  return SetupClassOf(type);
}

bool EnumDevice(HDEVINFO set, DWORD index, SP_DEVINFO_DATA& device) {
  device = {};
  device.cbSize = sizeof(SP_DEVINFO_DATA);
  return velhal::os::device_database().SetupDiEnumDeviceInfo(set, index, &device) != FALSE;
}

// Compares each entry of a hardware-ID multi-string with id. Each step goes one character past
// the terminator, so every entry after the first is compared from its second character: in
// effect only the first ID matches as written, as callers have always seen it.
bool ListHolds(const wchar_t* units, size_t count, const std::wstring& id) {
  for (size_t at = 0; at < count && units[at] != L'\0';) {
    const size_t length = ::wcsnlen(units + at, count - at);
    if (std::wstring_view(units + at, length) == id) return true;
    at += length + 2;
  }
  return false;
}

enum class Walk { kMatched, kOther, kFailed };

// Reads the device's hardware IDs (SPDRP_HARDWAREID) and compares them with id.
Walk MatchHardwareIds(HDEVINFO set, SP_DEVINFO_DATA& device, const std::wstring& id) {
  auto& db = velhal::os::device_database();
  DWORD type = 0;
  DWORD size = 0;
  if (db.SetupDiGetDeviceRegistryPropertyW(set, &device, SPDRP_HARDWAREID, &type, nullptr, 0,
                                           &size) ||
      ::GetLastError() == ERROR_INVALID_DATA) {  // no such property
    return Walk::kOther;
  }
  if (::GetLastError() != ERROR_INSUFFICIENT_BUFFER || size == 0) return Walk::kFailed;
  std::vector<wchar_t> ids((size + 1) / sizeof(wchar_t), L'\0');
  if (!db.SetupDiGetDeviceRegistryPropertyW(set, &device, SPDRP_HARDWAREID, &type,
                                            reinterpret_cast<BYTE*>(ids.data()), size, nullptr)) {
    return Walk::kFailed;
  }
  return ListHolds(ids.data(), size / sizeof(wchar_t), id) ? Walk::kMatched : Walk::kOther;
}

std::optional<SP_DEVINFO_DATA> FindByHardwareIds(HDEVINFO set, const std::wstring& id) {
  SP_DEVINFO_DATA device;
  for (DWORD index = 0; EnumDevice(set, index, device); ++index) {
    switch (MatchHardwareIds(set, device, id)) {
      case Walk::kMatched: return device;
      case Walk::kFailed: return std::nullopt;
      case Walk::kOther: break;
    }
  }
  return std::nullopt;
}

}  // namespace

unsigned long DeviceDriver::ResetDeviceDriver(const std::wstring& hardwareId,
                                              DeviceDriverType type) {
  return CallGuarded(kNoMatch, [&]() -> unsigned long {
    const std::optional<GUID> setup_class = RepairedClass(type, false);
    if (!setup_class) return kNoMatch;
    const uint32_t removed =
        DeviceInformention().UnstallDeviceByHardwareId(hardwareId, *setup_class);
    if (removed != 0) return removed;
    for (int round = 0; round < kRescanRounds; ++round) {
      ScanForHardwareChange();
      velhal::os::timing().Sleep(kRescanWaitMs);
      if (GetDeviceDriverErrorCode(hardwareId, type) == 0) return 0;
    }
    return kNoMatch;
  });
}

unsigned long DeviceDriver::UnInstallDeviceDriver(const std::wstring& hardwareId,
                                                  DeviceDriverType type) {
  return CallGuarded(kNoMatch, [&]() -> unsigned long {
    const std::optional<GUID> setup_class = RepairedClass(type, true);
    if (!setup_class) return kNoMatch;
    return DeviceInformention().UnstallDeviceByHardwareId(hardwareId, *setup_class);
  });
}

unsigned long DeviceDriver::GetDeviceDriverErrorCode(const std::wstring& hardwareId,
                                                     DeviceDriverType type) {
  return CallGuarded(kNoMatch, [&]() -> unsigned long {
    const std::optional<GUID> setup_class = RepairedClass(type, false);
    if (!setup_class) return kNoMatch;
    // The class is passed along but does not narrow the search.
    return DeviceInformention().GetDeviceULONGInfoByHardwareId(hardwareId, *setup_class,
                                                               DeviceProperty_ProblemCode);
  });
}

void DeviceDriver::ScanForHardwareChange() {
  CallGuarded(false, [] {
    auto& db = velhal::os::device_database();
    DEVINST root = 0;
    const CONFIGRET located = db.CM_Locate_DevNodeW(&root, nullptr, CM_LOCATE_DEVNODE_NORMAL);
    if (located != CR_SUCCESS) {
      velhal::WriteDiagnostic(L"CM_Locate_DevNode failed and error code is :", located, kScanWhere);
      return false;
    }
    velhal::ForgetKeptDeviceSets();  // the devices change from here
    const CONFIGRET rescanned = db.CM_Reenumerate_DevNode(root, CM_REENUMERATE_ASYNCHRONOUS);
    if (rescanned != CR_SUCCESS) {
      velhal::WriteDiagnostic(L"CM_Reenumerate_DevNode failed and error code is :", rescanned,
                              kScanWhere);
    }
    return rescanned == CR_SUCCESS;
  });
}

bool DeviceDriver::SetDriverStatus(bool enable, const std::wstring& hardwareId) {
  return CallGuarded(false, [&] {
    auto& db = velhal::os::device_database();
    const velhal::UniqueDeviceInfoSet set(
        db.SetupDiGetClassDevsW(nullptr, nullptr, nullptr, DIGCF_PRESENT | DIGCF_ALLCLASSES));
    if (!set.IsValid()) return false;
    std::optional<SP_DEVINFO_DATA> device = FindByHardwareIds(set.Get(), hardwareId);
    if (!device) return false;
    SP_PROPCHANGE_PARAMS change{};
    change.ClassInstallHeader.cbSize = sizeof(SP_CLASSINSTALL_HEADER);  // 8
    change.ClassInstallHeader.InstallFunction = DIF_PROPERTYCHANGE;
    change.StateChange = enable ? DICS_ENABLE : DICS_DISABLE;
    change.Scope = DICS_FLAG_GLOBAL;
    change.HwProfile = 0;
    velhal::ForgetKeptDeviceSets();  // the devices change from here
    return db.SetupDiSetClassInstallParamsW(set.Get(), &*device, &change.ClassInstallHeader,
                                            sizeof(change)) &&
           db.SetupDiCallClassInstaller(DIF_PROPERTYCHANGE, set.Get(), &*device);
  });
}

std::vector<std::wstring> DeviceDriver::GetUnkownHardId() {
  return DeviceInformention().GetUnknownDeviceHardId();
}

std::wstring GetDeviceDriverVersion(DeviceDriverType type) {
  return CallGuarded(std::wstring{}, [&]() -> std::wstring {
    switch (type) {
      case DriverType_WirelessNetwork:
        return NetworkCard().GetDriverVersion(NetworkCardType_Wireless);
      case DriverType_Bluetooth: return Bluetooth().GetDriverVersion();
      case DriverType_Biometric: return Biometric().GetDriverVersion();
      case DriverType_Audio: return AudioCard().GetDriverVersion();
      case DriverType_Keyboard: return Keyboard().GetDriverVersion();
      case DriverType_DisplayAdapter:
        return velhal::components::DriverVersionOfFirstWith(
            device_class::kDisplay,
            velhal::components::FindDeviceKind(DriverType_DisplayAdapter)->Prefixes());
      case DriverType_Usb: break;
    }
    return {};
  });
}

static_assert(sizeof(SP_PROPCHANGE_PARAMS) == 20);
