// Fetching the raw SMBIOS table and parsing its identity records, once per process.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/smbios.h"

namespace velhal::firmware {

struct SmBiosSnapshot {
  uint32_t major = 0, minor = 0, dmi_revision = 0;
  smbios::Fields fields;
};

// From GetSystemFirmwareTable where kernel32 has it, else from WMI's MSSmBios_RawSMBiosTables
// (no header there, so the versions stay 0). Whatever cannot be read stays empty.
SmBiosSnapshot ReadSmBios();

// The chassis SKU numbers listed in "config/product_adapter/WifiBTConfig.xml"; empty when the
// file is missing or unreadable.
std::vector<std::string> ReadUnsupportedSkus();

}  // namespace velhal::firmware
