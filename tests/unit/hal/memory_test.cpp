#include "hal/memory.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "hal/hal_api.h"
#include "tests/support/fake_system.h"

namespace {

using namespace velhal::testing;

const std::wstring kCimV2 = L"ROOT\\CIMV2";

class MemoryTest : public ::testing::Test {
 protected:
  void Locators(std::vector<FakeValue> rows) {
    os_.wmi.Script(kCimV2, L"SELECT DeviceLocator FROM Win32_PhysicalMemory", L"DeviceLocator",
                   std::move(rows));
  }
  void Banks(std::vector<FakeValue> rows) {
    os_.wmi.Script(kCimV2, L"SELECT BankLabel FROM Win32_PhysicalMemory", L"BankLabel",
                   std::move(rows));
  }
  void Field(const std::wstring& field, const std::wstring& condition, const std::wstring& key,
             const std::wstring& value) {
    os_.wmi.Script(
        kCimV2,
        L"SELECT " + field + L" FROM Win32_PhysicalMemory WHERE " + condition + L"='" + key + L"'",
        field, {FakeValue::Text(value)});
  }
  uint32_t QueryText(uint32_t index, uint32_t info_class, std::array<char, 64>& buffer,
                     uint32_t size, uint32_t& returned) {
    HalDeviceEntry entry{nullptr, index, 0};
    buffer.fill('\0');
    return MmQueryInformation(&entry, info_class, buffer.data(), size, &returned);
  }

