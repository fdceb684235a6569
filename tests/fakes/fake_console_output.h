// Captures what the library prints to a standard stream, formatted as the C runtime would.
#pragma once

#include <cwchar>
#include <iterator>
#include <string>
#include <vector>

#include "platform/os/console_output.h"

namespace velhal::testing {

class FakeConsoleOutput final : public os::ConsoleOutput {
 public:
  int vfwprintf(FILE* stream, const wchar_t* format, va_list args) override {
    wchar_t text[1024] = {};
    const int length = std::vswprintf(text, std::size(text), format, args);
    (stream == stdout ? printed : other_streams).emplace_back(text);
    return length;
  }

  std::vector<std::wstring> printed;        // to stdout, one entry per call
  std::vector<std::wstring> other_streams;  // must stay empty where stdout is meant
};

}  // namespace velhal::testing
