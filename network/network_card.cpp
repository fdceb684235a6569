#include "platform/win32.h"

#include "network/network_card.h"

#include <array>

#include "hal/cpu.h"
#include "hal/hal_api.h"
#include "platform/boundary.h"
#include "platform/device_classes.h"
#include "platform/device_informention.h"
#include "platform/os/registry.h"
#include "platform/text_search.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace {

using velhal::CallGuarded;
using velhal::ContainsIgnoringCase;
using velhal::device_class::kNet;

// The network setup class's driver keys: \0000, \0001, ... one per installed adapter.
constexpr wchar_t kClassRoot[] =
    L"SYSTEM\\CurrentControlSet\\Control\\Class\\{4d36e972-e325-11ce-bfc1-08002be10318}\\";
constexpr int kSearchedClassKeys = 30;    // \0000 to \0029; later instances are not searched
constexpr DWORD kComponentIdBytes = 260;  // offered; the buffer itself holds 260 units

std::wstring NetProperty(const std::wstring& hard_id, EnumDeviceProperty property) {
  return DeviceInformention().GetDeviceStrInfoByHardwareId(hard_id, kNet, property);
}

bool IsSnapdragon() {
  uint32_t type = 0;
  uint32_t returned = 0;
  return CpuQueryInformation(HAL_CPU_INFO_TYPE, &type, sizeof(type), &returned) == 1 &&
         type == HalCpuTypeSnapdragon;
}

std::wstring ClassKey(int instance) {
  return kClassRoot + std::wstring(instance < 10 ? L"000" : L"00") + std::to_wstring(instance);
}

// The class key's medium when hard_id contains the key's match_value (the component ID or the
// instance path: the needle, never the haystack).
int MediaTypeOfClassKey(const std::wstring& key, const std::wstring& hard_id,
                        const wchar_t* match_value, unsigned long& medium) {
  auto& registry = velhal::os::registry();
  velhal::UniqueRegistryKey opened;
  if (registry.RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_READ, opened.Put()) !=
      ERROR_SUCCESS) {
    opened.Reset();
    return 0;
  }
  std::array<wchar_t, 260> match{};  // zeroed: a value cut at the offered size still ends
  DWORD type = REG_SZ;
  DWORD size = kComponentIdBytes;
  if (registry.RegQueryValueExW(opened.Get(), match_value, nullptr, &type,
                                reinterpret_cast<BYTE*>(match.data()), &size) != ERROR_SUCCESS ||
      !ContainsIgnoringCase(hard_id, match.data())) {
    return 0;
  }
  type = REG_DWORD;
  size = sizeof(medium);
  return registry.RegQueryValueExW(opened.Get(), L"*PhysicalMediaType", nullptr, &type,
                                   reinterpret_cast<BYTE*>(&medium), &size) == ERROR_SUCCESS
             ? 1
             : 0;
}

// Whether the adapter's connection (as the network folder names it) looks like Wi-Fi.
bool IsWirelessConnectionName(const std::wstring& hard_id) {
  const std::wstring description = NetProperty(hard_id, DeviceProperty_DeviceDesc);
  if (description.empty()) return false;
  std::wstring connection;
  // The name goes in as it stands, quotes included: callers have always seen it so.
  WmiQueryFirstString(velhal::wmi::kCimV2,
                      L"SELECT NetConnectionID FROM Win32_NetworkAdapter WHERE NetConnectionID IS "
                      L"NOT NULL and Name='" +
                          description + L"'",
                      L"NetConnectionID", connection);
  return ContainsIgnoringCase(connection, L"Wlan") || ContainsIgnoringCase(connection, L"WiFi") ||
         ContainsIgnoringCase(connection, L"Wi-Fi");
}

// A Win32_NetworkAdapter property of the adapter that bears the device's name.
std::wstring AdapterByName(const std::wstring& hard_id, const wchar_t* select,
                           const wchar_t* property) {
  std::wstring value;
  WmiQueryFirstString(velhal::wmi::kCimV2,
                      select + NetProperty(hard_id, DeviceProperty_Name) + L"'", property, value);
  return value;
}

std::wstring FirstOf(const std::vector<std::wstring>& ids) {
  return ids.empty() ? std::wstring() : ids.front();
}

}  // namespace

