// Class 16 against the fakes: the back-end chosen from the graphics inventory, the AMD library's
// entry points, capabilities and level mapping, and the Intel path's driver object, gamma ramps
// and power-scheme brightness with its diagnostics.
#include "hal/hal_api.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "hal/display_adl.h"
#include "hal/display_intel.h"
#include "tests/fakes/fake_adl.h"
#include "tests/support/fake_system.h"
#include "tests/support/gp_block.h"
#include "tests/support/graphics_machine.h"

bool operator==(const DpColorRange& a, const DpColorRange& b) {
  return std::memcmp(&a, &b, sizeof(a)) == 0;
}

namespace {

using namespace velhal::testing;
namespace adl = velhal::os::adl;
namespace intel = velhal::hal::intel;

constexpr GUID kVideoSubgroup{
    0x7516b95f, 0xf776, 0x4464, {0x8c, 0x53, 0x06, 0x16, 0x7f, 0x40, 0xcc, 0x99}};
constexpr GUID kBrightness{
    0xaded5e82, 0xb909, 0x4619, {0x99, 0x49, 0xf5, 0xd7, 0x1d, 0xac, 0x0b, 0xcb}};

class DisplayTest : public ::testing::Test {
 protected:
  void Machine(const std::vector<std::wstring>& names) {
    std::vector<ScriptedAdapter> adapters;
    for (size_t i = 0; i < names.size(); ++i)
      adapters.push_back({L"PCI\\VEN_" + std::to_wstring(i), names[i]});
    ScriptAdapters(os_, adapters);
  }
  uint32_t Init() {
    DpDisplayList* list = nullptr;
    const uint32_t result = HalInit(HAL_CLASS_DISPLAY, &list);
    block_.reset(list);
    return result;
  }
  DpDisplayList* block() { return reinterpret_cast<DpDisplayList*>(block_.get()); }
  void* entry() { return block_ ? &block()->adapterIndex : nullptr; }
  uint32_t Set(uint32_t info_class, const std::vector<uint32_t>& words) {
    std::vector<uint32_t> buffer = words;
    uint32_t returned = 0;
    return HalSetInformation(HAL_CLASS_DISPLAY, entry(), info_class, buffer.data(),
                             static_cast<uint32_t>(buffer.size() * 4), &returned);
  }
  std::optional<DpColorRange> Range(uint32_t info_class, uint32_t size = 20) {
    std::array<uint8_t, 64> buffer{};
    uint32_t returned = 0;
    if (!HalQueryInformation(HAL_CLASS_DISPLAY, entry(), info_class, buffer.data(), size,
                             &returned)) {
      return std::nullopt;
    }
    EXPECT_EQ(returned, 20u);
    DpColorRange range;
    std::memcpy(&range, buffer.data(), sizeof(range));
    return range;
  }

  FakeSystem os_;
  FakeAdl adl_{os_.module};
  std::unique_ptr<void, FreeBlock> block_;
};

class AmdDisplayTest : public DisplayTest {
 protected:
  void SetUp() override {
    Machine({L"Generic VGA", L"AMD Radeon(TM) Graphics", L"Intel(R) UHD Graphics"});
    adl_.adapters = {
        {3, {{0, 7}, {1, 3, 0}, {2, 3}}},  // another adapter's display, an unmapped one, ours
        {5, {{0, 5}}},
    };
    adl_.ranges[adl::kColorTemperature] = {6500, 6500, 4000, 10000, 100};
    adl_.ranges[adl::kColorBrightness] = {0, 0, -100, 100, 1};
    ASSERT_EQ(Init(), 1u);
  }
};

TEST_F(AmdDisplayTest, AmdBeforeIntelTakesTheFirstMappedDisplayOfItsAdapter) {
  ASSERT_NE(block(), nullptr);
  EXPECT_EQ(block()->totalSize, 16u);
  EXPECT_EQ(block()->count, 1u);
  EXPECT_EQ(block()->adapterIndex, 3u);
  EXPECT_EQ(block()->displayIndex, 2u);
  EXPECT_EQ(os_.intel_driver.creations, 0);
  EXPECT_EQ(adl_.threading, adl::kThreadingLocked);
  EXPECT_EQ(os_.module.loaded(), 1u);  // the library stays for the process
}

TEST_F(AmdDisplayTest, QueriesNeedTheCapabilityBit) {
  uint32_t caps = 0, returned = 0;
  adl_.valids = adl::kColorTemperature | 0x100;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISPLAY, entry(), HAL_DISPLAY_INFO_COLOR_CAPS, &caps, 4,
                                &returned),
            1u);
  EXPECT_EQ(caps, static_cast<uint32_t>(adl::kColorTemperature));
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_COLOR_TEMPERATURE),
            (DpColorRange{6500, 6500, 4000, 10000, 100}));
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_COLOR_TEMPERATURE, 19), std::nullopt);
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_BRIGHTNESS), std::nullopt);  // brightness not valid
  adl_.valids = adl_.caps;
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_BRIGHTNESS),
            (DpColorRange{0, 0, static_cast<uint32_t>(-100), 100, 1}));
  EXPECT_EQ(Range(1), std::nullopt);
  EXPECT_EQ(Range(4), std::nullopt);
}

