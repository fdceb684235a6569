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
using velhal::wmi::kCimV2;

constexpr wchar_t kPnpQuery[] =
    L"SELECT PNPDeviceID FROM Win32_DesktopMonitor WHERE PNPDeviceID IS NOT NULL";
constexpr wchar_t kInterface[] =
    L"\\\\?\\DISPLAY#SHP14D0#4&1d7b2c5&0&UID265988#{e6f07b5f-ee97-4a90-b076-33f57bf4eaa7}";
constexpr wchar_t kInterfaceId[] = L"DISPLAY\\SHP14D0\\4&1D7B2C5&0&UID265988";

std::wstring EdidKey(const std::wstring& id) {
  return L"SYSTEM\\CurrentControlSet\\Enum\\" + id + L"\\Device Parameters";
}

class VideoCardTest : public ::testing::Test {
 protected:
  void SetUp() override {
    os_.display.metrics = {{SM_CXSCREEN, 2560}, {SM_CYSCREEN, 1600}};
    os_.display.mode = FakeDisplay::Mode(2560, 1600, 32, 165);
    os_.display.OneScreen(kInterface);
    os_.wmi.Script(kCimV2, L"SELECT Caption FROM Win32_DesktopMonitor", L"Caption",
                   {FakeValue::Text(L"Generic PnP Monitor")});
  }
  void WmiMonitor(std::optional<std::wstring> id) {
    os_.wmi.Script(kCimV2, kPnpQuery, L"PNPDeviceID",
                   id ? std::vector<FakeValue>{FakeValue::Text(*id)} : std::vector<FakeValue>{},
                   id ? S_OK : static_cast<HRESULT>(0x80041001));
  }
  void Edid(const std::wstring& id, const std::vector<uint8_t>& blob) {
    os_.registry.Set(EdidKey(id), L"EDID", REG_BINARY, blob);
  }

  FakeSystem os_;
  FakeDxgi dxgi_{os_.module};
};

TEST_F(VideoCardTest, InternalMeansDiscreteAndIndependentMeansIntegrated) {
  ScriptAdapters(os_, {
                          {L"PCI\\VEN_8086", L"Intel(R) Iris(R) Xe Graphics", L"Integrated RAMDAC",
                           60, L"OK", L"31.0.101.4502", L"20230614000000.000000-000", 0},
                          {L"PCI\\VEN_10DE", L"NVIDIA GeForce RTX 3050 Laptop GPU", L"Internal", 0,
                           L"Degraded", L"31.0.15.3179", L"20230405000000.000000-000", 43},
                      });
  dxgi_.Add(L"NVIDIA GeForce RTX 3050 Laptop GPU", 4096ull << 20);
  dxgi_.Add(L"Intel(R) Iris(R) Xe Graphics", 128ull << 20);
  VideoCard card;
  EXPECT_EQ(card.GetVideoCardNumber(), 2u);
  const std::pair<std::wstring, std::wstring> pairs[] = {
      {card.GetInternalVideoCardName(), card.GetUsedVideoCardName()},
      {card.GetInternalVideoCardStatus(), card.GetUsedVideoCardStatus()},
      {card.GetInternalVideoCardDriverVersion(), card.GetUsedVideoCardDriverVersion()},
      {card.GetInternalVideoCardDriverDate(), card.GetUsedVideoCardDriverDate()},
      {card.GetIndependentVideoCardName(), card.GetUnUsedVideoCardName()},
      {card.GetIndependentVideoCardStatus(), card.GetUnUsedVideoCardStatus()},
      {card.GetIndependentVideoCardDriverVersion(), card.GetUnUsedVideoCardDriverVersion()},
      {card.GetIndependentVideoCardDriverDate(), card.GetUnUsedVideoCardDriverDate()},
  };
  const wchar_t* expected[] = {
      L"NVIDIA GeForce RTX 3050 Laptop GPU", L"Degraded", L"31.0.15.3179",  L"20230405",
      L"Intel(R) Iris(R) Xe Graphics",       L"OK",       L"31.0.101.4502", L"20230614"};
  for (size_t i = 0; i < std::size(pairs); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(pairs[i].first, expected[i]);
    EXPECT_EQ(pairs[i].second, expected[i]);
  }
  EXPECT_EQ(card.GetInternalVedioCardMemorySize(), 4096u);
  EXPECT_EQ(card.GetUsedVedioCardMemorySize(), 4096u);
  EXPECT_EQ(card.GetIndependentVedioCardMemorySize(), 128u);
  EXPECT_EQ(card.GetUnUsedVedioCardMemorySize(), 128u);
  EXPECT_EQ(card.GetInternalVedioCardErrorCode(), 43u);
  EXPECT_EQ(card.GetIndependentVedioCardErrorCode(), 0u);
  EXPECT_EQ(card.GetDisplayResolution(), L"2560x1600");
  EXPECT_EQ(card.GetHorizontalResolution(), 2560u);
  EXPECT_EQ(card.GetVerticalResolution(), 1600u);
  EXPECT_EQ(card.GetRefreshRate(), 165u);
  EXPECT_EQ(card.GetBitPerPixel(), 32u);
  EXPECT_EQ(dxgi_.creators_called.size(), 1u);  // one block, taken once
}

