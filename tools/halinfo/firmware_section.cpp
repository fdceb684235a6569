// The running machine's firmware identity, through SmBiosHelper; the baseboard and BIOS strings
// through Baseboard, which also knows the BIOS serial number.
#include "platform/win32.h"

#include <array>
#include <cstring>
#include <vector>

#include "components/baseboard.h"
#include "firmware/smbios_helper.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"
#include "tools/halinfo/smbios_report.h"

namespace halinfo {
namespace {

using velhal::smbios::Field;

constexpr DWORD kRawSmbiosProvider = 0x52534D42;  // "RSMB"

using TextGetter = std::wstring (SmBiosHelper::*)() const;

// The helper's getter of every text field; the compiler names a field left without one.
TextGetter GetterOf(Field field) {
  switch (field) {
    case Field::kBiosVendor: return &SmBiosHelper::GetBIOSVendor;
    case Field::kBiosVersion: return &SmBiosHelper::GetBIOSVersion;
    case Field::kBiosReleaseDate: return &SmBiosHelper::GetBIOSReleaseDate;
    case Field::kBiosSystemVersion: return &SmBiosHelper::GetBIOSSysVersion;
    case Field::kBiosEcVersion: return &SmBiosHelper::GetBIOSECVersion;
    case Field::kSystemManufacturer: return &SmBiosHelper::GetSysManufactor;
    case Field::kSystemProductName: return &SmBiosHelper::GetSysProductName;
    case Field::kSystemVersion: return &SmBiosHelper::GetSysVersion;
    case Field::kSystemSerialNumber: return &SmBiosHelper::GetSysSerialNumber;
    case Field::kSystemSku: return &SmBiosHelper::GetSysSKU;
    case Field::kSystemFamily: return &SmBiosHelper::GetSysFamily;
    case Field::kBoardManufacturer: return &SmBiosHelper::GetBoardManufactor;
    case Field::kBoardProduct: return &SmBiosHelper::GetBoardProductName;
    case Field::kBoardVersion: return &SmBiosHelper::GetBoardVersion;
    case Field::kBoardSerialNumber: return &SmBiosHelper::GetBoardSerialNumber;
    case Field::kBoardAssetTag: return &SmBiosHelper::GetBoardAssetTag;
    case Field::kBoardLocation: return &SmBiosHelper::GetBoardLocation;
    case Field::kChassisManufacturer: return &SmBiosHelper::GetSecManufactor;
    case Field::kChassisVersion: return &SmBiosHelper::GetSecVersion;
    case Field::kChassisSerialNumber: return &SmBiosHelper::GetSecSerialNumber;
    case Field::kChassisAssetTag: return &SmBiosHelper::GetSecAssetTagNumber;
    case Field::kChassisSku: return &SmBiosHelper::GetSecSKU;
    case Field::kSystemUuid:
    case Field::kChassisType: break;  // not text
  }
  return nullptr;
}

// The one call past the public interface: SmBiosHelper has no getter for the table's versions.
void ReadVersions(SmbiosReport& r) {
  const UINT size = ::GetSystemFirmwareTable(kRawSmbiosProvider, 0, nullptr, 0);
  if (size < 8) return;
  std::vector<uint8_t> table(size);
  if (::GetSystemFirmwareTable(kRawSmbiosProvider, 0, table.data(), size) == size) {
    r.major = table[1];
    r.minor = table[2];
    r.dmi_revision = table[3];
  }
}

SmbiosReport FromRunningMachine() {
  const SmBiosHelper& h = *SmBiosHelper::GetInstance();
  SmbiosReport r;
  ReadVersions(r);
  for (size_t i = 0; i < r.text.size(); ++i) {
    r.text[i] = ToUtf8((h.*GetterOf(static_cast<Field>(i)))());
  }
  Baseboard board;
  const auto set = [&](Field field, const std::wstring& text) {
    r.text[static_cast<size_t>(field)] = ToUtf8(text);
  };
  set(Field::kBoardManufacturer, board.GetBaseboardManufacturer());
  set(Field::kBoardProduct, board.GetBaseboardProduct());
  set(Field::kBoardVersion, board.GetBaseboardVersion());
  set(Field::kBoardSerialNumber, board.GetBaseboardSerialNumber());
  set(Field::kBiosVendor, board.GetBIOSManufacturer());
  set(Field::kBiosVersion, board.GetBIOSVersion());
  set(Field::kBiosReleaseDate, board.GetBIOSReaseDate());
  const GUID uuid = h.GetSysUUID();
  std::array<uint8_t, 16> bytes{};
  std::memcpy(bytes.data(), &uuid, sizeof(uuid));
  r.system_uuid = bytes;
  r.system_uuid_hex = UuidHex(bytes);
  r.chassis_type = h.GetSecType();
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

}  // namespace

Node FirmwareSection() {
  Node report = FromRunningMachine().ToNode();
  // Live only: the BIOS serial falls back to WMI, which a saved table has not.
  for (Node& group : report.children) {
    if (group.key == "bios") {
      group.children.push_back(
          Text("serialNumber", "serial number", ToUtf8(Baseboard().GetBIOSSerialNumber())));
    }
  }
  return report;
}

}  // namespace halinfo
