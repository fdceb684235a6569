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
  uint32_t Init(const std::vector<std::wstring>& names) {
    std::vector<ScriptedAdapter> adapters;
    for (const std::wstring& name : names) adapters.push_back({L"PCI\\" + name, name});
    ScriptAdapters(os_, adapters);
    DpDisplayList* list = nullptr;
    const uint32_t result = HalInit(HAL_CLASS_DISPLAY, &list);
    block_.reset(list);
    return result;
  }
  DpDisplayList* block() { return static_cast<DpDisplayList*>(block_.get()); }
  void* entry() { return block_ ? &block()->adapterIndex : nullptr; }
  uint32_t Set(uint32_t info_class, std::vector<uint32_t> words, uint32_t size = 0) {
    uint32_t returned = 0;
    return HalSetInformation(HAL_CLASS_DISPLAY, entry(), info_class, words.data(),
                             size ? size : static_cast<uint32_t>(words.size() * 4), &returned);
  }
  std::optional<DpColorRange> Range(uint32_t info_class, uint32_t size = 20) {
    DpColorRange range{};
    uint32_t returned = 0;
    if (!HalQueryInformation(HAL_CLASS_DISPLAY, entry(), info_class, &range, size, &returned))
      return std::nullopt;
    EXPECT_EQ(returned, 20u);
    return range;
  }

  FakeSystem os_;
  FakeAdl adl_{os_.module};
  std::unique_ptr<void, FreeBlock> block_;
};

class AmdDisplayTest : public DisplayTest {
 protected:
  void SetUp() override {
    // Another adapter's display, an unmapped one, then this adapter's own.
    adl_.adapters = {{3, {{0, 7}, {1, 3, 0}, {2, 3}}}, {5, {{0, 5}}}};
    adl_.ranges[adl::kColorTemperature] = {6500, 6500, 4000, 10000, 100};
    adl_.ranges[adl::kColorBrightness] = {0, 0, -100, 100, 1};
    ASSERT_EQ(Init({L"Generic VGA", L"AMD Radeon(TM) Graphics", L"Intel(R) UHD Graphics"}), 1u);
  }
};

TEST_F(AmdDisplayTest, AmdBeforeIntelTakesTheFirstMappedDisplayOfItsAdapter) {
  ASSERT_NE(block(), nullptr);
  const uint32_t expected[] = {16, 1, 3, 2};  // size, count, adapter, display
  EXPECT_EQ(std::memcmp(block(), expected, sizeof(expected)), 0);
  EXPECT_EQ(os_.intel_driver.creations, 0);
  EXPECT_EQ(adl_.threading, adl::kThreadingLocked);
  // The ADL capabilities: caps masked by valids, and a range only where its bit is valid.
  adl_.valids = adl::kColorTemperature | 0x100;
  uint32_t caps = 0, returned = 0;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISPLAY, entry(), HAL_DISPLAY_INFO_COLOR_CAPS, &caps, 4,
                                &returned),
            1u);
  EXPECT_EQ(caps, static_cast<uint32_t>(adl::kColorTemperature));
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_COLOR_TEMPERATURE),
            (DpColorRange{6500, 6500, 4000, 10000, 100}));
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_COLOR_TEMPERATURE, 19), std::nullopt);
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_BRIGHTNESS), std::nullopt);
  for (const uint32_t other : {1u, 4u}) EXPECT_EQ(Range(other), std::nullopt) << other;
}

TEST_F(AmdDisplayTest, SetsMapTheLevelOntoFourToEightThousandAfterTheSource) {
  struct Case {
    uint32_t info_class, level, mode;
    int minimum;
    std::optional<int> requested;
  };
  const Case cases[] = {
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE, 255, 0, 4000, 8000},
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE, 128, 0, 4000, 6500},  // 6505, cut to hundreds
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE, 255, 1, 4000, 6000},
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE, 0, 1, 4500, 4500},          // raised to the minimum
      {HAL_DISPLAY_SET_COLOR_TEMPERATURE, 0, 1, 6500, std::nullopt},  // then above the top
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
    EXPECT_EQ(adl_.sets.size(), c.requested ? 1u : 0u);
    if (c.requested && !adl_.sets.empty()) {
      const FakeAdl::ColorSet& set = adl_.sets[0];
      EXPECT_EQ(std::vector<int>({set.adapter, set.display, set.type, set.value}),
                std::vector<int>({3, 2, type, *c.requested}));
    }
    EXPECT_EQ(adl_.sources,
              type == adl::kColorTemperature ? std::vector<int>{0x40} : std::vector<int>{});
  }
  adl_.source_result = -1;  // a refused source stops the set
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {255, 0}), 0u);
  EXPECT_EQ(Set(HAL_DISPLAY_SET_BRIGHTNESS, {255, 0}, 7), 0u);
  EXPECT_EQ(Set(6, {255, 0}), 0u);
}

