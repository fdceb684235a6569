// The real backend: each member forwards to the Win32 function of the same name. The scheme
// functions are looked up by name in powrprof.dll on first use, so that a system exporting
// them only as process-ending stubs (Wine) meets a failed call instead.
#include "platform/os/power.h"

#include "platform/os/run_time_binding.h"

namespace velhal::os {
namespace {

template <class Function>
Function Lookup(HMODULE library, const char* name) noexcept {
  return library
             ? reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(library, name)))
             : nullptr;
}

using GetActiveFn = DWORD(WINAPI*)(HKEY, GUID**);
using SetActiveFn = DWORD(WINAPI*)(HKEY, const GUID*);
using ReadFn = DWORD(WINAPI*)(HKEY, const GUID*, const GUID*, const GUID*, DWORD*);
using WriteFn = DWORD(WINAPI*)(HKEY, const GUID*, const GUID*, const GUID*, DWORD);

struct SchemeFunctions {
  GetActiveFn get_active;
  SetActiveFn set_active;
  ReadFn read_ac, read_dc;
  WriteFn write_ac, write_dc;
};

// powrprof stays loaded: the library imports it anyway.
const SchemeFunctions& Scheme() noexcept {
  static const SchemeFunctions functions = [] {
    const HMODULE powrprof =
        ::LoadLibraryExW(L"powrprof.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    return SchemeFunctions{Lookup<GetActiveFn>(powrprof, "PowerGetActiveScheme"),
                           Lookup<SetActiveFn>(powrprof, "PowerSetActiveScheme"),
                           Lookup<ReadFn>(powrprof, "PowerReadACValueIndex"),
                           Lookup<ReadFn>(powrprof, "PowerReadDCValueIndex"),
                           Lookup<WriteFn>(powrprof, "PowerWriteACValueIndex"),
                           Lookup<WriteFn>(powrprof, "PowerWriteDCValueIndex")};
  }();
  return functions;
}

template <class Function, class... Args>
DWORD CallBound(Function function, Args... args) {
  return function ? function(args...) : static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED);
}

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
  DWORD PowerGetActiveScheme(HKEY root, GUID** scheme) override {
    return CallBound(Scheme().get_active, root, scheme);
  }
  DWORD PowerSetActiveScheme(HKEY root, const GUID* scheme) override {
    return CallBound(Scheme().set_active, root, scheme);
  }
  DWORD PowerReadACValueIndex(HKEY root, const GUID* scheme, const GUID* subgroup,
                              const GUID* setting, DWORD* value) override {
    return CallBound(Scheme().read_ac, root, scheme, subgroup, setting, value);
  }
  DWORD PowerReadDCValueIndex(HKEY root, const GUID* scheme, const GUID* subgroup,
                              const GUID* setting, DWORD* value) override {
    return CallBound(Scheme().read_dc, root, scheme, subgroup, setting, value);
  }
  DWORD PowerWriteACValueIndex(HKEY root, const GUID* scheme, const GUID* subgroup,
                               const GUID* setting, DWORD value) override {
    return CallBound(Scheme().write_ac, root, scheme, subgroup, setting, value);
  }
  DWORD PowerWriteDCValueIndex(HKEY root, const GUID* scheme, const GUID* subgroup,
                               const GUID* setting, DWORD value) override {
    return CallBound(Scheme().write_dc, root, scheme, subgroup, setting, value);
  }
  HLOCAL LocalFree(HLOCAL memory) override { return ::LocalFree(memory); }
};

}  // namespace

Power& Power::Real() noexcept {
  static RealPower backend;
  return backend;
}

}  // namespace velhal::os
