// The fixed part of a Windows version resource: the VS_VERSIONINFO block that
// GetFileVersionInfoW hands over, whose value is a VS_FIXEDFILEINFO with the file and product
// versions (Windows SDK, "VS_VERSIONINFO structure").
//
// Portable: no Windows header. Every read is bounded by the buffer and by the block's own
// length: a block longer than the buffer (a truncated resource), another key, a value shorter
// than VS_FIXEDFILEINFO or a wrong signature reads as no versions.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace velhal::version_resource {

struct FixedVersions {
  std::array<uint16_t, 4> file{};  // major, minor, build, revision
  std::array<uint16_t, 4> product{};
};

std::optional<FixedVersions> ParseFixedVersions(const uint8_t* data, size_t size);

}  // namespace velhal::version_resource
