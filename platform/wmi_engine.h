// The library's WMI client: connects to a namespace, runs WQL forward-only and hands over one
// property of every returned object.
//
// COM: the calling thread's apartment is used as it is. Only when the thread has none does the
// engine initialise COM (multithreaded) itself, and it balances that before the call returns.
// It never calls CoInitializeSecurity (process-wide, the host's business) and sets the proxy
// blanket on its own proxies instead.
//
// Connections: a query made inside a SessionScope shares the scope's connection to its
// namespace; outside one it connects for itself. Scopes live on the stack of one public call,
// so no COM pointer outlives the call, and none is released after the host uninitialised COM.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "platform/os/wmi.h"

namespace velhal::wmi {

// Longest wait for the rows of one query. WMI is known to stall for tens of seconds on some
// machines (a rebuilding repository, a hung provider); a host's UI thread waits no longer than
// this, and the query fails with WBEM_E_TIMED_OUT.
inline constexpr std::chrono::milliseconds kQueryTimeout{10'000};

class SessionScope {
 public:
  SessionScope();
  ~SessionScope();
  SessionScope(const SessionScope&) = delete;
  SessionScope& operator=(const SessionScope&) = delete;

  struct State;

 private:
  std::unique_ptr<State> owned_;  // null when an outer scope on this thread is in charge
};

HRESULT RunQuery(const std::wstring& name_space, const std::wstring& wql,
                 const std::wstring& property, bool first_only,
                 const os::Wmi::ValueCallback& on_value);

}  // namespace velhal::wmi
