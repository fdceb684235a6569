// Class 4 against the fakes: the inventory's joins, the block's layout and validation, the
// adapter selection and its synonym classes, and the live readings' fallbacks.
#include "hal/hal_api.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/fakes/fake_dxgi.h"
#include "tests/support/fake_system.h"
#include "tests/support/gp_block.h"
#include "tests/support/graphics_machine.h"

namespace {

using namespace velhal::testing;
using velhal::wmi::kCimV2;

constexpr uint64_t kMiB = 1ull << 20;

class GraphicsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    os_.display.metrics = {{SM_CXSCREEN, 1920}, {SM_CYSCREEN, 1080}};
    os_.display.mode = FakeDisplay::Mode(1920, 1080, 32, 59);
  }
  GpAdapterList* Init() {
    GpAdapterList* list = nullptr;
    EXPECT_EQ(GpInit(&list), 1u);
    blocks_.emplace_back(list);
    return list;
  }

  FakeSystem os_;
  FakeDxgi dxgi_{os_.module};
  std::vector<GpBlock> blocks_;
  GpBlock empty_ = MakeGpBlock(0);
};

TEST_F(GraphicsTest, InventoryJoinsPciAdaptersWithDxgiMemoryByDescription) {
  ScriptAdapters(
      os_,
      {
          {L"PCI\\VEN_8086&DEV_9A49", L"Intel(R) UHD Graphics", L"Integrated RAMDAC", 60},
          {L"ACPI\\PCI0001", L"Not on the bus"},
          {L"pci\\ven_10de", L"Lower-case prefix"},
          {L"PCI\\VEN_10DE&DEV_25A2", L"NVIDIA GeForce RTX 3050", L"Internal", 0xFFFFFFFF},
          {L"PCI\\VEN_10DE&DEV_25A2&REV_A1", L"NVIDIA GeForce RTX 3050", L"Internal", 0xFFFFFFFF},
          {L"PCI\\VEN_1002", L"Vendor's \"GPU\"", std::nullopt, std::nullopt},
          {L"PCI\\VEN_1AB8&DEV_0010", L"Empty DAC type", L"", 75},
          {L"PCI\\VEN_1AB8&DEV_0011", L"Shouting", L"INTEGRATED", 60},
      });
  dxgi_.Add(L"NVIDIA GeForce RTX 3050", 4096 * kMiB);
  dxgi_.Add(L"Intel(R) UHD Graphics", 128 * kMiB + 5);  // rounded down to MiB
  dxgi_.Add(L"Microsoft Basic Render Driver", 0);

  GpAdapterList* block = Init();
  ASSERT_NE(block, nullptr);
  ASSERT_EQ(block->count, 6u);
  EXPECT_EQ(block->totalSize, 8u + 552u * 6u);
  struct Expected {
    const wchar_t* name;
    uint32_t memory;
    uint8_t active;
    uint32_t discrete;
  };
  const Expected expected[] = {
      {L"Intel(R) UHD Graphics", 128, 1, 0},
      {L"NVIDIA GeForce RTX 3050", 4096, 0, 1},  // the first of two equal names takes it
      {L"NVIDIA GeForce RTX 3050", 0, 0, 1},
      {L"Vendor's \"GPU\"", 0, 0, 0},  // unescaped in WQL; both queries failed: integrated
      {L"Empty DAC type", 0, 1, 1},
      {L"Shouting", 0, 1, 0},
  };
  for (uint32_t i = 0; i < 6; ++i) {
    SCOPED_TRACE(testing::Message() << "record " << i);
    const GpAdapterEntry& r = RecordOf(block, i);
    EXPECT_EQ(NameOf(r), expected[i].name);
    EXPECT_EQ(std::vector<uint64_t>({r.videoMemoryMiB, r.active, r.discrete, r.index, r.zero}),
              std::vector<uint64_t>(
                  {expected[i].memory, expected[i].active, expected[i].discrete, i, 0}));
  }
  EXPECT_EQ(dxgi_.creators_called, std::vector<std::string>{"CreateDXGIFactory1"});
  EXPECT_TRUE(dxgi_.iids_asked.at(0) == __uuidof(IDXGIFactory));
}

