#include "network/network_card.h"

#include <gtest/gtest.h>

#include "platform/device_informention.h"
#include "platform/device_property_keys.h"
#include "tests/support/net_cards.h"

namespace {

namespace keys = velhal::device_keys;
using velhal::testing::FakeValue;

const std::wstring kIntelWifi = L"PCI\\VEN_8086&DEV_2723&SUBSYS_00848086";
const std::wstring kRealtekLan = L"PCI\\VEN_10EC&DEV_8168&SUBSYS_86771043";
const std::wstring kModem = L"QCMS\\VEN_17CB&DEV_0306";
const std::wstring kUsbWifi = L"USB\\VID_0BDA&PID_C811";

class NetworkCardTest : public ::testing::Test {
 protected:
  // Not a Snapdragon: QCMS cards are candidates too.
  void SetUp() override { net_.Processor(L"Intel(R) Core(TM) i7-1165G7"); }

  unsigned long Medium(const std::wstring& hard_id) {
    unsigned long medium = 0xBAD;
    EXPECT_EQ(cards_.GetMediaTypeByHardId(hard_id, medium), 1);
    return medium;
  }

  velhal::testing::FakeSystem os_;
  velhal::testing::NetCards net_{os_};
  NetworkCard cards_;
};

TEST_F(NetworkCardTest, CandidatesArePciAndQcmsUnlessTheProcessorIsASnapdragon) {
  net_.Add(L"ROOT\\NET\\0000", L"Software loopback");
  net_.Add(kRealtekLan, L"Ethernet controller");
  net_.Add(kUsbWifi, L"USB Wi-Fi");
  net_.Add(kModem, L"Modem");
  net_.Add(L"pci\\ven_8086&dev_15bc", L"lower-case ID");  // "PCI" is matched with its case
  net_.Add(L"ACPI\\PCI0001", L"PCI only further inside");
  net_.Add(kIntelWifi, L"Gone").present = false;

  EXPECT_EQ(cards_.GetInternalNetCardHardId(), (std::vector<std::wstring>{kRealtekLan, kModem}));
  EXPECT_EQ(cards_.GetNetworkCardNumbers(), 2);

  net_.Processor(L"Snapdragon (TM) 8cx Gen 3 @ 3.0 GHz");
  EXPECT_EQ(cards_.GetInternalNetCardHardId(), std::vector<std::wstring>{kRealtekLan});
  net_.Processor(L"Qualcomm Snapdragon X Elite");  // type 0: QCMS comes back
  EXPECT_EQ(cards_.GetNetworkCardNumbers(), 2);
}

TEST_F(NetworkCardTest, EachRuleSettlesBeforeTheNext) {
  // 1: the description, in any letter case, before stack and registry are looked at.
  net_.Add(L"PCI\\A", L"Example WIRELESS-AC 9560");
  net_.ClassKey(0, L"PCI\\A", 14);
  // 2: a virtual Wi-Fi bus driver in the stack, before the registry.
  net_.Add(L"PCI\\B", L"Network controller")
      .StringList(keys::kByProperty[DeviceProperty_Stack],
                  {L"\\Driver\\netwtw", L"\\Driver\\VWiFiBus"});
  net_.ClassKey(1, L"PCI\\B", 14);
  // 3: the class key whose component ID (the needle) occurs in the hardware ID, letter case
  // aside; its medium wins over a Wi-Fi connection name.
  net_.Add(L"PCI\\VEN_17CB&DEV_0306&SUBSYS_0001", L"Mobile broadband");
  net_.ClassKey(2, L"pci\\ven_17cb&dev_0306", 8);
  net_.ConnectionName(L"Mobile broadband", L"Wi-Fi 3");
  net_.Add(L"PCI\\D", L"Last searched key");
  net_.ClassKey(29, L"PCI\\D", 14);
  // 4: no key settles: \0030 is never searched, nor is a component ID that only contains the
  // hardware ID; the connection name decides.
  net_.Add(L"PCI\\E", L"Instance thirty");
  net_.ClassKey(30, L"PCI\\E", 8);
  net_.ConnectionName(L"Instance thirty", L"WLAN");
  net_.Add(L"PCI\\F", L"Haystack and needle swapped");
  net_.ClassKey(3, L"PCI\\F&SUBSYS_1234", 8);
  net_.ConnectionName(L"Haystack and needle swapped", L"Ethernet 2");
  net_.Add(L"PCI\\G", L"Named wi-fi");
  net_.ConnectionName(L"Named wi-fi", L"my wi-fi");
  net_.Add(L"PCI\\H", L"No connection name");

  struct Case {
    const wchar_t* id;
    unsigned long medium;
    size_t keys_opened;
    bool asks_connection_name;
  };
  const Case cases[] = {
      {L"PCI\\A", 9, 0, false},
      {L"PCI\\B", 9, 0, false},
      {L"PCI\\VEN_17CB&DEV_0306&SUBSYS_0001", 8, 3, false},
      {L"PCI\\D", 14, 30, false},
      {L"PCI\\E", 9, 30, true},
      {L"PCI\\F", 14, 30, true},
      {L"PCI\\G", 9, 30, true},
      {L"PCI\\H", 14, 30, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.id);
    const size_t keys_before = os_.registry.requested_access().size();
    const size_t queries_before = os_.wmi.calls.size();
    EXPECT_EQ(Medium(c.id), c.medium);
    EXPECT_EQ(os_.registry.requested_access().size() - keys_before, c.keys_opened);
    EXPECT_EQ(os_.wmi.calls.size() - queries_before, c.asks_connection_name ? 1u : 0u);
  }
  EXPECT_EQ(os_.registry.requested_access().back(), static_cast<REGSAM>(KEY_READ));
}

TEST_F(NetworkCardTest, TypeListsHoldCandidatesOfEachMediumInOrder) {
  net_.Add(kRealtekLan, L"Realtek PCIe GbE Family Controller");
  net_.ClassKey(0, L"PCI\\VEN_10EC&DEV_8168", 14);
  net_.Add(kUsbWifi, L"USB Wireless LAN Card");  // never a candidate
  net_.Add(kIntelWifi, L"Intel(R) Wireless-AC 9462");
  net_.Add(kModem, L"Snapdragon X55 5G");
  net_.ClassKey(1, kModem, 8);
  net_.Add(L"PCI\\VEN_8086&DEV_15F3", L"Intel(R) Ethernet Controller I225-V");

  EXPECT_EQ(cards_.GetAllWireLessHardId(), std::vector<std::wstring>{kIntelWifi});
  EXPECT_EQ(cards_.GetAllWiredHardId(),
            (std::vector<std::wstring>{kRealtekLan, L"PCI\\VEN_8086&DEV_15F3"}));
  EXPECT_EQ(cards_.GetAllMobileHardId(), std::vector<std::wstring>{kModem});
  EXPECT_EQ(cards_.GetWiredCardHardId(), kRealtekLan);
  EXPECT_EQ(cards_.GetHardIDByType(NetworkCardType_Wireless), kIntelWifi);
  EXPECT_EQ(cards_.GetHardIDByType(NetworkCardType_Mobile), kModem);
  EXPECT_EQ(cards_.GetHardIDByType(static_cast<NetworkCardType>(3)), L"");

  // Asked directly, the USB card is classified all the same.
  EXPECT_TRUE(cards_.IsWlanOrWifi(kUsbWifi));
  EXPECT_TRUE(cards_.IsMobileCard(kModem));
  EXPECT_TRUE(cards_.IsWiredCard(kRealtekLan));
  EXPECT_FALSE(cards_.IsWiredCard(kIntelWifi));
  EXPECT_FALSE(cards_.IsNotSupportWireLessCard());

  net_.Processor(L"Snapdragon (TM) 8cx Gen 3");
  EXPECT_EQ(cards_.GetMobileCardHardId(), L"");
}

TEST_F(NetworkCardTest, RegistryMatchReadsAtMost130UnitsOfTheMatchedValue) {
  const std::wstring key = std::wstring(velhal::testing::NetCards::kClassRoot) + L"0007";
  os_.registry.SetString(key, L"DeviceInstanceID", L"PCI\\VEN_10EC&DEV_8168\\4&1A2B");
  os_.registry.SetDword(key, L"*PhysicalMediaType", 14);
  unsigned long medium = 0;
  EXPECT_EQ(cards_.GetMediaTypeByRegedit(key, kRealtekLan, medium), 0);  // no ComponentId
  EXPECT_EQ(cards_.GetMediaTypeByRegeditEx(key, L"pci\\ven_10ec&dev_8168\\4&1a2b&0", medium), 1);
  EXPECT_EQ(medium, 14u);

  os_.registry.SetString(key, L"ComponentId", std::wstring(130, L'X'));  // 262 bytes with NUL
  EXPECT_EQ(cards_.GetMediaTypeByRegedit(key, std::wstring(140, L'x'), medium), 0);
  os_.registry.SetString(key, L"ComponentId", std::wstring(129, L'X'));
  EXPECT_EQ(cards_.GetMediaTypeByRegedit(key, std::wstring(140, L'x'), medium), 1);
  EXPECT_EQ(cards_.GetMediaTypeByRegedit(key + L"9", kRealtekLan, medium), 0);  // no such key
}

TEST_F(NetworkCardTest, GettersReadTheCardsOwnProperties) {
  auto& card = net_.Add(kIntelWifi, L"Intel(R) Wireless-AC 9560 160MHz");
  const std::pair<EnumDeviceProperty, std::wstring (NetworkCard::*)(const std::wstring&)> by_id[] =
      {
          {DeviceProperty_Manufacturer, &NetworkCard::GetManufactrueByHardId},
          {DeviceProperty_DriverVersion, &NetworkCard::GetDriverVersionByHardId},
          {DeviceProperty_Name, &NetworkCard::GetDisplayNameByHardId},
          {DeviceProperty_DriverInfPath, &NetworkCard::GetINFByHardId},
          {DeviceProperty_InstanceId, &NetworkCard::GetInstanceIDByHardId},
      };
  for (const auto& [property, getter] : by_id) {
    card.String(keys::kByProperty[property], L"value " + std::to_wstring(property));
  }
  card.UInt32(keys::kByProperty[DeviceProperty_ProblemCode], 43);
  for (const auto& [property, getter] : by_id) {
    SCOPED_TRACE(testing::Message() << "property " << property);
    EXPECT_EQ((cards_.*getter)(kIntelWifi), L"value " + std::to_wstring(property));
  }
  EXPECT_EQ(cards_.GetCaptionByHardId(kIntelWifi), L"Intel(R) Wireless-AC 9560 160MHz");
  EXPECT_EQ(cards_.GetProblemCodeByHardId(kIntelWifi), 43u);

  // By kind: the first wireless card's; nothing for a kind without a card.
  EXPECT_EQ(cards_.GetDriverVersion(NetworkCardType_Wireless), L"value 2");
  EXPECT_EQ(cards_.GetINF(NetworkCardType_Wireless), L"value 8");
  EXPECT_EQ(cards_.GetProblemCode(NetworkCardType_Wireless), 43u);
  EXPECT_EQ(cards_.GetManufactrue(NetworkCardType_Wired), L"");
  EXPECT_EQ(cards_.GetProblemCode(NetworkCardType_Mobile), 0u);
}

TEST_F(NetworkCardTest, WmiGettersInsertTheDeviceNameAsItStands) {
  net_.Add(kIntelWifi, L"Example Wireless")
      .String(keys::kByProperty[DeviceProperty_Name], L"Bob's Wi-Fi");
  const std::wstring name = L"Bob's Wi-Fi'";
  os_.wmi.Script(L"ROOT\\CIMV2",
                 L"SELECT MACAddress FROM Win32_NetworkAdapter WHERE MACAddress IS NOT NULL and "
                 L"Name='" +
                     name,
                 L"MACAddress", {FakeValue::Text(L"A4:C3:F0:12:34:56")});
  os_.wmi.Script(L"ROOT\\CIMV2", L"SELECT GUID FROM Win32_NetworkAdapter WHERE Name='" + name,
                 L"GUID", {FakeValue::Text(L"{0C5F3DB1-7A0E-4C1E-9B8E-2D5E7F1A2B3C}")});
  os_.wmi.Script(L"ROOT\\CIMV2",
                 L"SELECT AdapterType FROM Win32_NetworkAdapter WHERE Name='" + name,
                 L"AdapterType", {FakeValue::Text(L"Ethernet 802.3")});

  EXPECT_EQ(cards_.GetMacAddressByHardId(kIntelWifi), L"A4:C3:F0:12:34:56");
  EXPECT_EQ(cards_.GetGUID(NetworkCardType_Wireless), L"{0C5F3DB1-7A0E-4C1E-9B8E-2D5E7F1A2B3C}");
  EXPECT_EQ(cards_.GetAdapterType(NetworkCardType_Wireless), L"Ethernet 802.3");
  EXPECT_EQ(cards_.GetMacAddress(NetworkCardType_Wired), L"");
}

}  // namespace
