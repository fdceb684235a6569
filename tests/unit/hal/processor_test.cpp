#include "hal/cpu.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "hal/hal_api.h"
#include "tests/support/fake_system.h"

namespace {

using velhal::testing::FakeValue;

const std::wstring kKey = L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";
const std::wstring kCimV2 = L"ROOT\\CIMV2";

class ProcessorTest : public ::testing::Test {
 protected:
  void Name(const std::wstring& name) {
    os_.registry.SetString(kKey, L"ProcessorNameString", name);
  }
  void Number(const wchar_t* wql, const wchar_t* property, uint32_t value) {
    os_.wmi.Script(kCimV2, wql, property, {FakeValue::UInt32(value)});
  }
  std::optional<uint32_t> QueryNumber(uint32_t info_class, uint32_t size = 4) {
    uint32_t value = 0, returned = 0xA5A5;
    if (!CpuQueryInformation(info_class, &value, size, &returned)) return std::nullopt;
    EXPECT_EQ(returned, 0xA5A5u);  // numbers leave returnedSize alone
    return value;
  }
  std::string Text(uint32_t info_class) {
    std::array<char, 64> buffer{};
    uint32_t returned = 0;
    return CpuQueryInformation(info_class, buffer.data(), 64, &returned) ? buffer.data()
                                                                         : "<failed>";
  }

