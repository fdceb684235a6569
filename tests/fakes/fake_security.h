// The process token as a test sets it: elevated or not, or failing to open. Tokens are
// counted, so a test sees one left open.
#pragma once

#include "platform/win32.h"

#include "platform/os/security.h"
#include "tests/fakes/fake_common.h"

namespace velhal::testing {

class FakeSecurity final : public os::Security {
 public:
  bool elevated = false;
  DWORD open_error = 0;  // non-zero: OpenProcessToken fails with it
  int open_tokens = 0;
  int bad_closes = 0;

  BOOL OpenProcessToken(HANDLE, DWORD access, HANDLE* token) override {
    if (open_error != 0) return Fail(open_error);
    if ((access & TOKEN_QUERY) == 0) return Fail(ERROR_ACCESS_DENIED);
    ++open_tokens;
    *token = kToken;
    return TRUE;
  }
  BOOL GetTokenInformation(HANDLE token, TOKEN_INFORMATION_CLASS what, void* buffer, DWORD size,
                           DWORD* returned) override {
    if (token != kToken || open_tokens == 0) return Fail(ERROR_INVALID_HANDLE);
    if (what != TokenElevation) return Fail(ERROR_INVALID_PARAMETER);
    *returned = sizeof(TOKEN_ELEVATION);
    if (size < sizeof(TOKEN_ELEVATION)) return Fail(ERROR_INSUFFICIENT_BUFFER);
    static_cast<TOKEN_ELEVATION*>(buffer)->TokenIsElevated = elevated ? 1 : 0;
    return TRUE;
  }
  BOOL CloseHandle(HANDLE token) override {
    if (token != kToken || open_tokens == 0) {
      ++bad_closes;
      return Fail(ERROR_INVALID_HANDLE);
    }
    --open_tokens;
    return TRUE;
  }

 private:
  static inline const HANDLE kToken = reinterpret_cast<HANDLE>(0x70C0);
};

}  // namespace velhal::testing
