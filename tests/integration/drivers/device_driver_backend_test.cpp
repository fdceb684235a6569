// DeviceDriver against the system's real device database, checked against the test's own
// SetupAPI walk. No test here removes, disables or resets a real device: the repair operations
// are asked only for an ID no device has, which ends them before any change (and before the
// class installer, which Wine answers by ending the process). Wine refuses CM_Locate_DevNodeW,
// so there the rescan writes its diagnostic; Wine's unified-property reads all fail, so there the
// problem codes are the empty answers the walk also finds.
#include "platform/win32.h"

#include "drivers/device_driver.h"

#include <gtest/gtest.h>

#include <cfgmgr32.h>

#include <string>
#include <vector>

#include "tests/support/debug_capture.h"
#include "tests/support/device_walk.h"

namespace {

using velhal::testing::WalkDevices;
using velhal::testing::WalkedDevice;

const std::wstring kNoSuchDevice = L"VELHAL\\NO_SUCH_DEVICE";

std::vector<WalkedDevice> AllDevices() {
  return WalkDevices(nullptr, DIGCF_PRESENT | DIGCF_ALLCLASSES);
}

TEST(DeviceDriverBackendTest, RescanWritesWhyItCouldNotStart) {
  DEVINST root = 0;
  const CONFIGRET located = ::CM_Locate_DevNodeW(&root, nullptr, CM_LOCATE_DEVNODE_NORMAL);
  velhal::testing::DebugCapture capture;
  DeviceDriver().ScanForHardwareChange();
  if (located == CR_SUCCESS) {
    // A started rescan writes nothing, or why CM_Reenumerate_DevNode refused.
    for (const std::wstring& message : capture.messages) {
      EXPECT_EQ(message.rfind(L"CM_Reenumerate_DevNode failed and error code is :", 0), 0u);
    }
    return;
  }
  EXPECT_EQ(capture.messages,
            std::vector<std::wstring>{L"CM_Locate_DevNode failed and error code is :" +
                                      std::to_wstring(located) +
                                      L"(DeviceDriver::ScanForHardwareChange)\n"});
}

TEST(DeviceDriverBackendTest, UnknownDevicesAndProblemCodesAgreeWithAnIndependentWalk) {
  const std::vector<WalkedDevice> all = AllDevices();
  ASSERT_FALSE(all.empty()) << "the system lists no device at all";
  DeviceDriver driver;
  EXPECT_EQ(driver.GetUnkownHardId(), velhal::testing::DevicesWithoutClass(all));

  // Every ID the registry form names, looked up by its unified first ID, whatever the kind.
  for (const WalkedDevice& device : all) {
    for (const std::wstring& id : device.registry_ids) {
      uint32_t expected = 0;
      for (const WalkedDevice& other : all) {
        if (other.first_id == id) {
          expected = other.problem_code.value_or(0);
          break;
        }
      }
      SCOPED_TRACE(testing::Message() << id);
      EXPECT_EQ(driver.GetDeviceDriverErrorCode(id, DriverType_DisplayAdapter), expected);
    }
  }
}

TEST(DeviceDriverBackendTest, RepairsOfAnAbsentDeviceChangeNothing) {
  velhal::testing::DebugCapture capture;
  DeviceDriver driver;
  EXPECT_EQ(driver.ResetDeviceDriver(kNoSuchDevice, DriverType_DisplayAdapter), 0xFFFFFFFFu);
  EXPECT_EQ(driver.UnInstallDeviceDriver(kNoSuchDevice, DriverType_Usb), 0xFFFFFFFFu);
  EXPECT_FALSE(driver.SetDriverStatus(true, kNoSuchDevice));
  EXPECT_TRUE(capture.messages.empty()) << "a reset of no device rescans nothing";
}

}  // namespace
