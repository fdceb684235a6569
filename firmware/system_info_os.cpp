// SystemInfo's answers about Windows itself: version, architecture, name, DPI, languages,
// time zone, uptime. (The serial number is in system_info.cpp.)
#include "platform/win32.h"

#include "firmware/system_info.h"

#include <optional>

#include "platform/boundary.h"
#include "platform/os/display.h"
#include "platform/os/locale.h"
#include "platform/os/system_info.h"
#include "platform/read_reg.h"

namespace {

using velhal::CallGuarded;

constexpr wchar_t kCurrentVersionKey[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";

std::optional<OSVERSIONINFOEXW> KernelVersion() {
  OSVERSIONINFOEXW version{};
  version.dwOSVersionInfoSize = sizeof(version);
  if (velhal::os::system_info().RtlGetVersion(&version) != 0) return std::nullopt;
  return version;
}

template <class Field>
uint32_t KernelVersionField(Field field) {
  return CallGuarded(0u, [&] {
    const std::optional<OSVERSIONINFOEXW> version = KernelVersion();
    return version ? static_cast<uint32_t>((*version).*field) : 0u;
  });
}

std::wstring CurrentVersionText(const wchar_t* value) {
  std::wstring text;
  if (!ReadReg::ReadLocalMachineRegRZ(kCurrentVersionKey, value, text)) text.clear();
  return text;
}

const wchar_t* MachineName(USHORT image_machine) {
  switch (image_machine) {
    case IMAGE_FILE_MACHINE_AMD64: return L"x64";
    case IMAGE_FILE_MACHINE_ARM64: return L"ARM64";
    case IMAGE_FILE_MACHINE_I386: return L"x86";
    case IMAGE_FILE_MACHINE_ARMNT: return L"ARM";
  }
  return L"";
}

const wchar_t* ArchitectureName(WORD processor_architecture) {
  switch (processor_architecture) {
    case PROCESSOR_ARCHITECTURE_AMD64: return L"x64";
    case PROCESSOR_ARCHITECTURE_ARM64: return L"ARM64";
    case PROCESSOR_ARCHITECTURE_INTEL: return L"x86";
    case PROCESSOR_ARCHITECTURE_ARM: return L"ARM";
  }
  return L"";
}

// Makes the calling thread per-monitor DPI aware for the object's life, then restores it.
// Windows 10 1703 and later take the V2 awareness; earlier ones (and Wine 8) only the first.
class PerMonitorAware {
 public:
  PerMonitorAware() {
    auto& display = velhal::os::display();
    previous_ = display.SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    if (previous_ == nullptr) {
      previous_ = display.SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE);
    }
  }
  ~PerMonitorAware() {
    if (previous_ != nullptr) velhal::os::display().SetThreadDpiAwarenessContext(previous_);
  }
  PerMonitorAware(const PerMonitorAware&) = delete;
  PerMonitorAware& operator=(const PerMonitorAware&) = delete;

 private:
  DPI_AWARENESS_CONTEXT previous_ = nullptr;
};

uint32_t SystemDpi() {
  auto& display = velhal::os::display();
  if (const UINT dpi = display.GetDpiForSystem(); dpi != 0) return dpi;
  const velhal::UniqueScreenDc screen(display.GetDC(nullptr));
  if (!screen.IsValid()) return 0;
  const int dpi = display.GetDeviceCaps(screen.Get(), LOGPIXELSX);
  return dpi > 0 ? static_cast<uint32_t>(dpi) : 0;
}

BOOL CALLBACK CollectMonitor(HMONITOR monitor, HDC, RECT*, LPARAM data) {
  reinterpret_cast<std::vector<HMONITOR>*>(data)->push_back(monitor);
  return TRUE;
}

bool IsMissingFunction(HRESULT result) {
  return result == HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND) ||
         result == HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND);
}

std::wstring LocaleNameOf(LANGID language) {
  wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
  if (velhal::os::locale().LCIDToLocaleName(MAKELCID(language, SORT_DEFAULT), name,
                                            LOCALE_NAME_MAX_LENGTH, 0) == 0) {
    return {};
  }
  return name;
}

std::wstring LocaleName(int (velhal::os::Locale::*get)(wchar_t*, int)) {
  return CallGuarded(std::wstring{}, [&]() -> std::wstring {
    wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
    if ((velhal::os::locale().*get)(name, LOCALE_NAME_MAX_LENGTH) == 0) return {};
    return name;
  });
}

struct TimeZoneNow {
  DYNAMIC_TIME_ZONE_INFORMATION zone{};
  DWORD id = TIME_ZONE_ID_INVALID;
};

TimeZoneNow CurrentTimeZone() {
  TimeZoneNow now;
  now.id = velhal::os::locale().GetDynamicTimeZoneInformation(&now.zone);
  return now;
}

}  // namespace

uint32_t SystemInfo::GetOsMajorVersion() {
  return KernelVersionField(&OSVERSIONINFOEXW::dwMajorVersion);
}

uint32_t SystemInfo::GetOsMinorVersion() {
  return KernelVersionField(&OSVERSIONINFOEXW::dwMinorVersion);
}

uint32_t SystemInfo::GetOsBuildNumber() {
  return KernelVersionField(&OSVERSIONINFOEXW::dwBuildNumber);
}

