// DeviceInformention against the system's real device database, checked against the test's own
// SetupAPI walk. Wine answers every unified-property read with ERROR_NOT_FOUND, so there the
// walk confirms the device counts and the empty answers the rules then give; on Windows the same
// assertions compare real IDs and descriptions.
#include "platform/win32.h"

#include "platform/device_informention.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/device_walk.h"  // before devguid.h: it brings initguid.h

#include <devguid.h>

namespace {

using velhal::testing::WalkDevices;
using velhal::testing::WalkedDevice;

TEST(DeviceDatabaseBackendTest, ClassListsAgreeWithAnIndependentWalk) {
  DeviceInformention devices;
  for (const GUID& cls : {GUID_DEVCLASS_DISPLAY, GUID_DEVCLASS_HIDCLASS, GUID_DEVCLASS_MONITOR,
                          GUID_DEVCLASS_MEDIA, GUID_DEVCLASS_BATTERY}) {
    const std::vector<WalkedDevice> seen = WalkDevices(&cls, DIGCF_PRESENT);
    std::vector<std::wstring> ids, descriptions;
    for (const WalkedDevice& s : seen) {
      ids.push_back(s.first_id.value_or(L""));
      descriptions.push_back(s.description.value_or(L""));
    }
    EXPECT_EQ(devices.GetDeviceHardwareId(cls), ids);
    EXPECT_EQ(devices.GetDeviceDesc(cls), descriptions);

    std::vector<HardWareIdInfo> internal = devices.GetInternalDeviceHardwareId(cls);
    size_t with_id = 0;
    for (const WalkedDevice& s : seen) with_id += s.first_id.has_value();
    EXPECT_LE(internal.size(), with_id);
  }
}

TEST(DeviceDatabaseBackendTest, SystemWideWalksAgreeWithAnIndependentWalk) {
  const std::vector<WalkedDevice> all = WalkDevices(nullptr, DIGCF_PRESENT | DIGCF_ALLCLASSES);
  ASSERT_FALSE(all.empty()) << "the system lists no device at all";

  std::vector<std::wstring> expected_ids;
  for (const WalkedDevice& s : all) {
    if (s.first_id) expected_ids.push_back(*s.first_id);
  }

  DeviceInformention devices;
  std::vector<std::wstring> ids{L"stale"};
  devices.GetAllDeviceHardwareIdEx(ids, L"");
  EXPECT_EQ(ids, expected_ids);
  EXPECT_EQ(devices.GetUnknownDeviceHardId(), velhal::testing::DevicesWithoutClass(all));

  // Property getters find a device by its first ID; where no ID is readable, they find nothing.
  for (const WalkedDevice& s : all) {
    if (!s.first_id) continue;
    EXPECT_EQ(devices.GetDeviceStrInfoByHardwareId(*s.first_id, GUID_DEVCLASS_SYSTEM,
                                                   DeviceProperty_DeviceDesc),
              s.description.value_or(L""));
  }
  EXPECT_EQ(devices.GetDeviceStrInfoByHardwareId(L"VELHAL\\NO_SUCH_DEVICE", GUID_DEVCLASS_SYSTEM,
                                                 DeviceProperty_DeviceDesc),
            L"");
  EXPECT_EQ(devices.GetLastIntallTime(L"VELHAL\\NO_SUCH_DEVICE", GUID_DEVCLASS_SYSTEM), 0u);
  EXPECT_EQ(devices.UnstallDeviceByHardwareId(L"VELHAL\\NO_SUCH_DEVICE", GUID_DEVCLASS_SYSTEM),
            0xFFFFFFFFu);
}

}  // namespace
