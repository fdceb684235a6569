// Debug output facility: where diagnostics go (the debugger's output channel).
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

namespace velhal::os {

class DebugOutput {
 public:
  virtual void OutputDebugStringW(const wchar_t* text) = 0;

  static DebugOutput& Real() noexcept;

 protected:
  ~DebugOutput() = default;
};

inline DebugOutput& debug_output() noexcept { return Seam<DebugOutput>::Get(); }

}  // namespace velhal::os
