#include "tests/fakes/scratch_registry.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/fakes/fake_common.h"

namespace velhal::testing {

ScratchRegistry::ScratchRegistry()
    : scratch_path_(L"Software\\VelHalTest\\" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
                    std::to_wstring(::GetTickCount64())) {
  ::RegDeleteTreeW(HKEY_CURRENT_USER, scratch_path_.c_str());
  EXPECT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, scratch_path_.c_str(), 0, nullptr, 0,
                              KEY_ALL_ACCESS, nullptr, &scratch_, nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(::RegOverridePredefKey(HKEY_LOCAL_MACHINE, scratch_), ERROR_SUCCESS);
}

ScratchRegistry::~ScratchRegistry() {
  ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
  ::RegCloseKey(scratch_);
  ::RegDeleteTreeW(HKEY_CURRENT_USER, scratch_path_.c_str());
  ::RegDeleteKeyW(HKEY_CURRENT_USER, scratch_path_.c_str());
}

void ScratchRegistry::Set(const std::wstring& path, const std::wstring& name, DWORD type,
                          const std::vector<BYTE>& data) {
  EXPECT_EQ(::RegSetKeyValueW(scratch_, path.c_str(), name.c_str(), type, data.data(),
                              static_cast<DWORD>(data.size())),
            ERROR_SUCCESS);
}

void ScratchRegistry::SetDword(const std::wstring& path, const std::wstring& name, DWORD value) {
  std::vector<BYTE> bytes(sizeof(value));
  std::memcpy(bytes.data(), &value, sizeof(value));
  Set(path, name, REG_DWORD, bytes);
}

void ScratchRegistry::SetString(const std::wstring& path, const std::wstring& name,
                                const std::wstring& text, DWORD type) {
  Set(path, name, type, Utf16Bytes(text, true));
}

void ScratchRegistry::AddKey(const std::wstring& path) {
  HKEY key = nullptr;
  EXPECT_EQ(::RegCreateKeyExW(scratch_, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                              nullptr),
            ERROR_SUCCESS);
  ::RegCloseKey(key);
}

bool ScratchRegistry::HasKey(const std::wstring& path) const {
  HKEY key = nullptr;
  if (::RegOpenKeyExW(scratch_, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  ::RegCloseKey(key);
  return true;
}

std::pair<DWORD, std::vector<BYTE>> ScratchRegistry::Get(const std::wstring& path,
                                                         const std::wstring& name) const {
  DWORD type = REG_NONE, size = 0;
  if (::RegGetValueW(scratch_, path.c_str(), name.c_str(), RRF_RT_ANY | RRF_NOEXPAND, &type,
                     nullptr, &size) != ERROR_SUCCESS) {
    return {REG_NONE, {}};
  }
  std::vector<BYTE> data(size);
  ::RegGetValueW(scratch_, path.c_str(), name.c_str(), RRF_RT_ANY | RRF_NOEXPAND, &type,
                 data.data(), &size);
  data.resize(size);
  return {type, data};
}

LSTATUS ScratchRegistry::RegOpenKeyExW(HKEY key, const wchar_t* sub_key, DWORD options,
                                       REGSAM access, HKEY* result) {
  requested_access_.push_back(access);
  const LSTATUS status = ::RegOpenKeyExW(key, sub_key, options, access, result);
  if (status == ERROR_SUCCESS) open_.insert(*result);
  return status;
}

LSTATUS ScratchRegistry::RegQueryValueExW(HKEY key, const wchar_t* value_name, DWORD* reserved,
                                          DWORD* type, BYTE* data, DWORD* data_size) {
  return ::RegQueryValueExW(key, value_name, reserved, type, data, data_size);
}

LSTATUS ScratchRegistry::RegSetKeyValueW(HKEY key, const wchar_t* sub_key,
                                         const wchar_t* value_name, DWORD type, const void* data,
                                         DWORD data_size) {
  return ::RegSetKeyValueW(key, sub_key, value_name, type, data, data_size);
}

LSTATUS ScratchRegistry::RegCloseKey(HKEY key) {
  if (open_.erase(key) == 0) ++bad_closes_;
  return ::RegCloseKey(key);
}

}  // namespace velhal::testing
