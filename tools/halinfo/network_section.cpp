// Network cards and the wireless side: the candidate cards with their kind and identity, the
// Wi-Fi radio and chip maker, connectivity and the wireless gateway, through NetworkCard and
// NetworkAdapter.
#include <optional>
#include <string>
#include <thread>
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

// IsInternetAvailable enters and leaves an apartment of its own and leaves COM once even when
// the thread's apartment refused it, which would end the report's own (the batch's WMI
// connections live in it): asked on a thread without COM, where the two balance.
Connectivity ReadConnectivity() {
  Connectivity answer;
  std::thread([&] {
    bool connected = false, internet = false;
    if (NetworkAdapter().IsInternetAvailable(connected, internet) == 1) {
      answer = {connected, internet};
    }
  }).join();
  return answer;
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
  return Object("network", "Network",
                {Array("cards", "cards", std::move(candidates)),
                 Object("wifi", "Wi-Fi",
                        {Text("radio", "radio", RadioText(adapter.GetWifiSwitchState())),
                         Text("chipMaker", "chip maker", MakerText(adapter.GetWifiManuType()))}),
                 Flag("connected", "connected", connectivity.connected),
                 Flag("internet", "on the Internet", connectivity.internet),
                 Text("wirelessGateway", "wireless gateway", gateway)});
}

}  // namespace halinfo