TEST_F(DisplayTest, AdlNeedsEveryEntryPointAndAMappedDisplay) {
  adl_.RemoveEntryPoint("ADL_Display_Sharpness_Caps");  // required, though never called
  EXPECT_EQ(Init({L"AMD Radeon RX 6600"}), 0u);
  EXPECT_FALSE(velhal::hal::adl::Ready());
  EXPECT_EQ(os_.module.loaded(), 0u);
  FakeSystem os;
  FakeAdl adl(os.module);
  adl.adapters = {{0, {{0, 0, 0}, {1, 1}}}};  // unmapped, and mapped to another adapter
  ScriptAdapters(os, {{L"PCI\\1", L"AMD Radeon RX 6600"}});
  DpDisplayList* list = nullptr;
  EXPECT_EQ(HalInit(HAL_CLASS_DISPLAY, &list), 0u);
  EXPECT_EQ(list, nullptr);
}

TEST_F(DisplayTest, WithoutAVendorNameInitSucceedsWithoutABlock) {
  EXPECT_EQ(Init({L"amd radeon (lower case)", L"NVIDIA GeForce GTX 470"}), 1u);
  EXPECT_EQ(block(), nullptr);
  EXPECT_EQ(os_.module.loads, 0);
  uint32_t value = 0;
  EXPECT_EQ(Set(HAL_DISPLAY_SET_BRIGHTNESS, {50}), 0u);
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISPLAY, &value, HAL_DISPLAY_INFO_BRIGHTNESS, &value, 20,
                                &value),
            0u);
}

class IntelDisplayTest : public DisplayTest {
 protected:
  void SetUp() override {
    os_.display.OneScreen(L"\\\\?\\DISPLAY#SHP14D0#4&1d7b2c5&0&UID265988#{e6f07b5f}");
    ASSERT_EQ(Init({L"Intel(R) Iris(R) Xe Graphics", L"AMD Radeon(TM) Graphics"}), 1u);
  }
  uint16_t RampEnd(size_t channel) {
    const auto& ramps = os_.intel_driver.control.ramps;
    return ramps.empty() ? 0 : ramps.back().entries[channel * 256 + 255];
  }
  std::vector<std::wstring>& messages() { return os_.debug.messages; }
};

TEST_F(IntelDisplayTest, IntelFirstHoldsOneDriverObjectAndLeavesTheApartmentAsItWas) {
  EXPECT_EQ(block(), nullptr);
  EXPECT_EQ(Init({}), 1u);  // already held
  EXPECT_EQ(os_.intel_driver.creations, 1);
  EXPECT_EQ(os_.intel_driver.control.references, 2u);  // the test's and the library's
  EXPECT_EQ(os_.module.loads, 0);                      // no AMD library looked for
  EXPECT_EQ(os_.com.uninitialize_calls, os_.com.initialize_calls);

  FakeSystem os;  // a creation that fails is tried again next time
  ScriptAdapters(os, {{L"PCI\\1", L"Intel(R) UHD Graphics"}});
  os.intel_driver.create_result = REGDB_E_CLASSNOTREG;
  DpDisplayList* list = nullptr;
  EXPECT_EQ(HalInit(HAL_CLASS_DISPLAY, &list), 0u);
  os.intel_driver.create_result = S_OK;
  EXPECT_EQ(HalInit(HAL_CLASS_DISPLAY, &list), 1u);
  EXPECT_EQ(os.intel_driver.creations, 2);
}

