#include "platform/win32.h"

#include "components/bluetooth.h"

#include <winioctl.h>
#include <bthdef.h>

#include <cstdio>
#include <cwchar>
#include <optional>

#include "components/class_devices.h"
#include "components/class_driver_version.h"
#include "components/device_kinds.h"
#include "platform/boundary.h"
#include "platform/device_classes.h"
#include "platform/os/bluetooth.h"

namespace {

namespace components = velhal::components;
using velhal::device_class::kBluetooth;

// bthioctl.h's answer to IOCTL_BTH_GET_LOCAL_INFO (MinGW lacks the header): packed, around
// bthdef.h's naturally aligned BTH_DEVICE_INFO.
#pragma pack(push, 1)
struct LocalRadioInfo {
  BTH_DEVICE_INFO localInfo;
  ULONG flags;
  USHORT hciRevision;
  UCHAR hciVersion;
  struct {
    ULONGLONG lmpSupportedFeatures;
    USHORT mfg;
    USHORT lmpSubversion;
    UCHAR lmpVersion;
  } radioInfo;
};
#pragma pack(pop)
static_assert(sizeof(BTH_DEVICE_INFO) == 272 && sizeof(LocalRadioInfo) == 292);
constexpr DWORD kGetLocalInfo =
    CTL_CODE(FILE_DEVICE_BLUETOOTH, 0x00, METHOD_BUFFERED, FILE_ANY_ACCESS);

// Bluetooth core version by LMP version number, as the Bluetooth SIG assigns them.
constexpr const wchar_t* kCoreVersions[] = {L"1.0b", L"1.1", L"1.2", L"2.0", L"2.1",
                                            L"3.0",  L"4.0", L"4.1", L"4.2", L"5.0",
                                            L"5.1",  L"5.2", L"5.3", L"5.4", L"6.0"};

struct Maker {
  uint16_t id;  // Bluetooth SIG company identifier
  const wchar_t* name;
};
constexpr Maker kRadioMakers[] = {
    {0x0002, L"Intel"},    {0x0006, L"Microsoft"}, {0x000A, L"Qualcomm"}, {0x000F, L"Broadcom"},
    {0x001D, L"Qualcomm"}, {0x0046, L"MediaTek"},  {0x0048, L"Marvell"},  {0x005D, L"Realtek"},
};

velhal::UniqueRadio FindFirstRadio() {
  auto& api = velhal::os::bluetooth();
  BLUETOOTH_FIND_RADIO_PARAMS params{};
  params.dwSize = sizeof(params);
  HANDLE radio = nullptr;
  const velhal::UniqueRadioFind find(api.BluetoothFindFirstRadio(&params, &radio));
  if (!find.IsValid()) return {};
  return velhal::UniqueRadio(radio);
}

std::wstring AddressText(const BLUETOOTH_ADDRESS& address) {
  wchar_t text[18] = {};
  const BYTE* b = address.rgBytes;
  std::swprintf(text, 18, L"%02X:%02X:%02X:%02X:%02X:%02X", b[5], b[4], b[3], b[2], b[1], b[0]);
  return text;
}

const wchar_t* MakerName(uint16_t id) {
  for (const Maker& maker : kRadioMakers) {
    if (maker.id == id) return maker.name;
  }
  return L"";
}

std::wstring CoreVersion(HANDLE radio) {
  LocalRadioInfo info{};
  DWORD returned = 0;
  if (!velhal::os::bluetooth().DeviceIoControl(radio, kGetLocalInfo, nullptr, 0, &info,
                                               sizeof(info), &returned, nullptr) ||
      returned < sizeof(info)) {
    return {};
  }
  const UCHAR lmp = info.radioInfo.lmpVersion;
  return lmp < std::size(kCoreVersions) ? kCoreVersions[lmp] : L"";
}

BluetoothRadio Describe(HANDLE radio) {
  auto& api = velhal::os::bluetooth();
  BluetoothRadio answer;
  answer.present = true;
  answer.on = api.BluetoothIsConnectable(radio) != FALSE;
  BLUETOOTH_RADIO_INFO info{};
  info.dwSize = sizeof(info);
  if (api.BluetoothGetRadioInfo(radio, &info) == ERROR_SUCCESS) {
    answer.address = AddressText(info.address);
    answer.name.assign(info.szName, ::wcsnlen(info.szName, BLUETOOTH_MAX_NAME_SIZE));
    answer.manufacturer = info.manufacturer;
    answer.manufacturerName = MakerName(info.manufacturer);
    answer.subversion = info.lmpSubversion;
  }
  answer.coreVersion = CoreVersion(radio);
  return answer;
}

}  // namespace

std::wstring Bluetooth::GetDriverVersion() {
  return velhal::CallGuarded(std::wstring{}, [] {
    return components::DriverVersionOfFirstWith(
        kBluetooth, components::FindDeviceKind(DriverType_Bluetooth)->Prefixes());
  });
}

bool Bluetooth::IsPresent() {
  return velhal::CallGuarded(false, [] { return components::AnyPresentDevice(kBluetooth); });
}

std::vector<ComponentDevice> Bluetooth::GetDevices() {
  return velhal::CallGuarded(std::vector<ComponentDevice>{},
                             [] { return components::PresentDevices(kBluetooth); });
}

bool Bluetooth::IsRadioPresent() {
  return velhal::CallGuarded(false, [] { return FindFirstRadio().IsValid(); });
}

bool Bluetooth::IsRadioOn() {
  return velhal::CallGuarded(false, [] {
    const velhal::UniqueRadio radio = FindFirstRadio();
    return radio.IsValid() && velhal::os::bluetooth().BluetoothIsConnectable(radio.Get()) != FALSE;
  });
}

BluetoothRadio Bluetooth::GetRadio() {
  return velhal::CallGuarded(BluetoothRadio{}, [] {
    const velhal::UniqueRadio radio = FindFirstRadio();
    return radio.IsValid() ? Describe(radio.Get()) : BluetoothRadio{};
  });
}
