#include "core/version_resource.h"

namespace velhal::version_resource {
namespace {

// VS_VERSIONINFO: wLength, wValueLength, wType, then the key L"VS_VERSION_INFO" with its NUL,
// padded to a 4-byte boundary, then the value.
constexpr char16_t kKey[] = u"VS_VERSION_INFO";
constexpr size_t kKeyOffset = 6;
constexpr size_t kValueOffset = 40;
constexpr size_t kFixedInfoSize = 52;  // VS_FIXEDFILEINFO: thirteen 32-bit fields
constexpr uint32_t kSignature = 0xFEEF04BD;

uint16_t Word(const uint8_t* at) { return static_cast<uint16_t>(at[0] | at[1] << 8); }
uint32_t Dword(const uint8_t* at) { return Word(at) | static_cast<uint32_t>(Word(at + 2)) << 16; }

std::array<uint16_t, 4> Version(const uint8_t* most_significant) {
  const uint32_t ms = Dword(most_significant);
  const uint32_t ls = Dword(most_significant + 4);
  return {static_cast<uint16_t>(ms >> 16), static_cast<uint16_t>(ms),
          static_cast<uint16_t>(ls >> 16), static_cast<uint16_t>(ls)};
}

bool KeyMatches(const uint8_t* data) {
  for (size_t i = 0; i < std::size(kKey); ++i) {  // the NUL included
    if (Word(data + kKeyOffset + 2 * i) != kKey[i]) return false;
  }
  return true;
}

}  // namespace

std::optional<FixedVersions> ParseFixedVersions(const uint8_t* data, size_t size) {
  if (data == nullptr || size < kValueOffset + kFixedInfoSize) return std::nullopt;
  const size_t block_length = Word(data);
  const size_t value_length = Word(data + 2);
  if (block_length > size || block_length < kValueOffset + kFixedInfoSize ||
      value_length < kFixedInfoSize || !KeyMatches(data)) {
    return std::nullopt;
  }
  const uint8_t* fixed = data + kValueOffset;
  if (Dword(fixed) != kSignature) return std::nullopt;
  FixedVersions versions;
  versions.file = Version(fixed + 8);
  versions.product = Version(fixed + 16);
  return versions;
}

}  // namespace velhal::version_resource
