// The one place a machine maker's firmware interface plugs in. The standard provider answers
// ERROR_NOT_SUPPORTED for everything; a maker's provider (or a test's) is installed through the
// seam, like any operating-system backend.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

namespace velhal {

class FirmwareProvider {
 public:
  virtual DWORD SetChargeThreshold(unsigned char first, unsigned char second) = 0;
  virtual DWORD GetChargeThreshold(unsigned char& first, unsigned char& second) = 0;

  static FirmwareProvider& Real() noexcept;

 protected:
  ~FirmwareProvider() = default;
};

inline FirmwareProvider& firmware_provider() noexcept { return os::Seam<FirmwareProvider>::Get(); }

}  // namespace velhal
