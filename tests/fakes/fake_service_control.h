// Services by name with a state, behind the SCM facility; and a Timing that counts instead of
// sleeping. The fake records access masks and open handles, so a test sees leaks.
#pragma once

#include "platform/win32.h"

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/os/service_control.h"
#include "platform/os/timing.h"

namespace velhal::testing {

class FakeTiming final : public os::Timing {
 public:
  void Sleep(DWORD milliseconds) override { slept_ms += milliseconds; }
  DWORD slept_ms = 0;
};

class FakeServiceControl final : public os::ServiceControl {
 public:
  struct Service {
    DWORD state = SERVICE_STOPPED;
    DWORD state_after_start = SERVICE_START_PENDING;  // what StartServiceW leaves
    DWORD state_after_stop = SERVICE_STOP_PENDING;     // what the stop request reports
    DWORD start_error = 0;                             // non-zero: StartServiceW fails
  };

  std::map<std::wstring, Service> services;  // names as the SCM holds them (any case matches)
  bool manager_fails = false;
  std::vector<DWORD> manager_access, service_access;
  std::vector<DWORD> controls;
  int starts = 0;

  size_t open_handles() const { return open_.size(); }
  int bad_closes = 0;

  SC_HANDLE OpenSCManagerW(const wchar_t* machine, const wchar_t* database,
                           DWORD access) override;
  SC_HANDLE OpenServiceW(SC_HANDLE manager, const wchar_t* name, DWORD access) override;
  BOOL QueryServiceStatus(SC_HANDLE service, SERVICE_STATUS* status) override;
  BOOL ControlService(SC_HANDLE service, DWORD control, SERVICE_STATUS* status) override;
  BOOL StartServiceW(SC_HANDLE service, DWORD argc, const wchar_t** argv) override;
  BOOL CloseServiceHandle(SC_HANDLE handle) override;

 private:
  Service* Lookup(SC_HANDLE handle);
  SC_HANDLE NewHandle(const std::wstring& service);

  std::map<SC_HANDLE, std::wstring> open_;  // "" for the manager
  uintptr_t next_ = 0x5C00;
};

}  // namespace velhal::testing
