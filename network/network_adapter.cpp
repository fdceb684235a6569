#include "platform/win32.h"

#include "network/network_adapter.h"

#include <netlistmgr.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <optional>
#include <vector>

#include "network/network_card.h"
#include "platform/boundary.h"
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

static_assert(sizeof(IP_ADAPTER_INFO) == 704);
static_assert(sizeof(WLAN_PHY_RADIO_STATE) == 12);
