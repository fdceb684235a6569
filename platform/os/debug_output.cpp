// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/debug_output.h"

namespace velhal::os {
namespace {

class RealDebugOutput final : public DebugOutput {
 public:
  void OutputDebugStringW(const wchar_t* text) override { ::OutputDebugStringW(text); }
};

}  // namespace

DebugOutput& DebugOutput::Real() noexcept {
  static RealDebugOutput backend;
  return backend;
}

}  // namespace velhal::os
