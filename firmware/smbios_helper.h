// The machine's firmware identity, read once per process from the SMBIOS table: BIOS, system,
// baseboard, chassis and OEM strings, and what the maker's codes in them say about the machine.
// Getter names (GetSysManufactor, GetComsumerType, IsUnsupportWifiAndBT, ...) are the export
// table's; hosts bind them.
#pragma once

#include <guiddef.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "hal/velhal_export.h"

enum BrandType : uint32_t {
  BRAND_CORVANE = 0,
  BRAND_TALMER = 1,
  BRAND_SMART = 2,
  BRAND_UNKNOWN = 3,
};

// 0 not set; 1 the consumer channel; 2 to 5 the business channels.
enum DeviceConsumerType : uint32_t {
  DeviceConsumerNone = 0,
  DeviceConsumer = 1,
  DeviceBusiness2 = 2,
  DeviceBusiness3 = 3,
  DeviceBusiness4 = 4,
  DeviceBusiness5 = 5,
};

class VELHAL_API SmBiosHelper {
 public:
  // The one instance; the first call reads the firmware (thread-safe), later calls return it.
  static SmBiosHelper* GetInstance();

  std::wstring GetBIOSVendor() const;
  std::wstring GetBIOSVersion() const;
  std::wstring GetBIOSReleaseDate() const;
  std::wstring GetBIOSSysVersion() const;  // e.g. "1.05"
  std::wstring GetBIOSECVersion() const;   // e.g. "1.5"
  std::wstring GetSysManufactor() const;
  std::wstring GetSysProductName() const;
  std::wstring GetSysVersion() const;
  std::wstring GetSysSerialNumber() const;
  GUID GetSysUUID() const;  // the 16 bytes as stored in the table
  std::wstring GetSysSKU() const;
  std::wstring GetSysFamily() const;
  std::wstring GetBoardManufactor() const;
  std::wstring GetBoardProductName() const;
  std::wstring GetBoardVersion() const;
  std::wstring GetBoardSerialNumber() const;
  std::wstring GetBoardAssetTag() const;
  std::wstring GetBoardLocation() const;
  std::wstring GetSecManufactor() const;
  unsigned char GetSecType() const;  // the whole chassis-type byte, lock bit included
  std::wstring GetSecVersion() const;
  std::wstring GetSecSerialNumber() const;
  std::wstring GetSecAssetTagNumber() const;
  std::wstring GetSecSKU() const;
  std::string GetSecSkuA() const;
  // OEM strings by number; empty when the firmware stored none under it.
  std::wstring GetOemString1() const;
  std::wstring GetOemString2() const;
  std::wstring GetOemString3() const;
  std::wstring GetOemString4() const;
  std::string GetOemBiosWhitePointInfo() const;  // number 6
  std::wstring GetOemProductName() const;        // number 7
  std::wstring GetPropagandaName() const;        // number 10

  uint16_t GetBiosDeviceValue() const;
  bool IsCorvaneDevice() const;
  bool IsTalmerDevice() const;
  bool IsSmartDevice() const;
  bool IsBrakkonDevice() const;
  bool IsOndrelDevice() const;
  bool IsVastrelDevice() const;
  bool IsCorvaneStationDevice() const;
  BrandType GetBrandType() const;
  bool GetComsumerType(DeviceConsumerType& type) const;
  bool IsConsumerTypeToB() const;
  bool IsUnsupportWifiAndBT() const;

  SmBiosHelper(const SmBiosHelper&) = delete;
  SmBiosHelper& operator=(const SmBiosHelper&) = delete;

 private:
  SmBiosHelper() = default;
  struct Reader;  // makes the instance from the firmware (smbios_helper.cpp)

  uint32_t major_version_ = 0;
  uint32_t minor_version_ = 0;
  uint32_t dmi_revision_ = 0;
  std::vector<std::wstring> text_;  // by velhal::smbios::Field (core/smbios_fields.h)
  GUID system_uuid_{};
  unsigned char chassis_type_ = 0;
  std::map<int, std::wstring> oem_strings_;
};

// IsTypeDetachablePC, the plain export over GetSecType, is declared with the flat interface.
#include "hal/hal_api.h"
