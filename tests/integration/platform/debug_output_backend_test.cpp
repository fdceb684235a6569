// The real debug-output backend: the library's diagnostics reach the debugger as composed.
#include "platform/diagnostics.h"

#include <gtest/gtest.h>

#include "tests/support/debug_capture.h"

namespace {

TEST(DebugOutputBackendTest, DiagnosticsReachOutputDebugStringW) {
  velhal::testing::DebugCapture capture;
  velhal::WriteDiagnostic("CM_Locate_DevNode failed and error code is :", 13,
                          "DeviceDriver::ScanForHardwareChange");
  EXPECT_EQ(capture.messages,
            std::vector<std::wstring>{
                L"CM_Locate_DevNode failed and error code is :13(DeviceDriver::ScanForHardwareChange)\n"});
}

}  // namespace
