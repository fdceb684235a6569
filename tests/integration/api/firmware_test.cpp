// The firmware identity through VelHal.dll on the table the system really serves, checked
// field by field against the test's own walk of GetSystemFirmwareTable's bytes; and
// HardwareConfig on a file the test writes beside the DLL. Wine's own table has no strings;
// tests/integration/fake_dmi_test.sh runs these tests again with made-up DMI strings.
#include "platform/win32.h"

#include "components/baseboard.h"
#include "firmware/hardware_config.h"
#include "firmware/smbios_helper.h"
#include "firmware/system_info.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "tests/support/raw_wmi.h"

namespace {

// A walk written for this test alone: the structures one by one, strings by number.
struct OwnWalk {
  uint8_t major = 0, minor = 0;
  std::map<std::pair<int, int>, std::string> strings;  // (type, offset) -> text
  std::map<std::pair<int, int>, uint8_t> bytes;        // (type, offset) -> byte
  std::vector<uint8_t> uuid;

  explicit OwnWalk(const std::vector<uint8_t>& table) {
    major = table[1];
    minor = table[2];
    uint32_t length = 0;
    std::memcpy(&length, &table[4], 4);
    const uint8_t* p = table.data() + 8;
    const uint8_t* end = p + length;
    while (p + 4 <= end) {
      const int type = p[0];
      const uint8_t* strings_at = p + p[1];
      std::vector<std::string> set;
      const uint8_t* s = strings_at;
      while (s < end && *s) {
        set.emplace_back(reinterpret_cast<const char*>(s));
        s += set.back().size() + 1;
      }
      const auto text = [&](int offset) {
        const int n = offset < p[1] ? p[offset] : 0;
        return n >= 1 && n <= static_cast<int>(set.size()) ? set[n - 1] : std::string();
      };
      for (int offset : {4, 5, 6, 7, 8, 0x0A, 0x15, 0x19, 0x1A})
        strings[{type, offset}] = text(offset);
      if (p[1] > 5) bytes[{type, 5}] = p[5];
      if (type == 1 && p[1] >= 0x18) uuid.assign(p + 8, p + 0x18);
      p = (set.empty() ? strings_at + 1 : s) + 1;
    }
  }
  static std::vector<uint8_t> Table() {
    const UINT size = ::GetSystemFirmwareTable(0x52534D42, 0, nullptr, 0);
    std::vector<uint8_t> table(size);
    if (size < 8 || ::GetSystemFirmwareTable(0x52534D42, 0, table.data(), size) != size) return {};
    return table;
  }
  std::wstring Text(int type, int offset) const {
    const auto found = strings.find({type, offset});
    const std::string narrow = found == strings.end() ? std::string() : found->second;
    return std::wstring(narrow.begin(), narrow.end());  // the tables here are ASCII
  }
};

TEST(FirmwareIdentityTest, AgreesFieldByFieldWithAnIndependentWalk) {
  const std::vector<uint8_t> table = OwnWalk::Table();
  if (table.empty()) GTEST_SKIP() << "the system serves no SMBIOS table";
  const OwnWalk own(table);
  const SmBiosHelper& helper = *SmBiosHelper::GetInstance();
  EXPECT_EQ(&helper, SmBiosHelper::GetInstance());

  EXPECT_EQ(helper.GetBIOSVendor(), own.Text(0, 4));
  EXPECT_EQ(helper.GetBIOSVersion(), own.Text(0, 5));
  EXPECT_EQ(helper.GetBIOSReleaseDate(), own.Text(0, 8));
  EXPECT_EQ(helper.GetSysManufactor(), own.Text(1, 4));
  EXPECT_EQ(helper.GetSysProductName(), own.Text(1, 5));
  EXPECT_EQ(helper.GetSysVersion(), own.Text(1, 6));
  EXPECT_EQ(helper.GetSysSerialNumber(), own.Text(1, 7));
  EXPECT_EQ(helper.GetBoardManufactor(), own.Text(2, 4));
  EXPECT_EQ(helper.GetBoardProductName(), own.Text(2, 5));
  EXPECT_EQ(helper.GetBoardSerialNumber(), own.Text(2, 7));
  EXPECT_EQ(helper.GetSecManufactor(), own.Text(3, 4));
  EXPECT_EQ(helper.GetSecSerialNumber(), own.Text(3, 7));
  EXPECT_EQ(helper.GetSecType(), own.bytes.at({3, 5}));
  EXPECT_EQ(IsTypeDetachablePC(), own.bytes.at({3, 5}) == 0x20);
  // Hosts bind the detachable test by its plain name.
  using Detachable = bool (*)();
  const auto bound = reinterpret_cast<Detachable>(reinterpret_cast<void*>(
      ::GetProcAddress(::GetModuleHandleW(L"VelHal.dll"), "IsTypeDetachablePC")));
  ASSERT_NE(bound, nullptr);
  EXPECT_EQ(bound(), IsTypeDetachablePC());
  if (own.uuid.size() == 16) {
    const GUID uuid = helper.GetSysUUID();
    EXPECT_EQ(std::memcmp(&uuid, own.uuid.data(), 16), 0);
  }
  // Nothing the firmware lacks is invented, and asking inserts nothing.
  EXPECT_EQ(helper.GetOemString3(), L"");
  EXPECT_EQ(helper.GetOemString3(), L"");

  // The serial: the table's own, else WMI's BIOS serial; never empty.
  SystemInfo info;
  const std::string serial = info.GetDeviceSerialNumber();
  EXPECT_FALSE(serial.empty());
  if (!own.Text(1, 7).empty()) {
    EXPECT_EQ(std::wstring(serial.begin(), serial.end()), own.Text(1, 7));
  }
}

TEST(FirmwareIdentityTest, BaseboardAgreesWithTheWalkAndWithMadeUpDmiStrings) {
  const std::vector<uint8_t> table = OwnWalk::Table();
  if (table.empty()) GTEST_SKIP() << "the system serves no SMBIOS table";
  const OwnWalk own(table);
  Baseboard board;
  const std::wstring read[] = {board.GetBaseboardManufacturer(), board.GetBaseboardProduct(),
                               board.GetBaseboardVersion(),      board.GetBaseboardSerialNumber(),
                               board.GetBIOSManufacturer(),      board.GetBIOSVersion(),
                               board.GetBIOSReaseDate()};
  const std::wstring walked[] = {own.Text(2, 4), own.Text(2, 5), own.Text(2, 6), own.Text(2, 7),
                                 own.Text(0, 4), own.Text(0, 5), own.Text(0, 8)};
  for (size_t i = 0; i < std::size(read); ++i) EXPECT_EQ(read[i], walked[i]) << i;
  std::wstring serial = own.Text(1, 7);
  if (serial.empty()) {
    const auto wmi = velhal::testing::RawWmiTexts(
        L"ROOT\\CIMV2", L"SELECT SerialNumber FROM Win32_BIOS", L"SerialNumber");
    if (wmi && !wmi->empty()) serial = wmi->front();
  }
  EXPECT_EQ(board.GetBIOSSerialNumber(), serial);

  // Under the made-up strings each DMI file holds "<prefix> <its name>".
  wchar_t prefix[32] = {};
  if (::GetEnvironmentVariableW(L"VELHAL_FAKE_DMI", prefix, 32) == 0) return;
  const auto fake = [&](const wchar_t* file) { return std::wstring(prefix) + L" " + file; };
  const std::wstring expected[] = {
      fake(L"board_vendor"), fake(L"board_name"),   fake(L"board_version"), fake(L"board_serial"),
      fake(L"bios_vendor"),  fake(L"bios_version"), fake(L"bios_date")};
  for (size_t i = 0; i < std::size(read); ++i) EXPECT_EQ(read[i], expected[i]) << i;
  EXPECT_EQ(board.GetBIOSSerialNumber(), fake(L"product_serial"));
}

TEST(FirmwareIdentityTest, HardwareConfigReadsTheFileBesideTheDll) {
  HMODULE dll = ::GetModuleHandleW(L"VelHal.dll");
  ASSERT_NE(dll, nullptr);
  wchar_t path[MAX_PATH] = {};
  ::GetModuleFileNameW(dll, path, MAX_PATH);
  std::wstring folder(path);
  folder = folder.substr(0, folder.find_last_of(L'\\') + 1) + L"config\\product_adapter\\";
  const std::wstring file = folder + L"HardwareConfig.xml";
  const std::wstring kept = folder + L"HardwareConfig.xml.kept";
  ASSERT_TRUE(::MoveFileExW(file.c_str(), kept.c_str(), MOVEFILE_REPLACE_EXISTING));

  auto& config = const_cast<HardwareConfig&>(HardwareConfig::GetInstance());
  const std::string text =
      "<?xml version=\"1.0\"?>\n<r><hardwareVendor>\nVEN_TEST1;VEN_TEST2\n</hardwareVendor></r>\n";
  HANDLE handle = ::CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(handle, INVALID_HANDLE_VALUE);
  DWORD written = 0;
  ::WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  ::CloseHandle(handle);

  EXPECT_EQ(config.Reset(), 0);
  std::vector<std::string> vendors;
  EXPECT_EQ(config.GetAudioVendor(vendors), 0);
  EXPECT_EQ(vendors, (std::vector<std::string>{"VEN_TEST1", "VEN_TEST2"}));
  ::DeleteFileW(file.c_str());
  EXPECT_EQ(config.Reset(), -4);

  ASSERT_TRUE(::MoveFileExW(kept.c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING));
  EXPECT_EQ(config.Reset(), 0);  // the shipped file loads
  EXPECT_EQ(config.GetAudioVendor(vendors), 0);
  EXPECT_EQ(vendors, (std::vector<std::string>{"VEN_10EC", "VEN_8086", "VEN_1022"}));
}

}  // namespace
