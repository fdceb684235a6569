// Captures what the real OutputDebugStringW sends to a debugger, for integration tests of the
// library's diagnostics: the call raises the debugger-print exception, which a vectored handler
// reads. Windows raises the wide form first; Wine raises only the narrow one.
#pragma once

#include "platform/win32.h"

#include <string>
#include <vector>

namespace velhal::testing {

class DebugCapture {
 public:
  DebugCapture() : handler_(::AddVectoredExceptionHandler(1, &Capture)) { Active() = this; }
  ~DebugCapture() {
    ::RemoveVectoredExceptionHandler(handler_);
    Active() = nullptr;
  }
  DebugCapture(const DebugCapture&) = delete;
  DebugCapture& operator=(const DebugCapture&) = delete;

  std::vector<std::wstring> messages;

 private:
  static constexpr DWORD kWidePrint = 0x4001000A;  // DBG_PRINTEXCEPTION_WIDE_C

  static DebugCapture*& Active() {
    static DebugCapture* active = nullptr;
    return active;
  }
  static LONG CALLBACK Capture(EXCEPTION_POINTERS* pointers) {
    const EXCEPTION_RECORD* record = pointers->ExceptionRecord;
    DebugCapture* self = Active();
    if (self == nullptr || record->NumberParameters < 2) return EXCEPTION_CONTINUE_SEARCH;
    if (record->ExceptionCode == kWidePrint) {
      self->messages.emplace_back(reinterpret_cast<const wchar_t*>(record->ExceptionInformation[1]));
      self->wide_seen_ = true;
      return EXCEPTION_CONTINUE_EXECUTION;
    }
    if (record->ExceptionCode == static_cast<DWORD>(DBG_PRINTEXCEPTION_C)) {
      // After a wide print Windows raises the narrow copy of the same message: skip it.
      if (!self->wide_seen_) {
        std::wstring text;
        for (auto* c = reinterpret_cast<const char*>(record->ExceptionInformation[1]); *c; ++c) {
          text += static_cast<wchar_t>(static_cast<unsigned char>(*c));
        }
        self->messages.push_back(text);
      }
      self->wide_seen_ = false;
      return EXCEPTION_CONTINUE_EXECUTION;
    }
    return EXCEPTION_CONTINUE_SEARCH;
  }

  void* handler_ = nullptr;
  bool wide_seen_ = false;
};

}  // namespace velhal::testing
