#include "tests/fakes/fake_service_control.h"

#include "tests/fakes/fake_common.h"

namespace velhal::testing {
namespace {

void Fill(SERVICE_STATUS* status, DWORD state) {
  *status = {};
  status->dwServiceType = SERVICE_WIN32_OWN_PROCESS;
  status->dwCurrentState = state;
}

}  // namespace

SC_HANDLE FakeServiceControl::NewHandle(const std::wstring& service) {
  const SC_HANDLE handle = reinterpret_cast<SC_HANDLE>(next_);
  next_ += 8;
  open_[handle] = service;
  return handle;
}

FakeServiceControl::Service* FakeServiceControl::Lookup(SC_HANDLE handle) {
  const auto found = open_.find(handle);
  if (found == open_.end() || found->second.empty()) return nullptr;
  for (auto& [name, service] : services) {
    if (Fold(name) == found->second) return &service;
  }
  return nullptr;
}

SC_HANDLE FakeServiceControl::OpenSCManagerW(const wchar_t*, const wchar_t*, DWORD access) {
  manager_access.push_back(access);
  if (manager_fails) {
    ::SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
  }
  return NewHandle(L"");
}

SC_HANDLE FakeServiceControl::OpenServiceW(SC_HANDLE manager, const wchar_t* name, DWORD access) {
  service_access.push_back(access);
  const auto found = open_.find(manager);
  if (found == open_.end() || !found->second.empty() || name == nullptr) {
    ::SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
  }
  for (const auto& [known, service] : services) {
    if (Fold(known) == Fold(name)) return NewHandle(Fold(name));
  }
  ::SetLastError(ERROR_SERVICE_DOES_NOT_EXIST);
  return nullptr;
}

BOOL FakeServiceControl::QueryServiceStatus(SC_HANDLE handle, SERVICE_STATUS* status) {
  Service* service = Lookup(handle);
  if (service == nullptr || status == nullptr) return Fail(ERROR_INVALID_HANDLE);
  Fill(status, service->state);
  return TRUE;
}

BOOL FakeServiceControl::ControlService(SC_HANDLE handle, DWORD control, SERVICE_STATUS* status) {
  Service* service = Lookup(handle);
  if (service == nullptr || status == nullptr) return Fail(ERROR_INVALID_HANDLE);
  controls.push_back(control);
  if (control == SERVICE_CONTROL_CONTINUE && service->state == SERVICE_PAUSED) {
    service->state = SERVICE_RUNNING;
  } else if (control == SERVICE_CONTROL_STOP && service->state == SERVICE_RUNNING) {
    service->state = service->state_after_stop;
  } else {
    return Fail(ERROR_SERVICE_CANNOT_ACCEPT_CTRL);
  }
  Fill(status, service->state);
  return TRUE;
}

BOOL FakeServiceControl::StartServiceW(SC_HANDLE handle, DWORD, const wchar_t**) {
  Service* service = Lookup(handle);
  if (service == nullptr) return Fail(ERROR_INVALID_HANDLE);
  ++starts;
  if (service->start_error != 0) return Fail(service->start_error);
  if (service->state != SERVICE_STOPPED) return Fail(ERROR_SERVICE_ALREADY_RUNNING);
  service->state = service->state_after_start;
  return TRUE;
}

BOOL FakeServiceControl::CloseServiceHandle(SC_HANDLE handle) {
  if (open_.erase(handle) == 0) {
    ++bad_closes;
    return Fail(ERROR_INVALID_HANDLE);
  }
  return TRUE;
}

}  // namespace velhal::testing
