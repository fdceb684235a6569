// Network cards and the wireless side: the candidate cards with their kind and identity, the
// IP stack's adapters with their addresses, whether IP is ready, the Wi-Fi radio, chip maker and
// connection, connectivity and the wireless gateway, through NetworkCard and NetworkAdapter.
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "network/network_adapter.h"
#include "network/network_card.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

std::string KindText(NetworkCard& cards, const std::wstring& hard_id) {
  unsigned long medium = 0;
  if (cards.GetMediaTypeByHardId(hard_id, medium) != 1) return {};
  switch (medium) {
    case PhysicalMedium_Native802_11: return "wireless";
    case PhysicalMedium_802_3: return "wired";
    case PhysicalMedium_WirelessWan: return "mobile";
  }
  return "medium " + std::to_string(medium);
}

Node Card(NetworkCard& cards, const std::wstring& hard_id) {
  const std::string caption = ToUtf8(cards.GetCaptionByHardId(hard_id));
  return Object(
      "", caption.empty() ? ToUtf8(hard_id) : caption,
      {Text("hardwareId", "hardware ID", ToUtf8(hard_id)), Text("caption", "", caption),
       Text("kind", "kind", KindText(cards, hard_id)),
       Text("maker", "maker", ToUtf8(cards.GetManufactrueByHardId(hard_id))),
       Text("driverVersion", "driver version", ToUtf8(cards.GetDriverVersionByHardId(hard_id))),
       Text("macAddress", "MAC address", ToUtf8(cards.GetMacAddressByHardId(hard_id))),
       Number("problemCode", "problem code", cards.GetProblemCodeByHardId(hard_id))});
}

const char* RadioText(unsigned char state) {
  return state == 1 ? "on" : state == 2 ? "off" : "unknown";
}

const char* MakerText(WifiCardManuType maker) {
  switch (maker) {
    case WifiCardManuType_Intel: return "Intel";
    case WifiCardManuType_Realtek: return "Realtek";
    case WifiCardManuType_Qualcomm: return "Qualcomm";
    case WifiCardManuType_Unknown: break;
  }
  return "not determined";
}

struct Connectivity {
  std::optional<bool> connected, internet;
};

// IsInternetAvailable calls CoInitialize and then CoUninitialize whatever it answered: on the
// report's thread, a single-threaded apartment (ReportApartment), the two balance.
Connectivity ReadConnectivity() {
  bool connected = false, internet = false;
  if (NetworkAdapter().IsInternetAvailable(connected, internet) != 1) return {};
  return {connected, internet};
}

// A list of texts: each a line of its own under the list's label.
Node Texts(std::string key, std::string label, const char* item,
           const std::vector<std::wstring>& texts) {
  std::vector<Node> items;
  for (const std::wstring& text : texts) items.push_back(Text("", item, ToUtf8(text)));
  return Array(std::move(key), std::move(label), std::move(items));
}

const char* OperText(unsigned long status) {
  static const char* const kStatus[] = {"?",       "up",      "down",        "testing",
                                        "unknown", "dormant", "not present", "lower layer down"};
  return status < std::size(kStatus) ? kStatus[status] : "?";
}

Node IpAdapterNode(const IpAdapterInfo& info) {
  return Object("", ToUtf8(info.name),
                {Text("name", "", ToUtf8(info.name)),
                 Text("description", "description", ToUtf8(info.description)),
                 Text("macAddress", "MAC address", ToUtf8(info.macAddress)),
                 Text("status", "status", OperText(info.operStatus)),
                 Number("ifType", "interface type", info.ifType),
                 Number("linkSpeedMbitPerSecond", "link speed",
                        Reported(info.linkSpeed / 1'000'000), "Mbit/s"),
                 Flag("dhcp", "DHCP", info.dhcpEnabled),
                 Texts("ipv4Addresses", "IPv4 addresses", "address", info.ipv4Addresses),
                 Texts("ipv6Addresses", "IPv6 addresses", "address", info.ipv6Addresses),
                 Texts("gateways", "gateways", "gateway", info.gateways),
                 Texts("dnsServers", "DNS servers", "server", info.dnsServers)});
}

const char* IpStateText(IpStateInfo state) {
  switch (state) {
    case IpState_NoAdapter: return "no adapter";
    case IpState_MediaDisconnected: return "media disconnected";
    case IpState_NoAddress: return "no address from a network";
    case IpState_Ready: return "ready";
  }
  return "?";
}

Node WifiConnectionNode(NetworkAdapter& adapter) {
  WifiConnectionInfo info;
  if (adapter.GetWifiConnectionInfo(info) != 1) return Leaf("connection", "connection", nullptr);
  return Object(
      "connection", "connection",
      {Text("ssid", "SSID", ToUtf8(info.ssid)), Text("bssid", "BSSID", ToUtf8(info.bssid)),
       Text("profile", "profile", ToUtf8(info.profileName)),
       Number("signalQualityPercent", "signal quality", info.signalQuality, "%"),
       Number("rssiDbm", "RSSI", info.rssi != 0 ? std::optional(info.rssi) : std::nullopt, "dBm"),
       Number("channel", "channel", Reported(info.channel)),
       Number("frequencyMHz", "frequency", Reported(info.frequencyMHz), "MHz"),
       Text("phyType", "PHY", ToUtf8(info.phyType)),
       Text("authentication", "authentication", ToUtf8(info.authentication)),
       Text("cipher", "cipher", ToUtf8(info.cipher)),
       Number("receiveRateKbitPerSecond", "receive rate", info.rxRateKbps, "kbit/s"),
       Number("transmitRateKbitPerSecond", "transmit rate", info.txRateKbps, "kbit/s")});
}

}  // namespace

Node NetworkSection() {
  NetworkCard cards;
  std::vector<Node> candidates;
  for (const std::wstring& hard_id : cards.GetInternalNetCardHardId()) {
    candidates.push_back(Card(cards, hard_id));
  }
  NetworkAdapter adapter;
  const Connectivity connectivity = ReadConnectivity();
  std::string gateway;
  adapter.GetWirelessGateWayIP(gateway);
  std::vector<Node> ip_adapters;
  IpAdapterInfo info;
  for (unsigned long i = 0; adapter.GetIpInfo(i, info) == 1; ++i)
    ip_adapters.push_back(IpAdapterNode(info));
  IpStateInfo ip_state = IpState_NoAdapter;
  adapter.CHeckIPReady(ip_state);
  return Object("network", "Network",
                {Array("cards", "cards", std::move(candidates)),
                 Array("adapters", "IP adapters", std::move(ip_adapters)),
                 Text("ipState", "IP", IpStateText(ip_state)),
                 Object("wifi", "Wi-Fi",
                        {Text("radio", "radio", RadioText(adapter.GetWifiSwitchState())),
                         Text("chipMaker", "chip maker", MakerText(adapter.GetWifiManuType())),
                         WifiConnectionNode(adapter)}),
                 Flag("connected", "connected", connectivity.connected),
                 Flag("internet", "on the Internet", connectivity.internet),
                 Flag("anyInternet", "any Internet", adapter.IsAnyInternetAvailable()),
                 Text("wirelessGateway", "wireless gateway", gateway)});
}

}  // namespace halinfo
