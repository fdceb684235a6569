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
};

TEST_F(GraphicsTest, InventoryJoinsPciAdaptersWithDxgiMemoryByDescription) {
  ScriptAdapters(
      os_,
      {
          {L"PCI\\VEN_8086&DEV_9A49", L"Intel(R) UHD Graphics", L"Integrated RAMDAC", 60},
          {L"ACPI\\PCI0001", L"Not on the bus"},
          {L"pci\\ven_10de&dev_25a2", L"Lower-case prefix"},
          {L"PCI\\VEN_10DE&DEV_25A2", L"NVIDIA GeForce RTX 3050", L"Internal", 0},
          {L"PCI\\VEN_10DE&DEV_25A2&REV_A1", L"NVIDIA GeForce RTX 3050", L"Internal", 0xFFFFFFFF},
          {L"PCI\\VEN_1002&DEV_1638", L"Vendor's \"GPU\"", std::nullopt, std::nullopt},
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
      {L"Vendor's \"GPU\"", 0, 0, 0},  // both queries failed: integrated, inactive
      {L"Empty DAC type", 0, 1, 1},
      {L"Shouting", 0, 1, 0},
  };
  for (uint32_t i = 0; i < 6; ++i) {
    SCOPED_TRACE(testing::Message() << "record " << i);
    const GpAdapterEntry& record = RecordOf(block, i);
    EXPECT_EQ(NameOf(record), expected[i].name);
    EXPECT_EQ(record.videoMemoryMiB, expected[i].memory);
    EXPECT_EQ(record.active, expected[i].active);
    EXPECT_EQ(record.discrete, expected[i].discrete);
    EXPECT_EQ(record.index, i);
    EXPECT_EQ(record.zero, 0u);
  }
  EXPECT_EQ(dxgi_.creators_called, std::vector<std::string>{"CreateDXGIFactory1"});
  ASSERT_EQ(dxgi_.iids_asked.size(), 1u);
  EXPECT_EQ(dxgi_.iids_asked[0], __uuidof(IDXGIFactory));
}

TEST_F(GraphicsTest, WithoutPciAdaptersTheFirstDxgiDescriptionStandsIn) {
  dxgi_.Add(L"Microsoft Basic Render Driver", 0);
  dxgi_.Add(L"Broken", 64 * kMiB).desc_result = E_FAIL;  // enumerated, never described
  dxgi_.Add(L"Basic Display", 512 * kMiB);
  GpAdapterList* block = Init();
  ASSERT_NE(block, nullptr);
  ASSERT_EQ(block->count, 1u);
  EXPECT_EQ(NameOf(RecordOf(block, 0)), L"Basic Display");
  EXPECT_EQ(RecordOf(block, 0).videoMemoryMiB, 512u);
}

TEST_F(GraphicsTest, AnEmptyInventoryIsSuccessWithoutABlock) {
  GpAdapterList* const untouched = reinterpret_cast<GpAdapterList*>(0x1234);
  GpAdapterList* list = untouched;
  dxgi_.create_result = DXGI_ERROR_UNSUPPORTED;  // as Wine without a display
  EXPECT_EQ(GpInit(&list), 1u);
  EXPECT_EQ(list, untouched);
  EXPECT_EQ(HalInit(HAL_CLASS_GRAPHICS, &list), 1u);
  EXPECT_EQ(list, untouched);
  EXPECT_EQ(GpInit(nullptr), 0u);
  EXPECT_EQ(HalInit(HAL_CLASS_GRAPHICS, nullptr), 0u);
}

TEST_F(GraphicsTest, DxgiFailuresLeaveTheMemoryAtZero) {
  ScriptAdapters(os_, {{L"PCI\\VEN_8086&DEV_9A49", L"Intel(R) UHD Graphics"}});
  for (const HRESULT failure : {E_FAIL, DXGI_ERROR_UNSUPPORTED}) {
    dxgi_.Add(L"Intel(R) UHD Graphics", 128 * kMiB);
    dxgi_.create_result = failure;
    GpAdapterList* block = Init();
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(RecordOf(block, 0).videoMemoryMiB, 0u);
  }
}

TEST(GraphicsDxgiExportsTest, OnlyCreateDxgiFactoryIsEnoughAndNoLibraryIsNoMemory) {
  FakeSystem os;
  ScriptAdapters(os, {{L"PCI\\VEN_8086&DEV_9A49", L"Intel(R) UHD Graphics"}});
  {
    FakeDxgi dxgi(os.module, FakeDxgi::Exports::kFactoryOnly);
    dxgi.Add(L"Intel(R) UHD Graphics", 256 * kMiB);
    GpBlock block;
    GpAdapterList* list = nullptr;
    ASSERT_EQ(GpInit(&list), 1u);
    block.reset(list);
    EXPECT_EQ(RecordOf(list, 0).videoMemoryMiB, 256u);
    EXPECT_EQ(dxgi.creators_called, std::vector<std::string>{"CreateDXGIFactory"});
    EXPECT_EQ(dxgi.iids_asked.at(0), __uuidof(IDXGIFactory));
  }
  GpAdapterList* list = nullptr;
  ASSERT_EQ(GpInit(&list), 1u);  // no dxgi.dll at all
  const GpBlock block(list);
  EXPECT_EQ(RecordOf(list, 0).videoMemoryMiB, 0u);
  EXPECT_EQ(os.module.loads, os.module.frees);
}

TEST_F(GraphicsTest, ANameTheFieldCannotHoldFailsWithTheBlockLeftToTheCaller) {
  ScriptAdapters(
      os_, {{L"PCI\\VEN_1", std::wstring(259, L'n')}, {L"PCI\\VEN_2", std::wstring(260, L'x')}});
  GpAdapterList* list = nullptr;
  EXPECT_EQ(GpInit(&list), 0u);
  ASSERT_NE(list, nullptr);
  const GpBlock block(list);
  EXPECT_EQ(NameOf(RecordOf(list, 0)), std::wstring(259, L'n'));
  EXPECT_EQ(RecordOf(list, 1).name[0], 0u);
}

TEST_F(GraphicsTest, SelectionTakesTheLastAdapterOfEachKindAndSynonymsAgree) {
  ScriptAdapters(os_,
                 {
                     {L"PCI\\1", L"First integrated", L"Integrated RAMDAC"},
                     {L"PCI\\2", L"First discrete", L"Internal", 60, L"Degraded", L"1.0", L"2021"},
                     {L"PCI\\3", L"Last integrated", L"Integrated", 60, L"OK", L"31.0.101.2111",
                      L"20220328000000.000000-000", 0},
                     {L"PCI\\4", L"Last discrete", L"Internal DAC", 60, L"OK", L"30.0.15.1179",
                      L"20211201000000.000000-000", 43},
                 });
  dxgi_.Add(L"Last discrete", 4096 * kMiB);
  dxgi_.Add(L"Last integrated", 128 * kMiB);
  GpAdapterList* block = Init();
  ASSERT_NE(block, nullptr);
  struct Case {
    uint32_t info_class, alias;
    const wchar_t* text;
  };
  const Case texts[] = {
      {HAL_GRAPHICS_INFO_DISCRETE_NAME, HAL_GRAPHICS_INFO_DISCRETE_NAME_ALIAS, L"Last discrete"},
      {HAL_GRAPHICS_INFO_DISCRETE_STATUS, HAL_GRAPHICS_INFO_DISCRETE_STATUS_ALIAS, L"OK"},
      {HAL_GRAPHICS_INFO_DISCRETE_DRIVER_VERSION, HAL_GRAPHICS_INFO_DISCRETE_DRIVER_VERSION_ALIAS,
       L"30.0.15.1179"},
      {HAL_GRAPHICS_INFO_DISCRETE_DRIVER_DATE, HAL_GRAPHICS_INFO_DISCRETE_DRIVER_DATE_ALIAS,
       L"20211201"},
      {HAL_GRAPHICS_INFO_INTEGRATED_NAME, HAL_GRAPHICS_INFO_INTEGRATED_NAME_ALIAS,
       L"Last integrated"},
      {HAL_GRAPHICS_INFO_INTEGRATED_STATUS, HAL_GRAPHICS_INFO_INTEGRATED_STATUS_ALIAS, L"OK"},
      {HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_VERSION,
       HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_VERSION_ALIAS, L"31.0.101.2111"},
      {HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_DATE, HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_DATE_ALIAS,
       L"20220328"},
  };
  for (const Case& c : texts) {
    SCOPED_TRACE(testing::Message() << "class " << c.info_class);
    EXPECT_EQ(GpText(block, c.info_class), c.text);
    EXPECT_EQ(GpText(block, c.alias), c.text);
  }
  EXPECT_EQ(GpNumber(block, HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY), 4096u);
  EXPECT_EQ(GpNumber(block, HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY_ALIAS), 4096u);
  EXPECT_EQ(GpNumber(block, HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY), 128u);
  EXPECT_EQ(GpNumber(block, HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY_ALIAS), 128u);
  EXPECT_EQ(GpNumber(block, HAL_GRAPHICS_INFO_DISCRETE_PROBLEM_CODE), 43u);
  EXPECT_EQ(GpNumber(block, HAL_GRAPHICS_INFO_INTEGRATED_PROBLEM_CODE), 0u);
  EXPECT_EQ(GpNumber(block, HAL_GRAPHICS_INFO_COUNT), 4u);
  EXPECT_EQ(GpText(block, HAL_GRAPHICS_INFO_NOT_SERVED), std::nullopt);
  // The flat route hands the whole block on.
  uint32_t memory = 0, returned = 0;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_GRAPHICS, block, HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY,
                                &memory, 4, &returned),
            1u);
  EXPECT_EQ(memory, 4096u);
  EXPECT_EQ(GpSetInformation(block, HAL_GRAPHICS_INFO_DISCRETE_NAME, &memory, 4, &returned), 0u);
}