uint32_t SystemInfo::GetOsRevision() {
  return CallGuarded(0u, [] {
    unsigned long revision = 0;
    return ReadReg::ReadLocalMachineRegDW(kCurrentVersionKey, L"UBR", revision)
               ? static_cast<uint32_t>(revision)
               : 0u;
  });
}

std::wstring SystemInfo::GetOsEdition() {
  return CallGuarded(std::wstring{}, [] { return CurrentVersionText(L"EditionID"); });
}

std::wstring SystemInfo::GetOsDisplayVersion() {
  return CallGuarded(std::wstring{}, [] {
    std::wstring version = CurrentVersionText(L"DisplayVersion");  // Windows 10 20H2 and later
    return version.empty() ? CurrentVersionText(L"ReleaseId") : version;
  });
}

std::wstring SystemInfo::GetOsProductName() {
  return CallGuarded(std::wstring{}, [] { return CurrentVersionText(L"ProductName"); });
}

std::wstring SystemInfo::GetOsArchitecture() {
  return CallGuarded(std::wstring{}, []() -> std::wstring {
    auto& system = velhal::os::system_info();
    USHORT process_machine = 0;
    USHORT native_machine = 0;
    if (system.IsWow64Process2(::GetCurrentProcess(), &process_machine, &native_machine)) {
      return MachineName(native_machine);
    }
    SYSTEM_INFO info{};
    system.GetNativeSystemInfo(&info);
    return ArchitectureName(info.wProcessorArchitecture);
  });
}

std::wstring SystemInfo::GetMachineName() {
  return CallGuarded(std::wstring{}, []() -> std::wstring {
    auto& system = velhal::os::system_info();
    DWORD size = 0;
    system.GetComputerNameExW(ComputerNamePhysicalDnsHostname, nullptr, &size);
    if (::GetLastError() != ERROR_MORE_DATA || size == 0) return {};
    std::wstring name(size, L'\0');
    if (!system.GetComputerNameExW(ComputerNamePhysicalDnsHostname, name.data(), &size)) return {};
    name.resize(size);  // the length without the NUL, on success
    return name;
  });
}

uint32_t SystemInfo::GetSystemDpi() {
  return CallGuarded(0u, [] {
    const PerMonitorAware aware;
    return SystemDpi();
  });
}

std::vector<uint32_t> SystemInfo::GetMonitorDpiList() {
  return CallGuarded(std::vector<uint32_t>{}, [] {
    const PerMonitorAware aware;
    auto& display = velhal::os::display();
    std::vector<HMONITOR> monitors;
    display.EnumDisplayMonitors(nullptr, nullptr, &CollectMonitor,
                                reinterpret_cast<LPARAM>(&monitors));
    std::vector<uint32_t> dpis;
    for (const HMONITOR monitor : monitors) {
      UINT x = 0;
      UINT y = 0;
      const HRESULT result = display.GetDpiForMonitor(monitor, MDT_EFFECTIVE_DPI, &x, &y);
      dpis.push_back(SUCCEEDED(result) ? x : IsMissingFunction(result) ? SystemDpi() : 0);
    }
    return dpis;
  });
}

std::wstring SystemInfo::GetUserUILanguage() {
  return CallGuarded(std::wstring{},
                     [] { return LocaleNameOf(velhal::os::locale().GetUserDefaultUILanguage()); });
}

std::wstring SystemInfo::GetSystemUILanguage() {
  return CallGuarded(std::wstring{}, [] {
    return LocaleNameOf(velhal::os::locale().GetSystemDefaultUILanguage());
  });
}

std::wstring SystemInfo::GetUserLocale() {
  return LocaleName(&velhal::os::Locale::GetUserDefaultLocaleName);
}

std::wstring SystemInfo::GetSystemLocale() {
  return LocaleName(&velhal::os::Locale::GetSystemDefaultLocaleName);
}

std::wstring SystemInfo::GetTimeZoneName() {
  return CallGuarded(std::wstring{}, []() -> std::wstring {
    const TimeZoneNow now = CurrentTimeZone();
    if (now.id == TIME_ZONE_ID_INVALID) return {};
    return std::wstring(now.zone.TimeZoneKeyName,
                        ::wcsnlen(now.zone.TimeZoneKeyName, std::size(now.zone.TimeZoneKeyName)));
  });
}

int32_t SystemInfo::GetTimeZoneBias() {
  return CallGuarded(0, [] {
    const TimeZoneNow now = CurrentTimeZone();
    switch (now.id) {
      case TIME_ZONE_ID_STANDARD:
        return static_cast<int32_t>(now.zone.Bias + now.zone.StandardBias);
      case TIME_ZONE_ID_DAYLIGHT:
        return static_cast<int32_t>(now.zone.Bias + now.zone.DaylightBias);
      case TIME_ZONE_ID_UNKNOWN: return static_cast<int32_t>(now.zone.Bias);  // no daylight saving
    }
    return 0;
  });
}

bool SystemInfo::IsDaylightSavingTime() {
  return CallGuarded(false, [] { return CurrentTimeZone().id == TIME_ZONE_ID_DAYLIGHT; });
}

uint64_t SystemInfo::GetUptimeMs() {
  return CallGuarded(uint64_t{0}, [] { return velhal::os::system_info().GetTickCount64(); });
}
