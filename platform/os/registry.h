// Registry facility: the advapi32 registry calls the library makes.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"
#include "platform/unique_resource.h"

namespace velhal::os {

class Registry {
 public:
  virtual LSTATUS RegOpenKeyExW(HKEY key, const wchar_t* sub_key, DWORD options, REGSAM access,
                                HKEY* result) = 0;
  virtual LSTATUS RegQueryValueExW(HKEY key, const wchar_t* value_name, DWORD* reserved,
                                   DWORD* type, BYTE* data, DWORD* data_size) = 0;
  virtual LSTATUS RegSetKeyValueW(HKEY key, const wchar_t* sub_key, const wchar_t* value_name,
                                  DWORD type, const void* data, DWORD data_size) = 0;
  virtual LSTATUS RegCloseKey(HKEY key) = 0;

  static Registry& Real() noexcept;

 protected:
  ~Registry() = default;
};

inline Registry& registry() noexcept { return Seam<Registry>::Get(); }

}  // namespace velhal::os

namespace velhal {

struct RegistryKeyTraits {
  using Handle = HKEY;
  static HKEY Invalid() noexcept { return nullptr; }
  static bool IsValid(HKEY key) noexcept { return key != nullptr; }
  static void Close(HKEY key) noexcept { os::registry().RegCloseKey(key); }
};
// Never adopt a predefined root such as HKEY_LOCAL_MACHINE: it would be closed.
using UniqueRegistryKey = UniqueResource<RegistryKeyTraits>;

}  // namespace velhal
