#include "core/version_resource.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/version_block.h"

namespace {

using velhal::testing::PutLe;
using velhal::testing::VersionBlock;
using velhal::version_resource::ParseFixedVersions;

TEST(VersionResourceTest, TheFixedVersionsOfAWholeBlock) {
  // GetFileVersionInfoW hands over more bytes than the block (room for conversions); children
  // follow the fixed part.
  std::vector<uint8_t> bytes = VersionBlock(u"VS_VERSION_INFO", 52, 400);
  bytes.resize(bytes.size() * 2, 0xCC);
  const auto versions = ParseFixedVersions(bytes.data(), bytes.size());
  ASSERT_TRUE(versions.has_value());
  EXPECT_EQ(versions->file, (std::array<uint16_t, 4>{10, 0, 22621, 2506}));
  EXPECT_EQ(versions->product, (std::array<uint16_t, 4>{6, 1, 7601, 65535}));
}

TEST(VersionResourceTest, AnythingLessReadsAsNoVersions) {
  struct Case {
    const char* name;
    std::vector<uint8_t> bytes;
  };
  std::vector<uint8_t> truncated = VersionBlock(u"VS_VERSION_INFO", 52, 400);
  truncated.resize(200);  // the block says 492 bytes
  std::vector<uint8_t> cut_fixed = VersionBlock();
  cut_fixed.resize(91);
  std::vector<uint8_t> bad_signature = VersionBlock();
  PutLe(bad_signature, 40, 0xFEEF04BC, 4);
  std::vector<uint8_t> short_length = VersionBlock();
  PutLe(short_length, 0, 60, 2);  // the block ends inside the fixed part
  const Case cases[] = {
      {"truncated resource", truncated},
      {"fixed part cut off", cut_fixed},
      {"another key", VersionBlock(u"VS_VERSION_INFX")},
      {"a longer key", VersionBlock(u"VS_VERSION_INFOX")},
      {"no fixed part", VersionBlock(u"VS_VERSION_INFO", 0)},
      {"wrong signature", bad_signature},
      {"block length inside the fixed part", short_length},
      {"empty", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_FALSE(ParseFixedVersions(c.bytes.data(), c.bytes.size()).has_value());
  }
  EXPECT_FALSE(ParseFixedVersions(nullptr, 92).has_value());
}

}  // namespace
