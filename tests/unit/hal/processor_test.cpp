#include "hal/cpu.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "hal/hal_api.h"
#include "hal/processor_module.h"
#include "tests/fakes/fake_power.h"
#include "tests/fakes/fake_registry.h"
#include "tests/fakes/fake_wmi.h"

namespace {

using namespace velhal::testing;

const std::wstring kKey = L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";
const std::wstring kCimV2 = L"ROOT\\CIMV2";

class ProcessorTest : public ::testing::Test {
 protected:
  void SetUp() override { registry_.AddKey(kKey); }
  void Name(const std::wstring& name) { registry_.SetString(kKey, L"ProcessorNameString", name); }
  void Number(const wchar_t* wql, const wchar_t* property, uint32_t value) {
    wmi_.Script(kCimV2, wql, property, {FakeValue::UInt32(value)});
  }
  std::optional<uint32_t> QueryNumber(uint32_t info_class, uint32_t size = 4) {
    uint32_t value = 0, returned = 0xA5A5;
    if (!CpuQueryInformation(info_class, &value, size, &returned)) return std::nullopt;
    EXPECT_EQ(returned, 0xA5A5u);  // numbers leave returnedSize alone
    return value;
  }

  FakeRegistry registry_;
  FakeWmi wmi_;
  FakePower power_;
  velhal::os::ScopedBackend<velhal::os::Registry> b1_{registry_};
  velhal::os::ScopedBackend<velhal::os::Wmi> b2_{wmi_};
  velhal::os::ScopedBackend<velhal::os::Power> b3_{power_};
};

TEST_F(ProcessorTest, TypeFollowsThePositionRules) {
  const std::pair<const wchar_t*, uint32_t> cases[] = {
      {L"Intel(R) Core(TM) i7-8650U CPU @ 1.90GHz", 1},
      {L"INTEL Xeon", 1},                        // only ASCII letters are lowered, all of them
      {L"11th Gen Intel(R) Core(TM) i5-1135G7", 1},  // "intel(r)" counts anywhere
      {L"Genuine Intel CPU", 0},                 // plain "intel" only at the start
      {L"AMD Ryzen 7 PRO 4750U", 2},
      {L"  AMD Ryzen", 0},
      {L"Snapdragon (TM) 8cx Gen 3", 3},
      {L"Qualcomm Snapdragon X Elite", 0},
      {L"", 0},
  };
  for (const auto& [name, type] : cases) {
    SCOPED_TRACE(testing::Message() << name);
    Name(name);
    EXPECT_EQ(CpuInit(), 1u);
    EXPECT_EQ(QueryNumber(18), type);
  }
  // Without the registry value the name comes from WMI.
  registry_ = FakeRegistry();
  wmi_.Script(kCimV2, L"SELECT Name FROM Win32_Processor", L"Name",
              {FakeValue::Text(L"AMD EPYC")});
  EXPECT_EQ(Cpu().GetCputype(), HalCpuTypeAmd);
}

TEST_F(ProcessorTest, TextsNeedRoomForTheirTerminator) {
  const std::wstring name = L"Example CPU 3000";
  Name(name);
  std::array<char, 32> buffer;
  buffer.fill('#');
  uint32_t returned = 0;
  EXPECT_EQ(CpuQueryInformation(1, buffer.data(), static_cast<uint32_t>(name.size()), &returned), 0u);
  EXPECT_EQ(buffer[0], '#');
  EXPECT_EQ(CpuQueryInformation(1, buffer.data(), static_cast<uint32_t>(name.size() + 1), &returned),
            1u);
  EXPECT_EQ(returned, name.size());
  EXPECT_EQ(std::string(buffer.data()), "Example CPU 3000");

  // The vendor's WMI fallback asks for the property under its historical name, so a WMI that
  // only knows "Manufacturer" gives nothing; one that answers the literal name is used.
  wmi_.Script(kCimV2, L"SELECT Manufacturer FROM Win32_Processor", L"Manufacturer",
              {FakeValue::Text(L"GenuineIntel")});
  EXPECT_EQ(CpuQueryInformation(0, buffer.data(), 32, &returned), 0u);
  wmi_.Script(kCimV2, L"SELECT Manufacturer FROM Win32_Processor", L"REG_NAME_CPU_VENDOR",
              {FakeValue::Text(L"GenuineIntel")});
  EXPECT_EQ(CpuQueryInformation(0, buffer.data(), 32, &returned), 1u);
  registry_.SetString(kKey, L"VendorIdentifier", L"AuthenticAMD");
  EXPECT_EQ(CpuQueryInformation(0, buffer.data(), 32, &returned), 1u);
  EXPECT_EQ(std::string(buffer.data()), "AuthenticAMD");
  EXPECT_EQ(CpuQueryInformation(0, nullptr, 32, &returned), 0u);
  EXPECT_EQ(CpuQueryInformation(0, buffer.data(), 32, nullptr), 0u);
}

TEST_F(ProcessorTest, AssociativityTextsKeepTheirBlanks) {
  const std::pair<uint32_t, const char*> cases[] = {
      {3, "Direct Mapped "}, {4, "2-way"}, {5, "Fully Associative "}, {6, "4-way"},
      {7, "8-way"},          {8, "16-way"}, {9, "Unknown "},           {0, "Unknown "},
  };
  for (const auto& [value, text] : cases) {
    SCOPED_TRACE(value);
    Number(L"SELECT Associativity FROM Win32_CacheMemory WHERE Level='4'", L"Associativity", value);
    std::array<char, 64> buffer{};
    uint32_t returned = 0;
    EXPECT_EQ(CpuQueryInformation(3, buffer.data(), 64, &returned), 1u);
    EXPECT_EQ(std::string(buffer.data()), text);
  }
  std::array<char, 64> buffer{};
  uint32_t returned = 0;
  EXPECT_EQ(CpuQueryInformation(4, buffer.data(), 64, &returned), 1u);  // unscripted: read fails
  EXPECT_EQ(std::string(buffer.data()), "Unknown ");
}

TEST_F(ProcessorTest, NumbersOfZeroOrAllOnesAreFailures) {
  Number(L"SELECT CurrentClockSpeed FROM Win32_Processor", L"CurrentClockSpeed", 2596);
  Number(L"SELECT LoadPercentage FROM Win32_Processor", L"LoadPercentage", 0);
  Number(L"SELECT MaxClockSpeed FROM Win32_Processor", L"MaxClockSpeed", 0xFFFFFFFF);
  Number(L"SELECT InstalledSize FROM Win32_CacheMemory WHERE Level='5'", L"InstalledSize", 32768);
  EXPECT_EQ(QueryNumber(7), 2596u);
  EXPECT_EQ(QueryNumber(7, 3), std::nullopt);
  EXPECT_EQ(QueryNumber(17), std::nullopt);  // an idle processor reports failure
  EXPECT_EQ(QueryNumber(9), std::nullopt);
  EXPECT_EQ(QueryNumber(14), 32768u);
  EXPECT_EQ(QueryNumber(13), std::nullopt);
  for (uint32_t unanswered : {5u, 15u, 16u, 19u, 0xFFFFFFFFu}) {
    EXPECT_EQ(QueryNumber(unanswered), std::nullopt) << unanswered;
  }
  Cpu cpu;
  EXPECT_EQ(cpu.GetCpuCurClock(), 2596u);
  EXPECT_EQ(cpu.GetL3CacheSize(), 32768u);
  EXPECT_EQ(cpu.GetCpuLoadPercent(), 0u);
  EXPECT_EQ(cpu.GetCpuUsage(), 0.0f);
}

TEST_F(ProcessorTest, ExtendedProbeNeedsAKnownVendorAndLeaf80000008) {
  power_.cpuid[static_cast<int>(0x80000000)] = {static_cast<int>(0x80000021), 0, 0, 0};
  Name(L"Example CPU");  // no vendor recognised
  CpuInit();
  EXPECT_EQ(QueryNumber(6), std::nullopt);
  EXPECT_TRUE(power_.cpuid_leaves.empty());

  Name(L"AMD EPYC");
  CpuInit();
  EXPECT_EQ(QueryNumber(6), 0u);
  EXPECT_EQ(power_.cpuid_leaves,
            (std::vector<int>{static_cast<int>(0x80000000), static_cast<int>(0x80000008)}));
  power_.cpuid[static_cast<int>(0x80000000)] = {static_cast<int>(0x80000007), 0, 0, 0};
  EXPECT_EQ(QueryNumber(6), std::nullopt);
}

}  // namespace
