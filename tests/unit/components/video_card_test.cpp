// VideoCard against the fakes: the crossed Internal/Independent mapping and both names of each
// pair, and the monitor caption's path from the WMI or display-device ID to the EDID in the
// registry, with its fallback to graphics class 16.
#include "components/video_card.h"

#include <gtest/gtest.h>

#include "tests/fakes/fake_dxgi.h"
#include "tests/support/edid_builder.h"
#include "tests/support/fake_system.h"
#include "tests/support/graphics_machine.h"

namespace {

using namespace velhal::testing;

constexpr wchar_t kInterface[] = L"\\\\?\\DISPLAY#SHP14D0#4&1d7b2c5&0&UID265988#{e6f07b5f}";
constexpr wchar_t kInterfaceId[] = L"DISPLAY\\SHP14D0\\4&1D7B2C5&0&UID265988";

class VideoCardTest : public ::testing::Test {
 protected:
  void SetUp() override {
    os_.display.metrics = {{SM_CXSCREEN, 2560}, {SM_CYSCREEN, 1600}};
    os_.display.mode = FakeDisplay::Mode(2560, 1600, 32, 165);
    os_.display.OneScreen(kInterface);
    os_.wmi.Script(velhal::wmi::kCimV2, L"SELECT Caption FROM Win32_DesktopMonitor", L"Caption",
                   {FakeValue::Text(L"Generic PnP Monitor")});
    ScriptAdapters(os_, {{L"PCI\\VEN_8086", L"Intel(R) UHD Graphics"}});
  }
  void Edid(const std::wstring& id, const std::vector<uint8_t>& blob) {
    os_.registry.Set(L"SYSTEM\\CurrentControlSet\\Enum\\" + id + L"\\Device Parameters", L"EDID",
                     REG_BINARY, blob);
  }

  FakeSystem os_;
  FakeDxgi dxgi_{os_.module};
};

TEST_F(VideoCardTest, InternalMeansDiscreteAndIndependentMeansIntegrated) {
  ScriptAdapters(os_, {{L"PCI\\VEN_10DE", L"NVIDIA GeForce RTX 3050", L"Internal", 0, L"Degraded",
                        L"31.0.15.3179", L"20230405000000.000000-000", 43}});
  dxgi_.Add(L"NVIDIA GeForce RTX 3050", 4096ull << 20);
  dxgi_.Add(L"Intel(R) UHD Graphics", 128ull << 20);
  VideoCard card;
  const std::vector<std::wstring> answers = {card.GetInternalVideoCardName(),
                                             card.GetUsedVideoCardName(),
                                             card.GetInternalVideoCardStatus(),
                                             card.GetUsedVideoCardStatus(),
                                             card.GetInternalVideoCardDriverVersion(),
                                             card.GetUsedVideoCardDriverVersion(),
                                             card.GetInternalVideoCardDriverDate(),
                                             card.GetUsedVideoCardDriverDate(),
                                             card.GetIndependentVideoCardName(),
                                             card.GetUnUsedVideoCardName(),
                                             card.GetIndependentVideoCardStatus(),
                                             card.GetUnUsedVideoCardStatus(),
                                             card.GetIndependentVideoCardDriverDate(),
                                             card.GetUnUsedVideoCardDriverDate(),
                                             card.GetIndependentVideoCardDriverVersion(),
                                             card.GetUnUsedVideoCardDriverVersion(),
                                             card.GetDisplayResolution()};
  EXPECT_EQ(answers,
            (std::vector<std::wstring>{
                L"NVIDIA GeForce RTX 3050", L"NVIDIA GeForce RTX 3050", L"Degraded", L"Degraded",
                L"31.0.15.3179", L"31.0.15.3179", L"20230405", L"20230405",
                L"Intel(R) UHD Graphics", L"Intel(R) UHD Graphics", L"OK", L"OK", L"20220328",
                L"20220328", L"31.0.101.2111", L"31.0.101.2111", L"2560x1600"}));
  const std::vector<unsigned long> numbers = {card.GetVideoCardNumber(),
                                              card.GetInternalVedioCardMemorySize(),
                                              card.GetUsedVedioCardMemorySize(),
                                              card.GetIndependentVedioCardMemorySize(),
                                              card.GetUnUsedVedioCardMemorySize(),
                                              card.GetInternalVedioCardErrorCode(),
                                              card.GetIndependentVedioCardErrorCode(),
                                              card.GetHorizontalResolution(),
                                              card.GetVerticalResolution(),
                                              card.GetRefreshRate(),
                                              card.GetBitPerPixel()};
  EXPECT_EQ(numbers,
            (std::vector<unsigned long>{2, 4096, 4096, 128, 128, 43, 0, 2560, 1600, 165, 32}));
  EXPECT_EQ(dxgi_.creators_called.size(), 1u);  // one block, taken once
}

TEST_F(VideoCardTest, TheCaptionIsTheEdidNameOfWmisMonitorElseClass16) {
  const std::wstring id = L"DISPLAY\\DELA0B3\\5&2A3B4C5D&0&UID4352";
  ScriptMonitorPnpId(os_, id);
  std::vector<uint8_t> header_only = ReadEdid("aoc-1670w.bin");
  header_only.resize(54);  // too short for any descriptor
  const std::pair<std::vector<uint8_t>, std::wstring> cases[] = {
      {ReadEdid("dell-d3218hn.bin"), L"D3218HN"},
      {ReadEdid("auo-b133hab.bin"), L"DELA0B3"},  // no name descriptor: class 16's model part
      {{}, L"DELA0B3"},
      {header_only, L"DELA0B3"},
  };
  for (const auto& [blob, caption] : cases) {
    Edid(id, blob);
    EXPECT_EQ(VideoCard().GetMonitorCaption(), caption) << blob.size();
  }
  ScriptMonitorPnpId(os_, L"DISPLAY\\ONLYONE");  // fewer than two backslashes: no EDID path
  Edid(L"DISPLAY\\ONLYONE", ReadEdid("dell-d3218hn.bin"));
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"ONLYONE");
}

