#include "core/edid.h"

#include <gtest/gtest.h>

#include "tests/support/edid_builder.h"

namespace {

using velhal::edid::Decode;
using velhal::edid::DisplayProductName;
using velhal::testing::EdidBuilder;
using velhal::testing::ReadEdid;

std::optional<std::string> NameOf(const std::vector<uint8_t>& blob) {
  return DisplayProductName(blob.data(), blob.size());
}

std::vector<uint8_t> Cut(std::vector<uint8_t> blob, size_t size) {
  blob.resize(size);
  return blob;
}

TEST(EdidTest, TheNameScanMovesByteByByteWithinItsRangeAndTheLastMatchWins) {
  struct Case {
    const char* what;
    std::vector<uint8_t> blob;
    std::optional<std::string> name;
  };
  const Case cases[] = {
      {"54 bytes are not scanned", Cut(EdidBuilder().Name(36, "X").Build(), 54), std::nullopt},
      {"72 bytes scan offset 54 only", Cut(EdidBuilder().Name(54, "ABC").Build(), 72), "ABC"},
      {"71 bytes scan nothing", Cut(EdidBuilder().Name(54, "ABC").Build(), 71), std::nullopt},
      {"the fourth descriptor, at 108", EdidBuilder().Name(108, "1670W").Build(), "1670W"},
      {"126 bytes still reach 108", Cut(EdidBuilder().Name(108, "P").Build(), 126), "P"},
      {"125 bytes stop at 107", Cut(EdidBuilder().Name(108, "P").Build(), 125), std::nullopt},
      {"a tag off the descriptor grid", EdidBuilder().Name(55, "ODD").Build(), "ODD"},
      {"the last of two wins", EdidBuilder().Name(72, "FIRST").Name(108, "LAST").Build(), "LAST"},
      {"nothing is read beyond 108 in a 256-byte blob",
       EdidBuilder(256).Name(90, "BASE").Name(109, "LATE").Name(130, "EXT").Build(), "BASE"},
      {"a line feed drops the padding after it", EdidBuilder().Name(90, "ABC").Build(), "ABC"},
      {"13 bytes without a line feed stay whole", EdidBuilder().Name(90, "ABCDEFGHIJKLM").Build(),
       "ABCDEFGHIJKLM"},
      {"a NUL ends the text too", EdidBuilder().Name(90, std::string("AB\0CD", 5)).Build(), "AB"},
      {"an empty name still replaces an earlier one",
       EdidBuilder().Name(72, "EARLY").Name(108, "").Build(), ""},
      {"a tag without three zeros before it",
       EdidBuilder().Bytes(90, {0x00, 0x01, 0x00, 0xFC, 0x00, 'N', 0x0A}).Build(), std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(NameOf(c.blob), c.name);
  }
  EXPECT_EQ(DisplayProductName(nullptr, 128), std::nullopt);
}

TEST(EdidTest, RealMonitorsDecodeAsTheirEdidDecodeReportsSay) {
  struct Case {
    const char* file;
    const char* name;
    const char* maker;
    uint32_t product, serial, week, year;
    const char* version;
    uint64_t size;
    uint32_t extensions, width, height;
    uint64_t milli_hz;
  };
  // Model, serial, "made in", version, size and the first detailed timing as edid-decode reads
  // them in tests/data/edid's sources.
  const Case cases[] = {
      {"aoc-1670w.bin", "1670W", "AOC", 5744, 363, 11, 2018, "1.3", 128, 0, 1366, 768, 59790},
      {"dell-d3218hn.bin", "D3218HN", "DEL", 8203, 0x01010101, 32, 2018, "1.3", 256, 1, 1920, 1080,
       60000},
      {"auo-b133hab.bin", "", "AUO", 4141, 0, 0, 2016, "1.4", 128, 0, 1920, 1080, 60049},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    const std::vector<uint8_t> blob = ReadEdid(c.file);
    ASSERT_EQ(blob.size(), c.size);
    const velhal::edid::Facts facts = Decode(blob.data(), blob.size());
    EXPECT_EQ(facts.monitor_name, c.name);
    EXPECT_EQ(facts.manufacturer_id, c.maker);
    EXPECT_EQ(facts.product_code, c.product);
    EXPECT_EQ(facts.serial_number, c.serial);
    EXPECT_EQ(facts.manufacture_week, c.week);
    EXPECT_EQ(facts.manufacture_year, c.year);
    EXPECT_EQ(facts.version, c.version);
    EXPECT_EQ(facts.size_bytes, c.size);
    EXPECT_EQ(facts.extension_count, c.extensions);
    EXPECT_TRUE(facts.header_valid);
    EXPECT_TRUE(facts.checksum_valid);
    ASSERT_TRUE(facts.preferred_mode.has_value());
    EXPECT_EQ(facts.preferred_mode->width, c.width);
    EXPECT_EQ(facts.preferred_mode->height, c.height);
    EXPECT_EQ(facts.preferred_mode->refresh_milli_hz, c.milli_hz);
  }
}

TEST(EdidTest, FieldsPastTheEndAreZeroOrEmpty) {
  const std::vector<uint8_t> aoc = ReadEdid("aoc-1670w.bin");
  const auto decode = [&](size_t size) { return Decode(aoc.data(), size); };
  EXPECT_EQ(decode(0).size_bytes, 0u);
  EXPECT_FALSE(decode(7).header_valid);
  EXPECT_TRUE(decode(8).header_valid);
  EXPECT_EQ(decode(9).manufacturer_id, "");
  EXPECT_EQ(decode(10).manufacturer_id, "AOC");
  EXPECT_EQ(decode(11).product_code, 0u);
  EXPECT_EQ(decode(12).product_code, 5744u);
  EXPECT_EQ(decode(15).serial_number, 0u);
  EXPECT_EQ(decode(17).manufacture_year, 0u);
  EXPECT_EQ(decode(18).manufacture_year, 2018u);
  EXPECT_EQ(decode(19).version, "");
  EXPECT_EQ(decode(20).version, "1.3");
  const std::vector<uint8_t> dell = ReadEdid("dell-d3218hn.bin");
  EXPECT_EQ(Decode(dell.data(), 126).extension_count, 0u);
  EXPECT_EQ(Decode(dell.data(), 127).extension_count, 1u);
  EXPECT_FALSE(decode(127).checksum_valid);
  EXPECT_EQ(decode(71).preferred_mode, std::nullopt);
  EXPECT_TRUE(decode(72).preferred_mode.has_value());
  EXPECT_EQ(decode(72).monitor_name, "");  // the name sits at 108

  const velhal::edid::Facts empty = Decode(nullptr, 0);
  EXPECT_EQ(empty.manufacturer_id, "");
  EXPECT_FALSE(empty.header_valid || empty.checksum_valid);
}

TEST(EdidTest, ManufacturerCodesOutsideTheAlphabetAreQuestionMarks) {
  // Codes 27, 1 and 0: "?A?".
  EXPECT_EQ(Decode(EdidBuilder().Bytes(8, {0x6C, 0x20}).Build().data(), 128).manufacturer_id,
            "?A?");
  // A broken checksum is reported, not repaired.
  std::vector<uint8_t> blob = EdidBuilder().Build();
  blob[127] ^= 1;
  EXPECT_FALSE(Decode(blob.data(), blob.size()).checksum_valid);
}

TEST(EdidTest, PreferredModeRoundsHalfUpAndNeedsAClockAndATotal) {
  // 10 kHz over 2000 x 2000 pixels: 2.5 mHz, which rounds up to 3. The interlace bit is ignored.
  const std::vector<uint8_t> slow = EdidBuilder()
                                        .Bytes(54, {0x01, 0x00, 0xD0, 0x00, 0x70, 0xD0, 0x00, 0x70})
                                        .Bytes(71, {0x80})
                                        .Build();
  const auto mode = Decode(slow.data(), slow.size()).preferred_mode;
  ASSERT_TRUE(mode.has_value());
  EXPECT_EQ(mode->width, 2000u);
  EXPECT_EQ(mode->height, 2000u);
  EXPECT_EQ(mode->refresh_milli_hz, 3u);

  const std::vector<uint8_t> no_clock = EdidBuilder().Bytes(56, {0x80, 0x10, 0x70}).Build();
  EXPECT_EQ(Decode(no_clock.data(), no_clock.size()).preferred_mode, std::nullopt);
  const std::vector<uint8_t> no_pixels = EdidBuilder().Bytes(54, {0x14, 0x37}).Build();
  EXPECT_EQ(Decode(no_pixels.data(), no_pixels.size()).preferred_mode, std::nullopt);
}

}  // namespace
