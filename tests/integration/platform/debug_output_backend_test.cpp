// The real debug-output backend: OutputDebugStringW raises the debugger-print exception, which
// a vectored handler can read, so the test sees the exact text a debugger would.
#include "platform/win32.h"

#include "platform/diagnostics.h"

#include <gtest/gtest.h>

#include <string>

namespace {

#ifndef DBG_PRINTEXCEPTION_WIDE_C
#define DBG_PRINTEXCEPTION_WIDE_C 0x4001000AL
#endif

std::wstring g_captured;

LONG CALLBACK CapturePrint(EXCEPTION_POINTERS* pointers) {
  const EXCEPTION_RECORD* record = pointers->ExceptionRecord;
  if (record->NumberParameters < 2) return EXCEPTION_CONTINUE_SEARCH;
  if (record->ExceptionCode == static_cast<DWORD>(DBG_PRINTEXCEPTION_WIDE_C)) {
    g_captured = reinterpret_cast<const wchar_t*>(record->ExceptionInformation[1]);
    return EXCEPTION_CONTINUE_EXECUTION;
  }
  if (record->ExceptionCode == static_cast<DWORD>(DBG_PRINTEXCEPTION_C)) {
    // Windows raises the wide form first; an older system or Wine raises only the narrow one.
    if (g_captured.empty()) {
      const char* text = reinterpret_cast<const char*>(record->ExceptionInformation[1]);
      while (*text) g_captured += static_cast<wchar_t>(static_cast<unsigned char>(*text++));
    }
    return EXCEPTION_CONTINUE_EXECUTION;
  }
  return EXCEPTION_CONTINUE_SEARCH;
}

TEST(DebugOutputBackendTest, DiagnosticsReachOutputDebugStringW) {
  void* handler = ::AddVectoredExceptionHandler(1, CapturePrint);
  ASSERT_NE(handler, nullptr);
  g_captured.clear();
  velhal::WriteDiagnostic("CM_Locate_DevNode failed and error code is :", 13,
                          "DeviceDriver::ScanForHardwareChange");
  ::RemoveVectoredExceptionHandler(handler);
  EXPECT_EQ(g_captured,
            L"CM_Locate_DevNode failed and error code is :13(DeviceDriver::ScanForHardwareChange)\n");
}

}  // namespace
