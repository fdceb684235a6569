// Diagnostics to the debugger output: one message per event, shaped
//   <text><value>(<Class::Method>)\n
// with the value optional and printed with a wide stream's default formatting (decimal).
// Example: "CM_Locate_DevNode failed and error code is :13(DeviceDriver::ScanForHardwareChange)\n".
// Tools that watch the debugger output match these texts, so they are kept exactly.
#pragma once

#include <sstream>
#include <string>

namespace velhal {

namespace diagnostics_detail {
void Emit(const std::wstring& message) noexcept;
}  // namespace diagnostics_detail

// Text may be narrow or wide; a narrow text is widened character by character.
template <class Text>
std::wstring ComposeDiagnostic(const Text& text, const char* where) {
  std::wostringstream stream;
  stream << text << L"(" << where << L")" << std::endl;
  return stream.str();
}

template <class Text, class Value>
std::wstring ComposeDiagnostic(const Text& text, const Value& value, const char* where) {
  std::wostringstream stream;
  stream << text << value << L"(" << where << L")" << std::endl;
  return stream.str();
}

// Logging never fails visibly: a message that cannot be built is dropped.
template <class Text>
void WriteDiagnostic(const Text& text, const char* where) noexcept {
  try {
    diagnostics_detail::Emit(ComposeDiagnostic(text, where));
  } catch (...) {
  }
}

template <class Text, class Value>
void WriteDiagnostic(const Text& text, const Value& value, const char* where) noexcept {
  try {
    diagnostics_detail::Emit(ComposeDiagnostic(text, value, where));
  } catch (...) {
  }
}

}  // namespace velhal
