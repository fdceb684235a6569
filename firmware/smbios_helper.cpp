#include "platform/win32.h"

#include "firmware/smbios_helper.h"

#include <cstring>
#include <mutex>
#include <vector>

#include "core/identity.h"
#include "firmware/smbios_reader.h"
#include "platform/boundary.h"
#include "platform/lazy_instance.h"
#include "platform/process_state.h"
#include "platform/string_conversion.h"

namespace {

// The unsupported-SKU list: process-wide beside the instance, filled while it is constructed.
std::mutex g_sku_mutex;
std::vector<std::string> g_unsupported_skus;

std::wstring Text(const std::string& raw) { return AnsiToWide(raw); }

}  // namespace

SmBiosHelper::SmBiosHelper()
    : major_version_(0), minor_version_(0), dmi_revision_(0), system_uuid_{}, chassis_type_(0) {
  velhal::CallGuarded(false, [&] {
    const velhal::firmware::SmBiosSnapshot snapshot = velhal::firmware::ReadSmBios();
    const velhal::smbios::Fields& f = snapshot.fields;
    major_version_ = snapshot.major;
    minor_version_ = snapshot.minor;
    dmi_revision_ = snapshot.dmi_revision;
    bios_vendor_ = Text(f.bios_vendor);
    bios_version_ = Text(f.bios_version);
    bios_release_date_ = Text(f.bios_release_date);
    bios_system_version_ = Text(f.bios_system_version);
    bios_ec_version_ = Text(f.bios_ec_version);
    system_manufacturer_ = Text(f.system_manufacturer);
    system_product_name_ = Text(f.system_product_name);
    system_version_ = Text(f.system_version);
    system_serial_number_ = Text(f.system_serial_number);
    std::memcpy(&system_uuid_, f.system_uuid.data(), sizeof(system_uuid_));
    system_sku_ = Text(f.system_sku);
    system_family_ = Text(f.system_family);
    board_manufacturer_ = Text(f.board_manufacturer);
    board_product_ = Text(f.board_product);
    board_version_ = Text(f.board_version);
    board_serial_number_ = Text(f.board_serial_number);
    board_asset_tag_ = Text(f.board_asset_tag);
    board_location_ = Text(f.board_location);
    chassis_manufacturer_ = Text(f.chassis_manufacturer);
    chassis_type_ = f.chassis_type;
    chassis_version_ = Text(f.chassis_version);
    chassis_serial_number_ = Text(f.chassis_serial_number);
    chassis_asset_tag_ = Text(f.chassis_asset_tag);
    chassis_sku_ = Text(f.chassis_sku);
    for (const auto& [number, text] : f.oem_strings) oem_strings_[number] = Text(text);
    return true;
  });
  velhal::CallGuarded(false, [] {
    std::vector<std::string> skus = velhal::firmware::ReadUnsupportedSkus();
    const std::lock_guard<std::mutex> lock(g_sku_mutex);
    g_unsupported_skus = std::move(skus);
    return true;
  });
}

namespace {

velhal::LazyInstance<SmBiosHelper>& Instance() {
  static velhal::LazyInstance<SmBiosHelper> instance;
  return instance;
}

void ForgetInstance() {
  Instance().Forget();
  const std::lock_guard<std::mutex> lock(g_sku_mutex);
  g_unsupported_skus.clear();
}

}  // namespace

SmBiosHelper* SmBiosHelper::GetInstance() {
  return velhal::CallGuarded<SmBiosHelper*>(nullptr, [] {
    return &Instance().Get([] {
      velhal::RegisterProcessStateReset(&ForgetInstance);
      return std::unique_ptr<SmBiosHelper>(new SmBiosHelper());
    });
  });
}

// A lookup that finds nothing answers empty and inserts nothing, so readers never race.
std::wstring SmBiosHelper::Oem(int number) const {
  const auto found = oem_strings_.find(number);
  return found == oem_strings_.end() ? std::wstring() : found->second;
}