  velhal::testing::FakeSystem os_;
};

TEST_F(ProcessorTest, TypeFollowsThePositionRules) {
  const std::pair<const wchar_t*, uint32_t> cases[] = {
      {L"Intel(R) Core(TM) i7-8650U CPU @ 1.90GHz", HalCpuTypeIntel},
      {L"INTEL Xeon", HalCpuTypeIntel},  // only ASCII letters are lowered, all of them
      {L"11th Gen Intel(R) Core(TM) i5-1135G7", HalCpuTypeIntel},  // "intel(r)" counts anywhere
      {L"Genuine Intel CPU", HalCpuTypeUnknown},  // plain "intel" only at the start
      {L"AMD Ryzen 7 PRO 4750U", HalCpuTypeAmd},
      {L"  AMD Ryzen", HalCpuTypeUnknown},
      {L"Snapdragon (TM) 8cx Gen 3", HalCpuTypeSnapdragon},
      {L"Qualcomm Snapdragon X Elite", HalCpuTypeUnknown},
      {L"", HalCpuTypeUnknown},
  };
  for (const auto& [name, type] : cases) {
    SCOPED_TRACE(testing::Message() << name);
    Name(name);
    EXPECT_EQ(CpuInit(), 1u);
    EXPECT_EQ(QueryNumber(HAL_CPU_INFO_TYPE), type);
  }
  // An empty registry value sends the name to WMI.
  os_.wmi.Script(kCimV2, L"SELECT Name FROM Win32_Processor", L"Name",
                 {FakeValue::Text(L"AMD EPYC")});
  EXPECT_EQ(Cpu().GetCputype(), HalCpuTypeAmd);
}

TEST_F(ProcessorTest, TextsNeedRoomForTheirTerminatorAndTheVendorFallbackKeepsItsName) {
  const std::wstring name = L"Example CPU 3000";
  Name(name);
  std::array<char, 32> buffer;
  buffer.fill('#');
  uint32_t returned = 0;
  EXPECT_EQ(CpuQueryInformation(HAL_CPU_INFO_NAME, buffer.data(),
                                static_cast<uint32_t>(name.size()), &returned),
            0u);
  EXPECT_EQ(buffer[0], '#');
  EXPECT_EQ(CpuQueryInformation(HAL_CPU_INFO_NAME, buffer.data(),
                                static_cast<uint32_t>(name.size() + 1), &returned),
            1u);
  EXPECT_EQ(returned, name.size());
  EXPECT_EQ(std::string(buffer.data()), "Example CPU 3000");

  // The vendor's WMI fallback asks for the property under its historical name, so a WMI that
  // only knows "Manufacturer" gives nothing; one that answers the literal name is used.
  os_.wmi.Script(kCimV2, L"SELECT Manufacturer FROM Win32_Processor", L"Manufacturer",
                 {FakeValue::Text(L"GenuineIntel")});
  EXPECT_EQ(Text(HAL_CPU_INFO_VENDOR), "<failed>");
  os_.wmi.Script(kCimV2, L"SELECT Manufacturer FROM Win32_Processor", L"REG_NAME_CPU_VENDOR",
                 {FakeValue::Text(L"GenuineIntel")});
  EXPECT_EQ(Text(HAL_CPU_INFO_VENDOR), "GenuineIntel");
  os_.registry.SetString(kKey, L"VendorIdentifier", L"AuthenticAMD");
  EXPECT_EQ(Text(HAL_CPU_INFO_VENDOR), "AuthenticAMD");
  EXPECT_EQ(CpuQueryInformation(HAL_CPU_INFO_VENDOR, nullptr, 32, &returned), 0u);
  EXPECT_EQ(CpuQueryInformation(HAL_CPU_INFO_VENDOR, buffer.data(), 32, nullptr), 0u);

  // Associativity texts keep their trailing blanks; an unknown or unread value is "Unknown ".
  for (const auto& [value, text] :
       {std::pair{3u, "Direct Mapped "}, std::pair{5u, "Fully Associative "},
        std::pair{7u, "8-way"}, std::pair{9u, "Unknown "}}) {
    SCOPED_TRACE(value);
    Number(L"SELECT Associativity FROM Win32_CacheMemory WHERE Level='4'", L"Associativity", value);
    EXPECT_EQ(Text(HAL_CPU_INFO_L2_ASSOCIATIVITY), text);
  }
  EXPECT_EQ(Text(HAL_CPU_INFO_L3_ASSOCIATIVITY), "Unknown ");  // unscripted: the read fails
}

TEST_F(ProcessorTest, NumbersOfZeroOrAllOnesAreFailures) {
  Number(L"SELECT CurrentClockSpeed FROM Win32_Processor", L"CurrentClockSpeed", 2596);
  Number(L"SELECT LoadPercentage FROM Win32_Processor", L"LoadPercentage", 0);
  Number(L"SELECT MaxClockSpeed FROM Win32_Processor", L"MaxClockSpeed", 0xFFFFFFFF);
  Number(L"SELECT InstalledSize FROM Win32_CacheMemory WHERE Level='5'", L"InstalledSize", 32768);
  EXPECT_EQ(QueryNumber(HAL_CPU_INFO_CURRENT_CLOCK), 2596u);
  EXPECT_EQ(QueryNumber(HAL_CPU_INFO_CURRENT_CLOCK, 3), std::nullopt);
  EXPECT_EQ(QueryNumber(HAL_CPU_INFO_LOAD_PERCENTAGE), std::nullopt);  // idle reports failure
  EXPECT_EQ(QueryNumber(HAL_CPU_INFO_MAX_CLOCK), std::nullopt);
  EXPECT_EQ(QueryNumber(HAL_CPU_INFO_L3_CACHE_SIZE), 32768u);
  EXPECT_EQ(QueryNumber(HAL_CPU_INFO_L2_CACHE_SIZE), std::nullopt);
  for (uint32_t unanswered : {5u, 15u, 16u, 19u, 0xFFFFFFFFu}) {
    EXPECT_EQ(QueryNumber(unanswered), std::nullopt) << unanswered;
  }
  Cpu cpu;
  EXPECT_EQ(cpu.GetCpuCurClock(), 2596u);
  EXPECT_EQ(cpu.GetL3CacheSize(), 32768u);
  EXPECT_EQ(cpu.GetCpuLoadPercent(), 0u);
}

TEST_F(ProcessorTest, ExtendedProbeNeedsAKnownVendorAndLeaf80000008) {
  auto& cpuid = os_.system_info.cpuid;
  cpuid[static_cast<int>(0x80000000)] = {static_cast<int>(0x80000021), 0, 0, 0};
  Name(L"Example CPU");  // no vendor recognised
  CpuInit();
  EXPECT_EQ(QueryNumber(HAL_CPU_INFO_EXTENDED_LEAF_PROBE), std::nullopt);
  EXPECT_TRUE(os_.system_info.cpuid_leaves.empty());

  Name(L"AMD EPYC");
  CpuInit();
  EXPECT_EQ(QueryNumber(HAL_CPU_INFO_EXTENDED_LEAF_PROBE), 0u);
  EXPECT_EQ(os_.system_info.cpuid_leaves,
            (std::vector<int>{static_cast<int>(0x80000000), static_cast<int>(0x80000008)}));
  cpuid[static_cast<int>(0x80000000)] = {static_cast<int>(0x80000007), 0, 0, 0};
  EXPECT_EQ(QueryNumber(HAL_CPU_INFO_EXTENDED_LEAF_PROBE), std::nullopt);
}

}  // namespace
