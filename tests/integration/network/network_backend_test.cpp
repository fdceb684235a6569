// NetworkAdapter and NetworkCard against what the system really serves, checked against the
// test's own reads of the same sources: the Network List Manager, the IP helper's adapter tables,
// the WLAN service and the network setup class. Wine serves a Network List Manager and the
// host's IP adapters (with their addresses, gateways and DNS servers), but a WLAN service without
// interfaces and no network-class device, so there no card is wireless and the radio, gateway
// and access-point answers are the empty ones; on Windows the same assertions compare real
// values. Nothing here switches the radio.
#include "platform/win32.h"

#include "network/network_adapter.h"
#include "network/network_card.h"

#include <gtest/gtest.h>

#include <winsock2.h>
#include <ws2tcpip.h>

#include <iphlpapi.h>
#include <shlwapi.h>
#include <wlanapi.h>

#include <initguid.h>
#include <netlistmgr.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "platform/device_classes.h"
#include "platform/string_conversion.h"
#include "tests/support/device_walk.h"

namespace {

struct Connectivity {
  bool connected;
  bool internet;
};

// Asked in an apartment of the test's own, left again before the library is called.
std::optional<Connectivity> ReadNetworkListManager() {
  std::optional<Connectivity> answer;
  INetworkListManager* manager = nullptr;
  if (SUCCEEDED(::CoCreateInstance(CLSID_NetworkListManager, nullptr, CLSCTX_ALL,
                                   IID_INetworkListManager, reinterpret_cast<void**>(&manager)))) {
    VARIANT_BOOL connected = VARIANT_FALSE, internet = VARIANT_FALSE;
    if (SUCCEEDED(manager->IsConnected(&connected)) &&
        SUCCEEDED(manager->IsConnectedToInternet(&internet))) {
      answer = Connectivity{connected == VARIANT_TRUE, internet == VARIANT_TRUE};
    }
    manager->Release();
  }
  ::CoUninitialize();
  return answer;
}

TEST(NetworkBackendTest, ConnectivityAgreesWithTheNetworkListManager) {
  // The library enters and leaves an apartment of its own: the thread must have none.
  ASSERT_EQ(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
  const std::optional<Connectivity> expected = ReadNetworkListManager();
  ::CoUninitialize();
  bool connected = false, internet = false;
  EXPECT_EQ(NetworkAdapter().IsInternetAvailable(connected, internet), expected ? 1 : 0);
  if (!expected) return;
  EXPECT_EQ(connected, expected->connected);
  EXPECT_EQ(internet, expected->internet);
}

TEST(NetworkBackendTest, GatewayIsThatOfTheAdapterTheWirelessCardNames) {
  ULONG size = 0;
  std::vector<BYTE> table;
  if (::GetAdaptersInfo(nullptr, &size) == ERROR_BUFFER_OVERFLOW) {
    table.resize(size);
    if (::GetAdaptersInfo(reinterpret_cast<IP_ADAPTER_INFO*>(table.data()), &size) != NO_ERROR) {
      table.clear();
    }
  }
  NetworkCard cards;
  const std::wstring caption = cards.GetCaption(NetworkCardType_Wireless);
  const std::wstring name = cards.GetDisplayName(NetworkCardType_Wireless);
  if (velhal::testing::WalkDevices(&velhal::device_class::kNet, DIGCF_PRESENT).empty()) {
    EXPECT_EQ(caption + name, L"") << "no network-class device, so no wireless card";
  }
  std::string expected;
  for (auto* a = table.empty() ? nullptr : reinterpret_cast<IP_ADAPTER_INFO*>(table.data());
       a != nullptr && expected.empty(); a = a->Next) {
    const std::wstring description = AnsiToWide(a->Description);
    if (::StrStrIW(caption.c_str(), description.c_str()) ||
        ::StrStrIW(name.c_str(), description.c_str())) {
      expected = a->GatewayList.IpAddress.String;
    }
  }
  std::string gateway = "stale";
  EXPECT_EQ(NetworkAdapter().GetWirelessGateWayIP(gateway), expected.empty() ? 0 : 1);
  EXPECT_EQ(gateway, expected);
}

// The software radio state of the first interface, or 0 when there is none to ask.
unsigned char ReadRadio() {
  unsigned char state = 0;
  DWORD version = 0;
  HANDLE client = nullptr;
  WLAN_INTERFACE_INFO_LIST* list = nullptr;
  if (::WlanOpenHandle(2, nullptr, &version, &client) == ERROR_SUCCESS &&
      ::WlanEnumInterfaces(client, nullptr, &list) == ERROR_SUCCESS && list->dwNumberOfItems > 0) {
    DWORD size = 0;
    void* data = nullptr;
    if (::WlanQueryInterface(client, &list->InterfaceInfo[0].InterfaceGuid,
                             wlan_intf_opcode_radio_state, nullptr, &size, &data,
                             nullptr) == ERROR_SUCCESS) {
      state = static_cast<unsigned char>(
          static_cast<WLAN_RADIO_STATE*>(data)->PhyRadioState[0].dot11SoftwareRadioState);
      ::WlanFreeMemory(data);
    }
  }
  if (list != nullptr) ::WlanFreeMemory(list);
  if (client != nullptr) ::WlanCloseHandle(client, nullptr);
  return state;
}

TEST(NetworkBackendTest, RadioStateAgreesWithTheWlanService) {
  EXPECT_EQ(NetworkAdapter().GetWifiSwitchState(), ReadRadio());
}

// The test's own walk of the same table, loopback and tunnels left out, with the system's
// inet_ntop writing the addresses.
std::wstring Ntop(const SOCKET_ADDRESS& address) {
  char text[INET6_ADDRSTRLEN] = {};
  const auto* raw = address.lpSockaddr;
  const void* bytes =
      raw->sa_family == AF_INET
          ? static_cast<const void*>(&reinterpret_cast<const sockaddr_in*>(raw)->sin_addr)
          : &reinterpret_cast<const sockaddr_in6*>(raw)->sin6_addr;
  ::inet_ntop(raw->sa_family, bytes, text, sizeof(text));
  return std::wstring(text, text + std::strlen(text));
}

TEST(NetworkBackendTest, AdaptersByIndexAgreeWithTheTestsOwnWalk) {
  ULONG size = 64 * 1024;
  std::vector<BYTE> table(size);
  auto* first = reinterpret_cast<IP_ADAPTER_ADDRESSES*>(table.data());
  ASSERT_EQ(::GetAdaptersAddresses(AF_UNSPEC, GAA_FLAG_INCLUDE_GATEWAYS, nullptr, first, &size),
            0u);
  NetworkAdapter adapter;
  unsigned long index = 0;
  int wireless = -1;
  for (auto* a = first; a != nullptr; a = a->Next) {
    if (a->IfType == IF_TYPE_SOFTWARE_LOOPBACK || a->IfType == IF_TYPE_TUNNEL) continue;
    SCOPED_TRACE(index);
    IpAdapterInfo info;
    ASSERT_EQ(adapter.GetIpInfo(index, info), 1);
    EXPECT_EQ(info.name, a->FriendlyName);
    EXPECT_EQ(info.description, a->Description);
    std::wstring mac;
    for (ULONG i = 0; i < a->PhysicalAddressLength; ++i) {
      wchar_t pair[4] = {};
      swprintf(pair, 4, i ? L":%02X" : L"%02X", a->PhysicalAddress[i]);
      mac += pair;
    }
    EXPECT_EQ(info.macAddress, mac);
    std::vector<std::wstring> v4, v6, gateways, dns;
    for (auto* u = a->FirstUnicastAddress; u != nullptr; u = u->Next) {
      (u->Address.lpSockaddr->sa_family == AF_INET ? v4 : v6)
          .push_back(Ntop(u->Address) + L"/" + std::to_wstring(u->OnLinkPrefixLength));
    }
    for (auto* g = a->FirstGatewayAddress; g != nullptr; g = g->Next)
      gateways.push_back(Ntop(g->Address));
    for (auto* d = a->FirstDnsServerAddress; d != nullptr; d = d->Next)
      dns.push_back(Ntop(d->Address));
    EXPECT_EQ(info.ipv4Addresses, v4);
    EXPECT_EQ(info.ipv6Addresses, v6);
    EXPECT_EQ(info.gateways, gateways);
    EXPECT_EQ(info.dnsServers, dns);
    EXPECT_EQ(info.dhcpEnabled, a->Dhcpv4Enabled != 0);
    EXPECT_EQ(adapter.GetOperStatusByIndex(index), static_cast<unsigned long>(a->OperStatus));
    if (wireless < 0 && a->IfType == IF_TYPE_IEEE80211) wireless = static_cast<int>(index);
    ++index;
  }
  EXPECT_EQ(adapter.GetAdapterCount(), index);
  EXPECT_EQ(adapter.GetWireLessIndex(), wireless);
}

}  // namespace
