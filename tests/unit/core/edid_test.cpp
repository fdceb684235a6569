#include "core/edid.h"

#include <gtest/gtest.h>

#include "tests/support/edid_builder.h"

namespace {

using velhal::edid::Decode;
using velhal::edid::DisplayProductName;
using velhal::testing::EdidBuilder;
using velhal::testing::ReadEdid;

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
    EXPECT_EQ(DisplayProductName(c.blob.data(), c.blob.size()), c.name);
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
    uint32_t extensions, width, height;
    uint64_t milli_hz;
  };
  // Model, serial, "made in", version and the first detailed timing as edid-decode reads them in
  // tests/data/edid's sources (the AOC's name ends in a line feed and padding).
  const Case cases[] = {
      {"aoc-1670w.bin", "1670W", "AOC", 5744, 363, 11, 2018, "1.3", 0, 1366, 768, 59790},
      {"dell-d3218hn.bin", "D3218HN", "DEL", 8203, 0x01010101, 32, 2018, "1.3", 1, 1920, 1080,
       60000},
      {"auo-b133hab.bin", "", "AUO", 4141, 0, 0, 2016, "1.4", 0, 1920, 1080, 60049},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    const std::vector<uint8_t> blob = ReadEdid(c.file);
    const velhal::edid::Facts f = Decode(blob.data(), blob.size());
    EXPECT_EQ(std::vector<std::string>({f.monitor_name, f.manufacturer_id, f.version}),
              std::vector<std::string>({c.name, c.maker, c.version}));
    EXPECT_EQ(std::vector<uint64_t>({f.product_code, f.serial_number, f.manufacture_week,
                                     f.manufacture_year, f.extension_count, f.size_bytes}),
              std::vector<uint64_t>(
                  {c.product, c.serial, c.week, c.year, c.extensions, 128u * (c.extensions + 1)}));
    EXPECT_TRUE(f.header_valid && f.checksum_valid);
    ASSERT_TRUE(f.preferred_mode.has_value());
    EXPECT_EQ(std::vector<uint64_t>({f.preferred_mode->width, f.preferred_mode->height,
                                     f.preferred_mode->refresh_milli_hz}),
              std::vector<uint64_t>({c.width, c.height, c.milli_hz}));
  }
}

TEST(EdidTest, FieldsPastTheEndAreZeroOrEmpty) {
  const std::vector<uint8_t> dell = ReadEdid("dell-d3218hn.bin");
  const auto at = [&](size_t size) { return Decode(dell.data(), size); };
  EXPECT_FALSE(at(7).header_valid);
  EXPECT_TRUE(at(8).header_valid);
  EXPECT_EQ(at(9).manufacturer_id, "");
  EXPECT_EQ(at(10).manufacturer_id, "DEL");
  EXPECT_EQ(std::vector<uint32_t>({at(11).product_code, at(12).product_code}),
            std::vector<uint32_t>({0, 8203}));
  EXPECT_EQ(
      std::vector<uint32_t>({at(15).serial_number, at(17).manufacture_year, at(18).manufacture_year,
                             at(126).extension_count, at(127).extension_count}),
      std::vector<uint32_t>({0, 0, 2018, 0, 1}));
  EXPECT_EQ(std::vector<std::string>({at(19).version, at(20).version}),
            std::vector<std::string>({"", "1.3"}));
  EXPECT_FALSE(at(127).checksum_valid);
  EXPECT_EQ(at(71).preferred_mode, std::nullopt);
  EXPECT_TRUE(at(72).preferred_mode.has_value());
  EXPECT_EQ(Decode(nullptr, 0).size_bytes, 0u);
  // Codes 27, 1 and 0: "?A?". A broken checksum is reported, not repaired.
  std::vector<uint8_t> odd = EdidBuilder().Bytes(8, {0x6C, 0x20}).Build();
  odd[127] ^= 1;
  EXPECT_EQ(Decode(odd.data(), odd.size()).manufacturer_id, "?A?");
  EXPECT_FALSE(Decode(odd.data(), odd.size()).checksum_valid);
}

TEST(EdidTest, PreferredModeRoundsHalfUpAndNeedsAClockAndATotal) {
  // 10 kHz over 2000 x 2000 pixels: 2.5 mHz, which rounds up to 3. The interlace bit is ignored.
  const std::vector<uint8_t> slow = EdidBuilder()
                                        .Bytes(54, {0x01, 0x00, 0xD0, 0x00, 0x70, 0xD0, 0x00, 0x70})
                                        .Bytes(71, {0x80})
                                        .Build();
  const auto mode = Decode(slow.data(), slow.size()).preferred_mode;
  ASSERT_TRUE(mode.has_value());
  EXPECT_EQ(std::vector<uint64_t>({mode->width, mode->height, mode->refresh_milli_hz}),
            std::vector<uint64_t>({2000, 2000, 3}));
  const std::vector<uint8_t> no_clock = EdidBuilder().Bytes(56, {0x80, 0x10, 0x70}).Build();
  EXPECT_EQ(Decode(no_clock.data(), no_clock.size()).preferred_mode, std::nullopt);
  const std::vector<uint8_t> no_pixels = EdidBuilder().Bytes(54, {0x14, 0x37}).Build();
  EXPECT_EQ(Decode(no_pixels.data(), no_pixels.size()).preferred_mode, std::nullopt);
}

}  // namespace