TEST_F(GraphicsTest, DxgiStandsInWithoutPciAdaptersAndFailsSoftly) {
  dxgi_.Add(L"Microsoft Basic Render Driver", 0);
  dxgi_.Add(L"Broken", 64 * kMiB).desc_result = E_FAIL;  // enumerated, never described
  dxgi_.Add(L"Basic Display", 512 * kMiB);
  GpAdapterList* block = Init();
  ASSERT_EQ(block->count, 1u);  // the smallest description
  EXPECT_EQ(NameOf(RecordOf(block, 0)), L"Basic Display");
  EXPECT_EQ(RecordOf(block, 0).videoMemoryMiB, 512u);

  dxgi_.create_result = DXGI_ERROR_UNSUPPORTED;  // as Wine without a display: no block at all
  GpAdapterList* list = reinterpret_cast<GpAdapterList*>(0x1234);
  EXPECT_EQ(HalInit(HAL_CLASS_GRAPHICS, &list), 1u);
  EXPECT_EQ(list, reinterpret_cast<GpAdapterList*>(0x1234));
  EXPECT_EQ(GpInit(nullptr), 0u);
  ScriptAdapters(os_, {{L"PCI\\VEN_8086", L"Basic Display"}});
  EXPECT_EQ(RecordOf(Init(), 0).videoMemoryMiB, 0u);
}

TEST(GraphicsDxgiExportsTest, CreateDxgiFactoryServesAndNoLibraryMeansNoMemory) {
  FakeSystem os;
  ScriptAdapters(os, {{L"PCI\\VEN_8086", L"Intel(R) UHD Graphics"}});
  GpAdapterList* list = nullptr;
  {
    FakeDxgi dxgi(os.module, FakeDxgi::Exports::kFactoryOnly);
    dxgi.Add(L"Intel(R) UHD Graphics", 256 * kMiB);
    ASSERT_EQ(GpInit(&list), 1u);
    EXPECT_EQ(dxgi.creators_called, std::vector<std::string>{"CreateDXGIFactory"});
  }
  const GpBlock first(list);
  EXPECT_EQ(RecordOf(list, 0).videoMemoryMiB, 256u);
  ASSERT_EQ(GpInit(&list), 1u);  // no dxgi.dll at all
  const GpBlock second(list);
  EXPECT_EQ(RecordOf(list, 0).videoMemoryMiB, 0u);
}

TEST_F(GraphicsTest, ANameTheFieldCannotHoldFailsWithTheBlockLeftToTheCaller) {
  ScriptAdapters(os_, {{L"PCI\\1", std::wstring(259, L'n')}, {L"PCI\\2", std::wstring(260, L'x')}});
  GpAdapterList* list = nullptr;
  EXPECT_EQ(GpInit(&list), 0u);
  ASSERT_NE(list, nullptr);
  const GpBlock block(list);
  EXPECT_EQ(NameOf(RecordOf(list, 0)), std::wstring(259, L'n'));
  EXPECT_EQ(RecordOf(list, 1).name[0], 0u);
}

TEST_F(GraphicsTest, TheLastAdapterOfEachKindAnswersAndSynonymsAgree) {
  ScriptAdapters(os_, {
                          {L"PCI\\1", L"First integrated"},
                          {L"PCI\\2", L"First discrete", L"Internal"},
                          {L"PCI\\3", L"Last integrated", L"Integrated", 60, L"OK",
                           L"31.0.101.2111", L"20220328000000.000000-000", 0},
                          {L"PCI\\4", L"Last discrete", L"Internal DAC", 60, L"Degraded",
                           L"30.0.15.1179", L"20211201000000.000000-000", 43},
                      });
  dxgi_.Add(L"Last discrete", 4096 * kMiB);
  dxgi_.Add(L"Last integrated", 128 * kMiB);
  GpAdapterList* block = Init();
  const std::pair<uint32_t, std::wstring> texts[] = {
      {HAL_GRAPHICS_INFO_DISCRETE_NAME, L"Last discrete"},
      {HAL_GRAPHICS_INFO_DISCRETE_STATUS, L"Degraded"},
      {HAL_GRAPHICS_INFO_DISCRETE_DRIVER_VERSION, L"30.0.15.1179"},
      {HAL_GRAPHICS_INFO_DISCRETE_DRIVER_DATE, L"20211201"},
      {HAL_GRAPHICS_INFO_INTEGRATED_NAME, L"Last integrated"},
      {HAL_GRAPHICS_INFO_INTEGRATED_STATUS, L"OK"},
      {HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_VERSION, L"31.0.101.2111"},
      {HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_DATE, L"20220328"},
  };
  for (const auto& [info_class, text] : texts) {
    SCOPED_TRACE(testing::Message() << "class " << info_class);
    EXPECT_EQ(GpText(block, info_class), text);
    EXPECT_EQ(GpText(block, info_class + 8), text);
  }
  const std::pair<uint32_t, uint32_t> numbers[] = {
      {HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY, 4096},
      {HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY_ALIAS, 4096},
      {HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY, 128},
      {HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY_ALIAS, 128},
      {HAL_GRAPHICS_INFO_DISCRETE_PROBLEM_CODE, 43},
      {HAL_GRAPHICS_INFO_INTEGRATED_PROBLEM_CODE, 0},
      {HAL_GRAPHICS_INFO_COUNT, 4}};
  for (const auto& [info_class, number] : numbers) EXPECT_EQ(GpNumber(block, info_class), number);
  EXPECT_EQ(GpText(block, HAL_GRAPHICS_INFO_NOT_SERVED), std::nullopt);
  uint32_t memory = 0, returned = 0;  // the flat route hands the whole block on
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_GRAPHICS, block, HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY,
                                &memory, 4, &returned),
            1u);
  EXPECT_EQ(memory, 4096u);
  EXPECT_EQ(GpSetInformation(block, HAL_GRAPHICS_INFO_DISCRETE_NAME, &memory, 4, &returned), 0u);

  // "Internal" is not "Integrated": an inventory of one such adapter has no integrated side,
  // and a short driver date is no date.
  ScriptAdapters(os_, {{L"PCI\\5", L"Panel GPU", L"Internal", 60, L"OK", L"1.2", L"2020"}});
  std::vector<FakeDevice>& devices = os_.devices.devices;
  devices.erase(devices.begin(), devices.end() - 1);
  GpAdapterList* one = Init();
  EXPECT_EQ(GpText(one, HAL_GRAPHICS_INFO_DISCRETE_NAME), L"Panel GPU");
  EXPECT_EQ(GpText(one, HAL_GRAPHICS_INFO_DISCRETE_DRIVER_DATE), std::nullopt);
  EXPECT_EQ(GpText(one, HAL_GRAPHICS_INFO_INTEGRATED_NAME), std::nullopt);
  EXPECT_EQ(GpNumber(one, HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY), std::nullopt);
}