TEST_F(IntelDisplayTest, BrightnessIsTheActiveSchemeValueOfThePowerSource) {
  os_.power.ac_value = 70;
  os_.power.dc_value = 40;
  for (const BYTE line : {1, 255, 0}) {  // unknown (255) counts as on line
    SCOPED_TRACE(int{line});
    os_.power.status.ACLineStatus = line;
    EXPECT_EQ(Range(HAL_DISPLAY_INFO_BRIGHTNESS), (DpColorRange{line ? 70u : 40u, 0, 0, 100, 0}));
    const FakePower::Access& read = os_.power.reads.back();
    EXPECT_EQ(read.ac, line != 0);
    EXPECT_TRUE(read.scheme == os_.power.scheme && read.subgroup == kVideoSubgroup &&
                read.setting == kBrightness);
  }
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_BRIGHTNESS, 19), std::nullopt);
  EXPECT_EQ(os_.power.reads.size(), 3u);  // too short: nothing is asked

  // Only a buffer shorter than 4 bytes is held to 0-100: callers rely on it.
  EXPECT_EQ(Set(HAL_DISPLAY_SET_BRIGHTNESS, {150}), 1u);
  EXPECT_EQ(Set(HAL_DISPLAY_SET_BRIGHTNESS, {150}, 2), 0u);
  EXPECT_EQ(Set(HAL_DISPLAY_SET_BRIGHTNESS, {100}, 1), 1u);
  ASSERT_EQ(os_.power.writes.size(), 2u);
  EXPECT_EQ(os_.power.writes[0].value, 150u);
  EXPECT_FALSE(os_.power.writes[1].ac);
  EXPECT_TRUE(os_.power.writes[1].setting == kBrightness);
  EXPECT_EQ(os_.power.activated, (std::vector<GUID>{os_.power.scheme, os_.power.scheme}));
  EXPECT_TRUE(messages().empty());
}

TEST_F(IntelDisplayTest, PowerSchemeFailuresAreLoggedInTheirOwnWords) {
  const std::wstring query = L"(`anonymous-namespace'::QueryLight)\n";
  const std::wstring set = L"(`anonymous-namespace'::SetLight)\n";
  os_.power.status_failures = -1;
  os_.power.status_error = 31;
  os_.power.read_result = ERROR_CALL_NOT_IMPLEMENTED;
  os_.power.write_result = 5;
  os_.power.set_scheme_result = 87;
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_BRIGHTNESS), std::nullopt);
  EXPECT_EQ(Set(HAL_DISPLAY_SET_BRIGHTNESS, {50}), 0u);
  os_.power.status_failures = 0;
  os_.power.status.ACLineStatus = 1;
  EXPECT_EQ(Range(HAL_DISPLAY_INFO_BRIGHTNESS), std::nullopt);
  EXPECT_EQ(Set(HAL_DISPLAY_SET_BRIGHTNESS, {50}), 0u);
  os_.power.get_scheme_result = ERROR_CALL_NOT_IMPLEMENTED;  // no scheme: nothing to write into
  EXPECT_EQ(Set(HAL_DISPLAY_SET_BRIGHTNESS, {50}), 0u);
  EXPECT_EQ(messages(), (std::vector<std::wstring>{
                            L"[DpQueryInformation] GetSystemPowerStatus Result:31" + query,
                            L"[DpQueryInformation] PowerReadDCValueIndex Result:120" + query,
                            L"[DpSetInformation] GetSystemPowerStatus Result:31" + set,
                            L"[DpSetInformation] PowerWriteDCValueIndex Result:5" + set,
                            L"[DpSetInformation] PowerSetActiveScheme Result:87" + set,
                            L"[DpQueryInformation] PowerReadACValueIndex Result:120" + query,
                            L"[DpSetInformation] PowerWriteACValueIndex Result:5" + set,
                            L"[DpSetInformation] PowerSetActiveScheme Result:87" + set,
                            L"[DpSetInformation] PowerGetActiveScheme Result:120" + set}));
  EXPECT_EQ(os_.power.writes.size(), 2u);
}

