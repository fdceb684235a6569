#include "platform/win32.h"

#include "network/network_adapter.h"

#include <netlistmgr.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <optional>
#include <vector>

#include "core/ip_address.h"
#include "network/network_card.h"
#include "platform/batch.h"
#include "platform/boundary.h"
#include "platform/com_apartment.h"
#include "platform/com_ptr.h"
#include "platform/os/com.h"
#include "platform/os/ip_helper.h"
#include "platform/os/wlan.h"
#include "platform/process_state.h"
#include "platform/string_conversion.h"
#include "platform/text_search.h"

namespace {

using velhal::CallGuarded;

constexpr DWORD kWlanClientVersion = 2;  // Windows Vista and later
// The radio-state answer up to the end of its first PHY's entry.
constexpr DWORD kFirstPhyEnd =
    offsetof(WLAN_RADIO_STATE, PhyRadioState) + sizeof(WLAN_PHY_RADIO_STATE);

constexpr CLSID kNetworkListManagerClass{
    0xdcb00c01, 0x570f, 0x4a9b, {0x8d, 0x69, 0x19, 0x9f, 0xdb, 0xa5, 0x72, 0x3b}};
constexpr IID kNetworkListManagerInterface{
    0xdcb00000, 0x570f, 0x4a9b, {0x8d, 0x69, 0x19, 0x9f, 0xdb, 0xa5, 0x72, 0x3b}};
constexpr IID kUnknownInterface{
    0x00000000, 0x0000, 0x0000, {0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

// An open WLAN client and its interface list, when both could be had.
struct WlanSession {
  velhal::UniqueWlanHandle client;
  velhal::UniqueWlanMemory<WLAN_INTERFACE_INFO_LIST> interfaces;

  // The first interface, read without looking at the list's item count: kept as callers
  // know it.
  const GUID* FirstInterface() const { return &interfaces.Get()->InterfaceInfo[0].InterfaceGuid; }
};

// false as soon as a step fails, with the failing call's last error left for the caller.
bool OpenWlan(WlanSession& session) {
  auto& wlan = velhal::os::wlan();
  DWORD negotiated = 0;
  if (wlan.WlanOpenHandle(kWlanClientVersion, nullptr, &negotiated, session.client.Put()) !=
          ERROR_SUCCESS ||
      !session.client.IsValid()) {
    return false;
  }
  return wlan.WlanEnumInterfaces(session.client.Get(), nullptr, session.interfaces.Put()) ==
             ERROR_SUCCESS &&
         session.interfaces.IsValid();
}

std::atomic<unsigned int>& CachedMaker() {
  static std::atomic<unsigned int> maker{WifiCardManuType_Unknown};
  return maker;
}

void ForgetMaker() { CachedMaker().store(WifiCardManuType_Unknown, std::memory_order_relaxed); }

// The PCI vendor in the hardware ID; the earlier test wins when an ID holds two.
WifiCardManuType MakerOf(const std::wstring& hard_id) {
  if (velhal::ContainsIgnoringCase(hard_id, L"VEN_8086")) return WifiCardManuType_Intel;
  if (velhal::ContainsIgnoringCase(hard_id, L"VEN_10EC")) return WifiCardManuType_Realtek;
  if (velhal::ContainsIgnoringCase(hard_id, L"VEN_17CB")) return WifiCardManuType_Qualcomm;
  return WifiCardManuType_Unknown;
}

bool IsTrue(VARIANT_BOOL value) { return static_cast<uint16_t>(value) > 65534; }

// Both answers of the Network List Manager; every interface is released before returning.
int ReadConnectivity(bool& connected, bool& internet) {
  velhal::ComPtr<IUnknown> unknown;
  if (FAILED(velhal::os::com().CoCreateInstance(kNetworkListManagerClass, nullptr, CLSCTX_ALL,
                                                kUnknownInterface, unknown.PutVoid())) ||
      !unknown) {
    return 0;
  }
  velhal::ComPtr<INetworkListManager> manager;
  if (FAILED(unknown->QueryInterface(kNetworkListManagerInterface, manager.PutVoid())) ||
      !manager) {
    return 0;
  }
  VARIANT_BOOL is_connected = VARIANT_FALSE;
  VARIANT_BOOL on_internet = VARIANT_FALSE;
  const HRESULT connected_read = manager->IsConnected(&is_connected);
  const HRESULT internet_read = manager->IsConnectedToInternet(&on_internet);
  if (FAILED(connected_read) || FAILED(internet_read)) return 0;
  connected = IsTrue(is_connected);
  internet = IsTrue(on_internet);
  return 1;
}

// The IP stack's adapter table: a first buffer of one entry, then the size asked for.
std::optional<std::vector<IP_ADAPTER_INFO>> ReadAdapters() {
  std::vector<IP_ADAPTER_INFO> adapters(1);
  ULONG size = sizeof(IP_ADAPTER_INFO);  // 704
  ULONG result = velhal::os::ip_helper().GetAdaptersInfo(adapters.data(), &size);
  if (result == ERROR_BUFFER_OVERFLOW) {
    adapters.resize(size / sizeof(IP_ADAPTER_INFO) + 1);
    result = velhal::os::ip_helper().GetAdaptersInfo(adapters.data(), &size);
  }
  if (result != ERROR_SUCCESS) return std::nullopt;
  return adapters;
}

template <size_t N>
std::string Text(const char (&field)[N]) {
  return std::string(field, strnlen(field, N));
}

constexpr ULONG kTableFlags =
    GAA_FLAG_INCLUDE_GATEWAYS | GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST;
constexpr ULONG kFirstTableBytes = 15 * 1024;  // the size the documentation advises
constexpr int kTableAttempts = 3;              // adapters may come between the calls

// Bytes as upper-case hex pairs joined by colons, as a MAC address or BSSID is written.
std::wstring HexPairs(const BYTE* bytes, size_t count) {
  static constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
  std::wstring text;
  for (size_t i = 0; i < count; ++i) {
    if (i != 0) text += L':';
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 0xF];
  }
  return text;
}

std::wstring Widened(const std::string& ascii) { return std::wstring(ascii.begin(), ascii.end()); }

struct Address {
  std::wstring text;
  bool ipv6 = false;
  bool link_local = false;
};

std::optional<Address> ReadAddress(const SOCKET_ADDRESS& address) {
  const sockaddr* raw = address.lpSockaddr;
  if (raw == nullptr) return std::nullopt;
  const auto length = static_cast<size_t>(std::max(address.iSockaddrLength, 0));
  if (raw->sa_family == AF_INET && length >= sizeof(sockaddr_in)) {
    uint8_t bytes[4];
    std::memcpy(bytes, &reinterpret_cast<const sockaddr_in*>(raw)->sin_addr, sizeof(bytes));
    return Address{Widened(velhal::ip::Ipv4Text(bytes)), false, velhal::ip::IsLinkLocal(bytes)};
  }
  if (raw->sa_family == AF_INET6 && length >= sizeof(sockaddr_in6)) {
    uint8_t bytes[16];
    std::memcpy(bytes, &reinterpret_cast<const sockaddr_in6*>(raw)->sin6_addr, sizeof(bytes));
    return Address{Widened(velhal::ip::Ipv6Text(bytes)), true, velhal::ip::IsLinkLocal(bytes)};
  }
  return std::nullopt;
}

// Gateway and DNS server lists share their shape.
template <class Entry>
std::vector<std::wstring> AddressList(const Entry* first) {
  std::vector<std::wstring> texts;
  for (const Entry* entry = first; entry != nullptr; entry = entry->Next) {
    if (const std::optional<Address> address = ReadAddress(entry->Address))
      texts.push_back(address->text);
  }
  return texts;
}

struct IpAdapter {
  IpAdapterInfo info;
  bool routable = false;  // holds an address that is not link-local
};

IpAdapter Publish(const IP_ADAPTER_ADDRESSES& from) {
  IpAdapter adapter;
  IpAdapterInfo& info = adapter.info;
  info.name = from.FriendlyName ? from.FriendlyName : L"";
  info.description = from.Description ? from.Description : L"";
  info.adapterName = from.AdapterName ? AnsiToWide(from.AdapterName) : L"";
  info.macAddress = HexPairs(from.PhysicalAddress, std::min<size_t>(from.PhysicalAddressLength,
                                                                    MAX_ADAPTER_ADDRESS_LENGTH));
  for (const IP_ADAPTER_UNICAST_ADDRESS* unicast = from.FirstUnicastAddress; unicast != nullptr;
       unicast = unicast->Next) {
    const std::optional<Address> address = ReadAddress(unicast->Address);
    if (!address) continue;
    (address->ipv6 ? info.ipv6Addresses : info.ipv4Addresses)
        .push_back(address->text + L"/" + std::to_wstring(unicast->OnLinkPrefixLength));
    adapter.routable = adapter.routable || !address->link_local;
  }
  info.gateways = AddressList(from.FirstGatewayAddress);
  info.dnsServers = AddressList(from.FirstDnsServerAddress);
  info.dhcpEnabled = (from.Flags & IP_ADAPTER_DHCP_ENABLED) != 0;
  info.linkSpeed = from.TransmitLinkSpeed == UINT64_MAX ? 0 : from.TransmitLinkSpeed;
  info.operStatus = static_cast<uint32_t>(from.OperStatus);
  info.ifType = from.IfType;
  return adapter;
}

// The IP stack's adapters, loopback and tunnels left out; empty when the table cannot be read.
std::vector<IpAdapter> ReadIpAdaptersNow() {
  std::vector<IP_ADAPTER_ADDRESSES> table;  // whole entries, for the entries' alignment
  ULONG size = kFirstTableBytes;
  ULONG result = ERROR_BUFFER_OVERFLOW;
  for (int attempt = 0; attempt < kTableAttempts && result == ERROR_BUFFER_OVERFLOW; ++attempt) {
    table.resize(size / sizeof(IP_ADAPTER_ADDRESSES) + 1);
    size = static_cast<ULONG>(table.size() * sizeof(IP_ADAPTER_ADDRESSES));
    result = velhal::os::ip_helper().GetAdaptersAddresses(AF_UNSPEC, kTableFlags, nullptr,
                                                          table.data(), &size);
  }
  std::vector<IpAdapter> adapters;
  if (result != ERROR_SUCCESS) return adapters;
  for (const IP_ADAPTER_ADDRESSES* entry = table.data(); entry != nullptr; entry = entry->Next) {
    if (entry->IfType == IF_TYPE_SOFTWARE_LOOPBACK || entry->IfType == IF_TYPE_TUNNEL) continue;
    adapters.push_back(Publish(*entry));
  }
  return adapters;
}

// The per-index getters read the whole table each: a batch reads it once.
std::vector<IpAdapter> ReadIpAdapters() { return velhal::batch::Kept(&ReadIpAdaptersNow); }

template <class T>
T FieldByIndex(unsigned long index, T IpAdapterInfo::*field) {
  return CallGuarded(T(), [&] {
    const std::vector<IpAdapter> adapters = ReadIpAdapters();
    return index < adapters.size() ? adapters[index].info.*field : T();
  });
}

IpStateInfo StateOf(const IpAdapter& adapter) {
  if (adapter.info.operStatus != IfOperStatusUp) return IpState_MediaDisconnected;
  return adapter.routable ? IpState_Ready : IpState_NoAddress;
}

struct Named {
  uint32_t value;
  const wchar_t* name;
};

// DOT11_PHY_TYPE, DOT11_AUTH_ALGORITHM and DOT11_CIPHER_ALGORITHM as people name them.
constexpr Named kPhyTypes[] = {{4, L"802.11a"},   {5, L"802.11b"},  {6, L"802.11g"},
                               {7, L"802.11n"},   {8, L"802.11ac"}, {9, L"802.11ad"},
                               {10, L"802.11ax"}, {11, L"802.11be"}};
constexpr Named kAuthentications[] = {{1, L"Open"},
                                      {2, L"Shared key"},
                                      {3, L"WPA-Enterprise"},
                                      {4, L"WPA-Personal"},
                                      {5, L"WPA-None"},
                                      {6, L"WPA2-Enterprise"},
                                      {7, L"WPA2-Personal"},
                                      {8, L"WPA3-Enterprise 192-bit"},
                                      {9, L"WPA3-Personal"},
                                      {10, L"OWE"},
                                      {11, L"WPA3-Enterprise"}};
constexpr Named kCiphers[] = {{0, L"None"},      {1, L"WEP-40"},   {2, L"TKIP"},
                              {4, L"CCMP"},      {5, L"WEP-104"},  {6, L"BIP"},
                              {8, L"GCMP"},      {9, L"GCMP-256"}, {10, L"CCMP-256"},
                              {0x100, L"group"}, {0x101, L"WEP"}};

template <size_t N>
std::wstring NameOf(const Named (&table)[N], uint32_t value) {
  for (const Named& entry : table) {
    if (entry.value == value) return entry.name;
  }
  return std::to_wstring(value);
}

// The channel number of a centre frequency in the 2.4, 5 and 6 GHz bands; 0 outside them.
uint32_t ChannelOf(uint32_t mhz) {
  if (mhz == 2484) return 14;
  if (mhz >= 2412 && mhz <= 2472) return (mhz - 2407) / 5;
  if (mhz >= 5160 && mhz <= 5885) return (mhz - 5000) / 5;
  if (mhz >= 5955 && mhz <= 7115) return (mhz - 5950) / 5;
  return 0;
}

std::wstring SsidText(const DOT11_SSID& ssid) {
  const std::string bytes(reinterpret_cast<const char*>(ssid.ucSSID),
                          std::min<size_t>(ssid.uSSIDLength, DOT11_SSID_MAX_LENGTH));
  if (bytes.empty()) return {};
  const int units = ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(),
                                          static_cast<int>(bytes.size()), nullptr, 0);
  if (units <= 0) return AnsiToWide(bytes);
  std::wstring text(static_cast<size_t>(units), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(bytes.size()), text.data(),
                        units);
  return text;
}

// Signal strength and frequency of the connected access point, from the BSS list of its SSID.
void AddBssFacts(const WlanSession& session, const GUID& interface_guid,
                 const WLAN_CONNECTION_ATTRIBUTES& connection, WifiConnectionInfo& info) {
  const WLAN_ASSOCIATION_ATTRIBUTES& association = connection.wlanAssociationAttributes;
  velhal::UniqueWlanMemory<WLAN_BSS_LIST> list;
  if (velhal::os::wlan().WlanGetNetworkBssList(session.client.Get(), &interface_guid,
                                               &association.dot11Ssid, association.dot11BssType,
                                               connection.wlanSecurityAttributes.bSecurityEnabled,
                                               nullptr, list.Put()) != ERROR_SUCCESS ||
      !list.IsValid()) {
    return;
  }
  // Entries as far as the list's own size reaches.
  constexpr size_t kEntries = offsetof(WLAN_BSS_LIST, wlanBssEntries);
  const DWORD total = list.Get()->dwTotalSize;
  const size_t room = total < kEntries ? 0 : (total - kEntries) / sizeof(WLAN_BSS_ENTRY);
  const size_t count = std::min<size_t>(list.Get()->dwNumberOfItems, room);
  for (size_t i = 0; i < count; ++i) {
    const WLAN_BSS_ENTRY& entry = list.Get()->wlanBssEntries[i];
    if (std::memcmp(entry.dot11Bssid, association.dot11Bssid, sizeof(DOT11_MAC_ADDRESS)) != 0)
      continue;
    info.rssi = entry.lRssi;
    info.frequencyMHz = entry.ulChCenterFrequency / 1000;  // kHz
    info.channel = ChannelOf(info.frequencyMHz);
    return;
  }
}

int ReadWifiConnection(WifiConnectionInfo& info) {
  WlanSession session;
  if (!OpenWlan(session)) return 0;
  const WLAN_INTERFACE_INFO_LIST& interfaces = *session.interfaces.Get();
  for (DWORD i = 0; i < interfaces.dwNumberOfItems; ++i) {
    const WLAN_INTERFACE_INFO& candidate = interfaces.InterfaceInfo[i];
    if (candidate.isState != wlan_interface_state_connected) continue;
    DWORD size = 0;
    velhal::UniqueWlanMemory<void> data;
    WLAN_OPCODE_VALUE_TYPE value_type = wlan_opcode_value_type_invalid;
    if (velhal::os::wlan().WlanQueryInterface(session.client.Get(), &candidate.InterfaceGuid,
                                              wlan_intf_opcode_current_connection, nullptr, &size,
                                              data.Put(), &value_type) != ERROR_SUCCESS ||
        !data.IsValid() || size < sizeof(WLAN_CONNECTION_ATTRIBUTES)) {
      continue;
    }
    const auto& connection = *static_cast<const WLAN_CONNECTION_ATTRIBUTES*>(data.Get());
    const WLAN_ASSOCIATION_ATTRIBUTES& association = connection.wlanAssociationAttributes;
    WifiConnectionInfo read;
    read.profileName.assign(connection.strProfileName,
                            wcsnlen(connection.strProfileName, WLAN_MAX_NAME_LENGTH));
    read.ssid = SsidText(association.dot11Ssid);
    read.bssid = HexPairs(association.dot11Bssid, sizeof(DOT11_MAC_ADDRESS));
    read.signalQuality = std::min<uint32_t>(association.wlanSignalQuality, 100);
    read.phyType = NameOf(kPhyTypes, association.dot11PhyType);
    read.authentication =
        NameOf(kAuthentications, connection.wlanSecurityAttributes.dot11AuthAlgorithm);
    read.cipher = NameOf(kCiphers, connection.wlanSecurityAttributes.dot11CipherAlgorithm);
    read.rxRateKbps = association.ulRxRate;
    read.txRateKbps = association.ulTxRate;
    AddBssFacts(session, candidate.InterfaceGuid, connection, read);
    info = std::move(read);
    return 1;
  }
  return 0;
}

}  // namespace