TEST_F(VideoCardTest, WithoutWmiTheActiveMonitorsInterfaceNameLeadsToTheEdid) {
  ScriptMonitorPnpId(os_, std::nullopt);
  Edid(kInterfaceId, ReadEdid("aoc-1670w.bin"));
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"1670W");
  const std::pair<std::optional<std::wstring>, bool> checks[] = {
      {std::nullopt, false},
      {kInterfaceId, true},
      {L"display\\shp14d0\\4&1d7b2c5&0&uid265988", false},  // same device, other bytes
  };
  for (const auto& [wmi_id, active] : checks) {
    ScriptMonitorPnpId(os_, wmi_id);
    EXPECT_EQ(VideoCard().IsMainDeviceActive(), active);
  }
  // Neither source knows a device: two empty texts agree, and the caption is class 16's.
  ScriptMonitorPnpId(os_, std::nullopt);
  os_.display.adapters[0].monitors[0].flags = DISPLAY_DEVICE_ATTACHED;  // not active
  EXPECT_TRUE(VideoCard().IsMainDeviceActive());
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"Generic PnP Monitor");
}

TEST_F(VideoCardTest, TheActiveMonitorIsOnTheAdapterShowingThePrimaryDesktop) {
  ScriptMonitorPnpId(os_, std::nullopt);
  os_.display.adapters.push_back(
      {L"\\\\.\\DISPLAY2",
       DISPLAY_DEVICE_ACTIVE,
       {{L"\\\\.\\DISPLAY2\\Monitor0", L"\\\\?\\DISPLAY#GSM5B7F#5&14d5a9d8&0&UID256#{e6f07b5f}"}}});
  Edid(L"DISPLAY\\GSM5B7F\\5&14D5A9D8&0&UID256", ReadEdid("dell-d3218hn.bin"));
  // The primary desktop monitor's adapter; with none marked primary, the first showing any.
  for (const bool primary_marked : {true, false}) {
    os_.display.desktop = {{L"\\\\.\\DISPLAY1", false}, {L"\\\\.\\DISPLAY2", primary_marked}};
    if (!primary_marked) os_.display.desktop.erase(os_.display.desktop.begin());
    EXPECT_EQ(VideoCard().GetMonitorCaption(), L"D3218HN") << primary_marked;
  }
  // An interface name without a model and an instance part names no device.
  os_.display.adapters[1].monitors[0].interface_name = L"\\\\?\\DISPLAY#GSM5B7F";
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"Generic PnP Monitor");
}

}  // namespace
