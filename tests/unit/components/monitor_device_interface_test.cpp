#include "platform/win32.h"

#include "components/monitor_device_interface.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "tests/fakes/fake_dxva2.h"
#include "tests/support/fake_system.h"

namespace {

using velhal::testing::FakeDisplay;

constexpr wchar_t kPanel[] = L"\\\\?\\DISPLAY#BOE0812#4&2c5d5b8e&0&UID265988#{e6f07b5f}";
constexpr wchar_t kExternal[] = L"\\\\?\\DISPLAY#DELA0B3#5&2a3b4c5d&0&UID4352#{e6f07b5f}";
constexpr wchar_t kPanelBrightness[] =
    L"SELECT CurrentBrightness FROM WmiMonitorBrightness WHERE InstanceName = "
    L"'DISPLAY\\\\BOE0812\\\\4&2C5D5B8E&0&UID265988_0'";

DISPLAYCONFIG_PATH_INFO PathTo(DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY technology, UINT32 index) {
  DISPLAYCONFIG_PATH_INFO path = FakeDisplay::Path(technology, 60, 1);
  path.targetInfo.id = path.sourceInfo.modeInfoIdx = index;
  return path;
}

class MonitorDeviceInterfaceTest : public ::testing::Test {
 protected:
  // A notebook's panel, an external monitor on a second adapter (after an inactive one), and an
  // adapter off the desktop. The configuration names the panel without a name but with EDID IDs
  // (its interface in upper case, as Windows may), the monitor with a name but no preferred mode
  // (as Wine answers); the monitor's key holds an EDID.
  MonitorDeviceInterfaceTest() {
    os_.display.adapters = {
        {L"\\\\.\\DISPLAY1",
         DISPLAY_DEVICE_ATTACHED_TO_DESKTOP | DISPLAY_DEVICE_PRIMARY_DEVICE,
         {{L"\\\\.\\DISPLAY1\\Monitor0", kPanel}}},
        {L"\\\\.\\DISPLAY2",
         DISPLAY_DEVICE_ATTACHED_TO_DESKTOP,
         {{L"\\\\.\\DISPLAY2\\Monitor0", L"", 0}, {L"\\\\.\\DISPLAY2\\Monitor1", kExternal}}},
        {L"\\\\.\\DISPLAY3", 0, {{L"\\\\.\\DISPLAY3\\Monitor0", kExternal}}}};
    os_.display.desktop = {{L"\\\\.\\DISPLAY1", true}, {L"\\\\.\\DISPLAY2", false}};
    os_.display.paths = {PathTo(DISPLAYCONFIG_OUTPUT_TECHNOLOGY_INTERNAL, 0),
                         PathTo(DISPLAYCONFIG_OUTPUT_TECHNOLOGY_DISPLAYPORT_EXTERNAL, 1)};
    os_.display.mode_entries = {FakeDisplay::SourceMode(1920, 1200, 0, 0),
                                FakeDisplay::SourceMode(1920, 1080, 1920, -120)};
    os_.display.targets = {{L"\\\\?\\DISPLAY#BOE0812#4&2C5D5B8E&0&UID265988#{E6F07B5F}", L"", true,
                            0xE509, 0x0812, 1920, 1200},
                           {kExternal, L"DELL D3218HN", true, 0xAC10, 0xA0B3, 0, 0}};
    std::ifstream file(VELHAL_TEST_DATA_DIR "/edid/dell-d3218hn.bin", std::ios::binary);
    edid_.assign(std::istreambuf_iterator<char>(file), {});
    os_.registry.Set(
        L"SYSTEM\\CurrentControlSet\\Enum\\DISPLAY\\DELA0B3\\5&2A3B4C5D&0&UID4352"
        L"\\Device Parameters",
        L"EDID", REG_BINARY, edid_);
    os_.wmi.Script(L"ROOT\\WMI", kPanelBrightness, L"CurrentBrightness",
                   {velhal::testing::FakeValue::UInt32(70)});
    dxva2_.monitors[1] = {{20, 35, 50}};  // DISPLAY2's one physical monitor
  }

  velhal::testing::FakeSystem os_;
  velhal::testing::FakeDxva2 dxva2_{os_.module};
  std::vector<BYTE> edid_;
};

TEST_F(MonitorDeviceInterfaceTest, MonitorsJoinTheirPathsEdidAndBrightness) {
  MonitorDeviceInterface monitor_interface;
  const std::vector<MonitorInfo> monitors = monitor_interface.GetMonitors();
  ASSERT_EQ(monitors.size(), 2u);
  EXPECT_EQ(monitor_interface.GetMonitorNumber(), 2u);
  const MonitorInfo& panel = monitors[0];
  EXPECT_EQ(panel.deviceId, L"DISPLAY\\BOE0812\\4&2C5D5B8E&0&UID265988");
  EXPECT_TRUE(panel.primary && panel.internal);
  EXPECT_EQ(panel.friendlyName, L"Generic Monitor");  // neither the configuration nor an EDID
  EXPECT_EQ(panel.manufacturerId + L" " + std::to_wstring(panel.productCode), L"BOE 2066");
  EXPECT_EQ(panel.nativeWidth, 1920u);
  EXPECT_EQ(panel.brightness, 70);

  const MonitorInfo& external = monitors[1];
  EXPECT_EQ(external.deviceName, L"\\\\.\\DISPLAY2\\Monitor1");
  EXPECT_FALSE(external.primary || external.internal);
  EXPECT_EQ(external.friendlyName, L"DELL D3218HN");
  EXPECT_EQ(external.positionX, 1920);
  EXPECT_EQ(external.positionY, -120);
  EXPECT_EQ(external.edid, edid_);
  EXPECT_EQ(external.edidName + L" " + external.manufacturerId, L"D3218HN DEL");
  EXPECT_EQ(external.productCode, 8203u);  // the EDID's own, not the configuration's
  EXPECT_EQ(external.nativeWidth, 1920u);  // the EDID's first detailed timing
  EXPECT_EQ(external.brightness, 50);      // 35 in 20-50

  MonitorInfo info;
  EXPECT_EQ(monitor_interface.GetMonitorByIndex(1, info), 1);
  EXPECT_EQ(info.deviceId, external.deviceId);
  EXPECT_EQ(monitor_interface.GetMonitorByIndex(2, info), 0);
}

TEST_F(MonitorDeviceInterfaceTest, WhatIsNotOfferedIsLeftUnknown) {
  // No WMI brightness class (a desktop, or Wine), no DDC/CI, then no display configuration.
  os_.wmi.Script(L"ROOT\\WMI", kPanelBrightness, L"CurrentBrightness", {},
                 static_cast<HRESULT>(0x80041010));
  dxva2_.monitors[1][0].answers = FALSE;
  std::vector<MonitorInfo> monitors = MonitorDeviceInterface().GetMonitors();
  ASSERT_EQ(monitors.size(), 2u);
  EXPECT_EQ(monitors[0].brightness, -1);
  EXPECT_EQ(monitors[1].brightness, -1);
  os_.display.paths.clear();
  monitors = MonitorDeviceInterface().GetMonitors();
  ASSERT_EQ(monitors.size(), 2u);
  EXPECT_EQ(monitors[0].outputTechnology, 0xFFFFFFFFu);
  EXPECT_EQ(monitors[0].manufacturerId, L"");
  EXPECT_EQ(monitors[1].friendlyName, L"D3218HN");  // the EDID's name
  EXPECT_EQ(monitors[1].width, 0u);
}

}  // namespace
