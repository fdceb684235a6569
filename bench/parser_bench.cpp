// The portable byte parsers' throughput, natively and without sanitizers: the SMBIOS walk and
// strict check over the saved tables in tests/data/smbios and over a table the size of a
// desktop's (the identity records among 8 KiB of records the walk skips), and the EDID decode
// and product-name scan over the monitors in tests/data/edid.
//
//   parser_bench [data folder] [seconds per figure]   defaults: the source tree's, 0.5
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "core/edid.h"
#include "core/smbios.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Clock = std::chrono::steady_clock;

// Keeps results observable so the optimizer cannot drop the work.
volatile size_t g_sink = 0;

Bytes ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Runs parse over input until `seconds` pass; returns MB/s (10^6 bytes).
template <class Parse>
double MegabytesPerSecond(const Bytes& input, double seconds, Parse&& parse) {
  size_t rounds = 0;
  const Clock::time_point start = Clock::now();
  double elapsed = 0;
  do {
    for (int i = 0; i < 256; ++i) g_sink = g_sink + parse(input);
    rounds += 256;
    elapsed = std::chrono::duration<double>(Clock::now() - start).count();
  } while (elapsed < seconds);
  return static_cast<double>(rounds) * static_cast<double>(input.size()) / elapsed / 1e6;
}

void AppendRecord(Bytes& table, uint8_t type, uint8_t formatted_length,
                  const std::vector<std::string>& strings) {
  table.push_back(type);
  table.push_back(formatted_length);
  table.push_back(0x00);
  table.push_back(0x10);
  for (uint8_t i = 4; i < formatted_length; ++i) table.push_back(static_cast<uint8_t>(i));
  for (const std::string& text : strings) {
    table.insert(table.end(), text.begin(), text.end());
    table.push_back(0);
  }
  if (strings.empty()) table.push_back(0);
  table.push_back(0);
}

// A raw firmware table the size of a desktop's: the notebook's structures (without their end
// record) followed by memory-device, slot and port records up to 8 KiB, then the end record.
Bytes DesktopSizedTable(const Bytes& notebook) {
  const std::optional<velhal::smbios::RawHeader> header =
      velhal::smbios::ReadRawHeader(notebook.data(), notebook.size());
  if (!header) return {};
  Bytes structures(notebook.begin() + 8, notebook.begin() + 8 + header->length);
  // Drop the end-of-table record (type 127, 4 bytes and two NULs) if it closes the table.
  if (structures.size() >= 6 && structures[structures.size() - 6] == 127)
    structures.resize(structures.size() - 6);
  for (int n = 0; structures.size() < 8192; ++n) {
    const std::string slot = std::to_string(n);
    AppendRecord(structures, 17, 0x54,
                 {"DIMM " + slot, "BANK " + slot, "Maker", "0000" + slot, "Asset " + slot,
                  "PART-NUMBER-" + slot});
    AppendRecord(structures, 9, 0x11, {"PCIEX16_" + slot});
    AppendRecord(structures, 8, 0x09, {"USB" + slot, "Port " + slot});
  }
  AppendRecord(structures, 127, 4, {});
  Bytes table(notebook.begin(), notebook.begin() + 8);
  const uint32_t length = static_cast<uint32_t>(structures.size());
  for (int i = 0; i < 4; ++i) table[4 + i] = static_cast<uint8_t>(length >> (8 * i));
  table.insert(table.end(), structures.begin(), structures.end());
  return table;
}

// What the library does with a raw table: its header, then the identity walk.
size_t WalkRaw(const Bytes& table) {
  const std::optional<velhal::smbios::RawHeader> header =
      velhal::smbios::ReadRawHeader(table.data(), table.size());
  if (!header) return 0;
  velhal::smbios::Fields fields;
  velhal::smbios::Walk(table.data() + 8, header->length, fields);
  return fields.oem_strings.size() + fields[velhal::smbios::Field::kSystemProductName].size();
}

size_t CheckRaw(const Bytes& table) {
  return velhal::smbios::CheckTable(table.data() + 8, table.size() - 8).structures;
}

size_t DecodeEdid(const Bytes& edid) {
  return velhal::edid::Decode(edid.data(), edid.size()).monitor_name.size();
}

size_t ScanEdidName(const Bytes& edid) {
  return velhal::edid::DisplayProductName(edid.data(), edid.size()).value_or("").size();
}

}  // namespace

int main(int argc, char** argv) {
  const std::filesystem::path data = argc > 1 ? argv[1] : VELHAL_TEST_DATA_DIR;
  const double seconds = argc > 2 ? std::atof(argv[2]) : 0.5;

  const Bytes notebook = ReadFile(data / "smbios" / "wine8-notebook.rsmb");
  const Bytes desktop = DesktopSizedTable(notebook);
  if (notebook.empty() || desktop.empty()) {
    std::fprintf(stderr, "parser_bench: no SMBIOS table under %s\n", data.string().c_str());
    return 1;
  }
  // The synthetic table must be one the walk reads to its end, or its figure means nothing.
  const velhal::smbios::TableCheck check =
      velhal::smbios::CheckTable(desktop.data() + 8, desktop.size() - 8);
  if (check.damaged || !check.end_of_table || WalkRaw(desktop) != WalkRaw(notebook)) {
    std::fprintf(stderr,
                 "parser_bench: the desktop-sized table does not walk like the notebook's\n");
    return 1;
  }
  std::printf("%-34s %8s %12s %12s\n", "input", "bytes", "walk MB/s", "check MB/s");
  for (const auto& [name, table] :
       {std::pair{"smbios/wine8-default.rsmb", ReadFile(data / "smbios" / "wine8-default.rsmb")},
        std::pair{"smbios/wine8-notebook.rsmb", notebook},
        std::pair{"desktop-sized table (synthetic)", desktop}}) {
    std::printf("%-34s %8zu %12.0f %12.0f\n", name, table.size(),
                MegabytesPerSecond(table, seconds, WalkRaw),
                MegabytesPerSecond(table, seconds, CheckRaw));
  }

  std::printf("\n%-34s %8s %12s %12s\n", "input", "bytes", "decode MB/s", "name MB/s");
  for (const char* name : {"aoc-1670w.bin", "auo-b133hab.bin", "dell-d3218hn.bin"}) {
    const Bytes edid = ReadFile(data / "edid" / name);
    if (edid.empty()) continue;
    std::printf("%-34s %8zu %12.0f %12.0f\n", (std::string("edid/") + name).c_str(), edid.size(),
                MegabytesPerSecond(edid, seconds, DecodeEdid),
                MegabytesPerSecond(edid, seconds, ScanEdidName));
  }
  return 0;
}