unsigned char NetworkAdapter::GetWifiSwitchState() {
  return CallGuarded<unsigned char>(0, []() -> unsigned char {
    WlanSession session;
    if (!OpenWlan(session)) return 0;
    DWORD size = 0;
    velhal::UniqueWlanMemory<void> data;
    WLAN_OPCODE_VALUE_TYPE value_type = wlan_opcode_value_type_invalid;
    if (velhal::os::wlan().WlanQueryInterface(session.client.Get(), session.FirstInterface(),
                                              wlan_intf_opcode_radio_state, nullptr, &size,
                                              data.Put(), &value_type) != ERROR_SUCCESS ||
        !data.IsValid() || size < kFirstPhyEnd) {
      return 0;
    }
    const auto* radio = static_cast<const WLAN_RADIO_STATE*>(data.Get());
    return static_cast<unsigned char>(radio->PhyRadioState[0].dot11SoftwareRadioState);
  });
}

unsigned long NetworkAdapter::SetWifiSwitchState(bool on) {
  return CallGuarded<unsigned long>(ERROR_NOT_ENOUGH_MEMORY, [&]() -> unsigned long {
    WlanSession session;
    // The thread's last error, whatever the WLAN call answered: callers rely on it.
    if (!OpenWlan(session)) return ::GetLastError();
    WLAN_PHY_RADIO_STATE state{};
    state.dwPhyIndex = 0;
    state.dot11SoftwareRadioState = on ? dot11_radio_state_on : dot11_radio_state_off;
    state.dot11HardwareRadioState = dot11_radio_state_unknown;
    return velhal::os::wlan().WlanSetInterface(session.client.Get(), session.FirstInterface(),
                                               wlan_intf_opcode_radio_state, sizeof(state), &state,
                                               nullptr);
  });
}

