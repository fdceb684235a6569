// SystemInfo's answers about Windows, SystemEnvironmentInfo and CDeviceId against the fakes.
#include "platform/win32.h"

#include <gtest/gtest.h>

#include <cstring>

#include "firmware/device_id.h"
#include "firmware/system_environment_info.h"
#include "firmware/system_info.h"
#include "platform/device_classes.h"
#include "platform/process_state.h"
#include "tests/support/fake_system.h"
#include "tests/support/smbios_builder.h"

namespace {

using velhal::testing::FakeDisplay;
namespace device_class = velhal::device_class;

constexpr wchar_t kCurrentVersion[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";

class SystemTest : public ::testing::Test {
 protected:
  velhal::testing::FakeSystem os_;
  SystemInfo info_;
  SystemEnvironmentInfo environment_;
};

TEST_F(SystemTest, TheVersionIsTheKernelsAndTheRestComesFromTheRegistry) {
  // The registry's CurrentVersion stays "6.3" on Windows 10 and 11, and GetVersionExW answers
  // 6.2 to a program without a manifest: neither may leak into the answer.
  os_.registry.SetString(kCurrentVersion, L"CurrentVersion", L"6.3");
  os_.registry.SetDword(kCurrentVersion, L"UBR", 2861);
  os_.registry.SetString(kCurrentVersion, L"EditionID", L"Professional");
  os_.registry.SetString(kCurrentVersion, L"ReleaseId", L"2009");
  os_.registry.SetString(kCurrentVersion, L"ProductName", L"Windows 10 Pro");
  os_.system_info.version.dwMajorVersion = 10;
  os_.system_info.version.dwMinorVersion = 0;
  os_.system_info.version.dwBuildNumber = 22631;
  EXPECT_EQ(info_.GetOsMajorVersion(), 10u);
  EXPECT_EQ(info_.GetOsMinorVersion(), 0u);
  EXPECT_EQ(info_.GetOsBuildNumber(), 22631u);
  EXPECT_EQ(info_.GetOsRevision(), 2861u);
  EXPECT_EQ(info_.GetOsEdition(), L"Professional");
  EXPECT_EQ(info_.GetOsDisplayVersion(), L"2009");  // ReleaseId where DisplayVersion is not kept
  os_.registry.SetString(kCurrentVersion, L"DisplayVersion", L"23H2");
  EXPECT_EQ(info_.GetOsDisplayVersion(), L"23H2");
  EXPECT_EQ(info_.GetOsProductName(), L"Windows 10 Pro");

  // Without RtlGetVersion the version is unknown, not a shimmed guess.
  os_.system_info.version_status = static_cast<LONG>(0xC000007A);
  EXPECT_EQ(info_.GetOsMajorVersion(), 0u);
  EXPECT_EQ(info_.GetOsBuildNumber(), 0u);
}

TEST_F(SystemTest, TheNativeArchitectureSeesThroughEmulation) {
  struct Case {
    const char* name;
    std::optional<USHORT> native_machine;  // nullopt: before Windows 10 1709
    WORD native_architecture;
    const wchar_t* expected;
  };
  const Case cases[] = {
      // An x64 process emulated on ARM64: GetNativeSystemInfo says x64, IsWow64Process2 knows.
      {"x64 emulated on ARM64", IMAGE_FILE_MACHINE_ARM64, PROCESSOR_ARCHITECTURE_AMD64, L"ARM64"},
      {"x64", IMAGE_FILE_MACHINE_AMD64, PROCESSOR_ARCHITECTURE_AMD64, L"x64"},
      {"older Windows", std::nullopt, PROCESSOR_ARCHITECTURE_AMD64, L"x64"},
      {"older Windows on ARM64", std::nullopt, PROCESSOR_ARCHITECTURE_ARM64, L"ARM64"},
      {"unknown machine", IMAGE_FILE_MACHINE_IA64, PROCESSOR_ARCHITECTURE_AMD64, L""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    os_.system_info.native_machine = c.native_machine;
    os_.system_info.native_architecture = c.native_architecture;
    EXPECT_EQ(info_.GetOsArchitecture(), c.expected);
  }
}

TEST_F(SystemTest, MachineNameUptimeLanguagesAndLocales) {
  os_.system_info.computer_name = L"Build-Host-07";
  os_.system_info.tick_count = 123456789012ULL;
  os_.locale.names[0x0407] = L"de-DE";
  os_.locale.names[0x0411] = L"ja-JP";
  os_.locale.user_ui_language = 0x0407;
  os_.locale.system_ui_language = 0x0411;
  os_.locale.user_locale = L"de-CH";
  os_.locale.system_locale = L"fr-FR";
  EXPECT_EQ(info_.GetMachineName(), L"Build-Host-07");
  EXPECT_EQ(info_.GetUptimeMs(), 123456789012ULL);
  EXPECT_EQ(info_.GetUserUILanguage(), L"de-DE");
  EXPECT_EQ(info_.GetSystemUILanguage(), L"ja-JP");
  EXPECT_EQ(info_.GetUserLocale(), L"de-CH");
  EXPECT_EQ(info_.GetSystemLocale(), L"fr-FR");

  os_.system_info.computer_name.clear();
  os_.locale.user_ui_language = 0x0C0C;  // no locale name known
  EXPECT_EQ(info_.GetMachineName(), L"");
  EXPECT_EQ(info_.GetUserUILanguage(), L"");
}

TEST_F(SystemTest, TimeZoneBiasIncludesTheSeasonInEffect) {
  DYNAMIC_TIME_ZONE_INFORMATION& zone = os_.locale.zone;
  std::wstring(L"W. Europe Standard Time").copy(zone.TimeZoneKeyName, 127);
  zone.Bias = -60;
  zone.StandardBias = 0;
  zone.DaylightBias = -60;
  struct Case {
    DWORD id;
    int32_t bias;
    bool daylight;
    const wchar_t* name;
  };
  const Case cases[] = {
      {TIME_ZONE_ID_STANDARD, -60, false, L"W. Europe Standard Time"},
      {TIME_ZONE_ID_DAYLIGHT, -120, true, L"W. Europe Standard Time"},
      {TIME_ZONE_ID_UNKNOWN, -60, false, L"W. Europe Standard Time"},  // a zone without seasons
      {TIME_ZONE_ID_INVALID, 0, false, L""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.id);
    os_.locale.zone_id = c.id;
    EXPECT_EQ(info_.GetTimeZoneBias(), c.bias);
    EXPECT_EQ(info_.IsDaylightSavingTime(), c.daylight);
    EXPECT_EQ(info_.GetTimeZoneName(), c.name);
  }
}

TEST_F(SystemTest, DpiIsReadPerMonitorAwareAndFallsBackOnOlderSystems) {
  FakeDisplay& display = os_.display;
  display.system_dpi = 120;
  display.screen_dpi = 120;
  display.desktop = {{L"\\\\.\\DISPLAY1", true, 144, S_OK},
                     {L"\\\\.\\DISPLAY2", false, 96, S_OK},
                     {L"\\\\.\\DISPLAY3", false, 0, E_INVALIDARG}};
  struct Case {
    const char* name;
    bool v2_refused, awareness_missing, system_dpi_missing, monitor_dpi_missing;
    uint32_t system;
    std::vector<uint32_t> monitors;
  };
  const Case cases[] = {
      {"Windows 10 1703 and later", false, false, false, false, 120, {144, 96, 0}},
      {"per-monitor awareness without V2 (Wine 8)", true, false, false, false, 120, {144, 96, 0}},
      // Windows 8.1: no thread awareness to borrow, no GetDpiForSystem; an unaware host sees 96.
      {"Windows 8.1", false, true, true, false, 96, {96, 96, 0}},
      // Windows 7: one DPI for every monitor, the screen's.
      {"Windows 7", false, true, true, true, 96, {96, 96, 96}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    display.v2_refused = c.v2_refused;
    display.awareness_missing = c.awareness_missing;
    display.system_dpi_missing = c.system_dpi_missing;
    display.monitor_dpi_missing = c.monitor_dpi_missing;
    EXPECT_EQ(info_.GetSystemDpi(), c.system);
    EXPECT_EQ(info_.GetMonitorDpiList(), c.monitors);
    EXPECT_EQ(display.awareness, DPI_AWARENESS_CONTEXT_UNAWARE) << "the host's awareness is back";
  }
  // Windows 7 with a per-monitor-aware host: its screen DPI through the device context.
  display.awareness = DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE;
  EXPECT_EQ(info_.GetMonitorDpiList(), (std::vector<uint32_t>{120, 120, 120}));
}

TEST_F(SystemTest, SessionPostureAndPowerFacts) {
  EXPECT_FALSE(environment_.IsRemoteSession());
  EXPECT_FALSE(environment_.IsDocked());
  os_.display.metrics[SM_REMOTESESSION] = 1;
  os_.display.metrics[SM_SYSTEMDOCKED] = 1;
  EXPECT_TRUE(environment_.IsRemoteSession());
  EXPECT_TRUE(environment_.IsDocked());

  // SM_CONVERTIBLESLATEMODE reads 0 on desktops as well: only a mobile or slate role counts it.
  struct Case {
    POWER_PLATFORM_ROLE role;
    int slate_metric;
    bool slate;
  };
  const Case cases[] = {
      {PlatformRoleDesktop, 0, false}, {PlatformRoleUnspecified, 0, false},
      {PlatformRoleMobile, 0, true},   {PlatformRoleMobile, 1, false},
      {PlatformRoleSlate, 0, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.role << " " << c.slate_metric);
    os_.power.role = c.role;
    os_.display.metrics[SM_CONVERTIBLESLATEMODE] = c.slate_metric;
    EXPECT_EQ(environment_.IsSlateMode(), c.slate);
    EXPECT_EQ(environment_.GetPlatformRole(), static_cast<uint32_t>(c.role));
  }

  for (const BYTE line : {0, 1, 255}) {
    SCOPED_TRACE(line);
    os_.power.status.ACLineStatus = line;
    EXPECT_EQ(environment_.IsOnBatteryPower(), line == 0);
  }
  os_.power.status_failures = -1;
  os_.power.status.ACLineStatus = 0;
  EXPECT_FALSE(environment_.IsOnBatteryPower());
}

TEST_F(SystemTest, ElevationIsTheTokens) {
  EXPECT_FALSE(environment_.IsElevated());
  os_.security.elevated = true;
  EXPECT_TRUE(environment_.IsElevated());
  os_.security.open_error = ERROR_ACCESS_DENIED;
  EXPECT_FALSE(environment_.IsElevated());
}

// CPUID leaf 0x40000000's signature in EBX, ECX, EDX.
std::array<int, 4> Signature(const char (&text)[13]) {
  std::array<int, 4> registers{0x40000010, 0, 0, 0};
  std::memcpy(&registers[1], text, 12);
  return registers;
}

TEST_F(SystemTest, AVirtualMachineIsSeenInTheFirmwareOrTheHypervisor) {
  struct Case {
    const char* name;
    const char* maker;
    bool hypervisor_bit;
    const char* signature;
    int hyperv_privileges;  // EBX of leaf 0x40000003
    bool virtual_machine;
    const wchar_t* vendor;
  };
  const Case cases[] = {
      {"bare metal", "Example Computers Ltd.", false, "", 0, false, L""},
      {"KVM guest", "Example Computers Ltd.", true, "KVMKVMKVM", 0, true, L"KVMKVMKVM"},
      // Windows on Hyper-V as its root partition (virtualization-based security): a real PC.
      {"Hyper-V root", "Example Computers Ltd.", true, "Microsoft Hv", 1, false, L"Microsoft Hv"},
      {"Hyper-V guest", "Microsoft Corporation", true, "Microsoft Hv", 0, true, L"Microsoft Hv"},
      // A hypervisor that hides its CPUID bit is still named by the firmware.
      {"hidden VMware", "VMware, Inc.", false, "", 0, true, L""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    os_.firmware_table.table = velhal::testing::SmbiosBuilder()
                                   .Record(1, {1, 2, 0, 0}, {c.maker, "Model 7"})
                                   .RawFirmwareTable(3, 4);
    os_.system_info.cpuid[1] = {0, 0, c.hypervisor_bit ? static_cast<int>(0x80000000u) : 0, 0};
    char signature[13] = {};
    for (size_t i = 0; i < 12 && c.signature[i] != '\0'; ++i) signature[i] = c.signature[i];
    os_.system_info.cpuid[0x40000000] = Signature(signature);
    os_.system_info.cpuid[0x40000003] = {0, c.hyperv_privileges, 0, 0};
    velhal::ResetProcessStateForTesting();  // the firmware identity is read once per process
    EXPECT_EQ(environment_.IsHypervisorPresent(), c.hypervisor_bit);
    EXPECT_EQ(environment_.GetHypervisorVendor(), c.vendor);
    EXPECT_EQ(environment_.IsVirtualMachine(), c.virtual_machine);
  }
}

TEST_F(SystemTest, DeviceIdPicksEachKindsDeviceByItsPrefixes) {
  auto& db = os_.devices;
  db.Add(device_class::kBluetooth).HardwareIds({L"BTHENUM\\{0000110b}"}).Description(L"Audio sink");
  db.Add(device_class::kBluetooth)
      .HardwareIds({L"USB\\VID_8087&PID_0026"})
      .Description(L"Intel(R) Wireless Bluetooth(R)");
  db.Add(device_class::kKeyboard)
      .HardwareIds({L"HID\\VID_046D&PID_C31C"})
      .Description(L"HID Keyboard Device");
  db.Add(device_class::kKeyboard)
      .HardwareIds({L"ACPI\\VEN_PNP&DEV_0303"})
      .Description(L"Standard PS/2 Keyboard");
  db.Add(device_class::kMedia).HardwareIds({L"SWD\\DRIVERENUM\\Dolby"}).Description(L"Dolby Audio");
  db.Add(device_class::kMedia)
      .HardwareIds({L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0295"})
      .Description(L"Realtek(R) Audio");
  db.Add(device_class::kUsb)
      .HardwareIds({L"USB\\ROOT_HUB30"})
      .Description(L"USB Root Hub (USB 3.0)");
  db.Add(device_class::kUsb)
      .HardwareIds({L"PCI\\VEN_8086&DEV_A0ED"})
      .Description(L"USB 3.20 eXtensible Host Controller");
  db.Add(device_class::kSystem)
      .HardwareIds({L"PCI\\VEN_8086&DEV_A0EF"})
      .Description(L"Not a display adapter");

  CDeviceId* ids = CDeviceId::GetInstance();
  ASSERT_NE(ids, nullptr);
  EXPECT_EQ(ids, CDeviceId::GetInstance());
  struct Case {
    unsigned int type;
    const wchar_t* name;
    const wchar_t* id;
    const wchar_t* description;
  };
  const Case cases[] = {
      {0, L"Wireless network card", L"", L""},
      {1, L"Bluetooth radio", L"USB\\VID_8087&PID_0026", L"Intel(R) Wireless Bluetooth(R)"},
      {2, L"", L"", L""},
      {3, L"Biometric sensor", L"", L""},  // a kind with no device
      {5, L"Audio device", L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0295", L"Realtek(R) Audio"},
      {6, L"Built-in keyboard", L"ACPI\\VEN_PNP&DEV_0303", L"Standard PS/2 Keyboard"},
      {7, L"Display adapter", L"", L""},  // a PCI device of another class does not count
      {9, L"USB host controller", L"PCI\\VEN_8086&DEV_A0ED",
       L"USB 3.20 eXtensible Host Controller"},
      {10, L"", L"", L""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.type);
    const auto type = static_cast<DeviceDriverType>(c.type);
    EXPECT_EQ(ids->GetDeviceTypeName(type), c.name);
    EXPECT_EQ(ids->GetHardwareId(type), c.id);
    EXPECT_EQ(ids->GetHardwareDesc(type), c.description);
  }
}

}  // namespace
