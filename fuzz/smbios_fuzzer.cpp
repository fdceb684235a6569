// libFuzzer target for the SMBIOS readers: saved-table detection, the structure walk with its
// record parsers, and the identity rules over whatever OEM strings come out. Any read outside
// the input is caught by AddressSanitizer; the walk must also terminate.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/identity.h"
#include "core/smbios.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  velhal::smbios::Fields whole;
  velhal::smbios::Walk(data, size, whole);

  if (const auto saved = velhal::smbios::DetectSavedTable(data, size)) {
    if (saved->offset > size || saved->length > size - saved->offset) __builtin_trap();
    velhal::smbios::Fields fields;
    velhal::smbios::Walk(data + saved->offset, saved->length, fields);
    std::wstring oem1, oem7;
    if (auto it = fields.oem_strings.find(1); it != fields.oem_strings.end()) {
      oem1.assign(it->second.begin(), it->second.end());
    }
    if (auto it = fields.oem_strings.find(7); it != fields.oem_strings.end()) {
      oem7.assign(it->second.begin(), it->second.end());
    }
    uint32_t consumer = 0;
    velhal::identity::ConsumerType(oem1, consumer);
    velhal::identity::IsUnsupportWifiAndBt(oem7, oem1, fields[velhal::smbios::Field::kChassisSku],
                                           {fields[velhal::smbios::Field::kSystemSku]});
    velhal::identity::BrandOf(velhal::identity::DeviceValue(oem1));
  }
  velhal::identity::ParseVendorList(std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}
