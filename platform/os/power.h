// Power facility: the power-management readings of the system (power status, battery state,
// the platform's role) and the active power scheme's settings, whose scheme GUID is freed with
// LocalFree. PowerDeterminePlatformRoleEx (Windows 8) is bound at run time: without it the role
// is PlatformRoleUnspecified.
#pragma once

#include "platform/win32.h"

// MinGW's powrprof.h has no include guard: this header is its one includer.
#include <powrprof.h>

#include "platform/os/seam.h"
#include "platform/unique_resource.h"

namespace velhal::os {

class Power {
 public:
  virtual BOOL GetSystemPowerStatus(SYSTEM_POWER_STATUS* status) = 0;
  virtual LONG CallNtPowerInformation(POWER_INFORMATION_LEVEL level, void* in, ULONG in_size,
                                      void* out, ULONG out_size) = 0;
  virtual POWER_PLATFORM_ROLE PowerDeterminePlatformRoleEx(ULONG version) = 0;

  // The scheme calls return a Win32 error code. Where the system lacks one (Wine 8 has none of
  // the value reads and writes, and a static import of them would end the process), the call
  // fails with ERROR_CALL_NOT_IMPLEMENTED.
  virtual DWORD PowerGetActiveScheme(HKEY root, GUID** scheme) = 0;
  virtual DWORD PowerSetActiveScheme(HKEY root, const GUID* scheme) = 0;
  virtual DWORD PowerReadACValueIndex(HKEY root, const GUID* scheme, const GUID* subgroup,
                                      const GUID* setting, DWORD* value) = 0;
  virtual DWORD PowerReadDCValueIndex(HKEY root, const GUID* scheme, const GUID* subgroup,
                                      const GUID* setting, DWORD* value) = 0;
  virtual DWORD PowerWriteACValueIndex(HKEY root, const GUID* scheme, const GUID* subgroup,
                                       const GUID* setting, DWORD value) = 0;
  virtual DWORD PowerWriteDCValueIndex(HKEY root, const GUID* scheme, const GUID* subgroup,
                                       const GUID* setting, DWORD value) = 0;
  virtual HLOCAL LocalFree(HLOCAL memory) = 0;

  static Power& Real() noexcept;

 protected:
  ~Power() = default;
};

inline Power& power() noexcept { return Seam<Power>::Get(); }

}  // namespace velhal::os

namespace velhal {

// The scheme GUID PowerGetActiveScheme hands out.
struct PowerSchemeTraits {
  using Handle = GUID*;
  static GUID* Invalid() noexcept { return nullptr; }
  static bool IsValid(GUID* scheme) noexcept { return scheme != nullptr; }
  static void Close(GUID* scheme) noexcept { os::power().LocalFree(scheme); }
};
using UniquePowerScheme = UniqueResource<PowerSchemeTraits>;

}  // namespace velhal
