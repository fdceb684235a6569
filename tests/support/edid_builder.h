// Builds EDID blobs for tests: a base block with the fixed header and a valid checksum, display
// product name descriptors where the test puts them, and raw bytes anywhere.
#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace velhal::testing {

class EdidBuilder {
 public:
  explicit EdidBuilder(size_t size = 128) : bytes_(size, 0) {
    const uint8_t header[] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
    for (size_t i = 0; i < sizeof(header) && i < size; ++i) bytes_[i] = header[i];
  }

  // A display product name descriptor: 00 00 00 FC 00, then the text; a text shorter than 13
  // bytes ends with a line feed and space padding, as monitors store it.
  EdidBuilder& Name(size_t offset, const std::string& text) {
    std::vector<uint8_t> descriptor = {0x00, 0x00, 0x00, 0xFC, 0x00};
    descriptor.insert(descriptor.end(), text.begin(), text.end());
    if (text.size() < 13) descriptor.push_back(0x0A);
    while (descriptor.size() < 18) descriptor.push_back(0x20);
    return Bytes(offset, descriptor);
  }

  EdidBuilder& Bytes(size_t offset, const std::vector<uint8_t>& values) {
    for (size_t i = 0; i < values.size() && offset + i < bytes_.size(); ++i)
      bytes_[offset + i] = values[i];
    return *this;
  }

  // Byte 127 makes bytes 0-127 sum to 0 modulo 256.
  std::vector<uint8_t> Build() const {
    std::vector<uint8_t> blob = bytes_;
    if (blob.size() >= 128) {
      uint32_t sum = 0;
      for (size_t i = 0; i < 127; ++i) sum += blob[i];
      blob[127] = static_cast<uint8_t>(256 - sum % 256);
    }
    return blob;
  }

 private:
  std::vector<uint8_t> bytes_;
};

// A real EDID from tests/data/edid.
inline std::vector<uint8_t> ReadEdid(const std::string& name) {
  std::ifstream file(std::string(VELHAL_TEST_DATA_DIR) + "/edid/" + name, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(file), {});
}

}  // namespace velhal::testing
