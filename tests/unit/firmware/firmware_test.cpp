#include "platform/win32.h"

#include <gtest/gtest.h>

#include <cstring>

#include "firmware/hardware_config.h"
#include "firmware/smbios_reader.h"
#include "firmware/system_info.h"
#include "platform/wmi_namespaces.h"
#include "tests/support/fake_system.h"
#include "tests/support/smbios_builder.h"

namespace {

using namespace velhal::testing;

// A scratch folder standing for the library's own: config\product_adapter\ lives below it.
class FirmwareTest : public ::testing::Test {
 protected:
  void SetUp() override {
    wchar_t temp[MAX_PATH] = {};
    ::GetTempPathW(MAX_PATH, temp);
    folder_ = std::wstring(temp) + L"velhal-fw-" + std::to_wstring(::GetCurrentProcessId());
    adapter_ = folder_ + L"\\config\\product_adapter\\";
    ::CreateDirectoryW(folder_.c_str(), nullptr);
    ::CreateDirectoryW((folder_ + L"\\config").c_str(), nullptr);
    ::CreateDirectoryW(adapter_.c_str(), nullptr);
    os_.module.library_path = folder_ + L"\\VelHal.dll";
    os_.firmware_table.available = false;
  }
  void TearDown() override {
    ::DeleteFileW((adapter_ + L"HardwareConfig.xml").c_str());
    ::DeleteFileW((adapter_ + L"WifiBTConfig.xml").c_str());
    ::RemoveDirectoryW(adapter_.c_str());
    ::RemoveDirectoryW((folder_ + L"\\config").c_str());
    ::RemoveDirectoryW(folder_.c_str());
  }
  void Write(const wchar_t* file, const std::string& text) {
    const HANDLE handle = ::CreateFileW((adapter_ + file).c_str(), GENERIC_WRITE, 0, nullptr,
                                        CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    DWORD written = 0;
    ::WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    ::CloseHandle(handle);
  }

  std::wstring folder_, adapter_;
  FakeSystem os_;
};

TEST_F(FirmwareTest, TheFirmwareTableIsReadWithItsVersions) {
  os_.firmware_table.available = true;
  os_.firmware_table.table = SmbiosBuilder()
                                 .Record(1, {1, 2, 0, 0}, {"Example Computers Ltd.", "Book"})
                                 .Record(11, {5}, {"ABCDEFGHI3x", "b", "c", "d", "e"})
                                 .RawFirmwareTable(3, 4);
  const velhal::firmware::SmBiosSnapshot snapshot = velhal::firmware::ReadSmBios();
  EXPECT_EQ(snapshot.major, 3u);
  EXPECT_EQ(snapshot.minor, 4u);
  EXPECT_EQ(snapshot.fields[velhal::smbios::Field::kSystemManufacturer], "Example Computers Ltd.");
  EXPECT_EQ(snapshot.fields.oem_strings.at(1), "ABCDEFGHI3x");
  EXPECT_EQ(os_.debug.messages,
            std::vector<std::wstring>{L"biosType11 stringCount 5(SmBiosHelper::ProcOemString)\n"});
  EXPECT_TRUE(os_.wmi.calls.empty());
}

TEST_F(FirmwareTest, ASizeMismatchFillsNothingAndTriesNoWmi) {
  os_.firmware_table.available = true;
  os_.firmware_table.table =
      SmbiosBuilder().Record(1, {1, 0, 0, 0}, {"Maker"}).RawFirmwareTable(3, 4);
  os_.firmware_table.short_by = 1;
  const velhal::firmware::SmBiosSnapshot snapshot = velhal::firmware::ReadSmBios();
  EXPECT_EQ(snapshot.major, 0u);
  EXPECT_EQ(snapshot.fields[velhal::smbios::Field::kSystemManufacturer], "");
  EXPECT_EQ(os_.debug.messages,
            std::vector<std::wstring>{L"getSystemFirmwareTable error(SmBiosHelper::Init)\n"});
  EXPECT_TRUE(os_.wmi.calls.empty());
}

TEST_F(FirmwareTest, WithoutTheFunctionWmiServesTheBareStructures) {
  const std::vector<uint8_t> structures =
      SmbiosBuilder().Record(3, {1, 0x20, 0, 0, 0}, {"Chassis Maker"}).Bytes();
  os_.wmi.Script(velhal::wmi::kRootWmi, L"SELECT SMBiosData FROM MSSmBios_RawSMBiosTables",
                 L"SMBiosData", {FakeValue::Bytes(structures)});
  velhal::firmware::SmBiosSnapshot snapshot = velhal::firmware::ReadSmBios();
  EXPECT_EQ(snapshot.major, 0u);  // no header on this path
  EXPECT_EQ(snapshot.fields[velhal::smbios::Field::kChassisManufacturer], "Chassis Maker");
  EXPECT_EQ(snapshot.fields.chassis_type, 0x20);

  os_.wmi.Script(velhal::wmi::kRootWmi, L"SELECT SMBiosData FROM MSSmBios_RawSMBiosTables",
                 L"SMBiosData", {FakeValue::Null(CIM_UINT8 | CIM_FLAG_ARRAY)});  // as Wine answers
  snapshot = velhal::firmware::ReadSmBios();
  EXPECT_EQ(snapshot.fields.chassis_type, 0);
}

TEST_F(FirmwareTest, HardwareConfigReportsEveryLoadCode) {
  // The instance is handed out const; LoadConfig and Reset are its non-const members.
  HardwareConfig& config =
      const_cast<HardwareConfig&>(HardwareConfig::GetInstance());  // no file yet
  std::vector<std::string> vendors{"stale"};
  EXPECT_EQ(config.GetAudioVendor(vendors), -4);
  EXPECT_TRUE(vendors.empty());

  Write(L"HardwareConfig.xml",
        "<?xml version=\"1.0\"?><c><hardwareVendor> X;Y\n;Z </hardwareVendor>"
        "<hardwareVendor>second</hardwareVendor></c>");
  EXPECT_EQ(config.Reset(), 0);
  EXPECT_EQ(config.GetAudioVendor(vendors), 0);
  EXPECT_EQ(vendors, (std::vector<std::string>{"X", "Y", "Z"}));

  // Failures keep the list the last good load left.
  Write(L"HardwareConfig.xml", "<c><hardwareVendor>A</wrong></c>");  // mismatched end tag
  EXPECT_EQ(config.Reset(), -5);
  EXPECT_EQ(config.GetAudioVendor(vendors), -5);
  EXPECT_EQ(vendors, (std::vector<std::string>{"X", "Y", "Z"}));
  // No root element at all: Windows' XmlLite reports a parse error (-5); Wine's reaches the end
  // of input cleanly, and the reader finds no root (-6). Either way the list stays.
  Write(L"HardwareConfig.xml", "<?xml version=\"1.0\"?><!-- no root -->");
  const int no_root = config.Reset();
  EXPECT_TRUE(no_root == -5 || no_root == -6) << no_root;
  config.GetAudioVendor(vendors);
  EXPECT_EQ(vendors, (std::vector<std::string>{"X", "Y", "Z"}));
  Write(L"HardwareConfig.xml", "<c><other>A</other></c>");  // loads, no element: list stays
  EXPECT_EQ(config.Reset(), 0);
  config.GetAudioVendor(vendors);
  EXPECT_EQ(vendors, (std::vector<std::string>{"X", "Y", "Z"}));
  Write(L"HardwareConfig.xml", "<c><hardwareVendor>X ; Y</hardwareVendor></c>");
  EXPECT_EQ(config.Reset(), 0);
  config.GetAudioVendor(vendors);
  EXPECT_EQ(vendors, (std::vector<std::string>{"X ", " Y"}));

  ::DeleteFileW((adapter_ + L"HardwareConfig.xml").c_str());
  EXPECT_EQ(config.Reset(), -4);
  config.GetAudioVendor(vendors);
  EXPECT_EQ(vendors, (std::vector<std::string>{"X ", " Y"}));
  os_.module.handle_fails = true;
  EXPECT_EQ(config.Reset(), -3);
}

TEST_F(FirmwareTest, UnsupportedSkusComeFromTheFirstUnsupportElement) {
  EXPECT_TRUE(velhal::firmware::ReadUnsupportedSkus().empty());
  Write(L"WifiBTConfig.xml",
        "<any><x/><unsupport>EXB14G2#ABA;;ZX-100;</unsupport>"
        "<unsupport>ignored</unsupport></any>");
  EXPECT_EQ(velhal::firmware::ReadUnsupportedSkus(),
            (std::vector<std::string>{"EXB14G2#ABA", "ZX-100"}));
  Write(L"WifiBTConfig.xml", "<any><nested><unsupport>deep</unsupport></nested></any>");
  EXPECT_TRUE(velhal::firmware::ReadUnsupportedSkus().empty());  // only the root's children
}

TEST_F(FirmwareTest, SerialFallsBackToWmiThenToThePlaceholder) {
  os_.wmi.Script(velhal::wmi::kCimV2, L"SELECT SerialNumber FROM Win32_BIOS", L"SerialNumber",
                 {FakeValue::Text(L"ABC")});
  SystemInfo info;
  EXPECT_EQ(info.GetDeviceSerialNumber(), "ABC");
  char buffer[8];
  std::memset(buffer, '#', sizeof(buffer));
  EXPECT_EQ(info.GetDeviceSerialNumberEx(buffer, sizeof(buffer)), SN_SUCCESS);
  EXPECT_EQ(std::string(buffer, 8), std::string("ABC\0\0\0\0\0", 8));
  EXPECT_EQ(info.GetDeviceSerialNumberEx(nullptr, 8), SN_NO_BUFFER_OR_TOO_SMALL);
  EXPECT_EQ(info.GetDeviceSerialNumberEx(buffer, 0), SN_NO_BUFFER_OR_TOO_SMALL);
}

TEST_F(FirmwareTest, NoSerialAnywhereGivesThePlaceholder) {
  SystemInfo info;
  EXPECT_EQ(info.GetDeviceSerialNumber(), "21111111111111111111");
  char buffer[64];
  std::memset(buffer, '#', sizeof(buffer));
  EXPECT_EQ(info.GetDeviceSerialNumberEx(buffer, sizeof(buffer)), SN_UNKNOWN);
  EXPECT_EQ(std::string(buffer, 21), std::string("21111111111111111111\0", 21));
  EXPECT_EQ(buffer[63], 0);
  char exact[20];
  EXPECT_EQ(info.GetDeviceSerialNumberEx(exact, sizeof(exact)), SN_UNKNOWN);
  EXPECT_EQ(std::string(exact, 20), "21111111111111111111");  // no room, no terminator
}

TEST_F(FirmwareTest, ASerialThatDoesNotFitFallsToThePlaceholder) {
  os_.wmi.Script(velhal::wmi::kCimV2, L"SELECT SerialNumber FROM Win32_BIOS", L"SerialNumber",
                 {FakeValue::Text(L"0123456789")});
  SystemInfo info;
  char ten[10], eleven[11], twenty_four[24];
  EXPECT_EQ(info.GetDeviceSerialNumberEx(ten, sizeof(ten)), SN_PLACEHOLDER_TOO_LONG);
  EXPECT_EQ(std::string(ten, 10), std::string(10, '\0'));
  EXPECT_EQ(info.GetDeviceSerialNumberEx(eleven, sizeof(eleven)), SN_SUCCESS);
  EXPECT_EQ(std::string(eleven, 11), std::string("0123456789\0", 11));
  os_.wmi.Script(velhal::wmi::kCimV2, L"SELECT SerialNumber FROM Win32_BIOS", L"SerialNumber",
                 {FakeValue::Text(L"changed")});  // the first real answer is kept for good
  EXPECT_EQ(info.GetDeviceSerialNumberEx(twenty_four, sizeof(twenty_four)), SN_SUCCESS);
  EXPECT_EQ(std::string(twenty_four), "0123456789");
}

}  // namespace
