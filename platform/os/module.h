// Module facility: the loader's calls: loading system and vendor libraries bound at run time,
// module handles, procedure lookup, the library's own file name, the system folder. Functions some
// Windows versions (or Wine) lack are found here by name, so a missing one is a failed call instead
// of a load failure.
#pragma once

#include "platform/win32.h"

#include <string>

#include "platform/os/seam.h"
#include "platform/unique_resource.h"

namespace velhal::os {

class Module {
 public:
  virtual HMODULE LoadLibraryExW(const wchar_t* path, HANDLE reserved, DWORD flags) = 0;
  virtual BOOL FreeLibrary(HMODULE module) = 0;
  virtual HMODULE GetModuleHandleW(const wchar_t* name) = 0;
  virtual FARPROC GetProcAddress(HMODULE module, const char* name) = 0;
  virtual BOOL GetModuleHandleExW(DWORD flags, const wchar_t* name, HMODULE* module) = 0;
  virtual DWORD GetModuleFileNameW(HMODULE module, wchar_t* path, DWORD size) = 0;
  virtual UINT GetSystemDirectoryW(wchar_t* path, UINT size) = 0;

  static Module& Real() noexcept;

 protected:
  ~Module() = default;
};

inline Module& module() noexcept { return Seam<Module>::Get(); }

}  // namespace velhal::os

namespace velhal {

// A library loaded through the facility, freed through it.
struct ModuleTraits {
  using Handle = HMODULE;
  static HMODULE Invalid() noexcept { return nullptr; }
  static bool IsValid(HMODULE module) noexcept { return module != nullptr; }
  static void Close(HMODULE module) noexcept { os::module().FreeLibrary(module); }
};
using UniqueModule = UniqueResource<ModuleTraits>;

// The system folder (GetSystemDirectoryW into 260 characters) followed by file, which starts
// with a backslash, as in \dxgi.dll. Empty when the folder cannot be read.
inline std::wstring SystemFolderFile(const wchar_t* file) {
  wchar_t folder[MAX_PATH] = {};
  const UINT length = os::module().GetSystemDirectoryW(folder, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return {};
  return std::wstring(folder, length) + file;
}

}  // namespace velhal
