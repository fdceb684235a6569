// The machine's network adapters: the Wi-Fi radio's software switch, the maker of the Wi-Fi
// chip, whether the machine is connected and on the Internet, and the wireless adapter's default
// gateway (the wireless card is the one NetworkCard classifies so); the IP stack's adapters by
// index with their addresses, whether IP is ready, and the connected access point. Stateless:
// every call reads afresh. Failures give the member's neutral value; nothing is thrown or
// logged.
//
// GetWirelessGateWayIP, GetWireLessIndex and CHeckIPReady are spelt so in the export table;
// hosts bind those names.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hal/velhal_export.h"

// The maker of the Wi-Fi chip, from the PCI vendor of the first wireless card.
enum WifiCardManuType : unsigned int {
  WifiCardManuType_Intel = 0,     // VEN_8086
  WifiCardManuType_Realtek = 1,   // VEN_10EC
  WifiCardManuType_Qualcomm = 2,  // VEN_17CB
  WifiCardManuType_Unknown = 3,   // not determined (yet)
};

// What stands between the machine and a working IP network, best adapter first.
enum IpStateInfo : uint32_t {
  IpState_NoAdapter = 0,          // no adapter but loopback and tunnels
  IpState_MediaDisconnected = 1,  // none is up (cable out, radio off, not associated)
  IpState_NoAddress = 2,          // one is up with no address, or only link-local ones
  IpState_Ready = 3,              // one is up with an address a network gave it
};

// One adapter of the IP stack (GetAdaptersAddresses).
struct IpAdapterInfo {
  std::wstring name;                        // FriendlyName, "Wi-Fi"
  std::wstring description;                 // "Intel(R) Wi-Fi 6 AX201 160MHz"
  std::wstring adapterName;                 // AdapterName: the interface GUID, "{...}"
  std::wstring macAddress;                  // "AA:BB:CC:DD:EE:FF"; empty without one
  std::vector<std::wstring> ipv4Addresses;  // with prefix length, "192.168.1.20/24"
  std::vector<std::wstring> ipv6Addresses;  // "fe80::1c2d:3e4f:5a6b:7c8d/64"
  std::vector<std::wstring> gateways;       // "192.168.1.1", "fe80::1"
  std::vector<std::wstring> dnsServers;
  bool dhcpEnabled = false;  // DHCP for IPv4
  uint64_t linkSpeed = 0;    // transmit, bits per second; 0 unknown
  uint32_t operStatus = 0;   // IF_OPER_STATUS: 1 up, 2 down, 5 dormant, 7 lower layer down
  uint32_t ifType = 0;       // IANA ifType: 6 Ethernet, 71 IEEE 802.11, 243 mobile broadband
};

// The access point of a connected Wi-Fi interface (the WLAN service's current connection and
// its BSS list).
struct WifiConnectionInfo {
  std::wstring profileName;
  std::wstring ssid;            // UTF-8 text, else the ANSI code page
  std::wstring bssid;           // "AA:BB:CC:DD:EE:FF"
  uint32_t signalQuality = 0;   // 0-100
  int32_t rssi = 0;             // dBm, from the BSS list; 0 unknown
  uint32_t frequencyMHz = 0;    // from the BSS list; 0 unknown
  uint32_t channel = 0;         // from the frequency; 0 unknown
  std::wstring phyType;         // "802.11ax"
  std::wstring authentication;  // "WPA2-Personal"
  std::wstring cipher;          // "CCMP"
  uint32_t rxRateKbps = 0, txRateKbps = 0;
};

class VELHAL_API NetworkAdapter {
 public:
  // The WLAN service's software radio state of the first interface: 1 on, 2 off, 0 unknown
  // (also on any failure).
  unsigned char GetWifiSwitchState();
  // Switches the first interface's software radio; 0 or a Windows error code.
  unsigned long SetWifiSwitchState(bool on);
  // Cached for the life of the process once determined; an undetermined answer is looked for
  // again at the next call.
  WifiCardManuType GetWifiManuType();
  int GetRealtekWifiType();  // 0 when the Wi-Fi chip is Realtek's, else -1
  // From the Network List Manager; 1 when both answers were read, else 0 with both false.
  int IsInternetAvailable(bool& connected, bool& internet);
  // 1 with the first gateway address (dotted text) of the IP adapter that the wireless card
  // names, else 0 with an empty gateway.
  int GetWirelessGateWayIP(std::string& gateway);

  // The IP stack's adapters (GetAdaptersAddresses, IPv4 and IPv6) in its order, loopback and
  // tunnel interfaces left out. An index holds until the adapters change.
  unsigned long GetAdapterCount();
  std::wstring GetAdapterNameByIndex(unsigned long index);  // "Wi-Fi"
  std::wstring GetAdapterDescriptionByIndex(unsigned long index);
  std::wstring GetMacAddressByIndex(unsigned long index);                  // "AA:BB:CC:DD:EE:FF"
  std::vector<std::wstring> GetIpv4AddressesByIndex(unsigned long index);  // "a.b.c.d/24"
  std::vector<std::wstring> GetIpv6AddressesByIndex(unsigned long index);
  std::vector<std::wstring> GetGatewaysByIndex(unsigned long index);
  std::vector<std::wstring> GetDnsServersByIndex(unsigned long index);
  bool IsDhcpEnabledByIndex(unsigned long index);
  uint64_t GetLinkSpeedByIndex(unsigned long index);        // bits per second
  unsigned long GetOperStatusByIndex(unsigned long index);  // IF_OPER_STATUS, 0 none
  // 1 with every fact of adapter index, else 0 with info left as it was.
  int GetIpInfo(unsigned long index, IpAdapterInfo& info);
  // The index of the first IEEE 802.11 adapter, -1 when there is none.
  int GetWireLessIndex();
  // true when an adapter is ready; state is the best adapter's state either way.
  bool CHeckIPReady(IpStateInfo& state);

  // 1 with the access point of the first connected Wi-Fi interface, else 0.
  int GetWifiConnectionInfo(WifiConnectionInfo& info);
  // Whether the Network List Manager sees Internet over IPv4 or IPv6 (GetConnectivity). Uses
  // the thread's COM apartment, joining one only where the thread has none, and leaves the
  // thread as it found it.
  bool IsAnyInternetAvailable();
};
