// Service Control Manager facility.
#pragma once

#include "platform/win32.h"

#include <winsvc.h>

#include "platform/os/seam.h"
#include "platform/unique_resource.h"

namespace velhal::os {

class ServiceControl {
 public:
  virtual SC_HANDLE OpenSCManagerW(const wchar_t* machine, const wchar_t* database,
                                   DWORD access) = 0;
  virtual SC_HANDLE OpenServiceW(SC_HANDLE manager, const wchar_t* name, DWORD access) = 0;
  virtual BOOL QueryServiceStatus(SC_HANDLE service, SERVICE_STATUS* status) = 0;
  virtual BOOL ControlService(SC_HANDLE service, DWORD control, SERVICE_STATUS* status) = 0;
  virtual BOOL StartServiceW(SC_HANDLE service, DWORD argc, const wchar_t** argv) = 0;
  virtual BOOL CloseServiceHandle(SC_HANDLE handle) = 0;

  static ServiceControl& Real() noexcept;

 protected:
  ~ServiceControl() = default;
};

inline ServiceControl& service_control() noexcept { return Seam<ServiceControl>::Get(); }

}  // namespace velhal::os

namespace velhal {

struct ServiceHandleTraits {
  using Handle = SC_HANDLE;
  static SC_HANDLE Invalid() noexcept { return nullptr; }
  static bool IsValid(SC_HANDLE handle) noexcept { return handle != nullptr; }
  static void Close(SC_HANDLE handle) noexcept { os::service_control().CloseServiceHandle(handle); }
};
using UniqueServiceHandle = UniqueResource<ServiceHandleTraits>;

}  // namespace velhal
