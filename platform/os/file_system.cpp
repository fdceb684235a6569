// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/file_system.h"

#include <winver.h>

namespace velhal::os {
namespace {

class RealFileSystem final : public FileSystem {
 public:
  DWORD GetFileAttributesW(const wchar_t* path) override { return ::GetFileAttributesW(path); }
  BOOL GetFileAttributesExW(const wchar_t* path, GET_FILEEX_INFO_LEVELS level,
                            void* info) override {
    return ::GetFileAttributesExW(path, level, info);
  }
  DWORD GetFileVersionInfoSizeW(const wchar_t* path, DWORD* handle) override {
    return ::GetFileVersionInfoSizeW(path, handle);
  }
  BOOL GetFileVersionInfoW(const wchar_t* path, DWORD handle, DWORD size, void* data) override {
    return ::GetFileVersionInfoW(path, handle, size, data);
  }
};

}  // namespace

FileSystem& FileSystem::Real() noexcept {
  static RealFileSystem backend;
  return backend;
}

}  // namespace velhal::os