TEST_F(AmdDisplayTest, SetsMapTheLevelOntoFourToEightThousand) {
  struct Case {
    uint32_t info_class, level, mode;
    int minimum;
    std::optional<int> requested;
  };
  const Case cases[] = {
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE, 255, 0, 4000, 8000},
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE, 128, 0, 4000, 6500},  // 6505 cut to a multiple of 100
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE, 255, 1, 4000, 6000},
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE, 0, 1, 3000, 4000},
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE, 0, 1, 4500, 4500},          // raised to ADL's minimum
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE, 0, 1, 6500, std::nullopt},  // above the top: no set
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE, 1000, 0, 4000, 8000},       // lowered to the top
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE_ALIAS, 255, 0, 4000, 8000},
      {HAL_DISPLAY_SET_BRIGHTNESS, 255, 0, -100, 8000},  // brightness keeps the mapping
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "class " << c.info_class << " level " << c.level << " mode "
                                    << c.mode << " minimum " << c.minimum);
    adl_.sets.clear();
    adl_.sources.clear();
    const int type =
        c.info_class == HAL_DISPLAY_SET_BRIGHTNESS ? adl::kColorBrightness : adl::kColorTemperature;
    adl_.ranges[type].minimum = c.minimum;
    EXPECT_EQ(Set(c.info_class, {c.level, c.mode}), c.requested ? 1u : 0u);
    if (c.requested) {
      ASSERT_EQ(adl_.sets.size(), 1u);
      EXPECT_EQ(adl_.sets[0].type, type);
      EXPECT_EQ(adl_.sets[0].value, *c.requested);
      EXPECT_EQ(adl_.sets[0].adapter, 3);
      EXPECT_EQ(adl_.sets[0].display, 2);
    } else {
      EXPECT_TRUE(adl_.sets.empty());
    }
    // A user temperature needs its source set first; brightness does not.
    EXPECT_EQ(adl_.sources,
              type == adl::kColorTemperature ? std::vector<int>{0x40} : std::vector<int>{});
  }
  adl_.source_result = -1;
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {255, 0}), 0u);
  adl_.source_result = adl::kOk;
  adl_.set_result = -1;
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {255, 0}), 0u);
  adl_.set_result = adl::kOk;
  adl_.caps = adl::kColorBrightness;
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {255, 0}), 0u);  // not capable
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {255}), 0u);     // too short
  EXPECT_EQ(Set(4, {255, 0}), 0u);
  EXPECT_EQ(Set(6, {255, 0}), 0u);
}

TEST_F(DisplayTest, AMissingAdlEntryPointLeavesTheLibraryUnbound) {
  Machine({L"AMD Radeon RX 6600"});
  adl_.adapters = {{0, {{0, 0}}}};
  adl_.RemoveEntryPoint("ADL_Display_Sharpness_Caps");  // required, though never called
  EXPECT_EQ(Init(), 0u);
  EXPECT_EQ(block(), nullptr);
  EXPECT_FALSE(velhal::hal::adl::Ready());
  EXPECT_EQ(os_.module.loaded(), 0u);
  EXPECT_EQ(adl_.contexts_created, 0);
}

