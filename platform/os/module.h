// Module facility: procedure lookup, the library's own file name, file existence, and loading
// system DLLs that are bound at run time.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

namespace velhal::os {

class Module {
 public:
  virtual HMODULE GetModuleHandleW(const wchar_t* name) = 0;
  virtual FARPROC GetProcAddress(HMODULE module, const char* name) = 0;
  virtual BOOL GetModuleHandleExW(DWORD flags, const wchar_t* name, HMODULE* module) = 0;
  virtual DWORD GetModuleFileNameW(HMODULE module, wchar_t* path, DWORD size) = 0;
  virtual DWORD GetFileAttributesW(const wchar_t* path) = 0;

  static Module& Real() noexcept;

 protected:
  ~Module() = default;
};

inline Module& module() noexcept { return Seam<Module>::Get(); }

}  // namespace velhal::os
