// Security facility: the calling process's access token (its elevation).
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"
#include "platform/unique_resource.h"

namespace velhal::os {

class Security {
 public:
  virtual BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token) = 0;
  virtual BOOL GetTokenInformation(HANDLE token, TOKEN_INFORMATION_CLASS what, void* buffer,
                                   DWORD size, DWORD* returned) = 0;
  virtual BOOL CloseHandle(HANDLE token) = 0;

  static Security& Real() noexcept;

 protected:
  ~Security() = default;
};

inline Security& security() noexcept { return Seam<Security>::Get(); }

}  // namespace velhal::os

namespace velhal {

struct TokenTraits {
  using Handle = HANDLE;
  static HANDLE Invalid() noexcept { return nullptr; }
  static bool IsValid(HANDLE token) noexcept { return token != nullptr; }
  static void Close(HANDLE token) noexcept { os::security().CloseHandle(token); }
};
using UniqueToken = UniqueResource<TokenTraits>;

}  // namespace velhal