WifiCardManuType NetworkAdapter::GetWifiManuType() {
  return CallGuarded(WifiCardManuType_Unknown, [] {
    const auto cached =
        static_cast<WifiCardManuType>(CachedMaker().load(std::memory_order_relaxed));
    if (cached != WifiCardManuType_Unknown) return cached;
    const std::vector<std::wstring> wireless = NetworkCard().GetAllWireLessHardId();
    if (wireless.empty() || wireless.front().empty()) return cached;
    const WifiCardManuType maker = MakerOf(wireless.front());
    if (maker != WifiCardManuType_Unknown) {
      velhal::RegisterProcessStateReset(&ForgetMaker);
      CachedMaker().store(maker, std::memory_order_relaxed);
    }
    return maker;
  });
}

int NetworkAdapter::GetRealtekWifiType() {
  return GetWifiManuType() == WifiCardManuType_Realtek ? 0 : -1;
}

int NetworkAdapter::IsInternetAvailable(bool& connected, bool& internet) {
  connected = false;
  internet = false;
  return CallGuarded(0, [&] {
    auto& com = velhal::os::com();
    com.CoInitialize(nullptr);  // its result is not looked at
    const int result = ReadConnectivity(connected, internet);
    // Also when CoInitialize failed, which leaves the caller's apartment one count short:
    // callers rely on the call as it stands.
    com.CoUninitialize();
    return result;
  });
}