TEST_F(DisplayTest, WithoutAVendorNameInitSucceedsWithoutABlock) {
  Machine({L"amd radeon (lower case)", L"NVIDIA GeForce GTX 470"});
  DpDisplayList* const untouched = reinterpret_cast<DpDisplayList*>(0x1234);
  DpDisplayList* list = untouched;
  EXPECT_EQ(HalInit(HAL_CLASS_DISPLAY, &list), 1u);  // neither vendor: success, no block
  EXPECT_EQ(list, untouched);
  EXPECT_EQ(os_.module.loads, 0);
  uint32_t value = 0, returned = 0;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISPLAY, &value, HAL_DISPLAY_INFO_BRIGHTNESS, &value, 20,
                                &returned),
            0u);

  FakeSystem empty_machine;  // no adapter at all: still success without a block
  EXPECT_EQ(HalInit(HAL_CLASS_DISPLAY, &list), 1u);
  EXPECT_EQ(list, untouched);
}

TEST_F(DisplayTest, AnAmdAdapterWithoutAMappedDisplayFails) {
  Machine({L"AMD Radeon RX 6600"});
  adl_.adapters = {{0, {{0, 0, 0}, {1, 1}}}};  // unmapped, and mapped to another adapter
  EXPECT_EQ(Init(), 0u);
  EXPECT_EQ(block(), nullptr);
}

class IntelDisplayTest : public DisplayTest {
 protected:
  void SetUp() override {
    Machine({L"Intel(R) Iris(R) Xe Graphics", L"AMD Radeon(TM) Graphics"});
    os_.display.OneScreen(L"\\\\?\\DISPLAY#SHP14D0#4&1d7b2c5&0&UID265988#{e6f07b5f}");
    ASSERT_EQ(Init(), 1u);
    ASSERT_TRUE(intel::Ready());
  }
  std::vector<uint16_t> LastRamp() {
    EXPECT_FALSE(os_.intel_driver.control.ramps.empty());
    return os_.intel_driver.control.ramps.empty() ? std::vector<uint16_t>(768)
                                                  : os_.intel_driver.control.ramps.back().entries;
  }
  std::vector<std::wstring>& messages() { return os_.debug.messages; }
};

TEST_F(IntelDisplayTest, IntelFirstHoldsOneDriverObjectAndMakesNoBlock) {
  EXPECT_EQ(block(), nullptr);
  EXPECT_EQ(Init(), 1u);
  EXPECT_EQ(os_.intel_driver.creations, 1);
  EXPECT_EQ(os_.intel_driver.control.references, 2u);  // the test's and the library's
  EXPECT_EQ(os_.module.loads, 0);                      // no AMD library looked for
  EXPECT_GE(os_.com.initialize_calls, 1);
  // The host's multithreaded apartment is left as it was found.
  EXPECT_EQ(os_.com.uninitialize_calls, os_.com.initialize_calls);
}

TEST(IntelDisplayInitTest, AFailedCreationIsRetriedNextTime) {
  FakeSystem os;
  ScriptAdapters(os, {{L"PCI\\VEN_8086", L"Intel(R) UHD Graphics"}});
  os.intel_driver.create_result = REGDB_E_CLASSNOTREG;
  DpDisplayList* list = nullptr;
  EXPECT_EQ(HalInit(HAL_CLASS_DISPLAY, &list), 0u);
  EXPECT_FALSE(intel::Ready());
  os.intel_driver.create_result = S_OK;
  EXPECT_EQ(HalInit(HAL_CLASS_DISPLAY, &list), 1u);
  EXPECT_EQ(os.intel_driver.creations, 2);
  EXPECT_EQ(list, nullptr);
}