std::wstring SmBiosHelper::GetBIOSVendor() const { return bios_vendor_; }
std::wstring SmBiosHelper::GetBIOSVersion() const { return bios_version_; }
std::wstring SmBiosHelper::GetBIOSReleaseDate() const { return bios_release_date_; }
std::wstring SmBiosHelper::GetBIOSSysVersion() const { return bios_system_version_; }
std::wstring SmBiosHelper::GetBIOSECVersion() const { return bios_ec_version_; }
std::wstring SmBiosHelper::GetSysManufactor() const { return system_manufacturer_; }
std::wstring SmBiosHelper::GetSysProductName() const { return system_product_name_; }
std::wstring SmBiosHelper::GetSysVersion() const { return system_version_; }
std::wstring SmBiosHelper::GetSysSerialNumber() const { return system_serial_number_; }
GUID SmBiosHelper::GetSysUUID() const { return system_uuid_; }
std::wstring SmBiosHelper::GetSysSKU() const { return system_sku_; }
std::wstring SmBiosHelper::GetSysFamily() const { return system_family_; }
std::wstring SmBiosHelper::GetBoardManufactor() const { return board_manufacturer_; }
std::wstring SmBiosHelper::GetBoardProductName() const { return board_product_; }
std::wstring SmBiosHelper::GetBoardVersion() const { return board_version_; }
std::wstring SmBiosHelper::GetBoardSerialNumber() const { return board_serial_number_; }
std::wstring SmBiosHelper::GetBoardAssetTag() const { return board_asset_tag_; }
std::wstring SmBiosHelper::GetBoardLocation() const { return board_location_; }
std::wstring SmBiosHelper::GetSecManufactor() const { return chassis_manufacturer_; }
unsigned char SmBiosHelper::GetSecType() const { return chassis_type_; }
std::wstring SmBiosHelper::GetSecVersion() const { return chassis_version_; }
std::wstring SmBiosHelper::GetSecSerialNumber() const { return chassis_serial_number_; }
std::wstring SmBiosHelper::GetSecAssetTagNumber() const { return chassis_asset_tag_; }
std::wstring SmBiosHelper::GetSecSKU() const { return chassis_sku_; }
std::string SmBiosHelper::GetSecSkuA() const { return WideToAnsi(chassis_sku_); }
std::wstring SmBiosHelper::GetOemString1() const { return Oem(1); }
std::wstring SmBiosHelper::GetOemString2() const { return Oem(2); }
std::wstring SmBiosHelper::GetOemString3() const { return Oem(3); }
std::wstring SmBiosHelper::GetOemString4() const { return Oem(4); }
std::string SmBiosHelper::GetOemBiosWhitePointInfo() const { return WideToAnsi(Oem(6)); }
std::wstring SmBiosHelper::GetOemProductName() const { return Oem(7); }
std::wstring SmBiosHelper::GetPropagandaName() const { return Oem(10); }

uint16_t SmBiosHelper::GetBiosDeviceValue() const {
  return velhal::identity::DeviceValue(Oem(1));
}
bool SmBiosHelper::IsCorvaneDevice() const {
  return velhal::identity::IsCorvane(GetBiosDeviceValue());
}
bool SmBiosHelper::IsTalmerDevice() const {
  return velhal::identity::IsTalmer(GetBiosDeviceValue());
}
bool SmBiosHelper::IsSmartDevice() const {
  return velhal::identity::IsSmart(GetBiosDeviceValue());
}
bool SmBiosHelper::IsBrakkonDevice() const {
  return velhal::identity::IsBrakkon(GetBiosDeviceValue());
}
bool SmBiosHelper::IsOndrelDevice() const {
  return velhal::identity::IsOndrel(GetBiosDeviceValue(), chassis_type_);
}
bool SmBiosHelper::IsVastrelDevice() const {
  return velhal::identity::IsVastrel(GetBiosDeviceValue(), chassis_type_);
}
bool SmBiosHelper::IsCorvaneStationDevice() const {
  return velhal::identity::IsCorvaneStation(GetBiosDeviceValue(), chassis_type_);
}
BrandType SmBiosHelper::GetBrandType() const {
  return static_cast<BrandType>(velhal::identity::BrandOf(GetBiosDeviceValue()));
}

bool SmBiosHelper::GetComsumerType(DeviceConsumerType& type) const {
  uint32_t value = 0;
  const bool known = velhal::identity::ConsumerType(Oem(1), value);
  type = static_cast<DeviceConsumerType>(value);
  return known;
}

bool SmBiosHelper::IsConsumerTypeToB() const {
  return velhal::identity::IsConsumerTypeToB(Oem(1));
}

bool SmBiosHelper::IsUnsupportWifiAndBT() const {
  return velhal::CallGuarded(false, [&] {
    const std::lock_guard<std::mutex> lock(g_sku_mutex);
    return velhal::identity::IsUnsupportWifiAndBt(Oem(7), Oem(1), GetSecSkuA(),
                                                  g_unsupported_skus);
  });
}

bool IsTypeDetachablePC() {
  return velhal::CallGuarded(false, [] {
    return SmBiosHelper::GetInstance()->GetSecType() == velhal::identity::kChassisDetachable;
  });
}
