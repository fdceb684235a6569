// halinfo --smbios-file on saved tables: the JSON parses, carries the table's version and
// fields, and 8-bit strings come out as UTF-8.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include <nlohmann/json.hpp>

#include "tests/support/run_halinfo.h"

namespace {

const std::string kData = std::string(VELHAL_TEST_DATA_DIR) + "/smbios/";

using velhal::testing::Halinfo;

nlohmann::json Report(const std::string& file) {
  const auto [out, status] = Halinfo("--smbios-file " + file + " --json");
  EXPECT_EQ(status, 0);
  return nlohmann::json::parse(out).at("smbios");
}

// That the formats decode alike is the core's test; here, what halinfo makes of a table.
TEST(HalinfoSmbiosTest, ReportsCarryTheTableUtf8TextAndTheDerivedIdentity) {
  const nlohmann::json raw = Report(kData + "wine8-notebook.rsmb");
  EXPECT_EQ(raw.at("version"), (nlohmann::json{{"major", 2}, {"minor", 4}, {"dmiRevision", 0}}));
  EXPECT_EQ(raw.at("system").at("productName"), "Example Book 14 G2");
  EXPECT_EQ(raw.at("system").at("uuid"), "3d1219c7c4c5404aaa1f6d2a48adfda4");
  EXPECT_EQ(raw.at("chassis").at("type"), 10);

  // One system record whose manufacturer holds 0xE9 and 0x80, seven OEM strings, and a
  // detachable chassis.
  std::string table = std::string("\x01\x08\x00\x00\x01\x00\x00\x00", 8) + "Caf\xE9 \x80" +
                      std::string(2, '\0');
  table += std::string("\x0B\x05\x01\x00\x07", 5) + "ABCDEFGHI2" + "3xxxxx1" + std::string(1, '\0');
  for (int i = 2; i <= 7; ++i) table += "s" + std::to_string(i) + std::string(1, '\0');
  table += std::string(1, '\0');
  table += std::string("\x03\x06\x02\x00\x00\x20", 6) + std::string(2, '\0');
  const std::string path = ::testing::TempDir() + "halinfo-1252.DMI";
  std::ofstream(path, std::ios::binary) << table;

  const nlohmann::json report = Report(path);
  EXPECT_EQ(report.at("system").at("manufacturer"), "Caf\u00e9 \u20ac");
  EXPECT_EQ(report.at("oemStrings").size(), 6u);  // 1, 2, 3, 4, 6 and 7 of the seven: never 5
  EXPECT_EQ(report.at("oemStrings").at("1"), "ABCDEFGHI23xxxxx1");
  EXPECT_EQ(report.at("identity").at("deviceValue"), '2');
  EXPECT_EQ(report.at("identity").at("brand"), 1);
  EXPECT_EQ(report.at("identity").at("consumerType"), 3);
  EXPECT_EQ(report.at("identity").at("isTypeDetachablePC"), true);
  EXPECT_EQ(report.at("identity").at("isUnsupportWifiAndBT"), true);  // '1' at index 16

  const auto [text, status] = Halinfo("--smbios-file " + path);
  EXPECT_EQ(status, 0);
  EXPECT_NE(text.find("bare structure table"), std::string::npos);
  // dmidecode's decodings in plain text: a named chassis type with its number.
  EXPECT_NE(text.find("Detachable (32)"), std::string::npos);
}

// Each kind of bad input has its exit code and says so in one line on standard error, with
// the report of what could be decoded still printed.
TEST(HalinfoSmbiosTest, BadInputsAndUsageHaveTheirExitCodes) {
  const std::string random = ::testing::TempDir() + "halinfo-random.bin";
  std::ofstream(random, std::ios::binary) << std::string("\x7E\x02\xFF\xAA", 4) + std::string(300, '\x55');
  std::ifstream whole(kData + "wine8-notebook.rsmb", std::ios::binary);
  const std::string table((std::istreambuf_iterator<char>(whole)), {});
  const std::string cut = ::testing::TempDir() + "halinfo-cut.rsmb";
  std::ofstream(cut, std::ios::binary) << table.substr(0, 100);
  struct Case {
    std::string arguments;
    int status;
    const char* says;  // on standard error
  };
  const Case cases[] = {
      {"--version", 0, ""},
      {"--no-such-option", 2, "--no-such-option"},
      {"--smbios-file /nonexistent/table", 4, "/nonexistent/table: no such file"},
      {"--smbios-file " + ::testing::TempDir(), 4, "is a directory"},
      {"--smbios-file " + random, 4, "holds no SMBIOS structure"},
      {"--smbios-file " + cut + " --json", 4, "is truncated or damaged"},
      {"--edid-file " + random, 4, "holds no EDID"},
      {"", 2, "reads saved files only"},  // this build has no running-machine report
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.arguments);
    const auto [errors, status] = velhal::testing::HalinfoErrors(c.arguments);
    EXPECT_EQ(status, c.status);
    EXPECT_NE(errors.find(c.says), std::string::npos) << errors;
    if (c.status == 4 && c.arguments.find("--json") != std::string::npos) {
      EXPECT_TRUE(nlohmann::json::accept(Halinfo(c.arguments).first));  // still printed
    }
  }
  EXPECT_EQ(Halinfo("--version").first.rfind("halinfo ", 0), 0u);
}

}  // namespace