TEST_F(IntelDisplayTest, BrightnessIsTheActiveSchemeValueOfThePowerSource) {
  os_.power.ac_value = 70;
  os_.power.dc_value = 40;
  struct Case {
    BYTE ac_line;
    uint32_t value;
    bool ac;
  };
  for (const Case& c : {Case{1, 70, true}, Case{255, 70, true}, Case{0, 40, false}}) {
    SCOPED_TRACE(int{c.ac_line});
    os_.power.status.ACLineStatus = c.ac_line;
    EXPECT_EQ(Range(HAL_DISPLAY_INFO_BRIGHTNESS), (DpColorRange{c.value, 0, 0, 100, 0}));
    ASSERT_FALSE(os_.power.reads.empty());
    EXPECT_EQ(os_.power.reads.back().ac, c.ac);
    EXPECT_EQ(os_.power.reads.back().scheme, os_.power.scheme);
    EXPECT_EQ(os_.power.reads.back().subgroup, kVideoSubgroup);
    EXPECT_EQ(os_.power.reads.back().setting, kBrightness);
  }
  EXPECT_TRUE(messages().empty());
  const size_t reads = os_.power.reads.size();
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_BRIGHTNESS, 19), std::nullopt);
  EXPECT_EQ(os_.power.reads.size(), reads);  // too short: nothing is asked
}

TEST_F(IntelDisplayTest, BrightnessReadFailuresAreLoggedInTheirOwnWords) {
  os_.power.status_failures = -1;
  os_.power.status_error = 31;
  os_.power.read_result = ERROR_CALL_NOT_IMPLEMENTED;
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_BRIGHTNESS), std::nullopt);
  EXPECT_EQ(messages(),
            (std::vector<std::wstring>{L"[DpQueryInformation] GetSystemPowerStatus "
                                       L"Result:31(`anonymous-namespace'::QueryLight)\n",
                                       L"[DpQueryInformation] PowerReadDCValueIndex "
                                       L"Result:120(`anonymous-namespace'::QueryLight)\n"}));
  os_.power.status_failures = 0;
  os_.power.status.ACLineStatus = 1;
  messages().clear();
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_BRIGHTNESS), std::nullopt);
  EXPECT_EQ(messages(),
            std::vector<std::wstring>{L"[DpQueryInformation] PowerReadACValueIndex "
                                      L"Result:120(`anonymous-namespace'::QueryLight)\n"});
}

TEST_F(IntelDisplayTest, BrightnessSetsCheckTheRangeOnlyForShortBuffers) {
  uint32_t returned = 0;
  uint32_t value = 150;
  EXPECT_EQ(HalSetInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_SET_BRIGHTNESS, &value, 4,
                              &returned),
            1u);  // a full u32 goes through as it stands
  ASSERT_EQ(os_.power.writes.size(), 1u);
  EXPECT_EQ(os_.power.writes[0].value, 150u);
  EXPECT_TRUE(os_.power.writes[0].ac);
  EXPECT_EQ(os_.power.writes[0].subgroup, kVideoSubgroup);
  EXPECT_EQ(os_.power.writes[0].setting, kBrightness);
  EXPECT_EQ(os_.power.activated, std::vector<GUID>{os_.power.scheme});
  EXPECT_EQ(HalSetInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_SET_BRIGHTNESS, &value, 2,
                              &returned),
            0u);  // short and above 100
  value = 100;
  os_.power.status.ACLineStatus = 0;
  EXPECT_EQ(HalSetInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_SET_BRIGHTNESS, &value, 1,
                              &returned),
            1u);
  ASSERT_EQ(os_.power.writes.size(), 2u);
  EXPECT_FALSE(os_.power.writes[1].ac);
  EXPECT_EQ(os_.power.writes[1].value, 100u);
  EXPECT_EQ(HalSetInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_SET_BRIGHTNESS, nullptr, 4,
                              &returned),
            0u);
  EXPECT_TRUE(messages().empty());
}