TEST_F(GraphicsTest, OneSidedInventoriesFailTheOtherSide) {
  // "Internal" is not "Integrated": the only adapter is the discrete one.
  ScriptAdapters(os_, {{L"PCI\\1", L"Panel GPU", L"Internal", 60, L"OK", L"1.2", L"2020"}});
  GpAdapterList* discrete_only = Init();
  EXPECT_EQ(GpText(discrete_only, HAL_GRAPHICS_INFO_DISCRETE_NAME), L"Panel GPU");
  EXPECT_EQ(GpText(discrete_only, HAL_GRAPHICS_INFO_DISCRETE_DRIVER_DATE), std::nullopt);  // short
  EXPECT_EQ(GpNumber(discrete_only, HAL_GRAPHICS_INFO_DISCRETE_PROBLEM_CODE), 0u);
  for (uint32_t info_class :
       {HAL_GRAPHICS_INFO_INTEGRATED_NAME, HAL_GRAPHICS_INFO_INTEGRATED_STATUS,
        HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY, HAL_GRAPHICS_INFO_INTEGRATED_PROBLEM_CODE}) {
    EXPECT_EQ(GpText(discrete_only, info_class), std::nullopt) << info_class;
  }
  // A block whose every type query failed counts only integrated adapters.
  auto block = MakeGpBlock(2);
  for (uint32_t i = 0; i < 2; ++i) {
    RecordOf(block.get(), i).discrete = 0;
    RecordOf(block.get(), i).name[0] = static_cast<uint16_t>(L'A' + i);
  }
  EXPECT_EQ(GpText(block.get(), HAL_GRAPHICS_INFO_DISCRETE_NAME), std::nullopt);
  EXPECT_EQ(GpText(block.get(), HAL_GRAPHICS_INFO_INTEGRATED_NAME), L"B");
}

