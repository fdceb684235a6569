// halinfo --edid-file on real and cut EDIDs: exactly the documented JSON object, every key
// always present, the monitor's 8-bit text as UTF-8, and a file of any length accepted.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/support/edid_builder.h"
#include "tests/support/run_halinfo.h"

namespace {

using velhal::testing::EdidBuilder;
using velhal::testing::Halinfo;

const std::string kData = std::string(VELHAL_TEST_DATA_DIR) + "/edid/";

nlohmann::ordered_json Report(const std::string& file) {
  const auto [out, status] = Halinfo("--edid-file " + file + " --json");
  EXPECT_EQ(status, 0);
  const auto document = nlohmann::ordered_json::parse(out);
  EXPECT_EQ(document.size(), 1u);
  return document.at("edid");
}

std::string Saved(const std::string& name, const std::vector<uint8_t>& bytes) {
  const std::string path = ::testing::TempDir() + name;
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  return path;
}

TEST(HalinfoEdidTest, RealMonitorsGiveTheDocumentedObject) {
  const nlohmann::ordered_json dell = Report(kData + "dell-d3218hn.bin");
  EXPECT_EQ(dell, nlohmann::ordered_json::parse(R"({
      "monitorName": "D3218HN", "manufacturerId": "DEL", "productCode": 8203,
      "serialNumber": 16843009, "manufactureWeek": 32, "manufactureYear": 2018,
      "version": "1.3", "sizeBytes": 256, "extensionCount": 1, "headerValid": true,
      "checksumValid": true,
      "preferredMode": {"width": 1920, "height": 1080, "refreshMilliHz": 60000}})"));
  const nlohmann::ordered_json aoc = Report(kData + "aoc-1670w.bin");
  EXPECT_EQ(aoc.at("monitorName"), "1670W");
  EXPECT_EQ(aoc.at("preferredMode").at("refreshMilliHz"), 59790);
  const nlohmann::ordered_json panel = Report(kData + "auo-b133hab.bin");
  EXPECT_EQ(panel.at("monitorName"), "");
  EXPECT_EQ(panel.at("manufacturerId"), "AUO");
  EXPECT_EQ(panel.at("version"), "1.4");

  const auto [text, status] = Halinfo("--edid-file " + kData + "aoc-1670w.bin");
  EXPECT_EQ(status, 0);
  EXPECT_NE(text.find("monitor name            1670W"), std::string::npos);
}

TEST(HalinfoEdidTest, ShortFilesKeepEveryKey) {
  const nlohmann::ordered_json empty = Report(Saved("empty.edid", {}));
  EXPECT_EQ(empty, nlohmann::ordered_json::parse(R"({
      "monitorName": "", "manufacturerId": "", "productCode": 0, "serialNumber": 0,
      "manufactureWeek": 0, "manufactureYear": 0, "version": "", "sizeBytes": 0,
      "extensionCount": 0, "headerValid": false, "checksumValid": false,
      "preferredMode": null})"));
  std::ifstream file(kData + "aoc-1670w.bin", std::ios::binary);
  std::vector<uint8_t> cut((std::istreambuf_iterator<char>(file)), {});
  cut.resize(100);  // past the first timing, short of the name at 108 and the checksum
  const nlohmann::ordered_json part = Report(Saved("cut.edid", cut));
  EXPECT_EQ(part.at("monitorName"), "");
  EXPECT_EQ(part.at("sizeBytes"), 100);
  EXPECT_EQ(part.at("checksumValid"), false);
  EXPECT_EQ(part.at("preferredMode").at("width"), 1366);
  EXPECT_NE(Halinfo("--edid-file /nonexistent/edid").second, 0);
}

TEST(HalinfoEdidTest, EightBitNamesAreWindows1252) {
  const nlohmann::ordered_json report =
      Report(Saved("1252.edid", EdidBuilder().Name(108, "Caf\xE9 \x80").Build()));
  EXPECT_EQ(report.at("monitorName"), "Caf\u00e9 \u20ac");
}

}  // namespace
