// Whether a process runs, whether a service exists and in which state, and starting or
// stopping a service. Queries go through WMI ("ROOT\CIMV2"), control through the Service
// Control Manager. Names are inserted into WQL as they stand: a name holding a quote makes an
// invalid query, hence false or an empty answer.
#pragma once

#include <string>

#include "hal/velhal_export.h"

VELHAL_API bool IsProcessRunning(const std::wstring& caption);
// The returned name must equal name exactly, letter case included, though WQL ignores case.
VELHAL_API bool IsServiceExist(const std::wstring& name);
VELHAL_API bool IsServiceRunning(const std::wstring& name);  // State is exactly "Running"
VELHAL_API std::wstring GetServiceState(const std::wstring& name);
// Resumes a paused service or starts a stopped one, then waits two seconds at most for it to
// run; true also when it is still starting after the wait. Blocks the caller meanwhile.
VELHAL_API bool StartServiceByName(const std::wstring& name);
// Stops a running service and waits two seconds at most; paused or pending services are left.
VELHAL_API void StopServiceByName(const std::wstring& name);
// True only for unsecapp.exe running from C:\Windows\system32\wbem, in that letter case.
VELHAL_API bool IsProcUnsecappExist();
VELHAL_API std::wstring GetWpnUserServiceExName();
