// The WMI engine against the system's real WMI. Values are checked against independent
// sources (registry, kernel32), never against literals of one machine.
#include "platform/win32.h"

#include "platform/wmi_query.h"

#include <gtest/gtest.h>
#include <wbemcli.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/support/raw_wmi.h"
#include "tests/support/wine.h"

namespace {

using velhal::testing::RegistryProcessorName;

const std::wstring kCimV2 = L"ROOT\\CIMV2";

// Each test thread starts without COM: the engine must cope and leave none behind.
class WmiEngineTest : public ::testing::Test {};

TEST_F(WmiEngineTest, ReadsTextAndNumbersOfSeveralClasses) {
  VelSDK::WmiQuery wmi(kCimV2);
  std::vector<std::wstring> names;
  ASSERT_EQ(wmi.ExcuteQuery(L"SELECT Name FROM Win32_Processor", L"Name", names, false), 0);
  ASSERT_FALSE(names.empty());
  EXPECT_EQ(names.front(), RegistryProcessorName());

  std::vector<unsigned int> logical;
  ASSERT_EQ(wmi.ExcuteQuery(L"SELECT NumberOfLogicalProcessors FROM Win32_Processor",
                            L"NumberOfLogicalProcessors", logical, false),
            0);
  SYSTEM_INFO info{};
  ::GetNativeSystemInfo(&info);
  unsigned int total = 0;
  for (unsigned int n : logical) total += n;
  EXPECT_EQ(total, info.dwNumberOfProcessors);

  // The same number as text is its decimal form.
  std::vector<std::wstring> logical_text;
  ASSERT_EQ(wmi.ExcuteQuery(L"SELECT NumberOfLogicalProcessors FROM Win32_Processor",
                            L"NumberOfLogicalProcessors", logical_text, false),
            0);
  EXPECT_EQ(logical_text.front(), std::to_wstring(logical.front()));

  std::wstring state;
  EXPECT_EQ(WmiQueryFirstString(kCimV2, L"SELECT State FROM Win32_Service WHERE Name='Spooler'",
                                L"State", state),
            1);
  EXPECT_FALSE(state.empty());
}

TEST_F(WmiEngineTest, HandsOver64BitValuesAsText) {
  VelSDK::WmiQuery wmi(kCimV2);
  std::vector<std::wstring> capacities;
  ASSERT_EQ(
      wmi.ExcuteQuery(L"SELECT Capacity FROM Win32_PhysicalMemory", L"Capacity", capacities, false),
      0);
  unsigned long long installed = 0;
  for (const std::wstring& text : capacities) {
    ASSERT_FALSE(text.empty());
    ASSERT_EQ(text.find_first_not_of(L"0123456789"), std::wstring::npos) << "not decimal";
    installed += std::stoull(text);
  }
  MEMORYSTATUSEX memory{};
  memory.dwLength = sizeof(memory);
  ASSERT_TRUE(::GlobalMemoryStatusEx(&memory));
  // Firmware reserves some of what is installed; Wine reports exactly what Linux sees.
  EXPECT_GE(installed, memory.ullTotalPhys);

  // A value above 32 bits has no unsigned 32-bit form: nothing is appended.
  if (installed > 0xFFFFFFFFull && capacities.size() == 1) {
    std::vector<unsigned int> as_number;
    EXPECT_EQ(wmi.ExcuteQuery(L"SELECT Capacity FROM Win32_PhysicalMemory", L"Capacity", as_number,
                              false),
              -15);
  }
}

TEST_F(WmiEngineTest, ReportsEveryFailureAsItsOwnCode) {
  VelSDK::WmiQuery wmi(kCimV2);
  std::vector<std::wstring> values{L"stale"};
  EXPECT_EQ(wmi.ExcuteQuery(L"SELECT Name FROM Win32_Service WHERE Name='VelHalNoSuchService'",
                            L"Name", values, false),
            -15);
  EXPECT_TRUE(values.empty());

  // Objects that all lack the property: the query ran and produced no value.
  EXPECT_EQ(
      wmi.ExcuteQuery(L"SELECT Name FROM Win32_Processor", L"VelHalNoSuchProperty", values, false),
      -15);

  if (velhal::testing::RunningOnWine()) {
    // A property Windows has and Wine 8 lacks.
    EXPECT_EQ(wmi.ExcuteQuery(L"SELECT ExtClock FROM Win32_Processor", L"ExtClock", values, false),
              -15);
  }

  const int malformed = wmi.ExcuteQuery(L"SELEKT Name FROM", L"Name", values, false);
  EXPECT_LT(malformed, 0);
  EXPECT_NE(malformed, -15);

  VelSDK::WmiQuery nowhere(L"ROOT\\VelHalNoSuchNamespace");
  EXPECT_EQ(nowhere.ExcuteQuery(L"SELECT Name FROM Win32_Processor", L"Name", values, false),
            static_cast<int>(WBEM_E_INVALID_NAMESPACE));

  std::wstring unchanged = L"unchanged";
  EXPECT_EQ(WmiQueryFirstString(kCimV2, L"SELECT Name FROM Win32_Processor",
                                L"VelHalNoSuchProperty", unchanged),
            0);
  EXPECT_EQ(unchanged, L"unchanged");

  // ROOT\WMI answers too; its battery classes are empty where there is no battery.
  VelSDK::WmiQuery root_wmi(L"ROOT\\WMI");
  std::vector<unsigned int> voltages;
  const int battery =
      root_wmi.ExcuteQuery(L"SELECT Voltage FROM BatteryStatus", L"Voltage", voltages, false);
  EXPECT_TRUE(battery == 0 || battery == -15) << battery;
  if (velhal::testing::RunningOnWine()) {
    EXPECT_EQ(battery, -15) << "Wine serves no battery";
  }
}

// The calling thread's apartment is used; the engine initialises COM only for a thread that has
// none, and undoes exactly that.
TEST_F(WmiEngineTest, LeavesEveryThreadsApartmentAsItFoundIt) {
  const auto apartment_after_query = [](DWORD model, bool initialise) {
    HRESULT after = E_FAIL;
    int result = -1;
    std::thread([&] {
      if (initialise) ::CoInitializeEx(nullptr, model);
      VelSDK::WmiQuery wmi(kCimV2);
      std::vector<std::wstring> names;
      result = wmi.ExcuteQuery(L"SELECT Name FROM Win32_Processor", L"Name", names, false);
      APTTYPE type{};
      APTTYPEQUALIFIER qualifier{};
      after = ::CoGetApartmentType(&type, &qualifier);
      if (SUCCEEDED(after)) after = type;
      if (initialise) ::CoUninitialize();
    }).join();
    EXPECT_EQ(result, 0);
    return after;
  };
  EXPECT_EQ(apartment_after_query(0, false), CO_E_NOTINITIALIZED);
  const HRESULT sta = apartment_after_query(COINIT_APARTMENTTHREADED, true);
  EXPECT_TRUE(sta == APTTYPE_STA || sta == APTTYPE_MAINSTA) << sta;
  EXPECT_EQ(apartment_after_query(COINIT_MULTITHREADED, true), APTTYPE_MTA);
}

}  // namespace
