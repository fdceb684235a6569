// A monitor's EDID as halinfo reports it, from a saved blob (offline, portable) or from the
// monitor's registry value (monitors_section.cpp). One node, every key always present:
// {"edid": {"monitorName", "manufacturerId", "productCode", "serialNumber", "manufactureWeek",
//  "manufactureYear", "version", "sizeBytes", "extensionCount", "headerValid", "checksumValid",
//  "preferredMode": null | {"width", "height", "refreshMilliHz"}}}.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "tools/halinfo/node.h"

namespace halinfo {

// The EDID decoded by the library's portable rules; 8-bit text read as output.h's FromAnsi.
Node EdidNode(const uint8_t* data, size_t size);

// halinfo --edid-file PATH: 0 on success, else an exit code with the reason on stderr. A file
// of any length is accepted, 0 bytes included.
int ReportEdidFile(const std::string& path, bool json);

}  // namespace halinfo
