// The operating system and the session: Windows's version, architecture and name, the screens'
// DPI, languages, time zone and uptime through SystemInfo; the session's facts through
// SystemEnvironmentInfo.
#include <cstdint>
#include <string>
#include <vector>

#include "firmware/system_environment_info.h"
#include "firmware/system_info.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

const char* RoleText(uint32_t role) {
  switch (role) {
    case 1: return "desktop";
    case 2: return "mobile";
    case 3: return "workstation";
    case 4: return "enterprise server";
    case 5: return "small office server";
    case 6: return "appliance";
    case 7: return "performance server";
    case 8: return "slate";
  }
  return "";
}

Node TimeZone(SystemInfo& info) {
  return Object("timeZone", "time zone",
                {Text("name", "name", ToUtf8(info.GetTimeZoneName())),
                 Number("biasMinutes", "bias to UTC", info.GetTimeZoneBias(), "min"),
                 Flag("daylightSaving", "daylight saving time", info.IsDaylightSavingTime())});
}

Node Environment() {
  SystemEnvironmentInfo environment;
  return Object(
      "session", "session",
      {Flag("remote", "remote session", environment.IsRemoteSession()),
       Flag("hypervisor", "hypervisor", environment.IsHypervisorPresent()),
       Text("hypervisorVendor", "hypervisor vendor", ToUtf8(environment.GetHypervisorVendor())),
       Flag("virtualMachine", "virtual machine", environment.IsVirtualMachine()),
       Text("platformRole", "platform role", RoleText(environment.GetPlatformRole())),
       Flag("slateMode", "slate mode", environment.IsSlateMode()),
       Flag("docked", "docked", environment.IsDocked()),
       Flag("onBattery", "on battery", environment.IsOnBatteryPower()),
       Flag("elevated", "elevated", environment.IsElevated())});
}

}  // namespace

Node OperatingSystemSection() {
  SystemInfo info;
  std::vector<Node> monitors;
  for (const uint32_t dpi : info.GetMonitorDpiList()) {
    monitors.push_back(Number("", "monitor " + std::to_string(monitors.size() + 1), Reported(dpi)));
  }
  // The JSON key stays "windows", the section's name since the first schema.
  return Object(
      "windows", "Operating system",
      {Text("productName", "product", ToUtf8(info.GetOsProductName())),
       Text("edition", "edition", ToUtf8(info.GetOsEdition())),
       Text("displayVersion", "display version", ToUtf8(info.GetOsDisplayVersion())),
       Number("major", "major version", info.GetOsMajorVersion()),
       Number("minor", "minor version", info.GetOsMinorVersion()),
       Number("build", "build", info.GetOsBuildNumber()),
       Number("revision", "revision", Reported(info.GetOsRevision())),
       Text("architecture", "architecture", ToUtf8(info.GetOsArchitecture())),
       Text("machineName", "computer name", ToUtf8(info.GetMachineName())),
       Number("systemDpi", "system DPI", Reported(info.GetSystemDpi())),
       Array("monitorDpi", "DPI by monitor", std::move(monitors)),
       Text("userUiLanguage", "user UI language", ToUtf8(info.GetUserUILanguage())),
       Text("systemUiLanguage", "system UI language", ToUtf8(info.GetSystemUILanguage())),
       Text("userLocale", "user locale", ToUtf8(info.GetUserLocale())),
       Text("systemLocale", "system locale", ToUtf8(info.GetSystemLocale())), TimeZone(info),
       Number("uptimeSeconds", "uptime", info.GetUptimeMs() / 1000, "s"), Environment()});
}

}  // namespace halinfo