TEST_F(VideoCardTest, WithoutABlockEveryGetterIsEmpty) {
  VideoCard card;  // no adapter at all: GpInit makes no block
  EXPECT_EQ(card.GetVideoCardNumber(), 0u);
  EXPECT_EQ(card.GetInternalVideoCardName(), L"");
  EXPECT_EQ(card.GetHorizontalResolution(), 0u);
  EXPECT_EQ(card.GetDisplayResolution(), L"");
}

TEST_F(VideoCardTest, TheCaptionIsTheEdidNameOfWmisMonitorElseClass16) {
  const std::wstring id = L"DISPLAY\\DELA0B3\\5&2A3B4C5D&0&UID4352";
  ScriptAdapters(os_, {{L"PCI\\VEN_8086", L"Intel(R) UHD Graphics"}});
  WmiMonitor(id);
  Edid(id, ReadEdid("dell-d3218hn.bin"));
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"D3218HN");
  Edid(id, ReadEdid("auo-b133hab.bin"));  // no name descriptor
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"DELA0B3");
  Edid(id, {});  // a zero-length value
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"DELA0B3");
  std::vector<uint8_t> header_only = ReadEdid("aoc-1670w.bin");
  header_only.resize(54);  // too short for any descriptor
  Edid(id, header_only);
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"DELA0B3");
  WmiMonitor(L"DISPLAY\\ONLYONE");  // fewer than two backslashes: no EDID path
  Edid(L"DISPLAY\\ONLYONE", ReadEdid("dell-d3218hn.bin"));
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"ONLYONE");
}

TEST_F(VideoCardTest, WithoutWmiTheActiveMonitorsInterfaceNameFindsTheEdid) {
  ScriptAdapters(os_, {{L"PCI\\VEN_8086", L"Intel(R) UHD Graphics"}});
  WmiMonitor(std::nullopt);
  Edid(kInterfaceId, ReadEdid("aoc-1670w.bin"));
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"1670W");
  EXPECT_FALSE(VideoCard().IsMainDeviceActive());
  WmiMonitor(kInterfaceId);
  EXPECT_TRUE(VideoCard().IsMainDeviceActive());
  WmiMonitor(L"display\\shp14d0\\4&1d7b2c5&0&uid265988");  // same device, other bytes
  EXPECT_FALSE(VideoCard().IsMainDeviceActive());

  // Neither source knows a device: the two empty texts agree, and the caption falls back to
  // WMI's caption through class 16.
  WmiMonitor(std::nullopt);
  os_.display.adapters[0].monitors[0].flags = DISPLAY_DEVICE_ATTACHED;  // not active
  EXPECT_TRUE(VideoCard().IsMainDeviceActive());
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"Generic PnP Monitor");
}

TEST_F(VideoCardTest, TheActiveMonitorIsOnTheAdapterShowingThePrimaryDesktop) {
  ScriptAdapters(os_, {{L"PCI\\VEN_8086", L"Intel(R) UHD Graphics"}});
  WmiMonitor(std::nullopt);
  os_.display.adapters.push_back(
      {L"\\\\.\\DISPLAY2",
       DISPLAY_DEVICE_ACTIVE,
       {{L"\\\\.\\DISPLAY2\\Monitor0", L"\\\\?\\DISPLAY#GSM5B7F#5&14d5a9d8&0&UID256#{e6f07b5f}",
         L"MONITOR\\GSM5B7F"}}});
  os_.display.desktop = {{L"\\\\.\\DISPLAY1", false}, {L"\\\\.\\DISPLAY2", true}};
  Edid(L"DISPLAY\\GSM5B7F\\5&14D5A9D8&0&UID256", ReadEdid("dell-d3218hn.bin"));
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"D3218HN");
  // With no primary marked, the first adapter showing any monitor; an interface name without
  // a model and an instance part names no device.
  os_.display.desktop = {{L"\\\\.\\DISPLAY2", false}};
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"D3218HN");
  os_.display.adapters[1].monitors[0].interface_name = L"\\\\?\\DISPLAY#GSM5B7F";
  EXPECT_EQ(VideoCard().GetMonitorCaption(), L"Generic PnP Monitor");
}

}  // namespace
