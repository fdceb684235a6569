// Console-output facility: the C runtime's formatted wide output to a standard stream, for the
// few reports the library prints there instead of the debugger output.
#pragma once

#include <cstdarg>
#include <cstdio>

#include "platform/os/seam.h"

namespace velhal::os {

class ConsoleOutput {
 public:
  virtual int vfwprintf(FILE* stream, const wchar_t* format, va_list args) = 0;

  static ConsoleOutput& Real() noexcept;

 protected:
  ~ConsoleOutput() = default;
};

inline ConsoleOutput& console_output() noexcept { return Seam<ConsoleOutput>::Get(); }

}  // namespace velhal::os
