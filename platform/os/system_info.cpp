// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/system_info.h"

#include <intrin.h>

namespace velhal::os {
namespace {

class RealSystemInfo final : public SystemInfo {
 public:
  BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* status) override {
    return ::GlobalMemoryStatusEx(status);
  }
  void Cpuid(int registers[4], int leaf) override { __cpuid(registers, leaf); }
  SIZE_T VirtualQuery(const void* address, MEMORY_BASIC_INFORMATION* region, SIZE_T size) override {
    return ::VirtualQuery(address, region, size);
  }
};

}  // namespace

SystemInfo& SystemInfo::Real() noexcept {
  static RealSystemInfo backend;
  return backend;
}

}  // namespace velhal::os
