// System-information facility: what the kernel and the processor say about the machine itself
// (memory status, CPUID) and about this process's address space.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

namespace velhal::os {

class SystemInfo {
 public:
  virtual BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* status) = 0;
  // CPUID of leaf into eax, ebx, ecx, edx.
  virtual void Cpuid(int registers[4], int leaf) = 0;
  virtual SIZE_T VirtualQuery(const void* address, MEMORY_BASIC_INFORMATION* region,
                              SIZE_T size) = 0;

  static SystemInfo& Real() noexcept;

 protected:
  ~SystemInfo() = default;
};

inline SystemInfo& system_info() noexcept { return Seam<SystemInfo>::Get(); }

}  // namespace velhal::os
