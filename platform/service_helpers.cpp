#include "platform/win32.h"

#include "platform/service_helpers.h"

#include "platform/boundary.h"
#include "platform/os/service_control.h"
#include "platform/os/timing.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace {

using velhal::UniqueServiceHandle;
using velhal::os::service_control;

using velhal::wmi::kCimV2;
constexpr DWORD kStartAccess =
    SERVICE_QUERY_STATUS | SERVICE_START | SERVICE_STOP | SERVICE_PAUSE_CONTINUE;
constexpr DWORD kStopAccess = SERVICE_QUERY_STATUS | SERVICE_START | SERVICE_STOP;
static_assert(kStartAccess == 0x74 && kStopAccess == 0x34);
constexpr int kWaitSteps = 20;
constexpr DWORD kWaitStepMs = 100;

// The first value of one property of "<query prefix><argument>'", or empty.
std::wstring FirstValue(const std::wstring& query_prefix, const std::wstring& argument,
                        const std::wstring& property) {
  std::wstring value;
  WmiQueryFirstString(kCimV2, query_prefix + argument + L"'", property, value);
  return value;
}

UniqueServiceHandle OpenService(const std::wstring& name, DWORD access,
                                UniqueServiceHandle& manager) {
  manager = UniqueServiceHandle(service_control().OpenSCManagerW(nullptr, nullptr, GENERIC_EXECUTE));
  if (!manager.IsValid()) return {};
  return UniqueServiceHandle(service_control().OpenServiceW(manager.Get(), name.c_str(), access));
}

// Waits up to two seconds for the record to show state. The record is not queried again, so
// unless it already shows the state the wait lasts the full two seconds; callers have always
// seen this fixed wait.
void WaitForState(const SERVICE_STATUS& status, DWORD state) {
  for (int step = 0; step < kWaitSteps; ++step) {
    if (status.dwCurrentState == state) return;
    velhal::os::timing().Sleep(kWaitStepMs);
  }
}

}  // namespace

bool IsProcessRunning(const std::wstring& caption) {
  return velhal::CallGuarded(false, [&] {
    return !FirstValue(L"SELECT Caption FROM Win32_Process WHERE Caption='", caption, L"Caption")
                .empty();
  });
}

bool IsServiceExist(const std::wstring& name) {
  return velhal::CallGuarded(false, [&] {
    // A failed or empty query is no service, even for an empty name.
    const std::wstring found = FirstValue(L"SELECT Name FROM Win32_Service WHERE Name='", name, L"Name");
    return !found.empty() && found == name;
  });
}

bool IsServiceRunning(const std::wstring& name) {
  return velhal::CallGuarded(false, [&] { return GetServiceState(name) == L"Running"; });
}

std::wstring GetServiceState(const std::wstring& name) {
  return velhal::CallGuarded(std::wstring{}, [&] {
    return FirstValue(L"SELECT State FROM Win32_Service WHERE Name='", name, L"State");
  });
}

bool StartServiceByName(const std::wstring& name) {
  return velhal::CallGuarded(false, [&] {
    UniqueServiceHandle manager;
    const UniqueServiceHandle service = OpenService(name, kStartAccess, manager);
    if (!service.IsValid()) return false;
    SERVICE_STATUS status{};
    if (!service_control().QueryServiceStatus(service.Get(), &status)) return false;
    if (status.dwCurrentState == SERVICE_PAUSED) {
      if (!service_control().ControlService(service.Get(), SERVICE_CONTROL_CONTINUE, &status) ||
          !service_control().QueryServiceStatus(service.Get(), &status)) {
        return false;
      }
    }
    if (status.dwCurrentState == SERVICE_RUNNING) return true;
    if (!service_control().StartServiceW(service.Get(), 0, nullptr)) return false;
    WaitForState(status, SERVICE_RUNNING);
    return true;
  });
}

void StopServiceByName(const std::wstring& name) {
  velhal::CallGuarded(false, [&] {
    UniqueServiceHandle manager;
    const UniqueServiceHandle service = OpenService(name, kStopAccess, manager);
    if (!service.IsValid()) return false;
    SERVICE_STATUS status{};
    if (!service_control().QueryServiceStatus(service.Get(), &status) ||
        status.dwCurrentState != SERVICE_RUNNING) {
      return false;
    }
    if (service_control().ControlService(service.Get(), SERVICE_CONTROL_STOP, &status)) {
      WaitForState(status, SERVICE_STOPPED);  // as filled by the stop request
    }
    return true;
  });
}

bool IsProcUnsecappExist() {
  return velhal::CallGuarded(false, [&] {
    return FirstValue(L"SELECT ExecutablePath FROM Win32_Process WHERE Caption='",
                      L"unsecapp.exe", L"ExecutablePath") ==
           L"C:\\Windows\\system32\\wbem\\unsecapp.exe";
  });
}

std::wstring GetWpnUserServiceExName() {
  return velhal::CallGuarded(std::wstring{}, [&] {
    std::wstring name;
    WmiQueryFirstString(kCimV2, L"SELECT Name FROM Win32_Service Where name like 'WpnUserService_%'",
                        L"Name", name);
    return name;
  });
}