TEST_F(IntelDisplayTest, BrightnessSetFailuresAreLoggedInTheirOwnWords) {
  uint32_t value = 50, returned = 0;
  const auto set = [&] {
    return HalSetInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_SET_BRIGHTNESS, &value, 4,
                             &returned);
  };
  os_.power.status_failures = -1;
  os_.power.status_error = 21;
  os_.power.write_result = 5;
  os_.power.set_scheme_result = 87;
  EXPECT_EQ(set(), 0u);
  EXPECT_EQ(
      messages(),
      (std::vector<std::wstring>{
          L"[DpSetInformation] GetSystemPowerStatus Result:21(`anonymous-namespace'::SetLight)\n",
          L"[DpSetInformation] PowerWriteDCValueIndex Result:5(`anonymous-namespace'::SetLight)\n",
          L"[DpSetInformation] PowerSetActiveScheme "
          L"Result:87(`anonymous-namespace'::SetLight)\n"}));
  messages().clear();
  os_.power.status_failures = 0;
  os_.power.get_scheme_result = ERROR_CALL_NOT_IMPLEMENTED;
  const size_t writes = os_.power.writes.size();
  EXPECT_EQ(set(), 0u);
  EXPECT_EQ(messages(),
            std::vector<std::wstring>{L"[DpSetInformation] PowerGetActiveScheme "
                                      L"Result:120(`anonymous-namespace'::SetLight)\n"});
  EXPECT_EQ(os_.power.writes.size(), writes);
  os_.power.get_scheme_result = ERROR_SUCCESS;
  os_.power.set_scheme_result = ERROR_SUCCESS;
  os_.power.status.ACLineStatus = 1;
  messages().clear();
  EXPECT_EQ(set(), 0u);
  EXPECT_EQ(messages(), std::vector<std::wstring>{L"[DpSetInformation] PowerWriteACValueIndex "
                                                  L"Result:5(`anonymous-namespace'::SetLight)\n"});
}

TEST_F(IntelDisplayTest, ColourTemperatureAndGainsBecomeRampsOnThePrimaryDisplay) {
  const auto last = [&](size_t channel) { return LastRamp()[channel * 256 + 255]; };
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {0, 0}), 1u);
  EXPECT_EQ(os_.intel_driver.control.adapters_asked.back(), L"\\\\.\\DISPLAY1");
  EXPECT_EQ(os_.intel_driver.control.ramps.back().display, os_.intel_driver.control.display);
  EXPECT_EQ(os_.intel_driver.control.ramps.back().size, 1536u);
  EXPECT_EQ(last(0), 65535);
  EXPECT_EQ(last(2), 55705);                                        // 65535 x 0.85
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {300, 0}), 1u);  // clamped to 255
  const std::vector<uint16_t> warm = LastRamp();
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE_ALIAS, {255, 7}), 1u);
  EXPECT_EQ(LastRamp(), warm);
  EXPECT_EQ(warm[255], static_cast<uint16_t>(std::floor(65535.0 * (1 - 127.0 / 128 * 0.06) + 0.5)));
  EXPECT_EQ(warm[256 + 255], warm[255]);
  EXPECT_EQ(warm[512 + 255], 65535);
  // Class 2 takes the warmth whatever the stated size; class 5 needs both words.
  uint32_t warmth = 128, returned = 0;
  EXPECT_EQ(HalSetInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_SET_COLOR_TEMPERATURE,
                              &warmth, 0, &returned),
            1u);
  EXPECT_EQ(LastRamp()[255], 65535);
  EXPECT_EQ(HalSetInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_SET_COLOR_TEMPERATURE_ALIAS,
                              &warmth, 4, &returned),
            0u);

  // Gains 1, 0.5, 0.25 at full level with a floor of 0.5: everything halves once more.
  const float gains[5] = {1.0f, 0.5f, 0.25f, 255.0f, 0.5f};
  EXPECT_EQ(HalSetInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_SET_COLOR_GAINS,
                              const_cast<float*>(gains), 20, &returned),
            1u);
  EXPECT_EQ(last(0), 32768);
  EXPECT_EQ(last(1), 16384);
  EXPECT_EQ(last(2), 8192);
  EXPECT_EQ(HalSetInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_SET_COLOR_GAINS,
                              const_cast<float*>(gains), 19, &returned),
            0u);
}

