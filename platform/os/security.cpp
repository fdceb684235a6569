// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/security.h"

namespace velhal::os {
namespace {

class RealSecurity final : public Security {
 public:
  BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token) override {
    return ::OpenProcessToken(process, access, token);
  }
  BOOL GetTokenInformation(HANDLE token, TOKEN_INFORMATION_CLASS what, void* buffer, DWORD size,
                           DWORD* returned) override {
    return ::GetTokenInformation(token, what, buffer, size, returned);
  }
  BOOL CloseHandle(HANDLE token) override { return ::CloseHandle(token); }
};

}  // namespace

Security& Security::Real() noexcept {
  static RealSecurity backend;
  return backend;
}

}  // namespace velhal::os
