// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/file_system.h"

namespace velhal::os {
namespace {

class RealFileSystem final : public FileSystem {
 public:
  DWORD GetFileAttributesW(const wchar_t* path) override { return ::GetFileAttributesW(path); }
};

}  // namespace

FileSystem& FileSystem::Real() noexcept {
  static RealFileSystem backend;
  return backend;
}

}  // namespace velhal::os