TEST_F(GraphicsTest, TextAnswersNeedRoomForANulTheyNeverWrite) {
  auto block = MakeGpBlock(1);
  const std::wstring name = L"GPU";  // n = 3
  std::copy(name.begin(), name.end(), RecordOf(block.get(), 0).name);
  for (const uint32_t size : {7u, 8u}) {
    SCOPED_TRACE(size);
    std::array<uint8_t, 16> buffer;
    buffer.fill(0xA5);
    uint32_t returned = 0xA5;
    EXPECT_EQ(GpQueryInforamtion(block.get(), HAL_GRAPHICS_INFO_INTEGRATED_NAME, buffer.data(),
                                 size, &returned),
              size == 8 ? 1u : 0u);
    EXPECT_EQ(returned, size == 8 ? 6u : 0xA5u);
    EXPECT_EQ(std::vector<int>({buffer[0], buffer[6], buffer[7]}),
              std::vector<int>({size == 8 ? 'G' : 0xA5, 0xA5, 0xA5}));
  }
  RecordOf(block.get(), 0).name[0] = 0;  // an empty name is no answer
  EXPECT_EQ(GpText(block.get(), HAL_GRAPHICS_INFO_INTEGRATED_NAME), std::nullopt);
}

TEST_F(GraphicsTest, DamagedBlocksAndArgumentsAreRefused) {
  auto block = MakeGpBlock(2, 0x41);  // names with no NUL in their 260 units
  RecordOf(block.get(), 0).discrete = 0;
  EXPECT_EQ(GpText(block.get(), HAL_GRAPHICS_INFO_INTEGRATED_NAME), std::nullopt);
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY), 0x41414141u);
  block->totalSize += 1;  // no longer 8 + 552 x count
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_SCREEN_WIDTH), std::nullopt);
  block->totalSize -= 1;
  block->count = 0x80000000;  // a size that wraps in 32 bits
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_COUNT), std::nullopt);

  // A header at the end of committed memory, claiming a record that is not there.
  constexpr size_t kPage = 4096;
  auto* memory =
      static_cast<uint8_t*>(::VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS));
  ASSERT_NE(::VirtualAlloc(memory, kPage, MEM_COMMIT, PAGE_READWRITE), nullptr);
  auto* edge = reinterpret_cast<GpAdapterList*>(memory + kPage - 8);
  edge->totalSize = 8 + 552;  // only the header fits the page
  edge->count = 1;
  EXPECT_EQ(GpNumber(edge, HAL_GRAPHICS_INFO_COUNT), std::nullopt);
  ::VirtualFree(memory, 0, MEM_RELEASE);

  uint32_t value = 0, returned = 0;
  EXPECT_EQ(GpQueryInforamtion(nullptr, HAL_GRAPHICS_INFO_SCREEN_WIDTH, &value, 4, &returned), 0u);
  EXPECT_EQ(GpQueryInforamtion(empty_.get(), HAL_GRAPHICS_INFO_SCREEN_WIDTH, nullptr, 4, &returned),
            0u);
  EXPECT_EQ(GpQueryInforamtion(empty_.get(), HAL_GRAPHICS_INFO_SCREEN_WIDTH, &value, 3, &returned),
            0u);
  EXPECT_EQ(GpNumber(empty_.get(), HAL_GRAPHICS_INFO_BITS_PER_PIXEL + 1), std::nullopt);
}

