// The running machine's firmware identity, through SmBiosHelper.
#include "platform/win32.h"

#include <cstring>

#include "firmware/smbios_helper.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/smbios_report.h"

namespace halinfo {

constexpr DWORD kRawSmbiosProvider = 0x52534D42;  // "RSMB"

SmbiosReport SmbiosReport::FromRunningMachine() {
  const SmBiosHelper& h = *SmBiosHelper::GetInstance();
  SmbiosReport r;
  // Versions are not among the helper's getters; the table's header has them.
  const UINT size = ::GetSystemFirmwareTable(kRawSmbiosProvider, 0, nullptr, 0);
  if (size >= 8) {
    std::vector<uint8_t> table(size);
    if (::GetSystemFirmwareTable(kRawSmbiosProvider, 0, table.data(), size) == size) {
      r.major = table[1];
      r.minor = table[2];
      r.dmi_revision = table[3];
    }
  }
  r.bios_vendor = ToUtf8(h.GetBIOSVendor());
  r.bios_version = ToUtf8(h.GetBIOSVersion());
  r.bios_release_date = ToUtf8(h.GetBIOSReleaseDate());
  r.bios_system_version = ToUtf8(h.GetBIOSSysVersion());
  r.bios_ec_version = ToUtf8(h.GetBIOSECVersion());
  r.system_manufacturer = ToUtf8(h.GetSysManufactor());
  r.system_product_name = ToUtf8(h.GetSysProductName());
  r.system_version = ToUtf8(h.GetSysVersion());
  r.system_serial_number = ToUtf8(h.GetSysSerialNumber());
  const GUID uuid = h.GetSysUUID();
  std::array<uint8_t, 16> bytes{};
  std::memcpy(bytes.data(), &uuid, sizeof(uuid));
  r.system_uuid_hex = UuidHex(bytes);
  r.system_sku = ToUtf8(h.GetSysSKU());
  r.system_family = ToUtf8(h.GetSysFamily());
  r.board_manufacturer = ToUtf8(h.GetBoardManufactor());
  r.board_product = ToUtf8(h.GetBoardProductName());
  r.board_version = ToUtf8(h.GetBoardVersion());
  r.board_serial_number = ToUtf8(h.GetBoardSerialNumber());
  r.board_asset_tag = ToUtf8(h.GetBoardAssetTag());
  r.board_location = ToUtf8(h.GetBoardLocation());
  r.chassis_manufacturer = ToUtf8(h.GetSecManufactor());
  r.chassis_type = h.GetSecType();
  r.chassis_version = ToUtf8(h.GetSecVersion());
  r.chassis_serial_number = ToUtf8(h.GetSecSerialNumber());
  r.chassis_asset_tag = ToUtf8(h.GetSecAssetTagNumber());
  r.chassis_sku = ToUtf8(h.GetSecSKU());
  // The helper answers empty for numbers it holds no string under, so only non-empty ones are
  // known to be stored; the running report lists those.
  const std::pair<int, std::wstring> oem[] = {
      {1, h.GetOemString1()}, {2, h.GetOemString2()}, {3, h.GetOemString3()},
      {4, h.GetOemString4()}, {6, FromAnsi(h.GetOemBiosWhitePointInfo())},
      {7, h.GetOemProductName()}, {10, h.GetPropagandaName()}};
  for (const auto& [number, text] : oem) {
    if (!text.empty()) r.oem_strings[number] = ToUtf8(text);
  }
  r.device_value = h.GetBiosDeviceValue();
  r.brand = h.GetBrandType();
  DeviceConsumerType consumer = DeviceConsumerNone;
  h.GetComsumerType(consumer);
  r.consumer_type = consumer;
  r.detachable = IsTypeDetachablePC();
  r.unsupport_wifi_and_bt = h.IsUnsupportWifiAndBT();
  return r;
}

}  // namespace halinfo