TEST_F(GraphicsTest, TextAnswersNeedRoomForANulTheyNeverWrite) {
  auto block = MakeGpBlock(1);
  const std::wstring name = L"GPU";  // n = 3
  std::copy(name.begin(), name.end(), RecordOf(block.get(), 0).name);
  std::array<uint8_t, 16> buffer;
  for (const uint32_t size : {7u, 8u}) {
    SCOPED_TRACE(size);
    buffer.fill(0xA5);
    uint32_t returned = 0xA5;
    const uint32_t ok = GpQueryInforamtion(block.get(), HAL_GRAPHICS_INFO_INTEGRATED_NAME,
                                           buffer.data(), size, &returned);
    EXPECT_EQ(ok, size == 8 ? 1u : 0u);
    EXPECT_EQ(returned, size == 8 ? 6u : 0xA5u);
    EXPECT_EQ(buffer[0], size == 8 ? 'G' : 0xA5);
    EXPECT_EQ(buffer[6], 0xA5);  // the NUL's room stays as the caller left it
    EXPECT_EQ(buffer[7], 0xA5);
  }
  RecordOf(block.get(), 0).name[0] = 0;  // an empty name is no answer
  EXPECT_EQ(GpText(block.get(), HAL_GRAPHICS_INFO_INTEGRATED_NAME), std::nullopt);
}