std::vector<std::wstring> NetworkCard::GetInternalNetCardHardId() {
  return CallGuarded(std::vector<std::wstring>{}, [] {
    std::vector<std::wstring> ids = DeviceInformention().GetDeviceHardwareId(kNet);
    const bool pci_only = IsSnapdragon();
    std::erase_if(ids, [&](const std::wstring& id) {
      return !velhal::StartsWith(id, L"PCI") && (pci_only || !velhal::StartsWith(id, L"QCMS"));
    });
    return ids;
  });
}

int NetworkCard::GetNetworkCardNumbers() {
  return static_cast<int>(GetInternalNetCardHardId().size());
}

std::vector<std::wstring> NetworkCard::GetAllPciHardId() {
  std::vector<std::wstring> ids;
  DeviceInformention().GetAllDeviceHardwareId(ids);
  return ids;
}

namespace {

std::vector<std::wstring> CardsOfMedium(NetworkCard& cards, unsigned long wanted) {
  return CallGuarded(std::vector<std::wstring>{}, [&] {
    std::vector<std::wstring> kept;
    for (std::wstring& id : cards.GetInternalNetCardHardId()) {
      unsigned long medium = 0;
      if (cards.GetMediaTypeByHardId(id, medium) == 1 && medium == wanted) {
        kept.push_back(std::move(id));
      }
    }
    return kept;
  });
}

}  // namespace

std::vector<std::wstring> NetworkCard::GetAllWireLessHardId() {
  return CardsOfMedium(*this, PhysicalMedium_Native802_11);
}

std::vector<std::wstring> NetworkCard::GetAllWiredHardId() {
  return CardsOfMedium(*this, PhysicalMedium_802_3);
}

std::vector<std::wstring> NetworkCard::GetAllMobileHardId() {
  return CardsOfMedium(*this, PhysicalMedium_WirelessWan);
}

std::wstring NetworkCard::GetWireLessCardHardId() { return FirstOf(GetAllWireLessHardId()); }
std::wstring NetworkCard::GetWiredCardHardId() { return FirstOf(GetAllWiredHardId()); }
std::wstring NetworkCard::GetMobileCardHardId() { return FirstOf(GetAllMobileHardId()); }

std::wstring NetworkCard::GetHardIDByType(NetworkCardType type) {
  switch (type) {
    case NetworkCardType_Wireless: return GetWireLessCardHardId();
    case NetworkCardType_Wired: return GetWiredCardHardId();
    case NetworkCardType_Mobile: return GetMobileCardHardId();
  }
  return {};
}

namespace {

bool HasMedium(NetworkCard& cards, const std::wstring& hard_id, unsigned long wanted) {
  unsigned long medium = 0;
  return cards.GetMediaTypeByHardId(hard_id, medium) == 1 && medium == wanted;
}

}  // namespace

bool NetworkCard::IsWlanOrWifi(const std::wstring& hardId) {
  return HasMedium(*this, hardId, PhysicalMedium_Native802_11);
}

bool NetworkCard::IsMobileCard(const std::wstring& hardId) {
  return HasMedium(*this, hardId, PhysicalMedium_WirelessWan);
}

bool NetworkCard::IsWiredCard(const std::wstring& hardId) {
  return HasMedium(*this, hardId, PhysicalMedium_802_3);
}

bool NetworkCard::IsNotSupportWireLessCard() { return false; }

int NetworkCard::GetMediaTypeByHardId(const std::wstring& hardId, unsigned long& medium) {
  return CallGuarded(0, [&] {
    if (ContainsIgnoringCase(NetProperty(hardId, DeviceProperty_DeviceDesc), L"Wireless")) {
      medium = PhysicalMedium_Native802_11;
      return 1;
    }
    std::vector<std::wstring> stack;
    DeviceInformention().GetDevicePropertyByhardId(kNet, hardId, DeviceProperty_Stack, stack);
    for (const std::wstring& driver : stack) {
      if (ContainsIgnoringCase(driver, L"vwifibus")) {  // the virtual Wi-Fi bus driver
        medium = PhysicalMedium_Native802_11;
        return 1;
      }
    }
    for (int instance = 0; instance < kSearchedClassKeys; ++instance) {
      if (GetMediaTypeByRegedit(ClassKey(instance), hardId, medium) == 1) return 1;
    }
    medium = IsWirelessConnectionName(hardId) ? PhysicalMedium_Native802_11 : PhysicalMedium_802_3;
    return 1;
  });
}

int NetworkCard::GetMediaTypeByRegedit(const std::wstring& key, const std::wstring& hardId,
                                       unsigned long& medium) {
  return CallGuarded(0, [&] { return MediaTypeOfClassKey(key, hardId, L"ComponentId", medium); });
}