int NetworkAdapter::GetWirelessGateWayIP(std::string& gateway) {
  gateway.clear();
  return CallGuarded(0, [&] {
    const std::optional<std::vector<IP_ADAPTER_INFO>> adapters = ReadAdapters();
    if (!adapters) return 0;
    NetworkCard cards;
    const std::wstring caption = cards.GetCaption(NetworkCardType_Wireless);
    std::optional<std::wstring> display_name;  // read once, when a caption does not match
    for (const IP_ADAPTER_INFO* adapter = adapters->data(); adapter != nullptr;
         adapter = adapter->Next) {
      const std::wstring description = AnsiToWide(Text(adapter->Description));
      if (!velhal::ContainsIgnoringCase(caption, description)) {
        if (!display_name) display_name = cards.GetDisplayName(NetworkCardType_Wireless);
        if (!velhal::ContainsIgnoringCase(*display_name, description)) continue;
      }
      gateway = Text(adapter->GatewayList.IpAddress.String);
      return 1;
    }
    return 0;
  });
}

unsigned long NetworkAdapter::GetAdapterCount() {
  return CallGuarded(0ul, [] { return static_cast<unsigned long>(ReadIpAdapters().size()); });
}

std::wstring NetworkAdapter::GetAdapterNameByIndex(unsigned long index) {
  return FieldByIndex(index, &IpAdapterInfo::name);
}

