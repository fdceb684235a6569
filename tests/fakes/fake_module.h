// The loader as a test sets it: libraries by path, each a table of named procedures (a fake
// vendor library is a table of the test's own functions), and where the library itself lives.
// Loads and frees are counted, so a test sees a library left loaded.
#pragma once

#include "platform/win32.h"

#include <map>
#include <string>

#include "platform/os/module.h"

namespace velhal::testing {

class FakeModule final : public os::Module {
 public:
  struct Library {
    std::map<std::string, FARPROC> procedures;
    template <class Function>
    Library& Procedure(const std::string& name, Function* function) {
      procedures[name] = reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
      return *this;
    }
  };

  std::map<std::wstring, Library> libraries;  // by the path LoadLibraryExW is given
  std::wstring library_path;                  // what GetModuleFileNameW reports for VelHal
  std::wstring system_directory = L"C:\\windows\\system32";  // empty: GetSystemDirectoryW fails
  bool handle_fails = false;
  int loads = 0, frees = 0, bad_frees = 0;
  size_t loaded() const { return loaded_.size(); }

  HMODULE LoadLibraryExW(const wchar_t* path, HANDLE, DWORD) override;
  BOOL FreeLibrary(HMODULE module) override;
  HMODULE GetModuleHandleW(const wchar_t* name) override;
  FARPROC GetProcAddress(HMODULE module, const char* name) override;
  BOOL GetModuleHandleExW(DWORD, const wchar_t*, HMODULE* module) override;
  DWORD GetModuleFileNameW(HMODULE module, wchar_t* path, DWORD size) override;
  UINT GetSystemDirectoryW(wchar_t* path, UINT size) override;

 private:
  std::map<HMODULE, std::wstring> loaded_;  // a handle per load, as LoadLibrary counts them
  uintptr_t next_ = 0x6B000000;
};

}  // namespace velhal::testing
