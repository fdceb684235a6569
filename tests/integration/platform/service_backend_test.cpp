// The service and process helpers against the system's real services and processes, checked
// with the test's own SCM and Toolhelp reads.
#include "platform/win32.h"

#include "platform/service_helpers.h"

#include <gtest/gtest.h>

#include <tlhelp32.h>

#include <cwctype>
#include <string>

namespace {

const wchar_t kService[] = L"Spooler";  // present on Windows and Wine, safe to start and stop

DWORD ServiceState(const wchar_t* name) {
  SC_HANDLE manager = ::OpenSCManagerW(nullptr, nullptr, GENERIC_READ);
  if (manager == nullptr) return 0;
  SC_HANDLE service = ::OpenServiceW(manager, name, SERVICE_QUERY_STATUS);
  SERVICE_STATUS status{};
  const BOOL ok = service && ::QueryServiceStatus(service, &status);
  if (service) ::CloseServiceHandle(service);
  ::CloseServiceHandle(manager);
  return ok ? status.dwCurrentState : 0;
}

bool ProcessListed(const std::wstring& image) {
  HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  if (snapshot == INVALID_HANDLE_VALUE) return false;
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof(entry);
  bool found = false;
  for (BOOL more = ::Process32FirstW(snapshot, &entry); more && !found;
       more = ::Process32NextW(snapshot, &entry)) {
    found = ::CompareStringOrdinal(entry.szExeFile, -1, image.c_str(), -1, TRUE) == CSTR_EQUAL;
  }
  ::CloseHandle(snapshot);
  return found;
}

TEST(ServiceBackendTest, StartsAndStopsARealService) {
  if (ServiceState(kService) == 0) GTEST_SKIP() << "no Spooler service here";
  EXPECT_TRUE(IsServiceExist(kService));
  EXPECT_FALSE(IsServiceExist(L"spooler"));  // WQL ignores case, the comparison does not
  EXPECT_FALSE(IsServiceExist(L"VelHalNoSuchService"));

  const DWORD before = ServiceState(kService);
  ASSERT_TRUE(StartServiceByName(kService));
  EXPECT_EQ(ServiceState(kService), static_cast<DWORD>(SERVICE_RUNNING));
  EXPECT_TRUE(IsServiceRunning(kService));
  EXPECT_EQ(GetServiceState(kService), L"Running");

  StopServiceByName(kService);
  EXPECT_EQ(ServiceState(kService), static_cast<DWORD>(SERVICE_STOPPED));
  EXPECT_FALSE(IsServiceRunning(kService));
  EXPECT_EQ(GetServiceState(kService), L"Stopped");

  if (before == SERVICE_RUNNING) StartServiceByName(kService);  // leave it as found
  EXPECT_FALSE(StartServiceByName(L"VelHalNoSuchService"));
}

std::wstring OwnImageName() {
  wchar_t path[MAX_PATH] = {};
  ::GetModuleFileNameW(nullptr, path, MAX_PATH);
  const std::wstring full(path);
  return full.substr(full.find_last_of(L"\\/") + 1);
}

// (Wine 8's Toolhelp leaves out explorer.exe, which its WMI lists; the cross-check uses
// processes both sources show.)
TEST(ServiceBackendTest, SeesTheProcessesToolhelpSees) {
  const std::wstring own = OwnImageName();
  ASSERT_TRUE(ProcessListed(own));
  EXPECT_TRUE(IsProcessRunning(own));
  for (const wchar_t* image : {L"services.exe", L"velhal-no-such.exe"}) {
    SCOPED_TRACE(testing::Message() << image);
    EXPECT_EQ(IsProcessRunning(image), ProcessListed(image));
  }
  if (!ProcessListed(L"unsecapp.exe")) {
    EXPECT_FALSE(IsProcUnsecappExist());
  }
  const std::wstring wpn = GetWpnUserServiceExName();
  EXPECT_TRUE(wpn.empty() || wpn.rfind(L"WpnUserService_", 0) == 0) << wpn.size();
}

}  // namespace
