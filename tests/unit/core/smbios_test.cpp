#include "core/smbios.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "tests/support/smbios_builder.h"

namespace {

using velhal::smbios::DetectSavedTable;
using velhal::smbios::Fields;
using velhal::smbios::SavedFormat;
using velhal::smbios::Walk;
using enum velhal::smbios::Field;
using velhal::testing::SmbiosBuilder;

Fields Parse(const std::vector<uint8_t>& bytes) {
  Fields fields;
  Walk(bytes.data(), bytes.size(), fields);
  return fields;
}

std::vector<uint8_t> ReadData(const std::string& name) {
  std::ifstream file(std::string(VELHAL_TEST_DATA_DIR) + "/smbios/" + name, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(file), {});
}

TEST(SmbiosTest, BiosVersionsNeedALengthAbove0x14) {
  // Strings 1, 2 and 3 at 0x04, 0x05 and 0x08; 0x14-0x17 the BIOS and EC releases.
  std::vector<uint8_t> formatted(0x18 - 4, 0);
  formatted[0] = 1;
  formatted[1] = 2;
  formatted[4] = 3;
  formatted[0x14 - 4] = 2;
  formatted[0x15 - 4] = 7;
  formatted[0x16 - 4] = 1;
  formatted[0x17 - 4] = 0;
  const Fields full = Parse(
      SmbiosBuilder().Record(0, formatted, {"Example BIOS Inc.", "F.21", "03/14/2024"}).Bytes());
  EXPECT_EQ(full[kBiosVendor], "Example BIOS Inc.");
  EXPECT_EQ(full[kBiosVersion], "F.21");
  EXPECT_EQ(full[kBiosReleaseDate], "03/14/2024");
  EXPECT_EQ(full[kBiosSystemVersion], "2.07");
  EXPECT_EQ(full[kBiosEcVersion], "1.0");

  // Length 0x14: no versions. Length 0x15: bytes 0x15-0x17 are read from behind the record,
  // as the firmware is trusted to have put them there.
  EXPECT_EQ(Parse(SmbiosBuilder().Record(0, formatted, {"V"}, 0x14).Bytes())[kBiosSystemVersion], "");
  const std::vector<uint8_t> short_record = {0, 0x15, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                             0, 0, 0, 0, 0, 0, 2, 7, 1, 0, 0};
  const Fields fields = Parse(short_record);
  EXPECT_EQ(fields[kBiosSystemVersion], "2.07");
  EXPECT_EQ(fields[kBiosEcVersion], "1.0");
}

TEST(SmbiosTest, SystemRecordFieldsFollowTheLength) {
  std::vector<uint8_t> formatted(0x1B - 4, 0);
  for (int i = 0; i < 4; ++i) formatted[i] = static_cast<uint8_t>(i + 1);
  for (int i = 0; i < 16; ++i) formatted[0x08 - 4 + i] = static_cast<uint8_t>(0xA0 + i);
  formatted[0x19 - 4] = 5;
  formatted[0x1A - 4] = 6;
  const std::vector<std::string> strings = {"Maker", "Product", "1.0", "SN42", "SKU9", "Family"};
  const Fields full = Parse(SmbiosBuilder().Record(1, formatted, strings).Bytes());
  EXPECT_EQ(full[kSystemSerialNumber], "SN42");
  EXPECT_EQ(full.system_uuid[0], 0xA0);
  EXPECT_EQ(full.system_uuid[15], 0xAF);
  EXPECT_EQ(full[kSystemSku], "SKU9");
  EXPECT_EQ(full[kSystemFamily], "Family");

  const Fields no_sku = Parse(SmbiosBuilder().Record(1, formatted, strings, 0x19).Bytes());
  EXPECT_EQ(no_sku.system_uuid[15], 0xAF);
  EXPECT_EQ(no_sku[kSystemSku], "");
  EXPECT_EQ(no_sku[kSystemFamily], "");
  const Fields no_uuid = Parse(SmbiosBuilder().Record(1, formatted, strings, 8).Bytes());
  EXPECT_EQ(no_uuid.system_uuid, (std::array<uint8_t, 16>{}));
}

TEST(SmbiosTest, StringNumbersStayInsideTheirOwnRecord) {
  // Board: string 3 asked where only two exist; the next record's text must not leak in.
  const Fields fields = Parse(SmbiosBuilder()
                                  .Record(2, {1, 3, 0, 2, 0}, {"Board Maker", "SN-B"})
                                  .Record(3, {1, 10, 0, 0, 0}, {"Next record text"})
                                  .Bytes());
  EXPECT_EQ(fields[kBoardManufacturer], "Board Maker");
  EXPECT_EQ(fields[kBoardProduct], "");
  EXPECT_EQ(fields[kBoardVersion], "");
  EXPECT_EQ(fields[kBoardSerialNumber], "SN-B");
  EXPECT_EQ(fields[kBoardLocation], "");  // length 9 > 8, but offset 0x0A is past the record
  EXPECT_EQ(fields[kChassisManufacturer], "Next record text");
  EXPECT_EQ(fields.chassis_type, 10);
}

TEST(SmbiosTest, TheWalkRunsPastEndOfTableAndLaterRecordsWin) {
  const Fields fields = Parse(SmbiosBuilder()
                                  .Record(2, {1, 0, 0, 0, 0}, {"First board"})
                                  .EndOfTable()
                                  .Record(2, {1, 0, 0, 0, 0}, {"Second board"})
                                  .Record(3, {0, 0x8A, 0, 0, 0})
                                  .Bytes());
  EXPECT_EQ(fields[kBoardManufacturer], "Second board");
  EXPECT_EQ(fields.chassis_type, 0x8A);  // the whole byte, lock bit included
}

TEST(SmbiosTest, ChassisSkuAlwaysComesFromOffset0x15) {
  // Contained elements (count 1, length 3) fill 0x15-0x17; the byte at 0x15 still names the SKU.
  std::vector<uint8_t> formatted(0x18 - 4, 0);
  formatted[0] = 1;
  formatted[1] = 9;
  formatted[0x13 - 4] = 1;
  formatted[0x14 - 4] = 3;
  formatted[0x15 - 4] = 2;
  const Fields fields =
      Parse(SmbiosBuilder().Record(3, formatted, {"Chassis Maker", "Element or SKU"}).Bytes());
  EXPECT_EQ(fields[kChassisSku], "Element or SKU");
}

TEST(SmbiosTest, OemStringsKeepOnlyTheirNumbers) {
  const auto oem = [](uint8_t count, std::vector<std::string> strings) {
    return Parse(SmbiosBuilder().Record(11, {count}, std::move(strings)).Bytes());
  };
  std::vector<std::string> twelve;
  for (int i = 1; i <= 12; ++i) {
    twelve.emplace_back(1, 'S');  // (GCC 12 misreads "S" + to_string at -O3 as overlapping)
    twelve.back() += std::to_string(i);
  }
  twelve[9] = "0000000000000000";
  const Fields many = oem(12, twelve);
  std::vector<int> numbers;
  for (const auto& [number, text] : many.oem_strings) numbers.push_back(number);
  EXPECT_EQ(numbers, (std::vector<int>{1, 2, 3, 4, 6, 7, 10}));
  EXPECT_EQ(many.oem_strings.at(7), "S7");
  EXPECT_EQ(many.oem_strings.at(10), "");  // sixteen zeros read as empty
  EXPECT_EQ(many.oem_string_counts, std::vector<uint8_t>{12});

  twelve[9] = "00000000000000001";
  EXPECT_EQ(oem(12, twelve).oem_strings.at(10), "00000000000000001");
  EXPECT_EQ(oem(5, twelve).oem_strings.size(), 4u);
  EXPECT_TRUE(oem(0, twelve).oem_strings.empty());
  // A count above the strings present stores the missing numbers as empty.
  EXPECT_EQ(oem(3, {"only one"}).oem_strings, (std::map<int, std::string>{{1, "only one"}, {2, ""}, {3, ""}}));
}

TEST(SmbiosTest, TruncationLosesFieldsButNeverInventsThem) {
  const std::vector<uint8_t> table = ReadData("wine8-notebook.DMI");
  ASSERT_EQ(table.size(), 351u);
  const Fields full = Parse(table);
  for (size_t size = 0; size <= table.size(); ++size) {
    SCOPED_TRACE(size);
    Fields part;
    Walk(table.data(), size, part);
    for (size_t i = 0; i < full.text.size(); ++i) {
      if (!part.text[i].empty()) {
        EXPECT_EQ(part.text[i], full.text[i]) << "field " << i;
      }
    }
  }
}

TEST(SmbiosTest, SavedTablesOfEveryFormatDecodeAlike) {
  const std::vector<uint8_t> raw = ReadData("wine8-notebook.rsmb");
  const std::vector<uint8_t> bare = ReadData("wine8-notebook.DMI");
  const std::vector<uint8_t> dump = ReadData("wine8-notebook.dump-bin");
  const auto decode = [](const std::vector<uint8_t>& file, SavedFormat format, uint8_t major) {
    const auto saved = DetectSavedTable(file.data(), file.size());
    EXPECT_TRUE(saved.has_value());
    EXPECT_EQ(saved->format, format);
    EXPECT_EQ(saved->major, major);
    Fields fields;
    Walk(file.data() + saved->offset, saved->length, fields);
    return fields;
  };
  const Fields a = decode(raw, SavedFormat::kRawFirmwareTable, 2);
  const Fields b = decode(bare, SavedFormat::kBareTable, 0);
  const Fields c = decode(dump, SavedFormat::kDmidecodeDump, 2);
  EXPECT_EQ(a[kBiosVendor], "Example BIOS Inc.");
  EXPECT_EQ(a[kChassisSku], "");  // 0x15 is the first string byte, 'E': no such string
  EXPECT_EQ(a.chassis_type, 10);
  for (const Fields* f : {&b, &c}) {
    EXPECT_EQ(f->text, a.text);
    EXPECT_EQ(f->chassis_type, a.chassis_type);
    EXPECT_EQ(f->system_uuid, a.system_uuid);
  }
  const std::vector<uint8_t> wine = ReadData("wine8-default.rsmb");
  const Fields empty = decode(wine, SavedFormat::kRawFirmwareTable, 2);
  EXPECT_EQ(empty[kBiosVendor], "");
  EXPECT_EQ(empty.chassis_type, 2);
  EXPECT_EQ(empty.system_uuid[0], 0x3D);

  // A header whose length does not match what follows is no raw table.
  std::vector<uint8_t> odd = raw;
  odd[4] ^= 1;
  EXPECT_EQ(DetectSavedTable(odd.data(), odd.size())->format, SavedFormat::kBareTable);
  EXPECT_FALSE(DetectSavedTable(nullptr, 0).has_value());
}

}  // namespace
