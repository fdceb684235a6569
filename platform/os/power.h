// Power facility: power status, battery state, memory status and CPUID, the readings the
// processor, memory and battery modules take straight from the system.
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
  virtual BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* status) = 0;
  // CPUID of leaf into eax, ebx, ecx, edx.
  virtual void Cpuid(int registers[4], int leaf) = 0;

  static Power& Real() noexcept;

 protected:
  ~Power() = default;
};

inline Power& power() noexcept { return Seam<Power>::Get(); }

}  // namespace velhal::os
