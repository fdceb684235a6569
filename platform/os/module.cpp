// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/module.h"

namespace velhal::os {
namespace {

class RealModule final : public Module {
 public:
  HMODULE LoadLibraryExW(const wchar_t* path, HANDLE reserved, DWORD flags) override {
    return ::LoadLibraryExW(path, reserved, flags);
  }
  BOOL FreeLibrary(HMODULE module) override { return ::FreeLibrary(module); }
  HMODULE GetModuleHandleW(const wchar_t* name) override { return ::GetModuleHandleW(name); }
  FARPROC GetProcAddress(HMODULE module, const char* name) override {
    return ::GetProcAddress(module, name);
  }
  BOOL GetModuleHandleExW(DWORD flags, const wchar_t* name, HMODULE* module) override {
    return ::GetModuleHandleExW(flags, name, module);
  }
  DWORD GetModuleFileNameW(HMODULE module, wchar_t* path, DWORD size) override {
    return ::GetModuleFileNameW(module, path, size);
  }
  UINT GetSystemDirectoryW(wchar_t* path, UINT size) override {
    return ::GetSystemDirectoryW(path, size);
  }
};

}  // namespace

Module& Module::Real() noexcept {
  static RealModule backend;
  return backend;
}

}  // namespace velhal::os