TEST_F(GraphicsTest, MonitorTextIsTheModelPartOfThePnpIdElseTheCaption) {
  os_.wmi.Script(kCimV2, L"SELECT Caption FROM Win32_DesktopMonitor", L"Caption",
                 {FakeValue::Text(L"Generic PnP Monitor")});
  const std::pair<std::optional<std::wstring>, std::optional<std::wstring>> cases[] = {
      {L"DISPLAY\\ABC1234\\5&2a3b4c5d&0&UID4352", L"ABC1234"},
      {L"DISPLAY\\ABC1234", L"ABC1234"},
      {L"NO BACKSLASH", std::nullopt},  // an answered ID never falls back to the caption
      {L"", L"Generic PnP Monitor"},
      {std::nullopt, L"Generic PnP Monitor"},  // the query fails
  };
  for (const auto& [pnp_id, answer] : cases) {
    SCOPED_TRACE(testing::Message() << pnp_id.value_or(L"(fails)"));
    ScriptMonitorPnpId(os_, pnp_id);
    EXPECT_EQ(GpText(empty_.get(), HAL_GRAPHICS_INFO_MONITOR), answer);
  }
}

TEST_F(GraphicsTest, ScreenClassesReadTheMetricsAndTheCurrentMode) {
  EXPECT_EQ(GpText(empty_.get(), HAL_GRAPHICS_INFO_RESOLUTION), L"1920x1080");
  EXPECT_EQ(GpNumber(empty_.get(), HAL_GRAPHICS_INFO_BITS_PER_PIXEL), 32u);
  EXPECT_EQ(os_.display.mode_sizes_seen.back(), 220u);
  os_.display.metrics[SM_CYSCREEN] = 0;
  EXPECT_EQ(GpText(empty_.get(), HAL_GRAPHICS_INFO_RESOLUTION), std::nullopt);
  EXPECT_EQ(GpNumber(empty_.get(), HAL_GRAPHICS_INFO_SCREEN_HEIGHT), std::nullopt);
  os_.display.mode.reset();
  EXPECT_EQ(GpNumber(empty_.get(), HAL_GRAPHICS_INFO_BITS_PER_PIXEL), std::nullopt);
}

TEST_F(GraphicsTest, RefreshRateTriesTheBuiltInPanelThenWmiThenTheDisplayMode) {
  constexpr auto kPanel = DISPLAYCONFIG_OUTPUT_TECHNOLOGY_INTERNAL;
  constexpr auto kHdmi = DISPLAYCONFIG_OUTPUT_TECHNOLOGY_HDMI;
  struct Case {
    const char* what;
    std::vector<DISPLAYCONFIG_PATH_INFO> paths;
    std::optional<uint32_t> wmi;  // nullopt: the query fails
    DWORD mode_rate;
    std::optional<uint32_t> answer;
  };
  const Case cases[] = {
      {"the panel, rounded",
       {FakeDisplay::Path(kHdmi, 75, 1), FakeDisplay::Path(kPanel, 143856, 1000)},
       60,
       50,
       144},
      {"the first panel path decides",
       {FakeDisplay::Path(kPanel, 0, 1), FakeDisplay::Path(kPanel, 120, 1)},
       75,
       50,
       75},
      {"a zero denominator", {FakeDisplay::Path(kPanel, 60, 0)}, 75, 50, 75},
      {"no panel", {FakeDisplay::Path(kHdmi, 60, 1)}, 75, 50, 75},
      {"WMI says 0", {}, 0, 50, 50},
      {"WMI says -1", {}, 0xFFFFFFFF, 50, 50},
      {"WMI fails", {}, std::nullopt, 50, 50},
      {"nothing", {}, std::nullopt, 0, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    os_.display.paths = c.paths;
    os_.wmi.Script(kCimV2,
                   L"SELECT CurrentRefreshRate FROM Win32_VideoController WHERE CurrentRefreshRate "
                   L"IS NOT NULL",
                   L"CurrentRefreshRate",
                   c.wmi ? std::vector{FakeValue::UInt32(*c.wmi)} : std::vector<FakeValue>{},
                   c.wmi ? S_OK : static_cast<HRESULT>(0x80041002));
    os_.display.mode = FakeDisplay::Mode(1920, 1080, 32, c.mode_rate);
    EXPECT_EQ(GpNumber(empty_.get(), HAL_GRAPHICS_INFO_REFRESH_RATE), c.answer);
  }
  os_.display.paths = {FakeDisplay::Path(kPanel, 60, 1)};
  os_.display.reported_paths = 61441;  // more than a display configuration holds: not asked
  EXPECT_EQ(GpNumber(empty_.get(), HAL_GRAPHICS_INFO_REFRESH_RATE), std::nullopt);
}

}  // namespace
