// Power facility: the power-management readings of the system (power status, battery state,
// the platform's role). PowerDeterminePlatformRoleEx (Windows 8) is bound at run time: without
// it the role is PlatformRoleUnspecified.
#pragma once

#include "platform/win32.h"

// MinGW's powrprof.h has no include guard: this header is its one includer.
#include <powrprof.h>

#include "platform/os/seam.h"

namespace velhal::os {

class Power {
 public:
  virtual BOOL GetSystemPowerStatus(SYSTEM_POWER_STATUS* status) = 0;
  virtual LONG CallNtPowerInformation(POWER_INFORMATION_LEVEL level, void* in, ULONG in_size,
                                      void* out, ULONG out_size) = 0;
  virtual POWER_PLATFORM_ROLE PowerDeterminePlatformRoleEx(ULONG version) = 0;

  static Power& Real() noexcept;

 protected:
  ~Power() = default;
};

inline Power& power() noexcept { return Seam<Power>::Get(); }

}  // namespace velhal::os
