// A VS_VERSIONINFO block as a resource compiler lays it out: header, key, padding to 40, the
// 52-byte VS_FIXEDFILEINFO (file 10.0.22621.2506, product 6.1.7601.65535), then children_bytes
// of string and variable tables.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velhal::testing {

inline void PutLe(std::vector<uint8_t>& bytes, size_t at, uint32_t value, size_t width) {
  for (size_t i = 0; i < width; ++i) bytes[at + i] = static_cast<uint8_t>(value >> (8 * i));
}

inline std::vector<uint8_t> VersionBlock(const std::u16string& key = u"VS_VERSION_INFO",
                                         uint16_t value_length = 52, size_t children_bytes = 0) {
  std::vector<uint8_t> bytes(92 + children_bytes, 0);
  PutLe(bytes, 0, static_cast<uint16_t>(bytes.size()), 2);
  PutLe(bytes, 2, value_length, 2);
  for (size_t i = 0; i < key.size() && 6 + 2 * i < 38; ++i) PutLe(bytes, 6 + 2 * i, key[i], 2);
  PutLe(bytes, 40, 0xFEEF04BD, 4);
  PutLe(bytes, 44, 0x00010000, 4);
  PutLe(bytes, 48, 0x000A0000, 4);
  PutLe(bytes, 52, 0x585D09CA, 4);
  PutLe(bytes, 56, 0x00060001, 4);
  PutLe(bytes, 60, 0x1DB1FFFF, 4);
  return bytes;
}

}  // namespace velhal::testing
