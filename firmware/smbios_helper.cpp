#include "platform/win32.h"

#include "firmware/smbios_helper.h"

#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "core/identity.h"
#include "core/smbios_fields.h"
#include "firmware/smbios_reader.h"
#include "platform/boundary.h"
#include "platform/lazy_instance.h"
#include "platform/process_state.h"
#include "platform/string_conversion.h"

namespace {

// The unsupported-SKU list: process-wide beside the instance, filled while it is constructed.
std::mutex g_sku_mutex;
std::vector<std::string> g_unsupported_skus;

}  // namespace

using enum velhal::smbios::Field;

struct SmBiosHelper::Reader {
  // The instance, from the firmware's table; the unsupported-SKU list is read beside it.
  static std::unique_ptr<SmBiosHelper> Read() {
    std::unique_ptr<SmBiosHelper> helper(new SmBiosHelper());
    velhal::CallGuarded(false, [&] {
      const velhal::firmware::SmBiosSnapshot snapshot = velhal::firmware::ReadSmBios();
      const velhal::smbios::Fields& f = snapshot.fields;
      helper->major_version_ = snapshot.major;
      helper->minor_version_ = snapshot.minor;
      helper->dmi_revision_ = snapshot.dmi_revision;
      helper->text_.resize(f.text.size());
      for (size_t i = 0; i < f.text.size(); ++i) helper->text_[i] = AnsiToWide(f.text[i]);
      std::memcpy(&helper->system_uuid_, f.system_uuid.data(), sizeof(helper->system_uuid_));
      helper->chassis_type_ = f.chassis_type;
      for (const auto& [number, text] : f.oem_strings) {
        helper->oem_strings_[number] = AnsiToWide(text);
      }
      return true;
    });
    velhal::CallGuarded(false, [] {
      std::vector<std::string> skus = velhal::firmware::ReadUnsupportedSkus();
      const std::lock_guard<std::mutex> lock(g_sku_mutex);
      g_unsupported_skus = std::move(skus);
      return true;
    });
    return helper;
  }
};

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
      return Reader::Read();
    });
  });
}

namespace {

std::wstring Text(const std::vector<std::wstring>& text, velhal::smbios::Field field) {
  const auto index = static_cast<size_t>(field);
  return index < text.size() ? text[index] : std::wstring();
}

// A lookup that finds nothing answers empty and inserts nothing, so readers never race.
std::wstring Oem(const std::map<int, std::wstring>& strings, int number) {
  const auto found = strings.find(number);
  return found == strings.end() ? std::wstring() : found->second;
}

}  // namespace

std::wstring SmBiosHelper::GetBIOSVendor() const { return Text(text_, kBiosVendor); }
std::wstring SmBiosHelper::GetBIOSVersion() const { return Text(text_, kBiosVersion); }
std::wstring SmBiosHelper::GetBIOSReleaseDate() const { return Text(text_, kBiosReleaseDate); }
std::wstring SmBiosHelper::GetBIOSSysVersion() const { return Text(text_, kBiosSystemVersion); }
std::wstring SmBiosHelper::GetBIOSECVersion() const { return Text(text_, kBiosEcVersion); }
std::wstring SmBiosHelper::GetSysManufactor() const { return Text(text_, kSystemManufacturer); }
std::wstring SmBiosHelper::GetSysProductName() const { return Text(text_, kSystemProductName); }
std::wstring SmBiosHelper::GetSysVersion() const { return Text(text_, kSystemVersion); }
std::wstring SmBiosHelper::GetSysSerialNumber() const { return Text(text_, kSystemSerialNumber); }
GUID SmBiosHelper::GetSysUUID() const { return system_uuid_; }
std::wstring SmBiosHelper::GetSysSKU() const { return Text(text_, kSystemSku); }
std::wstring SmBiosHelper::GetSysFamily() const { return Text(text_, kSystemFamily); }
std::wstring SmBiosHelper::GetBoardManufactor() const { return Text(text_, kBoardManufacturer); }
std::wstring SmBiosHelper::GetBoardProductName() const { return Text(text_, kBoardProduct); }
std::wstring SmBiosHelper::GetBoardVersion() const { return Text(text_, kBoardVersion); }
std::wstring SmBiosHelper::GetBoardSerialNumber() const { return Text(text_, kBoardSerialNumber); }
std::wstring SmBiosHelper::GetBoardAssetTag() const { return Text(text_, kBoardAssetTag); }
std::wstring SmBiosHelper::GetBoardLocation() const { return Text(text_, kBoardLocation); }
std::wstring SmBiosHelper::GetSecManufactor() const { return Text(text_, kChassisManufacturer); }
unsigned char SmBiosHelper::GetSecType() const { return chassis_type_; }
std::wstring SmBiosHelper::GetSecVersion() const { return Text(text_, kChassisVersion); }
std::wstring SmBiosHelper::GetSecSerialNumber() const { return Text(text_, kChassisSerialNumber); }
std::wstring SmBiosHelper::GetSecAssetTagNumber() const { return Text(text_, kChassisAssetTag); }
std::wstring SmBiosHelper::GetSecSKU() const { return Text(text_, kChassisSku); }
std::string SmBiosHelper::GetSecSkuA() const { return WideToAnsi(GetSecSKU()); }
std::wstring SmBiosHelper::GetOemString1() const { return Oem(oem_strings_, 1); }
std::wstring SmBiosHelper::GetOemString2() const { return Oem(oem_strings_, 2); }
std::wstring SmBiosHelper::GetOemString3() const { return Oem(oem_strings_, 3); }
std::wstring SmBiosHelper::GetOemString4() const { return Oem(oem_strings_, 4); }
std::string SmBiosHelper::GetOemBiosWhitePointInfo() const {
  return WideToAnsi(Oem(oem_strings_, 6));
}
std::wstring SmBiosHelper::GetOemProductName() const { return Oem(oem_strings_, 7); }
std::wstring SmBiosHelper::GetPropagandaName() const { return Oem(oem_strings_, 10); }

uint16_t SmBiosHelper::GetBiosDeviceValue() const {
  return velhal::identity::DeviceValue(Oem(oem_strings_, 1));
}
bool SmBiosHelper::IsCorvaneDevice() const {
  return velhal::identity::IsCorvane(GetBiosDeviceValue());
}
bool SmBiosHelper::IsTalmerDevice() const {
  return velhal::identity::IsTalmer(GetBiosDeviceValue());
}
bool SmBiosHelper::IsSmartDevice() const { return velhal::identity::IsSmart(GetBiosDeviceValue()); }
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
  const bool known = velhal::identity::ConsumerType(Oem(oem_strings_, 1), value);
  type = static_cast<DeviceConsumerType>(value);
  return known;
}

bool SmBiosHelper::IsConsumerTypeToB() const {
  return velhal::identity::IsConsumerTypeToB(Oem(oem_strings_, 1));
}

bool SmBiosHelper::IsUnsupportWifiAndBT() const {
  return velhal::CallGuarded(false, [&] {
    const std::lock_guard<std::mutex> lock(g_sku_mutex);
    return velhal::identity::IsUnsupportWifiAndBt(Oem(oem_strings_, 7), Oem(oem_strings_, 1),
                                                  GetSecSkuA(), g_unsupported_skus);
  });
}

bool IsTypeDetachablePC() {
  return velhal::CallGuarded(false, [] {
    return SmBiosHelper::GetInstance()->GetSecType() == velhal::identity::kChassisDetachable;
  });
}
