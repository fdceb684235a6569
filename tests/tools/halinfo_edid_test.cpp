// halinfo --edid-file: exactly the documented JSON object, every key always present, for a real
// monitor and an empty file, the monitor's 8-bit text as UTF-8 (what each field holds is the
// core's test).
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/support/edid_builder.h"
#include "tests/support/run_halinfo.h"

namespace {

using velhal::testing::Halinfo;

// The report is printed whole also for a file that is no whole EDID, which exits with 4.
nlohmann::ordered_json Report(const std::string& file, int expected_status = 0) {
  const auto [out, status] = Halinfo("--edid-file " + file + " --json");
  EXPECT_EQ(status, expected_status) << file;
  return nlohmann::ordered_json::parse(out);
}

std::string Saved(const std::string& name, const std::vector<uint8_t>& bytes) {
  const std::string path = ::testing::TempDir() + name;
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  return path;
}

TEST(HalinfoEdidTest, ReportsAreTheDocumentedObjectForAnyFile) {
  EXPECT_EQ(Report(std::string(VELHAL_TEST_DATA_DIR) + "/edid/dell-d3218hn.bin"),
            nlohmann::ordered_json::parse(R"({"schemaVersion": 1, "edid": {
      "monitorName": "D3218HN", "manufacturerId": "DEL", "productCode": 8203,
      "serialNumber": 16843009, "manufactureWeek": 32, "manufactureYear": 2018,
      "version": "1.3", "sizeBytes": 256, "extensionCount": 1, "headerValid": true,
      "checksumValid": true,
      "preferredMode": {"width": 1920, "height": 1080, "refreshMilliHz": 60000}}})"));
  EXPECT_EQ(Report(Saved("empty.edid", {}), 4), nlohmann::ordered_json::parse(R"({"schemaVersion": 1, "edid": {
      "monitorName": "", "manufacturerId": "", "productCode": 0, "serialNumber": 0,
      "manufactureWeek": 0, "manufactureYear": 0, "version": "", "sizeBytes": 0,
      "extensionCount": 0, "headerValid": false, "checksumValid": false,
      "preferredMode": null}})"));
  const std::vector<uint8_t> named =
      velhal::testing::EdidBuilder().Name(108, "Caf\xE9 \x80").Build();
  EXPECT_EQ(Report(Saved("1252.edid", named)).at("edid").at("monitorName"), "Caf\u00e9 \u20ac");

  const auto [text, status] = Halinfo("--edid-file " + Saved("plain.edid", named));
  EXPECT_EQ(status, 0);
  EXPECT_NE(text.find("monitor name            Caf\u00e9 \u20ac\n"), std::string::npos);
  EXPECT_NE(Halinfo("--edid-file /nonexistent/edid").second, 0);
}

}  // namespace
