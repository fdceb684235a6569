#include "network/network_adapter.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/device_informention.h"
#include "platform/device_property_keys.h"
#include "platform/process_state.h"
#include "tests/fakes/fake_network_list_manager.h"
#include "tests/support/net_cards.h"

namespace {

using velhal::testing::FakeCom;

// As the Network List Manager is registered with the system.
constexpr CLSID kNetworkListManager{
    0xdcb00c01, 0x570f, 0x4a9b, {0x8d, 0x69, 0x19, 0x9f, 0xdb, 0xa5, 0x72, 0x3b}};
constexpr GUID kFirst{0x1111, 0, 0, {1}};
constexpr GUID kSecond{0x2222, 0, 0, {2}};

class NetworkAdapterTest : public ::testing::Test {
 protected:
  velhal::testing::FakeNetworkListManager list_manager_;  // outlives os_, which checks it
  velhal::testing::FakeSystem os_;
  velhal::testing::NetCards net_{os_};
  NetworkAdapter adapter_;
};

TEST_F(NetworkAdapterTest, RadioStateIsTheFirstInterfacesFirstPhy) {
  os_.wlan.interfaces = {{kFirst, dot11_radio_state_off}, {kSecond, dot11_radio_state_on}};
  EXPECT_EQ(adapter_.GetWifiSwitchState(), 2);
  EXPECT_EQ(os_.wlan.client_versions, std::vector<DWORD>{2});
  ASSERT_EQ(os_.wlan.queried.size(), 1u);
  EXPECT_EQ(os_.wlan.queried[0], kFirst);

  // Every failure reads 0; handles and memory are given back on each path (FakeSystem checks).
  const std::pair<const char*, void (*)(velhal::testing::FakeWlan&)> failures[] = {
      {"no service", [](auto& w) { w.open_result = ERROR_SERVICE_NOT_ACTIVE; }},
      {"null handle", [](auto& w) { w.open_hands_out_null = true; }},
      {"enumeration fails", [](auto& w) { w.enum_result = ERROR_NOT_ENOUGH_MEMORY; }},
      {"null list", [](auto& w) { w.enum_hands_out_null = true; }},
      {"no interface", [](auto& w) { w.interfaces.clear(); }},
      {"query fails", [](auto& w) { w.interfaces[0].query_result = ERROR_CALL_NOT_IMPLEMENTED; }},
  };
  for (const auto& [name, fail] : failures) {
    SCOPED_TRACE(name);
    os_.wlan = {};
    os_.wlan.interfaces = {{kFirst, dot11_radio_state_on}};
    fail(os_.wlan);
    EXPECT_EQ(adapter_.GetWifiSwitchState(), 0);
  }
}

TEST_F(NetworkAdapterTest, SwitchSetsTheFirstEntryOrAnswersTheLastError) {
  os_.wlan.interfaces = {{kFirst}, {kSecond}};
  os_.wlan.set_result = ERROR_ACCESS_DENIED;
  EXPECT_EQ(adapter_.SetWifiSwitchState(false), static_cast<unsigned long>(ERROR_ACCESS_DENIED));
  os_.wlan.set_result = ERROR_SUCCESS;
  EXPECT_EQ(adapter_.SetWifiSwitchState(true), 0u);
  ASSERT_EQ(os_.wlan.sets.size(), 2u);
  for (size_t i = 0; i < 2; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(os_.wlan.sets[i].interface_guid, kFirst);
    EXPECT_EQ(os_.wlan.sets[i].opcode, wlan_intf_opcode_radio_state);
    // PHY index 0, software state off (2) or on (1), hardware state 0.
    const DWORD expected[3] = {0, i == 0 ? 2u : 1u, 0};
    ASSERT_EQ(os_.wlan.sets[i].data.size(), 12u);
    EXPECT_EQ(std::memcmp(os_.wlan.sets[i].data.data(), expected, 12), 0);
  }

  // An empty list's first slot is used all the same.
  os_.wlan.interfaces.clear();
  EXPECT_EQ(adapter_.SetWifiSwitchState(true), 0u);
  EXPECT_EQ(os_.wlan.sets.back().interface_guid, GUID{});

  // Without a client or a list the answer is the thread's last error, not the WLAN result.
  os_.wlan.open_result = ERROR_SERVICE_NOT_ACTIVE;
  ::SetLastError(ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(adapter_.SetWifiSwitchState(true), static_cast<unsigned long>(ERROR_FILE_NOT_FOUND));
  os_.wlan.open_result = ERROR_SUCCESS;
  os_.wlan.enum_hands_out_null = true;
  ::SetLastError(ERROR_GEN_FAILURE);
  EXPECT_EQ(adapter_.SetWifiSwitchState(true), static_cast<unsigned long>(ERROR_GEN_FAILURE));
  EXPECT_EQ(os_.wlan.sets.size(), 3u);
}

TEST_F(NetworkAdapterTest, MakerIsCachedOnceDetermined) {
  // No wireless card: undetermined, and looked for again at every call.
  EXPECT_EQ(adapter_.GetWifiManuType(), WifiCardManuType_Unknown);
  const size_t opens = os_.devices.opens.size();
  EXPECT_EQ(adapter_.GetRealtekWifiType(), -1);
  EXPECT_GT(os_.devices.opens.size(), opens);

  auto& card = net_.Add(L"PCI\\VEN_1B4B&DEV_2B42", L"Wireless card of an unknown maker");
  EXPECT_EQ(adapter_.GetWifiManuType(), WifiCardManuType_Unknown);
  card.HardwareIds({L"PCI\\ven_10ec&DEV_C822&SUBSYS_VEN_17CB"});  // the earlier test wins
  EXPECT_EQ(adapter_.GetWifiManuType(), WifiCardManuType_Realtek);
  EXPECT_EQ(adapter_.GetRealtekWifiType(), 0);

  // Determined: kept for the process, whatever the card becomes.
  card.HardwareIds({L"PCI\\VEN_8086&DEV_2723"});
  const size_t settled = os_.devices.opens.size();
  EXPECT_EQ(adapter_.GetWifiManuType(), WifiCardManuType_Realtek);
  EXPECT_EQ(os_.devices.opens.size(), settled);

  velhal::ResetProcessStateForTesting();
  EXPECT_EQ(adapter_.GetWifiManuType(), WifiCardManuType_Intel);
  card.HardwareIds({L"PCI\\VEN_17CB&DEV_1103"});
  velhal::ResetProcessStateForTesting();
  EXPECT_EQ(adapter_.GetWifiManuType(), WifiCardManuType_Qualcomm);
}

TEST_F(NetworkAdapterTest, ConnectivityComesFromTheNetworkListManagerInOwnApartment) {
  os_.com.SetHostApartment(FakeCom::Apartment::kNone);
  os_.com.RegisterClassObject(kNetworkListManager, &list_manager_);
  struct Case {
    HRESULT connected_result;
    VARIANT_BOOL connected, internet;
    int result;
    bool expect_connected, expect_internet;
  };
  const Case cases[] = {
      {S_OK, VARIANT_TRUE, VARIANT_TRUE, 1, true, true},
      {S_OK, VARIANT_TRUE, VARIANT_FALSE, 1, true, false},
      {S_OK, 1, VARIANT_TRUE, 1, false, true},  // only VARIANT_TRUE itself is true
      {E_FAIL, VARIANT_TRUE, VARIANT_TRUE, 0, false, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.connected_result << " " << c.connected);
    list_manager_.connected_result = c.connected_result;
    list_manager_.connected = c.connected;
    list_manager_.internet = c.internet;
    bool connected = !c.expect_connected, internet = !c.expect_internet;
    EXPECT_EQ(adapter_.IsInternetAvailable(connected, internet), c.result);
    EXPECT_EQ(connected, c.expect_connected);
    EXPECT_EQ(internet, c.expect_internet);
  }
  EXPECT_EQ(os_.com.create_contexts, std::vector<DWORD>(4, 23));
  EXPECT_EQ(os_.com.initialize_calls, 4);
  EXPECT_EQ(os_.com.uninitialize_calls, 4);
}

TEST_F(NetworkAdapterTest, ComIsLeftOnceEvenWhenTheHostsApartmentRefusedEntry) {
  // The host's multithreaded apartment refuses CoInitialize; the call leaves COM all the same,
  // which the fake notes as an unmatched CoUninitialize.
  os_.com.RegisterClassObject(kNetworkListManager, &list_manager_);
  bool connected = false, internet = false;
  EXPECT_EQ(adapter_.IsInternetAvailable(connected, internet), 1);
  EXPECT_EQ(os_.com.uninitialize_calls, 1);
  EXPECT_EQ(os_.com.violations,
            std::vector<std::string>{"CoUninitialize without a matching CoInitializeEx"});
  os_.com.violations.clear();
}

TEST_F(NetworkAdapterTest, GatewayIsThatOfTheAdapterTheWirelessCardNames) {
  auto& card = net_.Add(L"PCI\\VEN_8086&DEV_A0F0", L"Intel(R) Wi-Fi 6 AX201 160MHz (Wireless)");
  card.String(velhal::device_keys::kByProperty[DeviceProperty_Name], L"Wi-Fi AX201");
  os_.ip_helper.adapters = {{"", "10.9.9.9"},  // an empty description matches nothing
                            {"Realtek PCIe GbE Family Controller", "192.168.1.1"},
                            {"intel(r) wi-fi 6 AX201 160MHz", "192.168.178.1"},
                            {"Wi-Fi AX201", "172.16.0.1"}};
  std::string gateway = "stale";
  EXPECT_EQ(adapter_.GetWirelessGateWayIP(gateway), 1);
  EXPECT_EQ(gateway, "192.168.178.1");
  EXPECT_EQ(os_.ip_helper.offered, (std::vector<ULONG>{704, 4 * 704}));

  // Found through the display name when the caption does not hold the description.
  os_.ip_helper.adapters.erase(os_.ip_helper.adapters.begin() + 2);
  EXPECT_EQ(adapter_.GetWirelessGateWayIP(gateway), 1);
  EXPECT_EQ(gateway, "172.16.0.1");

  // One adapter fits the first buffer; no match, or a failure, gives 0 and an empty gateway.
  os_.ip_helper.offered.clear();
  os_.ip_helper.adapters = {{"Realtek PCIe GbE Family Controller", "192.168.1.1"}};
  EXPECT_EQ(adapter_.GetWirelessGateWayIP(gateway), 0);
  EXPECT_EQ(gateway, "");
  EXPECT_EQ(os_.ip_helper.offered, std::vector<ULONG>{704});
  gateway = "stale";
  os_.ip_helper.failure = ERROR_NO_DATA;
  EXPECT_EQ(adapter_.GetWirelessGateWayIP(gateway), 0);
  EXPECT_EQ(gateway, "");
}

using IpAdapter = velhal::testing::FakeIpHelper::IpAdapter;

IpAdapter Adapter(std::wstring name, IFTYPE type, IF_OPER_STATUS status,
                  std::vector<std::pair<std::string, UINT8>> unicast) {
  IpAdapter adapter;
  adapter.name = std::move(name);
  adapter.type = type;
  adapter.status = status;
  adapter.unicast = std::move(unicast);
  return adapter;
}

TEST_F(NetworkAdapterTest, AdaptersByIndexAreTheIpStacksWithoutLoopbackAndTunnels) {
  IpAdapter wired =
      Adapter(L"Ethernet", IF_TYPE_ETHERNET_CSMACD, IfOperStatusUp,
              {{"192.168.1.20", 24}, {"fe80::1c2d:3e4f:5a6b:7c8d", 64}, {"2001:db8:0:1::20", 64}});
  wired.description = L"Realtek PCIe GbE Family Controller";
  wired.mac = {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0xEF};
  wired.gateways = {"192.168.1.1", "fe80::1"};
  wired.dns_servers = {"192.168.1.1", "2001:4860:4860::8888"};
  IpAdapter wireless = Adapter(L"Wi-Fi", IF_TYPE_IEEE80211, IfOperStatusDown, {});
  wireless.dhcp = false;
  wireless.speed = UINT64_MAX;  // unknown
  os_.ip_helper.ip_adapters = {Adapter(L"Loopback Pseudo-Interface 1", IF_TYPE_SOFTWARE_LOOPBACK,
                                       IfOperStatusUp, {{"127.0.0.1", 8}}),
                               wired, Adapter(L"Teredo", IF_TYPE_TUNNEL, IfOperStatusUp, {}),
                               wireless};

  EXPECT_EQ(adapter_.GetAdapterCount(), 2u);
  EXPECT_EQ(adapter_.GetAdapterNameByIndex(0), L"Ethernet");
  EXPECT_EQ(adapter_.GetAdapterDescriptionByIndex(0), L"Realtek PCIe GbE Family Controller");
  EXPECT_EQ(adapter_.GetMacAddressByIndex(0), L"00:1A:2B:3C:4D:EF");
  EXPECT_EQ(adapter_.GetIpv4AddressesByIndex(0), std::vector<std::wstring>{L"192.168.1.20/24"});
  EXPECT_EQ(adapter_.GetIpv6AddressesByIndex(0),
            (std::vector<std::wstring>{L"fe80::1c2d:3e4f:5a6b:7c8d/64", L"2001:db8:0:1::20/64"}));
  EXPECT_EQ(adapter_.GetGatewaysByIndex(0),
            (std::vector<std::wstring>{L"192.168.1.1", L"fe80::1"}));
  EXPECT_EQ(adapter_.GetDnsServersByIndex(0),
            (std::vector<std::wstring>{L"192.168.1.1", L"2001:4860:4860::8888"}));
  EXPECT_TRUE(adapter_.IsDhcpEnabledByIndex(0));
  EXPECT_EQ(adapter_.GetLinkSpeedByIndex(0), 1'000'000'000u);
  EXPECT_EQ(adapter_.GetOperStatusByIndex(0), 1u);
  EXPECT_EQ(adapter_.GetLinkSpeedByIndex(1), 0u);
  EXPECT_EQ(adapter_.GetOperStatusByIndex(1), 2u);
  EXPECT_EQ(adapter_.GetWireLessIndex(), 1);
  IpAdapterInfo info;
  ASSERT_EQ(adapter_.GetIpInfo(1, info), 1);
  EXPECT_EQ(info.name, L"Wi-Fi");
  EXPECT_EQ(info.ifType, 71u);
  EXPECT_FALSE(info.dhcpEnabled);
  EXPECT_EQ(adapter_.GetIpInfo(2, info), 0);
  EXPECT_EQ(adapter_.GetAdapterNameByIndex(2), L"");
  EXPECT_GE(os_.ip_helper.offered.front(), 15u * 1024);  // the size the documentation advises
  EXPECT_NE(os_.ip_helper.flags_seen.front() & GAA_FLAG_INCLUDE_GATEWAYS, 0u);

  // A table larger than the first buffer is read at the size the stack asks for.
  os_.ip_helper.ip_adapters.assign(60, wired);
  os_.ip_helper.offered.clear();
  EXPECT_EQ(adapter_.GetAdapterCount(), 60u);
  ASSERT_EQ(os_.ip_helper.offered.size(), 2u);
  EXPECT_GT(os_.ip_helper.offered[1], os_.ip_helper.offered[0]);
  os_.ip_helper.failure = ERROR_NOT_ENOUGH_MEMORY;
  EXPECT_EQ(adapter_.GetAdapterCount(), 0u);
  EXPECT_EQ(adapter_.GetWireLessIndex(), -1);
}

TEST_F(NetworkAdapterTest, IpIsReadyWithAnUpAdapterHoldingANetworksAddress) {
  const IpAdapter loopback =
      Adapter(L"lo", IF_TYPE_SOFTWARE_LOOPBACK, IfOperStatusUp, {{"127.0.0.1", 8}});
  const struct {
    const char* name;
    std::vector<IpAdapter> adapters;
    IpStateInfo state;
  } cases[] = {
      {"only loopback", {loopback}, IpState_NoAdapter},
      {"down with an address",
       {Adapter(L"e", IF_TYPE_ETHERNET_CSMACD, IfOperStatusDown, {{"10.0.0.2", 8}})},
       IpState_MediaDisconnected},
      {"up without an address",
       {Adapter(L"e", IF_TYPE_ETHERNET_CSMACD, IfOperStatusUp, {})},
       IpState_NoAddress},
      {"up with link-local addresses only",
       {Adapter(L"e", IF_TYPE_ETHERNET_CSMACD, IfOperStatusUp,
                {{"169.254.3.4", 16}, {"fe80::1", 64}})},
       IpState_NoAddress},
      {"up with an IPv6 address from the network",
       {Adapter(L"e", IF_TYPE_ETHERNET_CSMACD, IfOperStatusUp,
                {{"169.254.3.4", 16}, {"2001:db8::5", 64}})},
       IpState_Ready},
      {"the best of several",
       {Adapter(L"w", IF_TYPE_IEEE80211, IfOperStatusDown, {}),
        Adapter(L"e", IF_TYPE_ETHERNET_CSMACD, IfOperStatusUp, {{"fe80::1", 64}})},
       IpState_NoAddress},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    os_.ip_helper.ip_adapters = c.adapters;
    IpStateInfo state = IpState_Ready;
    EXPECT_EQ(adapter_.CHeckIPReady(state), c.state == IpState_Ready);
    EXPECT_EQ(state, c.state);
  }
}

WLAN_CONNECTION_ATTRIBUTES Connection(const std::string& ssid, const DOT11_MAC_ADDRESS bssid) {
  WLAN_CONNECTION_ATTRIBUTES connection{};
  connection.isState = wlan_interface_state_connected;
  wcscpy(connection.strProfileName, L"Home");
  WLAN_ASSOCIATION_ATTRIBUTES& association = connection.wlanAssociationAttributes;
  association.dot11Ssid.uSSIDLength = static_cast<ULONG>(ssid.size());
  std::memcpy(association.dot11Ssid.ucSSID, ssid.data(), ssid.size());
  association.dot11BssType = dot11_BSS_type_infrastructure;
  std::memcpy(association.dot11Bssid, bssid, sizeof(DOT11_MAC_ADDRESS));
  association.dot11PhyType = static_cast<DOT11_PHY_TYPE>(10);
  association.wlanSignalQuality = 87;
  association.ulRxRate = 1'200'000;
  association.ulTxRate = 866'000;
  connection.wlanSecurityAttributes.bSecurityEnabled = TRUE;
  connection.wlanSecurityAttributes.dot11AuthAlgorithm = DOT11_AUTH_ALGO_RSNA_PSK;
  connection.wlanSecurityAttributes.dot11CipherAlgorithm = DOT11_CIPHER_ALGO_CCMP;
  return connection;
}

WLAN_BSS_ENTRY Bss(const DOT11_MAC_ADDRESS bssid, LONG rssi, ULONG kilohertz) {
  WLAN_BSS_ENTRY entry{};
  std::memcpy(entry.dot11Bssid, bssid, sizeof(DOT11_MAC_ADDRESS));
  entry.lRssi = rssi;
  entry.ulChCenterFrequency = kilohertz;
  return entry;
}

TEST_F(NetworkAdapterTest, WifiConnectionIsTheConnectedInterfacesAccessPoint) {
  const DOT11_MAC_ADDRESS ours = {0x00, 0x11, 0x22, 0xAA, 0xBB, 0xCC};
  const DOT11_MAC_ADDRESS other = {0x00, 0x11, 0x22, 0xAA, 0xBB, 0xCD};
  os_.wlan.interfaces = {{kFirst}, {kSecond}};  // the first is not connected
  os_.wlan.interfaces[1].connection = Connection("Caf\xC3\xA9", ours);
  os_.wlan.interfaces[1].bss = {Bss(other, -80, 2'437'000), Bss(ours, -52, 5'180'000)};
  WifiConnectionInfo info;
  ASSERT_EQ(adapter_.GetWifiConnectionInfo(info), 1);
  EXPECT_EQ(info.profileName, L"Home");
  EXPECT_EQ(info.ssid, L"Caf\u00e9");
  EXPECT_EQ(info.bssid, L"00:11:22:AA:BB:CC");
  EXPECT_EQ(info.signalQuality, 87u);
  EXPECT_EQ(info.rssi, -52);
  EXPECT_EQ(info.frequencyMHz, 5180u);
  EXPECT_EQ(info.phyType, L"802.11ax");
  EXPECT_EQ(info.authentication, L"WPA2-Personal");
  EXPECT_EQ(info.cipher, L"CCMP");
  EXPECT_EQ(info.rxRateKbps, 1'200'000u);
  EXPECT_EQ(os_.wlan.bss_ssids_asked, std::vector<std::string>{"Caf\xC3\xA9"});

  // The channel of each band's centre frequency.
  const std::pair<ULONG, uint32_t> channels[] = {
      {2'412'000, 1}, {2'484'000, 14},  {5'180'000, 36}, {5'825'000, 165},
      {5'955'000, 1}, {7'115'000, 233}, {58'320'000, 0}};
  for (const auto& [kilohertz, channel] : channels) {
    SCOPED_TRACE(kilohertz);
    os_.wlan.interfaces[1].bss = {Bss(ours, -60, kilohertz)};
    ASSERT_EQ(adapter_.GetWifiConnectionInfo(info), 1);
    EXPECT_EQ(info.channel, channel);
  }

  // Its access point missing from the list: no signal or frequency; no connection at all: 0.
  os_.wlan.interfaces[1].bss = {Bss(other, -80, 2'437'000)};
  ASSERT_EQ(adapter_.GetWifiConnectionInfo(info), 1);
  EXPECT_EQ(info.rssi, 0);
  EXPECT_EQ(info.channel, 0u);
  os_.wlan.interfaces[1].connection.reset();
  EXPECT_EQ(adapter_.GetWifiConnectionInfo(info), 0);
}

TEST_F(NetworkAdapterTest, AnyInternetLeavesTheHostsApartmentAsItWas) {
  os_.com.RegisterClassObject(kNetworkListManager, &list_manager_);
  const struct {
    FakeCom::Apartment apartment;
    NLM_CONNECTIVITY connectivity;
    bool internet;
    int initialized;  // the call's own entries into COM
  } cases[] = {
      {FakeCom::Apartment::kNone, NLM_CONNECTIVITY_IPV6_INTERNET, true, 1},
      {FakeCom::Apartment::kNone, NLM_CONNECTIVITY_IPV4_LOCALNETWORK, false, 1},
      {FakeCom::Apartment::kMta, NLM_CONNECTIVITY_IPV4_INTERNET, true, 0},
      {FakeCom::Apartment::kSta, NLM_CONNECTIVITY_DISCONNECTED, false, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.apartment));
    os_.com.SetHostApartment(c.apartment);
    const int before = os_.com.initialize_calls;
    list_manager_.connectivity = c.connectivity;
    EXPECT_EQ(adapter_.IsAnyInternetAvailable(), c.internet);
    EXPECT_EQ(os_.com.initialize_calls - before, c.initialized);
  }
  EXPECT_EQ(os_.com.uninitialize_calls, 2);
  list_manager_.connectivity_result = E_FAIL;
  EXPECT_FALSE(adapter_.IsAnyInternetAvailable());
}

}  // namespace
