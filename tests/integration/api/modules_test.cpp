// Processor, memory and battery through VelHal.dll, against the system's registry, WMI and power
// status read independently by the test.
#include "platform/win32.h"

#include "hal/battery.h"
#include "hal/cpu.h"
#include "hal/hal_api.h"
#include "hal/memory.h"

#include <gtest/gtest.h>

#include <intrin.h>

#include <cstdlib>

#include "tests/support/hal_query.h"
#include "tests/support/raw_wmi.h"
#include "tests/support/wine.h"

namespace {

using velhal::testing::RegistryProcessorName;

using velhal::testing::QueryNumber;
using velhal::testing::RawWmiFirstNumber;
using velhal::testing::RawWmiTexts;

TEST(ProcessorModuleTest, NameAndNumbersAgreeWithTheSystem) {
  Cpu cpu;
  const std::wstring name = RegistryProcessorName();
  ASSERT_FALSE(name.empty());
  EXPECT_EQ(cpu.GetCpuName(), name);
  if (name.rfind(L"AMD", 0) == 0) {
    EXPECT_EQ(cpu.GetCputype(), HalCpuTypeAmd);
  } else if (name.rfind(L"Intel", 0) == 0) {
    EXPECT_EQ(cpu.GetCputype(), HalCpuTypeIntel);
  }

  const std::pair<uint32_t, const wchar_t*> numeric[] = {
      {HAL_CPU_INFO_CURRENT_CLOCK, L"CurrentClockSpeed"},
      {HAL_CPU_INFO_EXTERNAL_CLOCK, L"ExtClock"},
      {HAL_CPU_INFO_MAX_CLOCK, L"MaxClockSpeed"},
      {HAL_CPU_INFO_CORES, L"NumberOfCores"},
      {HAL_CPU_INFO_LOGICAL_PROCESSORS, L"NumberOfLogicalProcessors"},
      {HAL_CPU_INFO_LOAD_PERCENTAGE, L"LoadPercentage"},
  };
  for (const auto& [info_class, property] : numeric) {
    SCOPED_TRACE(testing::Message() << property);
    std::optional<uint32_t> expected = RawWmiFirstNumber(
        (std::wstring(L"SELECT ") + property + L" FROM Win32_Processor").c_str(), property);
    if (expected == 0u || expected == 0xFFFFFFFFu) expected.reset();  // no reading
    uint32_t value = 0, returned = 0;
    const uint32_t ok = CpuQueryInformation(info_class, &value, 4, &returned);
    EXPECT_EQ(ok ? std::optional(value) : std::nullopt, expected);
  }

  // The extended probe: this processor's own CPUID decides.
  int registers[4] = {};
  __cpuid(registers, static_cast<int>(0x80000000));
  const bool known = cpu.GetCputype() == HalCpuTypeIntel || cpu.GetCputype() == HalCpuTypeAmd;
  uint32_t value = 7, returned = 0xA5;
  const uint32_t probed =
      CpuQueryInformation(HAL_CPU_INFO_EXTENDED_LEAF_PROBE, &value, 4, &returned);
  if (known && registers[0] >= static_cast<int>(0x80000008)) {
    EXPECT_EQ(probed, 1u);
    EXPECT_EQ(value, 0u);
    EXPECT_EQ(returned, 0xA5u);  // numbers of this class leave returnedSize alone
  } else {
    EXPECT_EQ(probed, 0u);
  }
}

TEST(MemoryModuleTest, ModulesAgreeWithWin32PhysicalMemory) {
  const auto capacities =
      RawWmiTexts(L"ROOT\\CIMV2", L"SELECT Capacity FROM Win32_PhysicalMemory", L"Capacity");
  ASSERT_TRUE(capacities.has_value());
  if (capacities->empty()) GTEST_SKIP() << "the system reports no memory module";

  Memory memory;
  uint32_t count = 0;
  ASSERT_EQ(memory.GetMemoryNums(count), 1);
  EXPECT_EQ(count, capacities->size());
  uint64_t expected_total = 0;
  for (const std::wstring& text : *capacities) expected_total += std::stoull(text);
  uint64_t total = 0;
  EXPECT_EQ(memory.GetTotalMemoryNums(total), 1);
  EXPECT_EQ(total, expected_total);

  HalDeviceList* list = nullptr;
  ASSERT_EQ(HalInit(HAL_CLASS_MEMORY, &list), 1u);
  EXPECT_EQ(list->count, count);
  std::free(list);
  std::wstring locator;
  EXPECT_EQ(memory.GetLocatorbyIndex(locator, 0), 1);
  EXPECT_FALSE(locator.empty());
  EXPECT_GT(memory.GetMemoryLoad(), 0u);
  EXPECT_GT(memory.GetMemoryLoadF(), 0.0f);
  EXPECT_LT(memory.GetMemoryLoadF(), 1.0f);
}

TEST(BatteryModuleTest, AgreesWithThePowerStatus) {
  SYSTEM_POWER_STATUS status{};
  ASSERT_TRUE(::GetSystemPowerStatus(&status));
  EXPECT_EQ(QueryNumber<uint32_t>(HAL_CLASS_BATTERY, nullptr, HAL_BATTERY_INFO_AC_LINE_STATUS),
            uint32_t{status.ACLineStatus});
  Battery battery;
  const bool present = status.BatteryFlag != 128 && status.BatteryFlag != 255;
  EXPECT_EQ(battery.CheckBattery(), present);
  if (!present) {
    for (uint32_t info_class :
         {HAL_BATTERY_INFO_PRESENT, HAL_BATTERY_INFO_REMAINING_CAPACITY,
          HAL_BATTERY_INFO_FULL_CHARGE_CAPACITY, HAL_BATTERY_INFO_DESIGN_CAPACITY,
          HAL_BATTERY_INFO_VOLTAGE, HAL_BATTERY_INFO_LOSS}) {
      EXPECT_EQ(QueryNumber<uint32_t>(HAL_CLASS_BATTERY, nullptr, info_class), std::nullopt)
          << info_class;
    }
    EXPECT_EQ(battery.GetBatteryPercent(), 0u);
  }
  // No maker's firmware interface here: thresholds are not supported.
  StBatteryChangeThresholdLimit limit{50, 80};
  EXPECT_FALSE(battery.SetChargeThreshold(limit));
  EXPECT_FALSE(battery.GetChargeThreshold(limit));
}

}  // namespace
