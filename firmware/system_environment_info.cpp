#include "platform/win32.h"

#include "firmware/system_environment_info.h"

#include <cstring>

#include "firmware/smbios_helper.h"
#include "platform/boundary.h"
#include "platform/os/display.h"
#include "platform/os/power.h"
#include "platform/os/security.h"
#include "platform/os/system_info.h"
#include "platform/text_search.h"

namespace {

using velhal::CallGuarded;

constexpr int kHypervisorLeaf = 0x40000000;
constexpr int kHyperVPrivilegesLeaf = 0x40000003;
constexpr int kCreatePartitions = 1 << 0;  // EBX of the privileges: only the root partition has it
constexpr wchar_t kHyperVSignature[] = L"Microsoft Hv";

// Words the virtual platforms put in their SMBIOS system and BIOS strings.
constexpr const wchar_t* kVirtualPlatforms[] = {
    L"VMware",     L"VirtualBox",
    L"innotek",    L"QEMU",
    L"KVM",        L"Xen",
    L"Parallels",  L"Bochs",
    L"BHYVE",      L"Virtual Machine",
    L"Amazon EC2", L"Google Compute Engine",
};

struct CpuidRegisters {
  int eax, ebx, ecx, edx;
};

CpuidRegisters Cpuid(int leaf) {
  int registers[4] = {};
  velhal::os::system_info().Cpuid(registers, leaf);
  return {registers[0], registers[1], registers[2], registers[3]};
}

bool HypervisorBit() { return (static_cast<unsigned>(Cpuid(1).ecx) >> 31) != 0; }

std::wstring HypervisorSignature() {
  if (!HypervisorBit()) return {};
  const CpuidRegisters leaf = Cpuid(kHypervisorLeaf);
  char bytes[12];
  std::memcpy(bytes, &leaf.ebx, 4);
  std::memcpy(bytes + 4, &leaf.ecx, 4);
  std::memcpy(bytes + 8, &leaf.edx, 4);
  std::wstring signature;
  for (const char byte : bytes) {
    if (byte == '\0') break;
    if (byte < 0x20 || byte > 0x7E) return {};  // not a signature
    signature.push_back(static_cast<wchar_t>(byte));
  }
  return signature;
}

bool FirmwareNamesVirtualPlatform() {
  const SmBiosHelper* firmware = SmBiosHelper::GetInstance();
  for (const std::wstring& text :
       {firmware->GetSysManufactor(), firmware->GetSysProductName(), firmware->GetBIOSVendor()}) {
    for (const wchar_t* word : kVirtualPlatforms) {
      if (velhal::ContainsIgnoringCase(text, word)) return true;
    }
  }
  return false;
}

bool IsHyperVRootPartition(const std::wstring& signature) {
  return signature == kHyperVSignature && (Cpuid(kHyperVPrivilegesLeaf).ebx & kCreatePartitions);
}

POWER_PLATFORM_ROLE CurrentPlatformRole() {
  return velhal::os::power().PowerDeterminePlatformRoleEx(POWER_PLATFORM_ROLE_V2);
}

}  // namespace

bool SystemEnvironmentInfo::IsRemoteSession() {
  return CallGuarded(false,
                     [] { return velhal::os::display().GetSystemMetrics(SM_REMOTESESSION) != 0; });
}

bool SystemEnvironmentInfo::IsHypervisorPresent() {
  return CallGuarded(false, [] { return HypervisorBit(); });
}

std::wstring SystemEnvironmentInfo::GetHypervisorVendor() {
  return CallGuarded(std::wstring{}, [] { return HypervisorSignature(); });
}

bool SystemEnvironmentInfo::IsVirtualMachine() {
  return CallGuarded(false, [] {
    if (FirmwareNamesVirtualPlatform()) return true;
    if (!HypervisorBit()) return false;
    return !IsHyperVRootPartition(HypervisorSignature());
  });
}

uint32_t SystemEnvironmentInfo::GetPlatformRole() {
  return CallGuarded(0u, [] { return static_cast<uint32_t>(CurrentPlatformRole()); });
}

bool SystemEnvironmentInfo::IsSlateMode() {
  return CallGuarded(false, [] {
    const POWER_PLATFORM_ROLE role = CurrentPlatformRole();
    return (role == PlatformRoleMobile || role == PlatformRoleSlate) &&
           velhal::os::display().GetSystemMetrics(SM_CONVERTIBLESLATEMODE) == 0;
  });
}

bool SystemEnvironmentInfo::IsDocked() {
  return CallGuarded(false,
                     [] { return velhal::os::display().GetSystemMetrics(SM_SYSTEMDOCKED) != 0; });
}

bool SystemEnvironmentInfo::IsOnBatteryPower() {
  return CallGuarded(false, [] {
    SYSTEM_POWER_STATUS status{};
    return velhal::os::power().GetSystemPowerStatus(&status) && status.ACLineStatus == 0;
  });
}

bool SystemEnvironmentInfo::IsElevated() {
  return CallGuarded(false, [] {
    auto& security = velhal::os::security();
    velhal::UniqueToken token;
    if (!security.OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, token.Put())) return false;
    TOKEN_ELEVATION elevation{};
    DWORD returned = 0;
    return security.GetTokenInformation(token.Get(), TokenElevation, &elevation, sizeof(elevation),
                                        &returned) &&
           elevation.TokenIsElevated != 0;
  });
}
