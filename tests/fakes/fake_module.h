// The module facility as a test sets it: which procedures kernel32 has (a fake firmware-table
// function serving a scripted table) and where the library lives; files themselves are real.
#pragma once

#include "platform/win32.h"

#include <cstring>
#include <string>
#include <vector>

#include "platform/os/module.h"

namespace velhal::testing {

// What the fake GetSystemFirmwareTable serves. The second call may report fewer bytes than the
// first announced (short_by), as a table that changed between the calls would.
struct FakeFirmwareTable {
  static inline std::vector<uint8_t> table;
  static inline UINT short_by = 0;
  static inline int calls = 0;

  static UINT WINAPI Get(DWORD provider, DWORD id, void* buffer, DWORD size) {
    ++calls;
    if (provider != 0x52534D42 || id != 0) return 0;
    const UINT needed = static_cast<UINT>(table.size());
    if (buffer == nullptr || size < needed) return needed;
    std::memcpy(buffer, table.data(), needed);
    return needed - short_by;
  }
};

class FakeModule final : public os::Module {
 public:
  bool has_firmware_table = true;
  bool handle_fails = false;
  std::wstring library_path;  // what GetModuleFileNameW reports for the library

  HMODULE GetModuleHandleW(const wchar_t* name) override {
    return name && std::wstring(name) == L"kernel32" ? kKernel32 : nullptr;
  }
  FARPROC GetProcAddress(HMODULE module, const char* name) override {
    if (module != kKernel32 || !has_firmware_table || std::string(name) != "GetSystemFirmwareTable") {
      return nullptr;
    }
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&FakeFirmwareTable::Get));
  }
  BOOL GetModuleHandleExW(DWORD, const wchar_t*, HMODULE* module) override {
    if (handle_fails) return FALSE;
    *module = kLibrary;
    return TRUE;
  }
  DWORD GetModuleFileNameW(HMODULE module, wchar_t* path, DWORD size) override {
    if (module != kLibrary || size == 0) return 0;
    const DWORD length = static_cast<DWORD>(library_path.size());
    const DWORD copied = length < size ? length : size - 1;
    std::memcpy(path, library_path.data(), copied * sizeof(wchar_t));
    path[copied] = L'\0';
    return length < size ? length : size;  // a full buffer means truncated, as Windows says
  }
  DWORD GetFileAttributesW(const wchar_t* path) override { return ::GetFileAttributesW(path); }

 private:
  static inline const HMODULE kKernel32 = reinterpret_cast<HMODULE>(0x7F000000);
  static inline const HMODULE kLibrary = reinterpret_cast<HMODULE>(0x6A000000);
};

}  // namespace velhal::testing
