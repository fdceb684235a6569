#include "platform/diagnostics.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "tests/fakes/fake_debug_output.h"

namespace {

using velhal::ComposeDiagnostic;
using velhal::WriteDiagnostic;

TEST(DiagnosticsTest, ComposesTextValueAndFunctionName) {
  EXPECT_EQ(ComposeDiagnostic("CM_Locate_DevNode failed and error code is :", 13UL,
                              "DeviceDriver::ScanForHardwareChange"),
            L"CM_Locate_DevNode failed and error code is :13(DeviceDriver::ScanForHardwareChange)\n");
  EXPECT_EQ(ComposeDiagnostic("getSystemFirmwareTable error", "SmBiosHelper::Init"),
            L"getSystemFirmwareTable error(SmBiosHelper::Init)\n");
  // A value of 0 is the single digit right before the parenthesis.
  EXPECT_EQ(ComposeDiagnostic("[DpQueryInformation] GetSystemPowerStatus Result:", 0,
                              "DisplayModule::Query"),
            L"[DpQueryInformation] GetSystemPowerStatus Result:0(DisplayModule::Query)\n");
  // Values are decimal, never hexadecimal, whatever their type.
  EXPECT_EQ(ComposeDiagnostic(L"hr=", static_cast<int32_t>(0x8004100E), "A::B"),
            L"hr=-2147217394(A::B)\n");
  EXPECT_EQ(ComposeDiagnostic(L"size=", UINT64_C(0x100000000), "A::B"), L"size=4294967296(A::B)\n");
  EXPECT_EQ(ComposeDiagnostic(L"caf\u00e9 ", 1, "A::B"), L"caf\u00e9 1(A::B)\n");
}

TEST(DiagnosticsTest, WritesOneMessagePerEvent) {
  velhal::testing::FakeDebugOutput output;
  velhal::os::ScopedBackend<velhal::os::DebugOutput> backend(output);

  WriteDiagnostic("first", "A::B");
  WriteDiagnostic("second:", 1168, "C::D");

  ASSERT_EQ(output.messages.size(), 2u);
  EXPECT_EQ(output.messages[0], L"first(A::B)\n");
  EXPECT_EQ(output.messages[1], L"second:1168(C::D)\n");
}

}  // namespace
