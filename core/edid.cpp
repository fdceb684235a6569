#include "core/edid.h"

#include <array>

namespace velhal::edid {
namespace {

constexpr size_t kFirstDescriptor = 54;
constexpr size_t kDescriptorSize = 18;
constexpr size_t kLastScanStart = 108;  // the fourth descriptor of the base block
constexpr size_t kNameOffset = 5;       // text bytes within a display descriptor
constexpr size_t kNameBytes = 13;
constexpr uint8_t kProductNameTag = 0xFC;
constexpr size_t kBaseBlockSize = 128;
constexpr std::array<uint8_t, 8> kHeader = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};

// A little-endian field of width bytes at offset, or nullopt when it lies past the end.
std::optional<uint32_t> Field(const uint8_t* data, size_t size, size_t offset, size_t width) {
  if (size < offset || size - offset < width) return std::nullopt;
  uint32_t value = 0;
  for (size_t i = width; i-- > 0;) value = value << 8 | data[offset + i];
  return value;
}

std::string ManufacturerId(const uint8_t* data, size_t size) {
  if (size < 10) return {};
  const uint32_t packed = uint32_t{data[8]} << 8 | data[9];
  std::string letters;
  for (const int shift : {10, 5, 0}) {
    const uint32_t code = packed >> shift & 0x1F;
    letters += code >= 1 && code <= 26 ? static_cast<char>('A' + code - 1) : '?';
  }
  return letters;
}

bool ChecksumValid(const uint8_t* data, size_t size) {
  if (size < kBaseBlockSize) return false;
  uint32_t sum = 0;
  for (size_t i = 0; i < kBaseBlockSize; ++i) sum += data[i];
  return sum % 256 == 0;
}

// The detailed timing descriptor at 54: pixel clock in 10 kHz units, 12-bit active and blanking
// counts whose high nibbles share bytes 58 and 61.
std::optional<PreferredMode> FirstDetailedTiming(const uint8_t* data, size_t size) {
  if (size < kFirstDescriptor + kDescriptorSize) return std::nullopt;
  const uint8_t* t = data + kFirstDescriptor;
  const uint64_t clock = uint64_t{t[0]} | uint64_t{t[1]} << 8;
  if (clock == 0) return std::nullopt;
  PreferredMode mode;
  mode.width = t[2] | (t[4] & 0xF0u) << 4;
  const uint32_t h_blank = t[3] | (t[4] & 0x0Fu) << 8;
  mode.height = t[5] | (t[7] & 0xF0u) << 4;
  const uint32_t v_blank = t[6] | (t[7] & 0x0Fu) << 8;
  const uint64_t total = uint64_t{mode.width + h_blank} * (mode.height + v_blank);
  if (total == 0) return std::nullopt;
  mode.refresh_milli_hz = (clock * 10'000 * 1'000 * 2 + total) / (2 * total);
  return mode;
}

}  // namespace

std::optional<std::string> DisplayProductName(const uint8_t* data, size_t size) {
  if (data == nullptr || size <= kFirstDescriptor) return std::nullopt;
  const size_t last = size > 126 ? kLastScanStart : size - kDescriptorSize;
  std::optional<std::string> name;
  // i + 18 <= size for every i scanned, so the tag and the 13 text bytes are always inside.
  for (size_t i = kFirstDescriptor; i <= last; ++i) {
    if (data[i] != 0 || data[i + 1] != 0 || data[i + 2] != 0 || data[i + 3] != kProductNameTag)
      continue;
    std::string text;
    for (size_t k = 0; k < kNameBytes; ++k) {
      const uint8_t c = data[i + kNameOffset + k];
      if (c == 0x0A || c == 0x00) break;
      text += static_cast<char>(c);
    }
    name = std::move(text);
  }
  return name;
}

Facts Decode(const uint8_t* data, size_t size) {
  Facts facts;
  if (data == nullptr) size = 0;
  facts.size_bytes = size;
  facts.monitor_name = DisplayProductName(data, size).value_or("");
  facts.manufacturer_id = ManufacturerId(data, size);
  facts.product_code = Field(data, size, 10, 2).value_or(0);
  facts.serial_number = Field(data, size, 12, 4).value_or(0);
  facts.manufacture_week = Field(data, size, 16, 1).value_or(0);
  if (const auto year = Field(data, size, 17, 1)) facts.manufacture_year = *year + 1990;
  if (size >= 20) facts.version = std::to_string(data[18]) + "." + std::to_string(data[19]);
  facts.extension_count = Field(data, size, 126, 1).value_or(0);
  facts.header_valid = size >= kHeader.size();
  for (size_t i = 0; facts.header_valid && i < kHeader.size(); ++i)
    facts.header_valid = data[i] == kHeader[i];
  facts.checksum_valid = ChecksumValid(data, size);
  facts.preferred_mode = FirstDetailedTiming(data, size);
  return facts;
}

}  // namespace velhal::edid
