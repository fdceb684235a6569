// The system the host runs on: the machine's serial number (the SMBIOS system serial, else
// WMI's BIOS serial, else the placeholder "21111111111111111111"), the Windows version, the
// architecture and computer name, the screens' DPI, languages and locales, the time zone and
// the time since start. Every getter asks the system afresh; failures read as 0 or empty.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "hal/velhal_export.h"

enum SNErrorCode : uint32_t {
  SN_NO_BUFFER_OR_TOO_SMALL = 0,  // no buffer (nothing written), or the serial did not fit
  SN_SUCCESS = 1,                 // the real serial was copied
  SN_UNKNOWN = 2,                 // no serial known: the placeholder was written
  SN_CONVERSION_FAILED = 3,       // not convertible to narrow text: the placeholder was written
  SN_COPY_FAILED = 4,             // copying failed: the placeholder was written
  SN_PLACEHOLDER_TOO_LONG = 5,    // not even the placeholder fits (fewer than 20 bytes)
};

class VELHAL_API SystemInfo {
 public:
  std::string GetDeviceSerialNumber();
  // Zero-fills the buffer, then copies the serial (or the placeholder) without a terminator.
  SNErrorCode GetDeviceSerialNumberEx(char* buffer, size_t size);

  // Windows as the kernel reports it (RtlGetVersion, bound at run time; never the version
  // GetVersionExW shims for older programs): 10.0 for Windows 10 and 11, and the build number
  // (22000 and later is Windows 11).
  uint32_t GetOsMajorVersion();
  uint32_t GetOsMinorVersion();
  uint32_t GetOsBuildNumber();
  // From HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion, empty or 0 where the system keeps
  // none: the update revision of the build ("UBR", as in 22631.2861), the edition ("EditionID":
  // "Professional", "Core"), the display version ("DisplayVersion": "23H2", else the older
  // "ReleaseId": "1909") and the product name ("ProductName"; Windows 11 keeps "Windows 10 ..."
  // there, so tell the two apart by the build number).
  uint32_t GetOsRevision();
  std::wstring GetOsEdition();
  std::wstring GetOsDisplayVersion();
  std::wstring GetOsProductName();
  // The machine's native architecture: "x64", "ARM64", "x86" or "ARM" (IsWow64Process2, bound
  // at run time, which also sees through x64 emulation on ARM64; else GetNativeSystemInfo).
  std::wstring GetOsArchitecture();
  // The computer's host name as set, without its domain (GetComputerNameExW,
  // ComputerNamePhysicalDnsHostname).
  std::wstring GetMachineName();

  // DPI as a per-monitor-aware thread sees it, whatever the host's own awareness (96 is 100 %
  // scaling, 144 is 150 %): the system's (GetDpiForSystem, else the screen's LOGPIXELSX), and
  // each display monitor's effective DPI in EnumDisplayMonitors order (GetDpiForMonitor; the
  // system's DPI for every monitor where Windows predates per-monitor DPI, 0 for a monitor that
  // does not answer). The DPI functions are bound at run time.
  uint32_t GetSystemDpi();
  std::vector<uint32_t> GetMonitorDpiList();

  // Locale names ("en-US"): the user's and the system's user-interface language
  // (GetUserDefaultUILanguage, GetSystemDefaultUILanguage) and locale
  // (GetUserDefaultLocaleName, GetSystemDefaultLocaleName).
  std::wstring GetUserUILanguage();
  std::wstring GetSystemUILanguage();
  std::wstring GetUserLocale();
  std::wstring GetSystemLocale();

  // The time zone (GetDynamicTimeZoneInformation): its name, the registry key name that is the
  // same in every language ("W. Europe Standard Time"); the bias now in effect, in minutes, with
  // daylight saving time included (UTC = local time + bias; -60 in Paris in winter); and
  // whether daylight saving time is in effect now.
  std::wstring GetTimeZoneName();
  int32_t GetTimeZoneBias();
  bool IsDaylightSavingTime();

  // Milliseconds since the system started, sleep and hibernation included (GetTickCount64).
  uint64_t GetUptimeMs();
};
