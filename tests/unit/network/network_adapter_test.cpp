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

}  // namespace
