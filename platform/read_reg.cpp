#include "platform/win32.h"

#include "platform/read_reg.h"

#include <array>
#include <cwchar>

#include "platform/boundary.h"
#include "platform/os/registry.h"

namespace {

constexpr DWORD kNoOptions = 0;
constexpr REGSAM kReadAccess = KEY_READ | KEY_WOW64_64KEY;
constexpr REGSAM kWriteAccess = KEY_WRITE | KEY_WOW64_64KEY;
static_assert(kReadAccess == 0x20119 && kWriteAccess == 0x20106);
constexpr DWORD kStringCapacityChars = 260;                   // 520 bytes, NUL included
constexpr size_t kMaxWrittenChars = 0x7FFFFFFE;               // keeps 2 x length + 2 in a DWORD

velhal::UniqueRegistryKey OpenLocalMachineKey(const std::wstring& key, REGSAM access) {
  velhal::UniqueRegistryKey opened;
  if (velhal::os::registry().RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), kNoOptions, access,
                                           opened.Put()) != ERROR_SUCCESS) {
    opened.Reset();
  }
  return opened;
}

bool ReadString(const std::wstring& key, const std::wstring& value_name, DWORD preset_type,
                std::wstring& value) {
  value.clear();
  const velhal::UniqueRegistryKey opened = OpenLocalMachineKey(key, kReadAccess);
  if (!opened.IsValid()) return false;

  // One spare unit behind the buffer the system may fill keeps an unterminated value of
  // exactly 520 bytes readable without running past the end.
  std::array<wchar_t, kStringCapacityChars + 1> buffer{};
  DWORD type = preset_type;  // the type reported back is not checked
  DWORD size = kStringCapacityChars * sizeof(wchar_t);
  if (velhal::os::registry().RegQueryValueExW(opened.Get(), value_name.c_str(), nullptr, &type,
                                              reinterpret_cast<BYTE*>(buffer.data()),
                                              &size) != ERROR_SUCCESS) {
    return false;
  }
  value.assign(buffer.data(), std::wcslen(buffer.data()));
  return true;
}

bool WriteValue(const std::wstring& key, const std::wstring& value_name, DWORD type,
                const void* data, DWORD size) {
  const velhal::UniqueRegistryKey opened = OpenLocalMachineKey(key, kWriteAccess);
  if (!opened.IsValid()) return false;
  return velhal::os::registry().RegSetKeyValueW(opened.Get(), nullptr, value_name.c_str(), type,
                                                data, size) == ERROR_SUCCESS;
}

bool WriteString(const std::wstring& key, const std::wstring& value_name, DWORD type,
                 const std::wstring& value) {
  if (value.size() > kMaxWrittenChars) return false;
  const DWORD size = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
  return WriteValue(key, value_name, type, value.c_str(), size);
}

}  // namespace

bool ReadReg::ReadLocalMachineRegDW(const std::wstring& key, const std::wstring& valueName,
                                    unsigned long& value) {
  value = 0;
  return velhal::CallGuarded(false, [&] {
    const velhal::UniqueRegistryKey opened = OpenLocalMachineKey(key, kReadAccess);
    if (!opened.IsValid()) return false;
    DWORD type = REG_DWORD;  // the type reported back is not checked
    DWORD data = 0;
    DWORD size = sizeof(data);
    if (velhal::os::registry().RegQueryValueExW(opened.Get(), valueName.c_str(), nullptr, &type,
                                                reinterpret_cast<BYTE*>(&data),
                                                &size) != ERROR_SUCCESS) {
      return false;
    }
    value = data;
    return true;
  });
}

bool ReadReg::ReadLocalMachineRegRZ(const std::wstring& key, const std::wstring& valueName,
                                    std::wstring& value) {
  return velhal::CallGuarded(false, [&] { return ReadString(key, valueName, REG_SZ, value); });
}

bool ReadReg::ReadLocalMachineRegExpandRZ(const std::wstring& key, const std::wstring& valueName,
                                          std::wstring& value) {
  return velhal::CallGuarded(false,
                             [&] { return ReadString(key, valueName, REG_EXPAND_SZ, value); });
}

bool ReadReg::WrightLocalMachineRegDW(const std::wstring& key, const std::wstring& valueName,
                                      unsigned long value) {
  return velhal::CallGuarded(false, [&] {
    const DWORD data = value;
    return WriteValue(key, valueName, REG_DWORD, &data, sizeof(data));
  });
}

bool ReadReg::WriteLocalMachineRegRZ(const std::wstring& key, const std::wstring& valueName,
                                     const std::wstring& value) {
  return velhal::CallGuarded(false, [&] { return WriteString(key, valueName, REG_SZ, value); });
}

bool ReadReg::WrightLocalMachineRegExpandRZ(const std::wstring& key,
                                            const std::wstring& valueName,
                                            const std::wstring& value) {
  return velhal::CallGuarded(false,
                             [&] { return WriteString(key, valueName, REG_EXPAND_SZ, value); });
}