  FakeSystem os_;
};

TEST_F(MemoryTest, OneLocatorWithoutChannelSwitchesEveryModuleToBankLabels) {
  Locators({FakeValue::Text(L"ChannelA-DIMM0"), FakeValue::Text(L"ChannelB-DIMM0")});
  Banks({FakeValue::Text(L"BANK 0"), FakeValue::Text(L"BANK 2")});
  Field(L"Manufacturer", L"DeviceLocator", L"ChannelB-DIMM0", L"Example Memory");
  std::array<char, 64> text;
  uint32_t returned = 0;
  EXPECT_EQ(QueryText(1, HAL_MEMORY_INFO_MANUFACTURER, text, 64, returned), 1u);
  EXPECT_EQ(std::string(text.data()), "Example Memory");

  // The first locator decides: "channel" in any case, at any position.
  Locators({FakeValue::Text(L"DIMM 0"), FakeValue::Text(L"ChannelB-DIMM0")});
  Field(L"Manufacturer", L"BankLabel", L"BANK 2", L"By bank");
  EXPECT_EQ(QueryText(1, HAL_MEMORY_INFO_LOCATOR, text, 64, returned), 1u);
  EXPECT_EQ(std::string(text.data()), "BANK 2");
  EXPECT_EQ(QueryText(1, HAL_MEMORY_INFO_MANUFACTURER, text, 64, returned), 1u);
  EXPECT_EQ(std::string(text.data()), "By bank");
  Locators({FakeValue::Text(L"P0 CHANNEL A")});
  Banks({});
  EXPECT_EQ(QueryText(0, HAL_MEMORY_INFO_LOCATOR, text, 64, returned), 1u);
  EXPECT_EQ(std::string(text.data()), "P0 CHANNEL A");
}

TEST_F(MemoryTest, InitAndCountFollowTheModules) {
  Locators({FakeValue::Text(L"ChannelA-DIMM0"), FakeValue::Text(L"ChannelB-DIMM0")});
  HalDeviceList* list = nullptr;
  ASSERT_EQ(HalInit(HAL_CLASS_MEMORY, &list), 1u);
  EXPECT_EQ(list->count, 2u);
  std::free(list);

  uint32_t count = 0, returned = 0;
  EXPECT_EQ(MmQueryInformation(nullptr, HAL_MEMORY_INFO_COUNT, &count, 4, &returned), 1u);
  EXPECT_EQ(count, 2u);
  std::array<unsigned char, 3> small{0xEE, 0xEE, 0xEE};
  errno = 0;
  EXPECT_EQ(MmQueryInformation(nullptr, HAL_MEMORY_INFO_COUNT, small.data(), 3, &returned), 0u);
  EXPECT_EQ(errno, 34);
  EXPECT_EQ(small, (std::array<unsigned char, 3>{}));
  EXPECT_EQ(MmQueryInformation(nullptr, 7, &count, 4, &returned), 0u);

  Locators({});
  Banks({});
  list = nullptr;
  EXPECT_EQ(MmInit(&list), 0u);
  EXPECT_EQ(list, nullptr);
  EXPECT_EQ(MmQueryInformation(nullptr, HAL_MEMORY_INFO_COUNT, &count, 4, &returned), 0u);
}

TEST_F(MemoryTest, FieldsKeepTheirRules) {
  const std::wstring locator = L"ChannelA-DIMM01";  // 15 characters
  Locators({FakeValue::Text(locator + L"X")});      // 16
  const std::wstring key = locator + L"X";
  Field(L"Capacity", L"DeviceLocator", key, L"17179869184");
  Field(L"Speed", L"DeviceLocator", key, L"3200");
  std::array<char, 64> text;
  uint32_t returned = 0;
  EXPECT_EQ(QueryText(0, HAL_MEMORY_INFO_LOCATOR, text, 16, returned), 0u);
  text.fill('#');
  HalDeviceEntry entry{nullptr, 0, 0};
  EXPECT_EQ(MmQueryInformation(&entry, HAL_MEMORY_INFO_LOCATOR, text.data(), 17, &returned), 1u);
  EXPECT_EQ(returned, 16u);
  EXPECT_EQ(text[16], '#');  // no NUL is written: callers pass zeroed buffers
  EXPECT_EQ(QueryText(1, HAL_MEMORY_INFO_LOCATOR, text, 64, returned), 0u);  // past the modules
  EXPECT_EQ(MmQueryInformation(nullptr, HAL_MEMORY_INFO_LOCATOR, text.data(), 64, &returned), 0u);

  Memory memory;
  uint64_t bytes = 0;
  uint32_t speed = 0;
  EXPECT_EQ(memory.GetCapacitybyIndex(bytes, 0), 1);
  EXPECT_EQ(bytes, 17179869184u);
  EXPECT_EQ(memory.GetSpeedbyIndex(speed, 0), 1);
  EXPECT_EQ(speed, 3200u);
  for (const wchar_t* bad : {L"0", L"", L"fast", L"99999999999999999999999"}) {
    SCOPED_TRACE(testing::Message() << bad);
    Field(L"Speed", L"DeviceLocator", key, bad);
    Field(L"Capacity", L"DeviceLocator", key, bad);
    EXPECT_EQ(memory.GetSpeedbyIndex(speed, 0), 0);
    EXPECT_EQ(speed, 0u);
    EXPECT_EQ(memory.GetCapacitybyIndex(bytes, 0), 0);
  }
  Field(L"Speed", L"DeviceLocator", key, L"4294967295");
  EXPECT_EQ(memory.GetSpeedbyIndex(speed, 0), 0);
}

TEST_F(MemoryTest, MemoryClassSumsUntilTheFirstUnknownCapacity) {
  Locators({FakeValue::Text(L"ChannelA-DIMM0"), FakeValue::Text(L"ChannelA-DIMM1"),
            FakeValue::Text(L"ChannelB-DIMM0")});
  Field(L"Capacity", L"DeviceLocator", L"ChannelA-DIMM0", L"8589934592");
  Field(L"Capacity", L"DeviceLocator", L"ChannelA-DIMM1", L"0");
  Field(L"Capacity", L"DeviceLocator", L"ChannelB-DIMM0", L"8589934592");
  Field(L"PartNumber", L"DeviceLocator", L"ChannelB-DIMM0", L"EX-3200-8G");
  Memory memory;
  uint32_t count = 0;
  EXPECT_EQ(memory.GetMemoryNums(count), 1);
  EXPECT_EQ(count, 3u);
  uint64_t total = 1;
  EXPECT_EQ(memory.GetTotalMemoryNums(total), 1);
  EXPECT_EQ(total, 8589934592u);
  std::wstring part = L"stale";
  EXPECT_EQ(memory.GetPartNumberbyIndex(part, 2), 1);
  EXPECT_EQ(part, L"EX-3200-8G");
  EXPECT_EQ(memory.GetPartNumberbyIndex(part, 3), 0);
  EXPECT_TRUE(part.empty());
  EXPECT_EQ(memory.GetPartNumberbyIndex(part, -1), 0);

  os_.system_info.memory.ullTotalPhys = 16ull << 30;
  os_.system_info.memory.ullAvailPhys = 4ull << 30;
  os_.system_info.memory.dwMemoryLoad = 75;
  EXPECT_NEAR(memory.GetMemoryLoadF(), 0.75f, 1e-4f);
  EXPECT_EQ(memory.GetMemoryLoad(), 75u);
  os_.system_info.memory.ullTotalPhys = 10000;
  EXPECT_EQ(memory.GetMemoryLoadF(), 0.0f);
  os_.system_info.memory_fails = true;
  EXPECT_EQ(memory.GetMemoryLoad(), 0u);

  // The load readings open class 11 first, once, like every other member.
  for (const bool fraction : {false, true}) {
    Memory fresh;
    const size_t before = os_.wmi.calls.size();
    fraction ? (void)fresh.GetMemoryLoadF() : (void)fresh.GetMemoryLoad();
    EXPECT_GT(os_.wmi.calls.size(), before);
    const size_t opened = os_.wmi.calls.size();
    fresh.GetMemoryLoad();
    EXPECT_EQ(os_.wmi.calls.size(), opened);
  }
}

}  // namespace
