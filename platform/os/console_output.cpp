// The real backend: each member forwards to the C runtime function of the same name.
#include "platform/os/console_output.h"

#include <cwchar>

namespace velhal::os {
namespace {

class RealConsoleOutput final : public ConsoleOutput {
 public:
  int vfwprintf(FILE* stream, const wchar_t* format, va_list args) override {
    return std::vfwprintf(stream, format, args);
  }
};

}  // namespace

ConsoleOutput& ConsoleOutput::Real() noexcept {
  static RealConsoleOutput backend;
  return backend;
}

}  // namespace velhal::os
