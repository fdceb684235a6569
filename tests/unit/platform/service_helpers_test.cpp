#include "platform/service_helpers.h"

#include <gtest/gtest.h>

#include "platform/wmi_namespaces.h"
#include "tests/support/fake_system.h"

namespace {

using velhal::testing::FakeServiceControl;
using velhal::testing::FakeValue;
using velhal::wmi::kCimV2;

class ServiceHelpersTest : public ::testing::Test {
 protected:
  void ScriptState(const std::wstring& name, const std::wstring& state) {
    os_.wmi.Script(kCimV2, L"SELECT State FROM Win32_Service WHERE Name='" + name + L"'", L"State",
                   {FakeValue::Text(state)});
  }

  velhal::testing::FakeSystem os_;
};

TEST_F(ServiceHelpersTest, QueriesAreBuiltAsTheyStandAndCompareExactly) {
  // WQL matched "spooler" regardless of case; the name returned must still match exactly.
  os_.wmi.Script(kCimV2, L"SELECT Name FROM Win32_Service WHERE Name='Spooler'", L"Name",
                 {FakeValue::Text(L"Spooler")});
  os_.wmi.Script(kCimV2, L"SELECT Name FROM Win32_Service WHERE Name='spooler'", L"Name",
                 {FakeValue::Text(L"Spooler")});
  EXPECT_TRUE(IsServiceExist(L"Spooler"));
  EXPECT_FALSE(IsServiceExist(L"spooler"));
  EXPECT_FALSE(IsServiceExist(L"Nothing"));
  EXPECT_FALSE(IsServiceExist(L"O'Brien"));  // the quote breaks the query: no answer
  os_.wmi.Script(kCimV2, L"SELECT Name FROM Win32_Service WHERE Name=''", L"Name", {});
  EXPECT_FALSE(IsServiceExist(L""));  // no rows: the empty value must not match

  for (const wchar_t* state : {L"Running", L"Start Pending", L"Paused", L"Stopped", L"running"}) {
    ScriptState(L"Svc", state);
    SCOPED_TRACE(testing::Message() << state);
    EXPECT_EQ(IsServiceRunning(L"Svc"), std::wstring(state) == L"Running");
    EXPECT_EQ(GetServiceState(L"Svc"), state);
  }
  EXPECT_EQ(GetServiceState(L"Unknown"), L"");

  os_.wmi.Script(kCimV2, L"SELECT Caption FROM Win32_Process WHERE Caption='explorer.exe'",
                 L"Caption", {FakeValue::Text(L"explorer.exe")});
  EXPECT_TRUE(IsProcessRunning(L"explorer.exe"));
  EXPECT_FALSE(IsProcessRunning(L"absent.exe"));

  const std::wstring unsecapp =
      L"SELECT ExecutablePath FROM Win32_Process WHERE Caption='unsecapp.exe'";
  os_.wmi.Script(kCimV2, unsecapp, L"ExecutablePath",
                 {FakeValue::Text(L"C:\\Windows\\system32\\wbem\\unsecapp.exe")});
  EXPECT_TRUE(IsProcUnsecappExist());
  os_.wmi.Script(kCimV2, unsecapp, L"ExecutablePath",
                 {FakeValue::Text(L"C:\\WINDOWS\\system32\\wbem\\unsecapp.exe")});
  EXPECT_FALSE(IsProcUnsecappExist());

  EXPECT_EQ(GetWpnUserServiceExName(), L"");
  os_.wmi.Script(kCimV2, L"SELECT Name FROM Win32_Service Where name like 'WpnUserService_%'",
                 L"Name", {FakeValue::Text(L"WpnUserService_3f2a1"), FakeValue::Text(L"second")});
  EXPECT_EQ(GetWpnUserServiceExName(), L"WpnUserService_3f2a1");

  for (const auto& call : os_.wmi.calls) EXPECT_EQ(call.name_space, kCimV2);
}

TEST_F(ServiceHelpersTest, StartResumesOrStartsAndWaitsTwoSeconds) {
  os_.services.services[L"Running"].state = SERVICE_RUNNING;
  os_.services.services[L"Paused"].state = SERVICE_PAUSED;
  os_.services.services[L"Stopped"].state = SERVICE_STOPPED;
  os_.services.services[L"Broken"].start_error = ERROR_SERVICE_DISABLED;

  EXPECT_TRUE(StartServiceByName(L"Running"));
  EXPECT_TRUE(StartServiceByName(L"Paused"));
  EXPECT_EQ(os_.services.starts, 0);
  EXPECT_EQ(os_.services.controls, std::vector<DWORD>{SERVICE_CONTROL_CONTINUE});
  EXPECT_EQ(os_.services.services[L"Paused"].state, static_cast<DWORD>(SERVICE_RUNNING));
  EXPECT_EQ(os_.timing.slept_ms, 0u);

  // Still pending after the wait: true all the same, after exactly 20 x 100 ms.
  EXPECT_TRUE(StartServiceByName(L"Stopped"));
  EXPECT_EQ(os_.services.starts, 1);
  EXPECT_EQ(os_.timing.slept_ms, 2000u);

  os_.timing.slept_ms = 0;
  EXPECT_FALSE(StartServiceByName(L"Broken"));
  EXPECT_FALSE(StartServiceByName(L"Missing"));
  EXPECT_EQ(os_.timing.slept_ms, 0u);
  os_.services.manager_fails = true;
  EXPECT_FALSE(StartServiceByName(L"Stopped"));

  for (DWORD access : os_.services.manager_access)
    EXPECT_EQ(access, static_cast<DWORD>(GENERIC_EXECUTE));
  for (DWORD access : os_.services.service_access) EXPECT_EQ(access, 0x74u);
}

TEST_F(ServiceHelpersTest, StopOnlyStopsARunningService) {
  os_.services.services[L"Slow"].state = SERVICE_RUNNING;
  os_.services.services[L"Quick"].state = SERVICE_RUNNING;
  os_.services.services[L"Quick"].state_after_stop = SERVICE_STOPPED;
  os_.services.services[L"Paused"].state = SERVICE_PAUSED;

  StopServiceByName(L"Slow");
  EXPECT_EQ(os_.services.services[L"Slow"].state, static_cast<DWORD>(SERVICE_STOP_PENDING));
  EXPECT_EQ(os_.timing.slept_ms, 2000u);
  os_.timing.slept_ms = 0;
  StopServiceByName(L"Quick");
  EXPECT_EQ(os_.timing.slept_ms, 0u);  // the stop request already reported it stopped
  StopServiceByName(L"Paused");
  StopServiceByName(L"Missing");
  EXPECT_EQ(os_.services.services[L"Paused"].state, static_cast<DWORD>(SERVICE_PAUSED));
  EXPECT_EQ(os_.services.controls,
            (std::vector<DWORD>{SERVICE_CONTROL_STOP, SERVICE_CONTROL_STOP}));
  for (DWORD access : os_.services.service_access) EXPECT_EQ(access, 0x34u);
}

}  // namespace
