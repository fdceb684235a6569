// EDID 1.x base block (VESA Enhanced EDID, Release A Revision 2): the display product name as
// the video card reads it, and the identification and preferred-mode facts halinfo prints.
//
// Portable: no Windows header. Every read is bounded by the blob: a field whose bytes lie past
// its end is absent, whatever the header or the extension count says. Text comes back as the
// 8-bit bytes the monitor stores; converting them is the caller's business.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace velhal::edid {

// The display product name descriptor (tag 0xFC after three zero bytes) found by scanning byte
// by byte, not descriptor by descriptor, from offset 54 to `last` inclusive: size - 18, or 108
// when the blob is longer than 126 bytes, so names in extension blocks are never seen. The last
// match wins. Its 13 text bytes end at the first line feed (padding spaces go with it) and at
// the first NUL. Nullopt when nothing matches, data is null or size is 54 or less. Callers rely
// on this exact scan: a tag-like run inside other descriptors' bytes counts too.
std::optional<std::string> DisplayProductName(const uint8_t* data, size_t size);

struct PreferredMode {
  uint32_t width = 0, height = 0;
  uint64_t refresh_milli_hz = 0;  // rounded half up; the interlace flag is not applied
};

// What halinfo --edid-file reports. Fields whose bytes lie past the end are 0 or "".
struct Facts {
  std::string monitor_name;       // DisplayProductName, "" when nothing matches
  std::string manufacturer_id;    // three letters from bytes 8-9 (big-endian), "?" per bad code
  uint32_t product_code = 0;      // u16 little-endian at 10
  uint32_t serial_number = 0;     // u32 little-endian at 12
  uint32_t manufacture_week = 0;  // byte 16
  uint32_t manufacture_year = 0;  // byte 17 + 1990
  std::string version;            // bytes 18 and 19 in decimal, "1.4"
  uint64_t size_bytes = 0;        // the whole blob
  uint32_t extension_count = 0;   // byte 126
  bool header_valid = false;      // 00 FF FF FF FF FF FF 00
  bool checksum_valid = false;    // 128 bytes or more, bytes 0-127 summing to 0 modulo 256
  std::optional<PreferredMode> preferred_mode;  // the detailed timing at 54, when it has a clock
};

Facts Decode(const uint8_t* data, size_t size);

}  // namespace velhal::edid
