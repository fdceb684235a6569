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

IpAdapter Adapter(IFTYPE type, IF_OPER_STATUS status,
                  std::vector<std::pair<std::string, UINT8>> unicast) {
  IpAdapter adapter;
  adapter.type = type;
  adapter.status = status;
  adapter.unicast = std::move(unicast);
  return adapter;
}

// The getters by index are checked against Wine's real table (network_backend_test); here the
// states Wine cannot show.
TEST_F(NetworkAdapterTest, IpIsReadyWithAnUpAdapterHoldingANetworksAddress) {
  const IpAdapter loopback = Adapter(IF_TYPE_SOFTWARE_LOOPBACK, IfOperStatusUp, {{"127.0.0.1", 8}});
  const IpAdapter tunnel = Adapter(IF_TYPE_TUNNEL, IfOperStatusUp, {{"2001:0:5ef5::1", 64}});
  const IpAdapter down = Adapter(IF_TYPE_IEEE80211, IfOperStatusDown, {{"10.0.0.2", 8}});
  const IpAdapter bare = Adapter(IF_TYPE_ETHERNET_CSMACD, IfOperStatusUp, {});
  const IpAdapter link_local =
      Adapter(IF_TYPE_ETHERNET_CSMACD, IfOperStatusUp, {{"169.254.3.4", 16}, {"fe80::1", 64}});
  const IpAdapter ready =
      Adapter(IF_TYPE_ETHERNET_CSMACD, IfOperStatusUp, {{"169.254.3.4", 16}, {"2001:db8::5", 64}});
  const struct {
    std::vector<IpAdapter> adapters;
    IpStateInfo state;
    int wireless_index;
  } cases[] = {
      {{loopback, tunnel}, IpState_NoAdapter, -1},
      {{loopback, down}, IpState_MediaDisconnected, 0},
      {{bare, link_local, down}, IpState_NoAddress, 2},
      {{down, bare, ready}, IpState_Ready, 0},
      {std::vector<IpAdapter>(60, ready), IpState_Ready, -1},  // more than the first buffer
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.state);
    os_.ip_helper.ip_adapters = c.adapters;
    os_.ip_helper.offered.clear();
    IpStateInfo state = IpState_Ready;
    EXPECT_EQ(adapter_.CHeckIPReady(state), c.state == IpState_Ready);
    EXPECT_EQ(state, c.state);
    EXPECT_EQ(adapter_.GetWireLessIndex(), c.wireless_index);
  }
  EXPECT_EQ(os_.ip_helper.offered.size(), 4u);  // each read: the first buffer, then the size asked
  EXPECT_EQ(adapter_.GetIpv6AddressesByIndex(59), std::vector<std::wstring>{L"2001:db8::5/64"});
}

TEST_F(NetworkAdapterTest, WifiConnectionIsTheConnectedInterfacesAccessPoint) {
  WLAN_CONNECTION_ATTRIBUTES connection{};
  wcscpy(connection.strProfileName, L"Home");
  WLAN_ASSOCIATION_ATTRIBUTES& association = connection.wlanAssociationAttributes;
  association.dot11Ssid = {5, {'C', 'a', 'f', 0xC3, 0xA9}};  // UTF-8
  association.dot11Bssid[5] = 2;
  association.dot11PhyType = static_cast<DOT11_PHY_TYPE>(10);
  association.wlanSignalQuality = 87;
  connection.wlanSecurityAttributes.dot11AuthAlgorithm = DOT11_AUTH_ALGO_RSNA_PSK;
  connection.wlanSecurityAttributes.dot11CipherAlgorithm = DOT11_CIPHER_ALGO_CCMP;
  os_.wlan.interfaces = {{kFirst}, {kSecond}};  // the first is not connected
  os_.wlan.interfaces[1].connection = connection;
  // The BSS list's entries by the last byte of their BSSID, and their centre frequency.
  const auto bss = [&](std::vector<std::pair<BYTE, ULONG>> entries) {
    os_.wlan.interfaces[1].bss.clear();
    for (const auto& [last, kilohertz] : entries) {
      WLAN_BSS_ENTRY& entry = os_.wlan.interfaces[1].bss.emplace_back();
      entry.dot11Bssid[5] = last;
      entry.lRssi = -50 - last;
      entry.ulChCenterFrequency = kilohertz;
    }
  };
  bss({{1, 2'437'000}, {2, 5'180'000}});
  WifiConnectionInfo info;
  ASSERT_EQ(adapter_.GetWifiConnectionInfo(info), 1);
  EXPECT_EQ(info.profileName + L"|" + info.ssid + L"|" + info.bssid,
            L"Home|Caf\u00e9|00:00:00:00:00:02");
  EXPECT_EQ(info.signalQuality, 87u);
  EXPECT_EQ(info.rssi, -52);  // the entry of its own BSSID
  EXPECT_EQ(info.frequencyMHz, 5180u);
  EXPECT_EQ(info.phyType + L" " + info.authentication + L" " + info.cipher,
            L"802.11ax WPA2-Personal CCMP");
  EXPECT_EQ(os_.wlan.bss_ssids_asked, std::vector<std::string>{"Caf\xC3\xA9"});

  // Channels across the bands; without its entry in the list, none.
  const std::pair<ULONG, uint32_t> channels[] = {
      {2'412'000, 1}, {2'484'000, 14}, {5'825'000, 165}, {5'955'000, 1}, {58'320'000, 0}};
  for (const auto& [kilohertz, channel] : channels) {
    bss({{2, kilohertz}});
    ASSERT_EQ(adapter_.GetWifiConnectionInfo(info), 1);
    EXPECT_EQ(info.channel, channel) << kilohertz;
  }
  bss({{1, 2'437'000}});
  ASSERT_EQ(adapter_.GetWifiConnectionInfo(info), 1);
  EXPECT_EQ(info.channel + info.rssi, 0);
  os_.wlan.interfaces[1].connection.reset();
  EXPECT_EQ(adapter_.GetWifiConnectionInfo(info), 0);
}

TEST_F(NetworkAdapterTest, AnyInternetLeavesTheHostsApartmentAsItWas) {
  os_.com.RegisterClassObject(kNetworkListManager, &list_manager_);
  const struct {
    FakeCom::Apartment apartment;
    NLM_CONNECTIVITY connectivity;
    bool internet;
    int own_entries;  // into COM, each left again
  } cases[] = {
      {FakeCom::Apartment::kNone, NLM_CONNECTIVITY_IPV6_INTERNET, true, 1},
      {FakeCom::Apartment::kNone, NLM_CONNECTIVITY_IPV4_LOCALNETWORK, false, 1},
      {FakeCom::Apartment::kMta, NLM_CONNECTIVITY_IPV4_INTERNET, true, 0},
      {FakeCom::Apartment::kSta, NLM_CONNECTIVITY_IPV4_INTERNET, true, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.apartment));
    os_.com.SetHostApartment(c.apartment);
    const int before = os_.com.initialize_calls;
    list_manager_.connectivity = c.connectivity;
    EXPECT_EQ(adapter_.IsAnyInternetAvailable(), c.internet);
    EXPECT_EQ(os_.com.initialize_calls - before, c.own_entries);
  }
  EXPECT_EQ(os_.com.uninitialize_calls, 2);
  list_manager_.connectivity_result = E_FAIL;
  EXPECT_FALSE(adapter_.IsAnyInternetAvailable());
}

}  // namespace
