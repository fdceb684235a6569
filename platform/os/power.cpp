// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/power.h"

#include "platform/os/run_time_binding.h"

namespace velhal::os {
namespace {

class RealPower final : public Power {
 public:
  BOOL GetSystemPowerStatus(SYSTEM_POWER_STATUS* status) override {
    return ::GetSystemPowerStatus(status);
  }
  LONG CallNtPowerInformation(POWER_INFORMATION_LEVEL level, void* in, ULONG in_size, void* out,
                              ULONG out_size) override {
    return ::CallNtPowerInformation(level, in, in_size, out, out_size);
  }
  POWER_PLATFORM_ROLE PowerDeterminePlatformRoleEx(ULONG version) override {
    static const Bound<POWER_PLATFORM_ROLE WINAPI(ULONG)> call(L"powrprof.dll",
                                                               "PowerDeterminePlatformRoleEx");
    return call.CallOr(PlatformRoleUnspecified, version);
  }
};

}  // namespace

Power& Power::Real() noexcept {
  static RealPower backend;
  return backend;
}

}  // namespace velhal::os
