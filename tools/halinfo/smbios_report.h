// The firmware identity as halinfo reports it, from a saved table (offline, portable) or from
// the running machine's SmBiosHelper (firmware_section.cpp). One node, so one JSON shape for both:
// {"smbios": {"version", "bios", "system", "baseboard", "chassis", "oemStrings", "identity"}}.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "core/smbios.h"
#include "tools/halinfo/node.h"

namespace halinfo {

struct SmbiosReport {
  uint32_t major = 0, minor = 0, dmi_revision = 0;
  std::array<std::string, velhal::smbios::kTextFieldCount> text;  // UTF-8, by Field
  std::array<uint8_t, 16> system_uuid{};  // as stored in the table
  std::string system_uuid_hex;
  uint32_t chassis_type = 0;
  std::map<int, std::string> oem_strings;  // exactly the numbers the firmware stored
  uint32_t device_value = 0, brand = 0, consumer_type = 0;
  bool detachable = false, unsupport_wifi_and_bt = false;

  // Offline: the identity rules run with an empty unsupported-SKU list (no file is read).
  static SmbiosReport FromTable(uint32_t major, uint32_t minor, uint32_t dmi_revision,
                                const velhal::smbios::Fields& fields);

  Node ToNode() const;

 private:
  std::vector<Node> FieldNodes(const velhal::smbios::FieldName& row) const;
};

std::string UuidHex(const std::array<uint8_t, 16>& bytes);

// halinfo --smbios-file PATH: 0 on success, else an exit code with the reason on stderr.
int ReportSmbiosFile(const std::string& path, bool json);

}  // namespace halinfo