TEST_F(IntelDisplayTest, TemperatureAndGainsBecomeRampsOnThePrimaryDisplay) {
  FakeCuiControl& control = os_.intel_driver.control;
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {0, 0}), 1u);
  EXPECT_EQ(control.adapters_asked.back(), L"\\\\.\\DISPLAY1");
  EXPECT_EQ(control.ramps.back().display, control.display);
  EXPECT_EQ(control.ramps.back().size, 1536u);
  EXPECT_EQ(std::vector<uint16_t>({RampEnd(0), RampEnd(1), RampEnd(2)}),
            std::vector<uint16_t>({65535, 65535, 55705}));                // blue x 0.85
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE_ALIAS, {300, 7}), 1u);  // warmth held to 255
  const uint16_t cooler = static_cast<uint16_t>(std::floor(65535 * (1 - 127.0 / 128 * 0.06) + 0.5));
  EXPECT_EQ(std::vector<uint16_t>({RampEnd(0), RampEnd(1), RampEnd(2)}),
            std::vector<uint16_t>({cooler, cooler, 65535}));
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {128}, 1), 1u);  // class 2 checks no size
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE_ALIAS, {128}), 0u);
  // Gains 1, 0.5, 0.25 at full level with a floor of 0.5: everything halves once more.
  float gains[5] = {1.0f, 0.5f, 0.25f, 255.0f, 0.5f};
  uint32_t returned = 0;
  EXPECT_EQ(HalSetInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_SET_COLOR_GAINS, gains, 20,
                              &returned),
            1u);
  EXPECT_EQ(std::vector<uint16_t>({RampEnd(0), RampEnd(1), RampEnd(2)}),
            std::vector<uint16_t>({32768, 16384, 8192}));
  EXPECT_EQ(HalSetInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_SET_COLOR_GAINS, gains, 19,
                              &returned),
            0u);
  // A failing HRESULT or status of the driver, or no primary display, is a 0 result.
  control.set_status = 0x1001;
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {10, 0}), 0u);
  control.set_status = 0;
  control.enum_result = E_NOINTERFACE;
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {10, 0}), 0u);
  control.enum_result = S_OK;
  os_.display.adapters[0].flags = DISPLAY_DEVICE_ACTIVE;
  EXPECT_EQ(Set(HAL_DISPLAY_SET_COLOR_TEMPERATURE, {10, 0}), 0u);
  EXPECT_EQ(control.ramps.size(), 5u);
}

TEST_F(IntelDisplayTest, ColourParametersAreThePanelMatrixFromTheDriverBlock) {
  FakeCuiControl& control = os_.intel_driver.control;
  for (size_t i = 0; i < control.parameter_block.size(); ++i)
    control.parameter_block[i] = static_cast<BYTE>(i);
  std::array<uint8_t, 40> buffer{};
  uint32_t returned = 0;
  const auto query = [&](uint32_t size) {
    return HalQueryInformation(HAL_CLASS_DISPLAY, nullptr, HAL_DISPLAY_INFO_COLOR_TEMPERATURE,
                               buffer.data(), size, &returned);
  };
  EXPECT_EQ(query(36), 1u);
  EXPECT_EQ(returned, 36u);
  EXPECT_EQ(std::vector<int>({buffer[0], buffer[35], buffer[36]}), std::vector<int>({8, 43, 0}));
  const GUID panel_colour_space{
      0xf64a0177, 0x1cbc, 0x46d8, {0x99, 0x82, 0x85, 0xfd, 0x1d, 0x59, 0xb9, 0xb1}};
  EXPECT_TRUE(control.parameters_asked.back() == panel_colour_space);
  EXPECT_EQ(control.parameter_sizes.back(), 92u);
  EXPECT_EQ(query(35), 0u);
  control.get_status = 3;
  EXPECT_EQ(query(36), 0u);
  control.get_result = E_UNEXPECTED;
  EXPECT_EQ(query(36), 0u);
}

TEST(GammaRampTest, RampsRiseFromZeroToTheirChannelFactorWithinSixteenBits) {
  struct Case {
    std::array<float, 3> factors;
    float scale;
    std::array<uint16_t, 3> ends;
  };
  const Case cases[] = {
      {{1.0f, 1.0f, 1.0f}, 1.0f, {65535, 65535, 65535}},
      {{0.85f, 0.94f, 1.0f}, 1.0f, {55705, 61603, 65535}},
      {{2.0f, -1.0f, NAN}, 1.0f, {65535, 0, 0}},
      {{1.0f, 1.0f, 1.0f}, 0.25f, {16384, 16384, 16384}},
  };
  for (const Case& c : cases) {
    const intel::GammaRamp ramp = intel::BuildGammaRamp(c.factors, c.scale);
    for (size_t channel = 0; channel < 3; ++channel) {
      SCOPED_TRACE(testing::Message()
                   << "channel " << channel << " of " << c.factors[channel] << " x " << c.scale);
      EXPECT_EQ(ramp[channel * 256], 0);
      EXPECT_EQ(ramp[channel * 256 + 255], c.ends[channel]);
      EXPECT_TRUE(std::is_sorted(ramp.begin() + channel * 256, ramp.begin() + channel * 256 + 256));
    }
  }
  EXPECT_EQ(intel::BuildGammaRamp({1.0f, 1.0f, 1.0f}, 1.0f)[300], (300 - 256) * 257);
  EXPECT_EQ(intel::WarmthFactors(128), (std::array<float, 3>{1.0f, 1.0f, 1.0f}));
  EXPECT_FLOAT_EQ(intel::WarmthFactors(64)[2], 1.0f - 0.075f);
}

}  // namespace