TEST_F(GraphicsTest, DamagedBlocksAndArgumentsAreRefused) {
  auto block = MakeGpBlock(2, 0x41);  // names with no NUL in their 260 units
  RecordOf(block.get(), 0).discrete = 0;
  EXPECT_EQ(GpText(block.get(), HAL_GRAPHICS_INFO_INTEGRATED_NAME), std::nullopt);
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_INTEGRATED_PROBLEM_CODE), std::nullopt);
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY), 0x41414141u);
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_COUNT), 2u);
  block->totalSize += 1;  // no longer 8 + 552 x count
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_COUNT), std::nullopt);
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_SCREEN_WIDTH), std::nullopt);
  block->totalSize -= 1;
  block->count = 0x80000000;  // a size that would wrap in 32 bits
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_COUNT), std::nullopt);

  // A header at the end of the committed memory, claiming a record that is not there.
  const size_t page = 4096;
  auto* memory =
      static_cast<uint8_t*>(::VirtualAlloc(nullptr, 2 * page, MEM_RESERVE, PAGE_NOACCESS));
  ASSERT_NE(::VirtualAlloc(memory, page, MEM_COMMIT, PAGE_READWRITE), nullptr);
  auto* edge = reinterpret_cast<GpAdapterList*>(memory + page - 8);
  edge->totalSize = 8 + 552;
  edge->count = 1;
  EXPECT_EQ(GpNumber(edge, HAL_GRAPHICS_INFO_COUNT), std::nullopt);
  edge->totalSize = 8;
  edge->count = 0;
  EXPECT_EQ(GpNumber(edge, HAL_GRAPHICS_INFO_COUNT), 0u);
  ::VirtualFree(memory, 0, MEM_RELEASE);

  auto empty = MakeGpBlock(0);
  uint32_t value = 0, returned = 0;
  EXPECT_EQ(GpQueryInforamtion(nullptr, HAL_GRAPHICS_INFO_SCREEN_WIDTH, &value, 4, &returned), 0u);
  EXPECT_EQ(GpQueryInforamtion(empty.get(), HAL_GRAPHICS_INFO_SCREEN_WIDTH, nullptr, 4, &returned),
            0u);
  EXPECT_EQ(GpQueryInforamtion(empty.get(), HAL_GRAPHICS_INFO_SCREEN_WIDTH, &value, 4, nullptr),
            0u);
  EXPECT_EQ(GpQueryInforamtion(empty.get(), HAL_GRAPHICS_INFO_SCREEN_WIDTH, &value, 3, &returned),
            0u);
  EXPECT_EQ(GpNumber(empty.get(), HAL_GRAPHICS_INFO_SCREEN_WIDTH), 1920u);
  EXPECT_EQ(GpNumber(empty.get(), HAL_GRAPHICS_INFO_BITS_PER_PIXEL + 1), std::nullopt);
}

TEST_F(GraphicsTest, MonitorTextIsTheModelPartOfThePnpIdElseTheCaption) {
  const std::wstring pnp =
      L"SELECT PNPDeviceID FROM Win32_DesktopMonitor WHERE PNPDeviceID IS NOT NULL";
  const std::wstring caption = L"SELECT Caption FROM Win32_DesktopMonitor";
  os_.wmi.Script(kCimV2, caption, L"Caption", {FakeValue::Text(L"Generic PnP Monitor")});
  struct Case {
    std::optional<std::wstring> pnp_id;  // nullopt: the query fails
    std::optional<std::wstring> answer;
  };
  const Case cases[] = {
      {L"DISPLAY\\ABC1234\\5&2a3b4c5d&0&UID4352", L"ABC1234"},
      {L"DISPLAY\\ABC1234", L"ABC1234"},
      {L"NO BACKSLASH", std::nullopt},  // an answered ID never falls back to the caption
      {L"", L"Generic PnP Monitor"},
      {std::nullopt, L"Generic PnP Monitor"},
  };
  auto block = MakeGpBlock(0);
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << (c.pnp_id ? *c.pnp_id : L"(fails)"));
    os_.wmi.Script(
        kCimV2, pnp, L"PNPDeviceID",
        c.pnp_id ? std::vector<FakeValue>{FakeValue::Text(*c.pnp_id)} : std::vector<FakeValue>{},
        c.pnp_id ? S_OK : static_cast<HRESULT>(0x80041001));
    EXPECT_EQ(GpText(block.get(), HAL_GRAPHICS_INFO_MONITOR), c.answer);
  }
}