TEST_F(IntelDisplayTest, DriverFailuresAreZeroResults) {
  FakeCuiControl& control = os_.intel_driver.control;
  control.set_result = E_FAIL;
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {10, 0}), 0u);
  control.set_result = S_OK;
  control.set_status = 0x1001;
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {10, 0}), 0u);
  control.set_status = 0;
  control.enum_result = E_NOINTERFACE;
  const size_t ramps = control.ramps.size();
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {10, 0}), 0u);
  EXPECT_EQ(control.ramps.size(), ramps);
  control.enum_result = S_OK;
  os_.display.adapters[0].flags = DISPLAY_DEVICE_ACTIVE;  // no primary adapter to name
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {10, 0}), 0u);
  EXPECT_EQ(Set(4, {10, 0}), 0u);
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_COLOR_CAPS), std::nullopt);
}

TEST_F(IntelDisplayTest, ColourParametersAreThePanelMatrixFromTheDriverBlock) {
  FakeCuiControl& control = os_.intel_driver.control;
  for (size_t i = 0; i < control.parameter_block.size(); ++i)
    control.parameter_block[i] = static_cast<BYTE>(i);
  std::array<uint8_t, 40> buffer{};
  uint32_t returned = 0;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_INFO_COLOR_TEMPERATURE,
                                buffer.data(), 36, &returned),
            1u);
  EXPECT_EQ(returned, 36u);
  EXPECT_EQ(buffer[0], 8);
  EXPECT_EQ(buffer[35], 43);
  EXPECT_EQ(buffer[36], 0);
  const GUID panel_colour_space{
      0xf64a0177, 0x1cbc, 0x46d8, {0x99, 0x82, 0x85, 0xfd, 0x1d, 0x59, 0xb9, 0xb1}};
  EXPECT_EQ(control.parameters_asked.back(), panel_colour_space);
  EXPECT_EQ(control.parameter_sizes.back(), 92u);
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_INFO_COLOR_TEMPERATURE,
                                buffer.data(), 35, &returned),
            0u);
  control.get_status = 3;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_INFO_COLOR_TEMPERATURE,
                                buffer.data(), 36, &returned),
            0u);
  control.get_status = 0;
  control.get_result = E_UNEXPECTED;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_INFO_COLOR_TEMPERATURE,
                                buffer.data(), 36, &returned),
            0u);
}

TEST(GammaRampTest, RampsRiseFromZeroAndEndAtTheirChannelFactor) {
  const intel::GammaRamp identity = intel::BuildGammaRamp({1.0f, 1.0f, 1.0f}, 1.0f);
  for (size_t i = 0; i < 256; ++i) {
    ASSERT_EQ(identity[i], i * 257) << i;
    ASSERT_EQ(identity[512 + i], i * 257) << i;
  }
  struct Case {
    std::array<float, 3> factors;
    float scale;
    std::array<uint16_t, 3> ends;
  };
  const Case cases[] = {
      {{0.85f, 0.94f, 1.0f}, 1.0f, {55705, 61603, 65535}},
      {{2.0f, -1.0f, NAN}, 1.0f, {65535, 0, 0}},  // held within 0-65535
      {{1.0f, 1.0f, 1.0f}, 0.25f, {16384, 16384, 16384}},
  };
  for (const Case& c : cases) {
    const intel::GammaRamp ramp = intel::BuildGammaRamp(c.factors, c.scale);
    for (size_t channel = 0; channel < 3; ++channel) {
      SCOPED_TRACE(testing::Message() << "channel " << channel << " factor " << c.factors[channel]
                                      << " scale " << c.scale);
      EXPECT_EQ(ramp[channel * 256], 0);
      EXPECT_EQ(ramp[channel * 256 + 255], c.ends[channel]);
      for (size_t i = 1; i < 256; ++i)
        ASSERT_LE(ramp[channel * 256 + i - 1], ramp[channel * 256 + i]);
    }
  }
  EXPECT_EQ(intel::WarmthFactors(128), (std::array<float, 3>{1.0f, 1.0f, 1.0f}));
  EXPECT_FLOAT_EQ(intel::WarmthFactors(0)[2], 0.85f);
  EXPECT_FLOAT_EQ(intel::WarmthFactors(64)[2], 1.0f - 0.075f);
  EXPECT_FLOAT_EQ(intel::WarmthFactors(255)[0], 1.0f - 127.0f / 128.0f * 0.06f);
  EXPECT_FLOAT_EQ(intel::WarmthFactors(255)[2], 1.0f);
}

}  // namespace
