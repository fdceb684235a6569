// The machine's network cards: which there are, what kind each is (wireless LAN, wired
// Ethernet, mobile broadband) and their identity. A card is known by its first hardware ID.
// Stateless: every call asks the device database, the registry and WMI afresh. Failures read
// as empty strings, 0, false or empty lists.
//
// The GetManufactrue... members are spelt so in the export table; hosts bind those names.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hal/velhal_export.h"

// The kind of a card; any other value selects no card.
enum NetworkCardType : uint32_t {
  NetworkCardType_Wireless = 0,
  NetworkCardType_Wired = 1,
  NetworkCardType_Mobile = 2,
};

// Physical-medium codes (NDIS_PHYSICAL_MEDIUM) that the classification settles on.
enum NetworkPhysicalMedium : unsigned long {
  PhysicalMedium_WirelessWan = 8,   // mobile broadband
  PhysicalMedium_Native802_11 = 9,  // wireless LAN
  PhysicalMedium_802_3 = 14,        // wired Ethernet
};

class VELHAL_API NetworkCard {
 public:
  // Present network-class devices whose first hardware ID begins "PCI", or "QCMS" unless the
  // processor is a Snapdragon (CpuQueryInformation class 18 answering 3); enumeration order.
  std::vector<std::wstring> GetInternalNetCardHardId();
  int GetNetworkCardNumbers();  // entries of GetInternalNetCardHardId
  // First hardware IDs of every present device beginning "PCI", whatever its class.
  std::vector<std::wstring> GetAllPciHardId();

  // Candidate cards classified wireless (medium 9), wired (14), mobile (8), in order; the
  // single-card getters give the first of each list or an empty string.
  std::vector<std::wstring> GetAllWireLessHardId();
  std::vector<std::wstring> GetAllWiredHardId();
  std::vector<std::wstring> GetAllMobileHardId();
  std::wstring GetWireLessCardHardId();
  std::wstring GetWiredCardHardId();
  std::wstring GetMobileCardHardId();
  std::wstring GetHardIDByType(NetworkCardType type);  // empty for another value

  // Classification of one card by hardware ID, whether it is a candidate or not.
  bool IsWlanOrWifi(const std::wstring& hardId);
  bool IsMobileCard(const std::wstring& hardId);
  bool IsWiredCard(const std::wstring& hardId);
  bool IsNotSupportWireLessCard();  // always false
  // 1 with the card's medium: from its description, driver stack, registry class key, or its
  // connection name, the first that settles it. Always settles in the end.
  int GetMediaTypeByHardId(const std::wstring& hardId, unsigned long& medium);
  // 1 with "*PhysicalMediaType" of the network class key `key` (a path under
  // HKEY_LOCAL_MACHINE) when hardId contains its "ComponentId" (letter case aside), else 0.
  int GetMediaTypeByRegedit(const std::wstring& key, const std::wstring& hardId,
                            unsigned long& medium);
  // The same matched on the key's "DeviceInstanceID".
  int GetMediaTypeByRegeditEx(const std::wstring& key, const std::wstring& hardId,
                              unsigned long& medium);

  // Device-database properties of the device with this first hardware ID.
  std::wstring GetManufactrueByHardId(const std::wstring& hardId);    // manufacturer
  std::wstring GetDriverVersionByHardId(const std::wstring& hardId);  // driver version
  std::wstring GetCaptionByHardId(const std::wstring& hardId);        // device description
  std::wstring GetDisplayNameByHardId(const std::wstring& hardId);    // device name
  std::wstring GetINFByHardId(const std::wstring& hardId);            // driver INF path
  std::wstring GetInstanceIDByHardId(const std::wstring& hardId);     // device instance ID
  unsigned long GetProblemCodeByHardId(const std::wstring& hardId);   // Plug and Play problem, 0
  // Win32_NetworkAdapter (ROOT\CIMV2) of the adapter named as the device is.
  std::wstring GetMacAddressByHardId(const std::wstring& hardId);   // MACAddress
  std::wstring GetGUIDByHardId(const std::wstring& hardId);         // GUID
  std::wstring GetAdapterTypeByHardId(const std::wstring& hardId);  // AdapterType

  // The same of the first card of a kind.
  std::wstring GetManufactrue(NetworkCardType type);
  std::wstring GetDriverVersion(NetworkCardType type);
  std::wstring GetCaption(NetworkCardType type);
  std::wstring GetDisplayName(NetworkCardType type);
  std::wstring GetINF(NetworkCardType type);
  unsigned long GetProblemCode(NetworkCardType type);
  std::wstring GetMacAddress(NetworkCardType type);
  std::wstring GetGUID(NetworkCardType type);
  std::wstring GetAdapterType(NetworkCardType type);
};
