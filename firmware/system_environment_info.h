// Facts about the session the host runs in: a remote session, a virtual machine, the device's
// posture (slate, docked), the power source and the process's elevation. Every getter asks the
// system afresh; a failed read answers false, 0 or empty.
#pragma once

#include <cstdint>
#include <string>

#include "hal/velhal_export.h"

class VELHAL_API SystemEnvironmentInfo {
 public:
  // Whether the session is a Remote Desktop session (GetSystemMetrics(SM_REMOTESESSION)).
  bool IsRemoteSession();

  // Whether a hypervisor runs beneath Windows: CPUID leaf 1, ECX bit 31. Also set on a physical
  // machine whose Windows runs on Hyper-V itself (virtualization-based security, WSL 2).
  bool IsHypervisorPresent();
  // The hypervisor's CPUID signature (leaf 0x40000000: "Microsoft Hv", "KVMKVMKVM",
  // "VMwareVMware"); empty without one.
  std::wstring GetHypervisorVendor();
  // Whether Windows runs in a virtual machine: the firmware identity (SMBIOS system maker,
  // product, BIOS vendor) names a virtual platform (VMware, VirtualBox, QEMU, KVM, Xen,
  // Parallels, Hyper-V's "Virtual Machine", ...), or a hypervisor is present that is not
  // Hyper-V hosting this Windows as its root partition (CPUID 0x40000003, EBX bit 0).
  bool IsVirtualMachine();

  // The power platform role (PowerDeterminePlatformRoleEx, bound at run time): 1 desktop,
  // 2 mobile, 3 workstation, 4-7 servers and appliances, 8 slate; 0 unknown.
  uint32_t GetPlatformRole();
  // Whether a convertible is folded into a slate now: a mobile or slate platform whose
  // GetSystemMetrics(SM_CONVERTIBLESLATEMODE) reads 0 (desktops read 0 there too, so the role
  // decides whether it means anything).
  bool IsSlateMode();
  // Whether the machine sits in a docking station (GetSystemMetrics(SM_SYSTEMDOCKED)).
  bool IsDocked();
  // Whether the machine runs on battery now: GetSystemPowerStatus's AC line reads offline
  // (an unknown line status reads false).
  bool IsOnBatteryPower();

  // Whether the calling process runs elevated (its token's TokenElevation).
  bool IsElevated();
};
