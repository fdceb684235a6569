// SystemInfo's answers about Windows and SystemEnvironmentInfo against the system's real
// sources, checked against the test's own reads of the same calls and registry values. Wine 8
// reports Windows 7 (6.1.7601) with no UBR, EditionID or DisplayVersion in the registry, a
// "Greenwich Standard Time" zone, one 96-DPI monitor, a desktop platform role and an unelevated
// token: the same assertions compare whatever Windows reports.
#include "platform/win32.h"

#include <gtest/gtest.h>

#include <intrin.h>
#include <shellscalingapi.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "firmware/system_environment_info.h"
#include "firmware/system_info.h"
#include "tests/support/system_function.h"

namespace {

using velhal::testing::SystemFunction;

constexpr wchar_t kCurrentVersion[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";

std::wstring RegistryText(const wchar_t* name) {
  wchar_t text[260] = {};
  DWORD size = sizeof(text);
  if (::RegGetValueW(HKEY_LOCAL_MACHINE, kCurrentVersion, name,
                     RRF_RT_REG_SZ | RRF_SUBKEY_WOW6464KEY, nullptr, text,
                     &size) != ERROR_SUCCESS) {
    return {};
  }
  return text;
}

DWORD RegistryNumber(const wchar_t* name) {
  DWORD value = 0;
  DWORD size = sizeof(value);
  if (::RegGetValueW(HKEY_LOCAL_MACHINE, kCurrentVersion, name,
                     RRF_RT_REG_DWORD | RRF_SUBKEY_WOW6464KEY, nullptr, &value,
                     &size) != ERROR_SUCCESS) {
    return 0;
  }
  return value;
}

std::wstring LocaleOf(LANGID language) {
  wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
  return ::LCIDToLocaleName(MAKELCID(language, SORT_DEFAULT), name, LOCALE_NAME_MAX_LENGTH, 0) > 0
             ? name
             : L"";
}

TEST(SystemBackendTest, WindowsVersionNameAndArchitectureAreTheSystems) {
  SystemInfo info;
  OSVERSIONINFOEXW version{};
  version.dwOSVersionInfoSize = sizeof(version);
  const auto rtl_get_version =
      SystemFunction<LONG WINAPI(OSVERSIONINFOEXW*)>(L"ntdll.dll", "RtlGetVersion");
  ASSERT_NE(rtl_get_version, nullptr);
  ASSERT_EQ(rtl_get_version(&version), 0);
  EXPECT_EQ(info.GetOsMajorVersion(), version.dwMajorVersion);
  EXPECT_EQ(info.GetOsMinorVersion(), version.dwMinorVersion);
  EXPECT_EQ(info.GetOsBuildNumber(), version.dwBuildNumber);
  EXPECT_EQ(info.GetOsRevision(), RegistryNumber(L"UBR"));
  EXPECT_EQ(info.GetOsEdition(), RegistryText(L"EditionID"));
  const std::wstring display = RegistryText(L"DisplayVersion");
  EXPECT_EQ(info.GetOsDisplayVersion(), display.empty() ? RegistryText(L"ReleaseId") : display);
  EXPECT_EQ(info.GetOsProductName(), RegistryText(L"ProductName"));
  EXPECT_FALSE(info.GetOsProductName().empty());

  wchar_t name[256] = {};
  DWORD size = 256;
  ASSERT_TRUE(::GetComputerNameExW(ComputerNamePhysicalDnsHostname, name, &size));
  EXPECT_EQ(info.GetMachineName(), name);

  // The library is built for x64; an x64 process runs on x64 or, emulated, on ARM64.
  USHORT process_machine = 0;
  USHORT native_machine = 0;
  const auto is_wow64_process2 =
      SystemFunction<BOOL WINAPI(HANDLE, USHORT*, USHORT*)>(L"kernel32.dll", "IsWow64Process2");
  if (is_wow64_process2 == nullptr ||
      !is_wow64_process2(::GetCurrentProcess(), &process_machine, &native_machine)) {
    SYSTEM_INFO system{};
    ::GetNativeSystemInfo(&system);
    native_machine = system.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_ARM64
                         ? IMAGE_FILE_MACHINE_ARM64
                         : IMAGE_FILE_MACHINE_AMD64;
  }
  EXPECT_EQ(info.GetOsArchitecture(),
            native_machine == IMAGE_FILE_MACHINE_ARM64 ? L"ARM64" : L"x64");

  const ULONGLONG before = ::GetTickCount64();
  const uint64_t uptime = info.GetUptimeMs();
  EXPECT_GE(uptime, before);
  EXPECT_LE(uptime, ::GetTickCount64());
}

TEST(SystemBackendTest, LanguagesLocalesAndTimeZoneAreTheSystems) {
  SystemInfo info;
  EXPECT_EQ(info.GetUserUILanguage(), LocaleOf(::GetUserDefaultUILanguage()));
  EXPECT_EQ(info.GetSystemUILanguage(), LocaleOf(::GetSystemDefaultUILanguage()));
  EXPECT_FALSE(info.GetUserUILanguage().empty());
  wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
  ASSERT_GT(::GetUserDefaultLocaleName(name, LOCALE_NAME_MAX_LENGTH), 0);
  EXPECT_EQ(info.GetUserLocale(), name);
  ASSERT_GT(::GetSystemDefaultLocaleName(name, LOCALE_NAME_MAX_LENGTH), 0);
  EXPECT_EQ(info.GetSystemLocale(), name);

  DYNAMIC_TIME_ZONE_INFORMATION zone{};
  const DWORD id = ::GetDynamicTimeZoneInformation(&zone);
  ASSERT_NE(id, TIME_ZONE_ID_INVALID);
  EXPECT_EQ(info.GetTimeZoneName(), zone.TimeZoneKeyName);
  EXPECT_FALSE(info.GetTimeZoneName().empty());
  const LONG season = id == TIME_ZONE_ID_DAYLIGHT   ? zone.DaylightBias
                      : id == TIME_ZONE_ID_STANDARD ? zone.StandardBias
                                                    : 0;
  EXPECT_EQ(info.GetTimeZoneBias(), zone.Bias + season);
  EXPECT_EQ(info.IsDaylightSavingTime(), id == TIME_ZONE_ID_DAYLIGHT);
}

struct OwnDpi {
  UINT system = 0;
  std::vector<uint32_t> monitors;
};

// Read per-monitor aware, as the library promises to, with the test's own calls.
OwnDpi ReadDpi() {
  OwnDpi dpi;
  const DPI_AWARENESS_CONTEXT previous =
      ::SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE);
  dpi.system = ::GetDpiForSystem();
  const auto get_dpi_for_monitor =
      SystemFunction<HRESULT WINAPI(HMONITOR, MONITOR_DPI_TYPE, UINT*, UINT*)>(L"shcore.dll",
                                                                               "GetDpiForMonitor");
  std::vector<HMONITOR> monitors;
  ::EnumDisplayMonitors(
      nullptr, nullptr,
      [](HMONITOR monitor, HDC, RECT*, LPARAM data) {
        reinterpret_cast<std::vector<HMONITOR>*>(data)->push_back(monitor);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&monitors));
  for (const HMONITOR monitor : monitors) {
    UINT x = 0;
    UINT y = 0;
    if (get_dpi_for_monitor == nullptr) {
      dpi.monitors.push_back(dpi.system);  // before Windows 8.1: one DPI for all
    } else {
      dpi.monitors.push_back(
          SUCCEEDED(get_dpi_for_monitor(monitor, MDT_EFFECTIVE_DPI, &x, &y)) ? x : 0);
    }
  }
  if (previous != nullptr) ::SetThreadDpiAwarenessContext(previous);
  return dpi;
}

TEST(SystemBackendTest, DpiIsWhatAPerMonitorAwareThreadSees) {
  const DPI_AWARENESS_CONTEXT before = ::GetThreadDpiAwarenessContext();
  const OwnDpi own = ReadDpi();
  SystemInfo info;
  EXPECT_EQ(info.GetSystemDpi(), own.system);
  EXPECT_EQ(info.GetMonitorDpiList(), own.monitors);
  EXPECT_FALSE(own.monitors.empty());
  EXPECT_EQ(::GetThreadDpiAwarenessContext(), before) << "the thread's awareness is restored";
}

TEST(SystemBackendTest, EnvironmentFactsAreTheSystems) {
  SystemEnvironmentInfo environment;
  EXPECT_EQ(environment.IsRemoteSession(), ::GetSystemMetrics(SM_REMOTESESSION) != 0);
  EXPECT_EQ(environment.IsDocked(), ::GetSystemMetrics(SM_SYSTEMDOCKED) != 0);

  const auto determine_role = SystemFunction<POWER_PLATFORM_ROLE WINAPI(ULONG)>(
      L"powrprof.dll", "PowerDeterminePlatformRoleEx");
  ASSERT_NE(determine_role, nullptr);
  const POWER_PLATFORM_ROLE role = determine_role(POWER_PLATFORM_ROLE_V2);
  EXPECT_EQ(environment.GetPlatformRole(), static_cast<uint32_t>(role));
  const bool convertible = role == PlatformRoleMobile || role == PlatformRoleSlate;
  EXPECT_EQ(environment.IsSlateMode(),
            convertible && ::GetSystemMetrics(SM_CONVERTIBLESLATEMODE) == 0);

  SYSTEM_POWER_STATUS power{};
  ASSERT_TRUE(::GetSystemPowerStatus(&power));
  EXPECT_EQ(environment.IsOnBatteryPower(), power.ACLineStatus == 0);

  HANDLE token = nullptr;
  ASSERT_TRUE(::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token));
  TOKEN_ELEVATION elevation{};
  DWORD returned = 0;
  ASSERT_TRUE(
      ::GetTokenInformation(token, TokenElevation, &elevation, sizeof(elevation), &returned));
  ::CloseHandle(token);
  EXPECT_EQ(environment.IsElevated(), elevation.TokenIsElevated != 0);
}

TEST(SystemBackendTest, TheHypervisorIsTheProcessorsAnswer) {
  int registers[4] = {};
  __cpuid(registers, 1);
  const bool hypervisor = (static_cast<unsigned>(registers[2]) >> 31) != 0;
  SystemEnvironmentInfo environment;
  EXPECT_EQ(environment.IsHypervisorPresent(), hypervisor);
  if (!hypervisor) {
    EXPECT_EQ(environment.GetHypervisorVendor(), L"");
    GTEST_SKIP() << "no hypervisor beneath this system: the virtual-machine answer rests on the "
                    "firmware strings alone";
  }
  __cpuid(registers, 0x40000000);
  char signature[13] = {};
  std::memcpy(signature, &registers[1], 12);
  const std::wstring vendor(signature, signature + std::strlen(signature));
  EXPECT_EQ(environment.GetHypervisorVendor(), vendor);
  if (vendor == L"Microsoft Hv") {
    GTEST_SKIP() << "Hyper-V may host this Windows as its root partition: not decided here";
  }
  EXPECT_TRUE(environment.IsVirtualMachine()) << "another hypervisor beneath: a guest";
}

}  // namespace
