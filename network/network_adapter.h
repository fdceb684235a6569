// The wireless side of the machine's network adapters: the Wi-Fi radio's software switch, the
// maker of the Wi-Fi chip, whether the machine is connected and on the Internet, and the
// wireless adapter's default gateway. The wireless card is the one NetworkCard classifies so.
// Failures give the member's neutral value; nothing is thrown or logged.
//
// GetWirelessGateWayIP is spelt so in the export table; hosts bind that name.
#pragma once

#include <string>

#include "hal/velhal_export.h"

// The maker of the Wi-Fi chip, from the PCI vendor of the first wireless card.
enum WifiCardManuType : unsigned int {
  WifiCardManuType_Intel = 0,     // VEN_8086
  WifiCardManuType_Realtek = 1,   // VEN_10EC
  WifiCardManuType_Qualcomm = 2,  // VEN_17CB
  WifiCardManuType_Unknown = 3,   // not determined (yet)
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
};
