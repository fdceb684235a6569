// Captures every debugger-output message, so a test can read them byte for byte.
#pragma once

#include <string>
#include <vector>

#include "platform/os/debug_output.h"

namespace velhal::testing {

class FakeDebugOutput final : public os::DebugOutput {
 public:
  void OutputDebugStringW(const wchar_t* text) override {
    messages.emplace_back(text != nullptr ? text : L"<null>");
  }

  std::vector<std::wstring> messages;
};

}  // namespace velhal::testing