std::wstring NetworkAdapter::GetAdapterDescriptionByIndex(unsigned long index) {
  return FieldByIndex(index, &IpAdapterInfo::description);
}

std::wstring NetworkAdapter::GetMacAddressByIndex(unsigned long index) {
  return FieldByIndex(index, &IpAdapterInfo::macAddress);
}

std::vector<std::wstring> NetworkAdapter::GetIpv4AddressesByIndex(unsigned long index) {
  return FieldByIndex(index, &IpAdapterInfo::ipv4Addresses);
}

std::vector<std::wstring> NetworkAdapter::GetIpv6AddressesByIndex(unsigned long index) {
  return FieldByIndex(index, &IpAdapterInfo::ipv6Addresses);
}

std::vector<std::wstring> NetworkAdapter::GetGatewaysByIndex(unsigned long index) {
  return FieldByIndex(index, &IpAdapterInfo::gateways);
}

std::vector<std::wstring> NetworkAdapter::GetDnsServersByIndex(unsigned long index) {
  return FieldByIndex(index, &IpAdapterInfo::dnsServers);
}

bool NetworkAdapter::IsDhcpEnabledByIndex(unsigned long index) {
  return FieldByIndex(index, &IpAdapterInfo::dhcpEnabled);
}

uint64_t NetworkAdapter::GetLinkSpeedByIndex(unsigned long index) {
  return FieldByIndex(index, &IpAdapterInfo::linkSpeed);
}

