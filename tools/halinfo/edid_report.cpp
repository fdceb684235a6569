#include "tools/halinfo/edid_report.h"

#include <optional>
#include <vector>

#include "core/edid.h"
#include "tools/halinfo/exit_codes.h"
#include "tools/halinfo/input_file.h"
#include "tools/halinfo/output.h"

namespace halinfo {
namespace {

Node PreferredModeNode(const std::optional<velhal::edid::PreferredMode>& mode) {
  if (!mode) return Leaf("preferredMode", "preferred mode", nullptr);
  return Object("preferredMode", "preferred mode",
                {Number("width", "width", mode->width, "pixels"),
                 Number("height", "height", mode->height, "pixels"),
                 Number("refreshMilliHz", "refresh", mode->refresh_milli_hz, "mHz")});
}

}  // namespace

Node EdidNode(const uint8_t* data, size_t size) {
  const velhal::edid::Facts f = velhal::edid::Decode(data, size);
  return Object("edid", "EDID",
                {Text("monitorName", "monitor name", ToUtf8(FromAnsi(f.monitor_name))),
                 Text("manufacturerId", "manufacturer", f.manufacturer_id),
                 Number("productCode", "product code", f.product_code),
                 Number("serialNumber", "serial number", f.serial_number),
                 Number("manufactureWeek", "week of manufacture", f.manufacture_week),
                 Number("manufactureYear", "year of manufacture", f.manufacture_year),
                 Text("version", "EDID version", f.version),
                 Number("sizeBytes", "size", f.size_bytes, "bytes"),
                 Number("extensionCount", "extension blocks", f.extension_count),
                 Flag("headerValid", "header valid", f.header_valid),
                 Flag("checksumValid", "checksum valid", f.checksum_valid),
                 PreferredModeNode(f.preferred_mode)});
}

int ReportEdidFile(const std::string& path, bool json) {
  const std::optional<std::vector<uint8_t>> bytes = ReadInputFile(path);
  if (!bytes) return kExitBadInput;
  const Node report = EdidNode(bytes->data(), bytes->size());
  Print(json ? JsonDocument({report}) : path + "\n\n" + PlainText({report}));
  // What could be decoded is printed; a blob that is not a whole EDID still fails the run.
  const velhal::edid::Facts facts = velhal::edid::Decode(bytes->data(), bytes->size());
  const size_t blocks = bytes->size() / 128;
  std::string problem;
  if (bytes->empty()) {
    problem = "is empty";
  } else if (!facts.header_valid) {
    problem = "holds no EDID (its first 8 bytes are not the EDID header)";
  } else if (bytes->size() < 128 || bytes->size() % 128 != 0 ||
             blocks < 1 + size_t{facts.extension_count}) {
    problem = "is truncated: " + std::to_string(bytes->size()) + " bytes where " +
              std::to_string(1 + facts.extension_count) + " blocks of 128 are announced";
  } else if (!facts.checksum_valid) {
    problem = "is damaged: the base block's checksum does not add up";
  }
  if (problem.empty()) return kExitSuccess;
  ReportBadInput(path, problem);
  return kExitBadInput;
}

}  // namespace halinfo
