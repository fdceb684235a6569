// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/registry.h"

namespace velhal::os {
namespace {

class RealRegistry final : public Registry {
 public:
  LSTATUS RegOpenKeyExW(HKEY key, const wchar_t* sub_key, DWORD options, REGSAM access,
                        HKEY* result) override {
    return ::RegOpenKeyExW(key, sub_key, options, access, result);
  }
  LSTATUS RegQueryValueExW(HKEY key, const wchar_t* value_name, DWORD* reserved, DWORD* type,
                           BYTE* data, DWORD* data_size) override {
    return ::RegQueryValueExW(key, value_name, reserved, type, data, data_size);
  }
  LSTATUS RegSetKeyValueW(HKEY key, const wchar_t* sub_key, const wchar_t* value_name, DWORD type,
                          const void* data, DWORD data_size) override {
    return ::RegSetKeyValueW(key, sub_key, value_name, type, data, data_size);
  }
  LSTATUS RegCloseKey(HKEY key) override { return ::RegCloseKey(key); }
};

}  // namespace

Registry& Registry::Real() noexcept {
  static RealRegistry backend;
  return backend;
}

}  // namespace velhal::os
