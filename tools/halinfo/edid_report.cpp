#include "tools/halinfo/edid_report.h"

#include <fstream>
#include <iterator>
#include <vector>

#include "core/edid.h"
#include "tools/halinfo/output.h"

namespace halinfo {
namespace {

constexpr int kExitUnreadable = 2;

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
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    PrintError("halinfo: cannot read " + path + "\n");
    return kExitUnreadable;
  }
  const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(file)), {});
  const Node report = EdidNode(bytes.data(), bytes.size());
  Print(json ? JsonDocument({report}) : path + "\n\n" + PlainText({report}));
  return 0;
}

}  // namespace halinfo
