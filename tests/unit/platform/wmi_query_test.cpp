#include "platform/wmi_query.h"

#include <gtest/gtest.h>

#include <wbemcli.h>

#include "tests/fakes/fake_wmi.h"

namespace {

using velhal::testing::FakeValue;
using velhal::testing::FakeWmi;

const std::wstring kCimV2 = L"ROOT\\CIMV2";
const std::wstring kQuery = L"SELECT Name FROM Win32_Processor";

class WmiQueryTest : public ::testing::Test {
 protected:
  FakeWmi wmi_;
  velhal::os::ScopedBackend<velhal::os::Wmi> backend_{wmi_};
};

TEST_F(WmiQueryTest, CollectsEveryValueOrReportsWhyNot) {
  wmi_.Script(kCimV2, kQuery, L"Name", {FakeValue::Text(L"a"), FakeValue::Text(L"b")});
  wmi_.Script(kCimV2, L"SELECT Name FROM Win32_None", L"Name", {});
  wmi_.Script(kCimV2, L"SELECT Name FROM Win32_Nulls", L"Name",
              {FakeValue::Null(), FakeValue::Null()});
  wmi_.Script(kCimV2, L"SELECT Name FROM Win32_Broken", L"Name", {FakeValue::Text(L"early")},
              WBEM_E_FAILED);

  VelSDK::WmiQuery query(kCimV2);
  std::vector<std::wstring> values{L"stale", L"entries"};
  EXPECT_EQ(query.ExcuteQuery(kQuery, L"Name", values, false), 0);
  EXPECT_EQ(values, (std::vector<std::wstring>{L"a", L"b"}));

  // No object, or objects whose property converts to nothing: -15 and an empty vector.
  EXPECT_EQ(query.ExcuteQuery(L"SELECT Name FROM Win32_None", L"Name", values, false), -15);
  EXPECT_TRUE(values.empty());
  EXPECT_EQ(query.ExcuteQuery(L"SELECT Name FROM Win32_Nulls", L"Name", values, false), -15);

  // The engine's code comes back unchanged, with what arrived before the failure.
  EXPECT_EQ(query.ExcuteQuery(L"SELECT Name FROM Win32_Broken", L"Name", values, false),
            static_cast<int>(WBEM_E_FAILED));
  EXPECT_EQ(values, std::vector<std::wstring>{L"early"});

  std::vector<unsigned int> numbers;
  EXPECT_EQ(query.ExcuteQuery(kQuery, L"Name", numbers, false), -15);  // text is no number
  std::vector<unsigned char> bytes;
  EXPECT_EQ(query.ExcuteQuery(kQuery, L"Name", bytes, true), -15);

  // The namespace and the flag go through untouched.
  ASSERT_FALSE(wmi_.calls.empty());
  for (const auto& call : wmi_.calls) EXPECT_EQ(call.name_space, kCimV2);
  EXPECT_FALSE(wmi_.calls.front().first_only);
  EXPECT_TRUE(wmi_.calls.back().first_only);
}

TEST_F(WmiQueryTest, FirstValueHelpersTakeTheFirstAndLeaveOutputsAloneOtherwise) {
  wmi_.Script(kCimV2, kQuery, L"Name",
              {FakeValue::Text(L"first"), FakeValue::Text(L"second"), FakeValue::Text(L"third")});
  wmi_.Script(L"ROOT\\WMI", L"SELECT Voltage FROM BatteryStatus", L"Voltage",
              {FakeValue::UInt32(12000), FakeValue::UInt32(11000)});
  wmi_.Script(kCimV2, L"SELECT Name FROM Win32_None", L"Name", {});

  std::wstring text = L"unchanged";
  EXPECT_EQ(WmiQueryFirstString(kCimV2, kQuery, L"Name", text), 1);
  EXPECT_EQ(text, L"first");
  text = L"unchanged";
  EXPECT_EQ(WmiQueryFirstString(kCimV2, L"SELECT Name FROM Win32_None", L"Name", text), 0);
  EXPECT_EQ(text, L"unchanged");
  EXPECT_EQ(WmiQueryFirstString(kCimV2, L"not scripted", L"Name", text), 0);
  EXPECT_EQ(text, L"unchanged");

  unsigned int number = 7;
  EXPECT_EQ(WmiQueryFirstUInt(L"ROOT\\WMI", L"SELECT Voltage FROM BatteryStatus", L"Voltage",
                              &number),
            1);
  EXPECT_EQ(number, 12000u);
  number = 7;
  EXPECT_EQ(WmiQueryFirstUInt(kCimV2, kQuery, L"Name", &number), 0);
  EXPECT_EQ(number, 7u);
  EXPECT_EQ(WmiQueryFirstUInt(kCimV2, kQuery, L"Name", nullptr), 0);

  for (const auto& call : wmi_.calls) EXPECT_TRUE(call.first_only);
}

}  // namespace
