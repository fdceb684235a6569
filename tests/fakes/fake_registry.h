// An in-memory registry under HKEY_LOCAL_MACHINE that keeps the advapi32 contract: the same
// error codes, ERROR_MORE_DATA with the needed size, access checked per handle. It records the
// access each open asked for and counts open handles, so a test can see leaks and double closes.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/os/registry.h"

namespace velhal::testing {

class FakeRegistry final : public os::Registry {
 public:
  struct Value {
    DWORD type = REG_NONE;
    std::vector<BYTE> data;
  };

  // Key paths are relative to HKEY_LOCAL_MACHINE and, as in the registry, case-insensitive.
  void AddKey(const std::wstring& path);
  void SetValue(const std::wstring& path, const std::wstring& name, DWORD type,
                std::vector<BYTE> data);
  void SetDword(const std::wstring& path, const std::wstring& name, DWORD value);
  // Stores the characters and a terminating NUL, as RegSetValueExW callers normally do.
  void SetString(const std::wstring& path, const std::wstring& name, const std::wstring& text,
                 DWORD type = REG_SZ);

  bool HasKey(const std::wstring& path) const;
  const Value* FindValue(const std::wstring& path, const std::wstring& name) const;

  size_t open_handles() const { return handles_.size(); }
  size_t bad_closes() const { return bad_closes_; }
  const std::vector<REGSAM>& requested_access() const { return requested_access_; }

  LSTATUS RegOpenKeyExW(HKEY key, const wchar_t* sub_key, DWORD options, REGSAM access,
                        HKEY* result) override;
  LSTATUS RegQueryValueExW(HKEY key, const wchar_t* value_name, DWORD* reserved, DWORD* type,
                           BYTE* data, DWORD* data_size) override;
  LSTATUS RegSetKeyValueW(HKEY key, const wchar_t* sub_key, const wchar_t* value_name, DWORD type,
                          const void* data, DWORD data_size) override;
  LSTATUS RegCloseKey(HKEY key) override;

 private:
  struct OpenKey {
    std::wstring path;
    REGSAM access = 0;
  };
  using ValueMap = std::map<std::wstring, Value>;  // by lower-cased name

  static std::wstring Fold(const std::wstring& text);
  const OpenKey* Lookup(HKEY key) const;

  std::map<std::wstring, ValueMap> keys_;  // by lower-cased path
  std::map<HKEY, OpenKey> handles_;
  uintptr_t next_handle_ = 0x1000;
  size_t bad_closes_ = 0;
  std::vector<REGSAM> requested_access_;
};

}  // namespace velhal::testing
