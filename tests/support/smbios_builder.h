// Builds small SMBIOS tables for tests: records of a type with their formatted bytes (from
// offset 4) and strings, closed by the double NUL.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velhal::testing {

class SmbiosBuilder {
 public:
  // length_override sets the length byte (a record may claim less or more than it holds).
  SmbiosBuilder& Record(uint8_t type, std::vector<uint8_t> formatted,
                        std::vector<std::string> strings = {}, int length_override = -1) {
    const size_t start = bytes_.size();
    bytes_.push_back(type);
    bytes_.push_back(static_cast<uint8_t>(length_override >= 0 ? length_override
                                                               : 4 + formatted.size()));
    bytes_.push_back(static_cast<uint8_t>(handle_));
    bytes_.push_back(static_cast<uint8_t>(handle_++ >> 8));
    bytes_.insert(bytes_.end(), formatted.begin(), formatted.end());
    (void)start;
    for (const std::string& text : strings) {
      bytes_.insert(bytes_.end(), text.begin(), text.end());
      bytes_.push_back(0);
    }
    if (strings.empty()) bytes_.push_back(0);
    bytes_.push_back(0);
    return *this;
  }
  SmbiosBuilder& EndOfTable() { return Record(127, {}); }

  const std::vector<uint8_t>& Bytes() const { return bytes_; }
  // As Windows' firmware-table call hands it over: the 8-byte header first.
  std::vector<uint8_t> RawFirmwareTable(uint8_t major, uint8_t minor) const {
    std::vector<uint8_t> raw = {0, major, minor, 0};
    const uint32_t length = static_cast<uint32_t>(bytes_.size());
    for (int i = 0; i < 4; ++i) raw.push_back(static_cast<uint8_t>(length >> (8 * i)));
    raw.insert(raw.end(), bytes_.begin(), bytes_.end());
    return raw;
  }

 private:
  std::vector<uint8_t> bytes_;
  uint16_t handle_ = 0;
};

}  // namespace velhal::testing