int NetworkCard::GetMediaTypeByRegeditEx(const std::wstring& key, const std::wstring& hardId,
                                         unsigned long& medium) {
  return CallGuarded(0,
                     [&] { return MediaTypeOfClassKey(key, hardId, L"DeviceInstanceID", medium); });
}

std::wstring NetworkCard::GetManufactrueByHardId(const std::wstring& hardId) {
  return NetProperty(hardId, DeviceProperty_Manufacturer);
}

std::wstring NetworkCard::GetDriverVersionByHardId(const std::wstring& hardId) {
  return NetProperty(hardId, DeviceProperty_DriverVersion);
}

std::wstring NetworkCard::GetCaptionByHardId(const std::wstring& hardId) {
  return NetProperty(hardId, DeviceProperty_DeviceDesc);
}

std::wstring NetworkCard::GetDisplayNameByHardId(const std::wstring& hardId) {
  return NetProperty(hardId, DeviceProperty_Name);
}

std::wstring NetworkCard::GetINFByHardId(const std::wstring& hardId) {
  return NetProperty(hardId, DeviceProperty_DriverInfPath);
}

std::wstring NetworkCard::GetInstanceIDByHardId(const std::wstring& hardId) {
  return NetProperty(hardId, DeviceProperty_InstanceId);
}

unsigned long NetworkCard::GetProblemCodeByHardId(const std::wstring& hardId) {
  return DeviceInformention().GetDeviceULONGInfoByHardwareId(hardId, kNet,
                                                             DeviceProperty_ProblemCode);
}

std::wstring NetworkCard::GetMacAddressByHardId(const std::wstring& hardId) {
  return CallGuarded(std::wstring{}, [&] {
    return AdapterByName(hardId,
                         L"SELECT MACAddress FROM Win32_NetworkAdapter WHERE MACAddress IS NOT "
                         L"NULL and Name='",
                         L"MACAddress");
  });
}

std::wstring NetworkCard::GetGUIDByHardId(const std::wstring& hardId) {
  return CallGuarded(std::wstring{}, [&] {
    return AdapterByName(hardId, L"SELECT GUID FROM Win32_NetworkAdapter WHERE Name='", L"GUID");
  });
}

std::wstring NetworkCard::GetAdapterTypeByHardId(const std::wstring& hardId) {
  return CallGuarded(std::wstring{}, [&] {
    return AdapterByName(hardId, L"SELECT AdapterType FROM Win32_NetworkAdapter WHERE Name='",
                         L"AdapterType");
  });
}

namespace {

// A by-ID getter applied to the first card of a kind; the empty answer when there is none.
template <class Result>
Result OfType(NetworkCard& cards, NetworkCardType type,
              Result (NetworkCard::*by_id)(const std::wstring&)) {
  return CallGuarded(Result{}, [&] {
    const std::wstring hard_id = cards.GetHardIDByType(type);
    return hard_id.empty() ? Result{} : (cards.*by_id)(hard_id);
  });
}

}  // namespace

std::wstring NetworkCard::GetManufactrue(NetworkCardType type) {
  return OfType(*this, type, &NetworkCard::GetManufactrueByHardId);
}

std::wstring NetworkCard::GetDriverVersion(NetworkCardType type) {
  return OfType(*this, type, &NetworkCard::GetDriverVersionByHardId);
}

std::wstring NetworkCard::GetCaption(NetworkCardType type) {
  return OfType(*this, type, &NetworkCard::GetCaptionByHardId);
}

std::wstring NetworkCard::GetDisplayName(NetworkCardType type) {
  return OfType(*this, type, &NetworkCard::GetDisplayNameByHardId);
}

std::wstring NetworkCard::GetINF(NetworkCardType type) {
  return OfType(*this, type, &NetworkCard::GetINFByHardId);
}

unsigned long NetworkCard::GetProblemCode(NetworkCardType type) {
  return OfType(*this, type, &NetworkCard::GetProblemCodeByHardId);
}

std::wstring NetworkCard::GetMacAddress(NetworkCardType type) {
  return OfType(*this, type, &NetworkCard::GetMacAddressByHardId);
}

std::wstring NetworkCard::GetGUID(NetworkCardType type) {
  return OfType(*this, type, &NetworkCard::GetGUIDByHardId);
}

std::wstring NetworkCard::GetAdapterType(NetworkCardType type) {
  return OfType(*this, type, &NetworkCard::GetAdapterTypeByHardId);
}
