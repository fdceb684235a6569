// Board and BIOS identity strings: the firmware's SMBIOS table (baseboard and BIOS records), and
// the BIOS serial number with WMI's Win32_BIOS as its fallback. Empty where unknown.
// GetBIOSReaseDate is spelt so in the export table; hosts bind that name.
#pragma once

#include <string>

#include "hal/velhal_export.h"

class VELHAL_API Baseboard {
 public:
  std::wstring GetBaseboardManufacturer();
  std::wstring GetBaseboardProduct();
  std::wstring GetBaseboardVersion();
  std::wstring GetBaseboardSerialNumber();
  std::wstring GetBIOSManufacturer();
  std::wstring GetBIOSVersion();
  std::wstring GetBIOSReaseDate();
  // The system serial number of the SMBIOS table, else WMI's BIOS serial; kept for the process
  // once known.
  std::wstring GetBIOSSerialNumber();
};