TEST_F(GraphicsTest, ScreenClassesReadTheMetricsAndTheCurrentMode) {
  auto block = MakeGpBlock(0);
  EXPECT_EQ(GpText(block.get(), HAL_GRAPHICS_INFO_RESOLUTION), L"1920x1080");
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_SCREEN_HEIGHT), 1080u);
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_BITS_PER_PIXEL), 32u);
  EXPECT_EQ(os_.display.mode_sizes_seen.back(), 220u);
  os_.display.metrics[SM_CYSCREEN] = 0;
  EXPECT_EQ(GpText(block.get(), HAL_GRAPHICS_INFO_RESOLUTION), std::nullopt);
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_SCREEN_HEIGHT), std::nullopt);
  os_.display.mode.reset();
  EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_BITS_PER_PIXEL), std::nullopt);
}

TEST_F(GraphicsTest, RefreshRateTriesTheBuiltInPanelThenWmiThenTheDisplayMode) {
  const std::wstring wql =
      L"SELECT CurrentRefreshRate FROM Win32_VideoController WHERE CurrentRefreshRate IS NOT NULL";
  using Tech = DISPLAYCONFIG_VIDEO_OUTPUT_TECHNOLOGY;
  constexpr Tech kInternal = DISPLAYCONFIG_OUTPUT_TECHNOLOGY_INTERNAL;
  constexpr Tech kHdmi = DISPLAYCONFIG_OUTPUT_TECHNOLOGY_HDMI;
  struct Case {
    const char* what;
    std::vector<DISPLAYCONFIG_PATH_INFO> paths;
    std::optional<UINT32> reported_paths;
    std::optional<uint32_t> wmi;  // nullopt: the query fails
    std::optional<DWORD> mode_rate;
    std::optional<uint32_t> answer;
  };
  const Case cases[] = {
      {"the panel, rounded",
       {FakeDisplay::Path(kHdmi, 75, 1), FakeDisplay::Path(kInternal, 143856, 1000)},
       {},
       60,
       50,
       144},
      {"the first panel path decides",
       {FakeDisplay::Path(kInternal, 0, 1), FakeDisplay::Path(kInternal, 120, 1)},
       {},
       75,
       50,
       75},
      {"a zero denominator", {FakeDisplay::Path(kInternal, 60, 0)}, {}, 75, 50, 75},
      {"no panel", {FakeDisplay::Path(kHdmi, 60, 1)}, {}, 75, 50, 75},
      {"no path", {}, {}, 75, 50, 75},
      {"too many paths", {FakeDisplay::Path(kInternal, 60, 1)}, 61441, 75, 50, 75},
      {"WMI says 0", {}, {}, 0, 50, 50},
      {"WMI says -1", {}, {}, 0xFFFFFFFF, 50, 50},
      {"WMI fails", {}, {}, std::nullopt, 50, 50},
      {"nothing", {}, {}, std::nullopt, 0, std::nullopt},
      {"no mode", {}, {}, std::nullopt, std::nullopt, std::nullopt},
  };
  auto block = MakeGpBlock(0);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    os_.display.paths = c.paths;
    os_.display.reported_paths = c.reported_paths;
    os_.wmi.Script(
        kCimV2, wql, L"CurrentRefreshRate",
        c.wmi ? std::vector<FakeValue>{FakeValue::UInt32(*c.wmi)} : std::vector<FakeValue>{},
        c.wmi ? S_OK : static_cast<HRESULT>(0x80041002));
    if (c.mode_rate) {
      os_.display.mode = FakeDisplay::Mode(1920, 1080, 32, *c.mode_rate);
    } else {
      os_.display.mode.reset();
    }
    EXPECT_EQ(GpNumber(block.get(), HAL_GRAPHICS_INFO_REFRESH_RATE), c.answer);
  }
}

}  // namespace
