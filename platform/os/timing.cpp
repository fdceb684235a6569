// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/timing.h"

namespace velhal::os {
namespace {

class RealTiming final : public Timing {
 public:
  void Sleep(DWORD milliseconds) override { ::Sleep(milliseconds); }
};

}  // namespace

Timing& Timing::Real() noexcept {
  static RealTiming backend;
  return backend;
}

}  // namespace velhal::os
