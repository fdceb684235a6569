#include "tests/fakes/fake_registry.h"

#include <algorithm>
#include <cstring>
#include <cwctype>

namespace velhal::testing {

std::wstring FakeRegistry::Fold(const std::wstring& text) {
  std::wstring folded = text;
  std::transform(folded.begin(), folded.end(), folded.begin(),
                 [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
  return folded;
}

void FakeRegistry::AddKey(const std::wstring& path) { keys_[Fold(path)]; }

void FakeRegistry::SetValue(const std::wstring& path, const std::wstring& name, DWORD type,
                            std::vector<BYTE> data) {
  keys_[Fold(path)][Fold(name)] = Value{type, std::move(data)};
}

void FakeRegistry::SetDword(const std::wstring& path, const std::wstring& name, DWORD value) {
  std::vector<BYTE> data(sizeof(value));
  std::memcpy(data.data(), &value, sizeof(value));
  SetValue(path, name, REG_DWORD, std::move(data));
}

void FakeRegistry::SetString(const std::wstring& path, const std::wstring& name,
                             const std::wstring& text, DWORD type) {
  std::vector<BYTE> data((text.size() + 1) * sizeof(wchar_t), 0);
  std::memcpy(data.data(), text.data(), text.size() * sizeof(wchar_t));
  SetValue(path, name, type, std::move(data));
}

bool FakeRegistry::HasKey(const std::wstring& path) const { return keys_.count(Fold(path)) != 0; }

const FakeRegistry::Value* FakeRegistry::FindValue(const std::wstring& path,
                                                   const std::wstring& name) const {
  const auto key = keys_.find(Fold(path));
  if (key == keys_.end()) return nullptr;
  const auto value = key->second.find(Fold(name));
  return value == key->second.end() ? nullptr : &value->second;
}

const FakeRegistry::OpenKey* FakeRegistry::Lookup(HKEY key) const {
  const auto found = handles_.find(key);
  return found == handles_.end() ? nullptr : &found->second;
}

LSTATUS FakeRegistry::RegOpenKeyExW(HKEY key, const wchar_t* sub_key, DWORD /*options*/,
                                    REGSAM access, HKEY* result) {
  if (result == nullptr) return ERROR_INVALID_PARAMETER;
  std::wstring path;
  if (key != HKEY_LOCAL_MACHINE) {
    const OpenKey* parent = Lookup(key);
    if (parent == nullptr) return ERROR_INVALID_HANDLE;
    path = parent->path;
  }
  if (sub_key != nullptr && *sub_key != L'\0') {
    path += path.empty() ? std::wstring(sub_key) : L"\\" + std::wstring(sub_key);
  }
  requested_access_.push_back(access);
  if (!HasKey(path)) return ERROR_FILE_NOT_FOUND;
  const HKEY handle = reinterpret_cast<HKEY>(next_handle_);
  next_handle_ += 8;
  handles_[handle] = OpenKey{path, access};
  *result = handle;
  return ERROR_SUCCESS;
}

LSTATUS FakeRegistry::RegQueryValueExW(HKEY key, const wchar_t* value_name, DWORD* reserved,
                                       DWORD* type, BYTE* data, DWORD* data_size) {
  const OpenKey* open = Lookup(key);
  if (open == nullptr) return ERROR_INVALID_HANDLE;
  if (reserved != nullptr || (data != nullptr && data_size == nullptr)) {
    return ERROR_INVALID_PARAMETER;
  }
  if ((open->access & KEY_QUERY_VALUE) != KEY_QUERY_VALUE) return ERROR_ACCESS_DENIED;
  const Value* value = FindValue(open->path, value_name ? value_name : L"");
  if (value == nullptr) return ERROR_FILE_NOT_FOUND;

  if (type != nullptr) *type = value->type;
  const DWORD needed = static_cast<DWORD>(value->data.size());
  if (data_size == nullptr) return ERROR_SUCCESS;
  if (data == nullptr) {
    *data_size = needed;
    return ERROR_SUCCESS;
  }
  if (*data_size < needed) {
    *data_size = needed;
    return ERROR_MORE_DATA;
  }
  std::copy(value->data.begin(), value->data.end(), data);
  *data_size = needed;
  return ERROR_SUCCESS;
}

LSTATUS FakeRegistry::RegSetKeyValueW(HKEY key, const wchar_t* sub_key,
                                      const wchar_t* value_name, DWORD type, const void* data,
                                      DWORD data_size) {
  const OpenKey* open = Lookup(key);
  if (open == nullptr) return ERROR_INVALID_HANDLE;
  if ((open->access & KEY_SET_VALUE) != KEY_SET_VALUE) return ERROR_ACCESS_DENIED;
  if (data == nullptr && data_size != 0) return ERROR_NOACCESS;
  std::wstring path = open->path;
  if (sub_key != nullptr && *sub_key != L'\0') {
    path += L"\\" + std::wstring(sub_key);
    AddKey(path);  // RegSetKeyValueW creates a named subkey
  }
  const auto* bytes = static_cast<const BYTE*>(data);
  SetValue(path, value_name ? value_name : L"", type,
           std::vector<BYTE>(bytes, bytes + data_size));
  return ERROR_SUCCESS;
}

LSTATUS FakeRegistry::RegCloseKey(HKEY key) {
  if (handles_.erase(key) == 0) {
    ++bad_closes_;
    return ERROR_INVALID_HANDLE;
  }
  return ERROR_SUCCESS;
}

}  // namespace velhal::testing
