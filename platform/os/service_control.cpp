// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/service_control.h"

namespace velhal::os {
namespace {

class RealServiceControl final : public ServiceControl {
 public:
  SC_HANDLE OpenSCManagerW(const wchar_t* machine, const wchar_t* database, DWORD access) override {
    return ::OpenSCManagerW(machine, database, access);
  }
  SC_HANDLE OpenServiceW(SC_HANDLE manager, const wchar_t* name, DWORD access) override {
    return ::OpenServiceW(manager, name, access);
  }
  BOOL QueryServiceStatus(SC_HANDLE service, SERVICE_STATUS* status) override {
    return ::QueryServiceStatus(service, status);
  }
  BOOL ControlService(SC_HANDLE service, DWORD control, SERVICE_STATUS* status) override {
    return ::ControlService(service, control, status);
  }
  BOOL StartServiceW(SC_HANDLE service, DWORD argc, const wchar_t** argv) override {
    return ::StartServiceW(service, argc, argv);
  }
  BOOL CloseServiceHandle(SC_HANDLE handle) override { return ::CloseServiceHandle(handle); }
};

}  // namespace

ServiceControl& ServiceControl::Real() noexcept {
  static RealServiceControl backend;
  return backend;
}

}  // namespace velhal::os
