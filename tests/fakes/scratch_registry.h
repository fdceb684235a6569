// The real registry with HKEY_LOCAL_MACHINE redirected (RegOverridePredefKey) to a scratch key
// of this test under HKEY_CURRENT_USER, removed again when the test ends. The library's calls
// go to the real advapi32, so its error codes and size rules are the system's own; this
// facility only forwards them, recording the access each open asked for and counting open
// keys, so a test sees leaks and double closes. Paths below are relative to HKLM.
#pragma once

#include "platform/win32.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/os/registry.h"
#include "tests/fakes/fake_common.h"

namespace velhal::testing {

class ScratchRegistry final : public os::Registry {
 public:
  ScratchRegistry();
  ~ScratchRegistry();
  ScratchRegistry(const ScratchRegistry&) = delete;
  ScratchRegistry& operator=(const ScratchRegistry&) = delete;

  // Stores a value (creating its key) exactly as given: type and bytes.
  void Set(const std::wstring& path, const std::wstring& name, DWORD type,
           const std::vector<BYTE>& data);
  void SetDword(const std::wstring& path, const std::wstring& name, DWORD value);
  // The characters and a terminating NUL, as RegSetValueExW callers normally store them.
  void SetString(const std::wstring& path, const std::wstring& name, const std::wstring& text,
                 DWORD type = REG_SZ);
  void AddKey(const std::wstring& path);
  bool HasKey(const std::wstring& path) const;
  // The stored type and bytes, read without the library; {REG_NONE, {}} when absent.
  std::pair<DWORD, std::vector<BYTE>> Get(const std::wstring& path, const std::wstring& name) const;

  size_t open_handles() const { return open_.size(); }
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
  std::wstring scratch_path_;  // under HKEY_CURRENT_USER
  HKEY scratch_ = nullptr;
  std::set<HKEY> open_;
  size_t bad_closes_ = 0;
  std::vector<REGSAM> requested_access_;
};

}  // namespace velhal::testing
