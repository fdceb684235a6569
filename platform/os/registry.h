// Registry facility: the advapi32 registry calls the library makes.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

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
