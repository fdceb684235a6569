// Waiting. The library's fixed waits (service start and stop, driver rescans) go through here,
// so tests can count them instead of sleeping.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

namespace velhal::os {

class Timing {
 public:
  virtual void Sleep(DWORD milliseconds) = 0;

  static Timing& Real() noexcept;

 protected:
  ~Timing() = default;
};

inline Timing& timing() noexcept { return Seam<Timing>::Get(); }

}  // namespace velhal::os