unsigned long NetworkAdapter::GetOperStatusByIndex(unsigned long index) {
  return FieldByIndex(index, &IpAdapterInfo::operStatus);
}

int NetworkAdapter::GetIpInfo(unsigned long index, IpAdapterInfo& info) {
  return CallGuarded(0, [&] {
    std::vector<IpAdapter> adapters = ReadIpAdapters();
    if (index >= adapters.size()) return 0;
    info = std::move(adapters[index].info);
    return 1;
  });
}

int NetworkAdapter::GetWireLessIndex() {
  return CallGuarded(-1, [] {
    const std::vector<IpAdapter> adapters = ReadIpAdapters();
    for (size_t i = 0; i < adapters.size(); ++i) {
      if (adapters[i].info.ifType == IF_TYPE_IEEE80211) return static_cast<int>(i);
    }
    return -1;
  });
}

bool NetworkAdapter::CHeckIPReady(IpStateInfo& state) {
  state = IpState_NoAdapter;
  return CallGuarded(false, [&] {
    for (const IpAdapter& adapter : ReadIpAdapters()) state = std::max(state, StateOf(adapter));
    return state == IpState_Ready;
  });
}

int NetworkAdapter::GetWifiConnectionInfo(WifiConnectionInfo& info) {
  return CallGuarded(0, [&] { return ReadWifiConnection(info); });
}

bool NetworkAdapter::IsAnyInternetAvailable() {
  return CallGuarded(false, [] {
    const velhal::ComApartment apartment;  // first: left last, after the manager is released
    if (FAILED(apartment.status())) return false;
    velhal::ComPtr<INetworkListManager> manager;
    if (FAILED(velhal::os::com().CoCreateInstance(kNetworkListManagerClass, nullptr, CLSCTX_ALL,
                                                  kNetworkListManagerInterface,
                                                  manager.PutVoid())) ||
        !manager) {
      return false;
    }
    NLM_CONNECTIVITY connectivity = NLM_CONNECTIVITY_DISCONNECTED;
    if (FAILED(manager->GetConnectivity(&connectivity))) return false;
    return (connectivity & (NLM_CONNECTIVITY_IPV4_INTERNET | NLM_CONNECTIVITY_IPV6_INTERNET)) != 0;
  });
}

static_assert(sizeof(IP_ADAPTER_INFO) == 704);
static_assert(sizeof(WLAN_PHY_RADIO_STATE) == 12);
