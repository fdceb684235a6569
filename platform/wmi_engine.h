// The library's WMI client: connects to a namespace, runs WQL forward-only and hands over one
// property of every returned object.
//
// COM: the calling thread's apartment is used as it is. Only when the thread has none does the
// engine initialise COM (multithreaded) itself, and it balances that when the session that
// needed it ends. It never calls CoInitializeSecurity (process-wide, the host's business) and
// sets the proxy blanket on its own proxies instead.
//
// Sessions: a query made inside a session shares the session's connection to its namespace,
// and an identical WQL text in the same namespace (blanks beside a comparison aside) is
// answered from the rows the session already holds instead of asking WMI again. A SessionScope
// is a session on the stack of one public call; a batch (BeginBatch/EndBatch, the flat
// HalBeginBatch/HalEndBatch) is one a host holds open across calls on its thread, nesting
// counted, and asks for whole objects ("SELECT X FROM ..." as "SELECT * FROM ..."), so that the
// properties of one object cost one query, and picks objects by a whole number ("WHERE
// Index='1'") from the class's rows when it holds them. Outside both, each query connects for
// itself. No COM pointer outlives its session; the host ends a batch before it uninitialises
// COM on that thread (a batch left open when the thread ends is leaked, never released late).
//
// Bounds: each query waits at most kQueryTimeout for its rows. Where the platform's WMI is not
// safe for concurrent use (Wine's corrupts its heap when two threads query at once), queries
// are serialized process-wide, and a thread waits for its turn no longer than kQueryTimeout;
// code that calls WMI itself (the touch screen's switch) takes the same Turn.
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

// The bound in force: kQueryTimeout, unless a test has shortened it.
std::chrono::milliseconds QueryTimeout();

// Shortens the bound while it lives, so that a test of a stalled WMI waits milliseconds.
class ScopedQueryTimeoutForTesting {
 public:
  explicit ScopedQueryTimeoutForTesting(std::chrono::milliseconds bound);
  ~ScopedQueryTimeoutForTesting();
  ScopedQueryTimeoutForTesting(const ScopedQueryTimeoutForTesting&) = delete;
  ScopedQueryTimeoutForTesting& operator=(const ScopedQueryTimeoutForTesting&) = delete;

 private:
  std::chrono::milliseconds previous_;
};

// Whether queries are serialized process-wide on this platform (decided once, on first use).
bool SerializesQueries();

// One thread's turn at WMI where the platform needs queries serialized (always granted
// elsewhere): waits for it no longer than the query bound. Not granted means the wait ran out.
class Turn {
 public:
  Turn();
  ~Turn();
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

  bool granted() const noexcept { return granted_; }

 private:
  bool held_;
  bool granted_;
};

class SessionScope {
 public:
  SessionScope();
  ~SessionScope();
  SessionScope(const SessionScope&) = delete;
  SessionScope& operator=(const SessionScope&) = delete;

  struct State;

 private:
  std::unique_ptr<State> owned_;  // null when an outer session on this thread is in charge
};

// The batch of this thread: BeginBatch opens it (or nests), EndBatch closes one level and, at
// the outermost, releases everything. EndBatch without a batch returns false.
void BeginBatch();
bool EndBatch();

HRESULT RunQuery(const std::wstring& name_space, const std::wstring& wql,
                 const std::wstring& property, bool first_only,
                 const os::Wmi::ValueCallback& on_value);

}  // namespace velhal::wmi
