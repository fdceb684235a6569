#include "platform/wmi_engine.h"

#include <oleauto.h>
#include <wbemcli.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cwchar>
#include <cwctype>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/com_apartment.h"
#include "platform/com_ptr.h"
#include "platform/com_values.h"
#include "platform/os/com.h"

namespace velhal::wmi {
namespace {

constexpr HRESULT kTimedOut = static_cast<HRESULT>(WBEM_E_TIMED_OUT);

bool SameNamespace(const std::wstring& a, const std::wstring& b) {
  return ::CompareStringOrdinal(a.c_str(), static_cast<int>(a.size()), b.c_str(),
                                static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

// The rows one WQL text gave in a session, kept for its later identical queries.
struct Snapshot {
  std::wstring name_space, key;  // key: RowsKey of the text asked
  HRESULT result = S_OK;  // how the enumeration ended
  std::vector<ComPtr<IWbemClassObject>> objects;
  bool complete = false;  // false when only the first object was fetched
};

std::timed_mutex& GateMutex() {
  static std::timed_mutex mutex;
  return mutex;
}

std::atomic<std::chrono::milliseconds::rep> g_query_timeout_ms{kQueryTimeout.count()};

thread_local SessionScope::State* t_session = nullptr;
thread_local SessionScope::State* t_batch = nullptr;  // owned by the batch, deleted at its end
thread_local int t_batch_depth = 0;

// "SELECT Property FROM ..." as "SELECT * FROM ...", the same objects with all their
// properties; any other text as it is. Property names in WQL are case-insensitive words.
std::wstring WholeObjects(const std::wstring& wql) {
  const auto word_at = [&](size_t at, const wchar_t* word) {
    const size_t length = std::wcslen(word);
    return wql.size() > at + length &&
           ::CompareStringOrdinal(wql.c_str() + at, static_cast<int>(length), word,
                                  static_cast<int>(length), TRUE) == CSTR_EQUAL &&
           wql[at + length] == L' ';
  };
  if (!word_at(0, L"SELECT")) return wql;
  size_t end = 7;
  while (end < wql.size() && (std::iswalnum(wql[end]) || wql[end] == L'_')) ++end;
  if (end == 7 || end >= wql.size() || wql[end] != L' ' || !word_at(end + 1, L"FROM")) return wql;
  return L"SELECT * FROM" + wql.substr(end + 5);
}

bool IsComparison(wchar_t c) { return c == L'=' || c == L'<' || c == L'>' || c == L'!'; }

// Texts that differ only in blanks ("Index='0'", "Index = '0'") ask for the same rows and share
// one key: blanks beside a comparison are dropped and runs of blanks made one, outside quoted
// literals (whose backslash escapes are kept whole).
std::wstring RowsKey(const std::wstring& wql) {
  std::wstring key;
  key.reserve(wql.size());
  wchar_t quote = 0;
  for (size_t at = 0; at < wql.size(); ++at) {
    const wchar_t c = wql[at];
    if (quote != 0) {
      key += c;
      if (c == L'\\' && at + 1 < wql.size()) {
        key += wql[++at];
      } else if (c == quote) {
        quote = 0;
      }
      continue;
    }
    if (c == L' ') {
      if (!key.empty() && key.back() != L' ' && !IsComparison(key.back())) key += c;
      continue;
    }
    if (IsComparison(c)) {
      while (!key.empty() && key.back() == L' ') key.pop_back();
    } else if (c == L'\'' || c == L'"') {
      quote = c;
    }
    key += c;
  }
  return key;
}

// "SELECT * FROM Class WHERE Property='n'" (a rows key) with n a plain decimal number: the key
// of the whole class's rows, the property and the number.
struct NumberFilter {
  std::wstring class_key, property;
  uint64_t number = 0;
};

bool IsWordChar(wchar_t c) { return std::iswalnum(c) || c == L'_'; }
bool IsAsciiDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

std::optional<NumberFilter> ParseNumberFilter(const std::wstring& key) {
  static constexpr std::wstring_view kSelect = L"SELECT * FROM ";
  static constexpr std::wstring_view kWhere = L" WHERE ";
  const std::wstring_view text(key);
  if (!text.starts_with(kSelect)) return std::nullopt;
  const size_t where = text.find(kWhere, kSelect.size());
  const size_t equals = text.find(L"='", where);
  if (where == std::wstring_view::npos || equals == std::wstring_view::npos) return std::nullopt;
  const std::wstring_view class_name = text.substr(kSelect.size(), where - kSelect.size());
  const std::wstring_view property =
      text.substr(where + kWhere.size(), equals - where - kWhere.size());
  const std::wstring_view digits = text.substr(equals + 2, text.size() - equals - 3);
  if (class_name.empty() || property.empty() || digits.empty() || digits.size() > 18 ||
      text.back() != L'\'' || !std::all_of(class_name.begin(), class_name.end(), IsWordChar) ||
      !std::all_of(property.begin(), property.end(), IsWordChar) ||
      !std::all_of(digits.begin(), digits.end(), IsAsciiDigit)) {
    return std::nullopt;
  }
  NumberFilter filter{std::wstring(text.substr(0, where)), std::wstring(property)};
  for (const wchar_t digit : digits) filter.number = filter.number * 10 + (digit - L'0');
  return filter;
}

enum class Match { kYes, kNo, kUnknown };

// Whether the object's property holds the number, as WMI compares a whole number with a quoted
// decimal; kUnknown for anything else (no such property, text, a fraction), which WMI decides.
Match HoldsNumber(IWbemClassObject& object, const std::wstring& property, uint64_t number) {
  Variant value;
  CIMTYPE type = CIM_EMPTY;
  if (FAILED(object.Get(property.c_str(), 0, value.get(), &type, nullptr))) return Match::kUnknown;
  const VARIANT& v = *value.get();
  int64_t held = 0;
  switch (V_VT(&v)) {
    case VT_NULL: return Match::kNo;  // NULL equals nothing
    case VT_UI1: held = V_UI1(&v); break;
    case VT_I2: held = V_I2(&v); break;
    case VT_UI2: held = V_UI2(&v); break;
    case VT_I4:  // how WMI hands uint32 over
      held = type == CIM_UINT32 ? int64_t{static_cast<uint32_t>(V_I4(&v))} : V_I4(&v);
      break;
    case VT_UI4: held = V_UI4(&v); break;
    default: return Match::kUnknown;
  }
  return held >= 0 && static_cast<uint64_t>(held) == number ? Match::kYes : Match::kNo;
}

// Walks the enumerator until it ends, the deadline passes or (first_only) one object was seen.
HRESULT Fetch(IEnumWbemClassObject* rows, bool first_only,
              std::vector<ComPtr<IWbemClassObject>>& objects) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point deadline = Clock::now() + QueryTimeout();
  for (;;) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) return kTimedOut;
    ComPtr<IWbemClassObject> object;
    ULONG returned = 0;
    const HRESULT hr = rows->Next(static_cast<LONG>(left), 1, object.Put(), &returned);
    if (hr == WBEM_S_TIMEDOUT) return kTimedOut;
    if (FAILED(hr)) return hr;
    if (returned == 0 || !object) return S_OK;  // WBEM_S_FALSE: no more rows
    objects.push_back(std::move(object));
    if (first_only) return S_OK;
  }
}

// Hands over the property of the snapshot's objects as the query itself would have: in WMI's
// order, only the first object's when first_only, and the enumeration's own end.
HRESULT Replay(const Snapshot& rows, const std::wstring& property, bool first_only,
               const os::Wmi::ValueCallback& on_value) {
  for (const ComPtr<IWbemClassObject>& object : rows.objects) {
    Variant value;
    CIMTYPE type = CIM_EMPTY;
    const HRESULT got = object->Get(property.c_str(), 0, value.get(), &type, nullptr);
    // An object without the property yields no value: a query whose objects all lack it ran
    // but produced nothing, which ExcuteQuery reports as -15.
    if (got != static_cast<HRESULT>(WBEM_E_NOT_FOUND)) {
      if (FAILED(got)) return got;
      // WMI hands uint32 over as VT_I4; mark it unsigned so that no reader sees it negative.
      if (type == CIM_UINT32 && V_VT(value.get()) == VT_I4) V_VT(value.get()) = VT_UI4;
      on_value(*value.get());
    }
    if (first_only) return S_OK;
  }
  return rows.result;
}

}  // namespace

struct SessionScope::State {
  ComApartment apartment;  // declared first: released last, after every COM pointer below
  ComPtr<IWbemLocator> locator;
  std::vector<std::pair<std::wstring, ComPtr<IWbemServices>>> connections;
  std::vector<Snapshot> snapshots;
  // A batch asks for whole objects: the several properties a host reads of one object (a disk's
  // caption, serial and firmware) then cost one query between them.
  bool whole_objects = false;

  State() = default;
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  // The COM pointers go back under the platform's turn too, as any other WMI call; a session
  // that never reached WMI has none and does not wait for a turn.
  ~State() {
    if (!locator) return;
    const Turn turn;
    snapshots.clear();
    connections.clear();
    locator.Reset();
  }

  HRESULT Connect(const std::wstring& name_space, ComPtr<IWbemServices>& services) {
    for (const auto& [connected, kept] : connections) {
      if (SameNamespace(connected, name_space)) {
        services = kept;
        return S_OK;
      }
    }
    if (!locator) {
      const HRESULT hr = os::com().CoCreateInstance(CLSID_WbemLocator, nullptr,
                                                    CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                                    locator.PutVoid());
      if (FAILED(hr)) return hr;
      if (!locator) return E_POINTER;
    }
    const Bstr path(name_space);
    if (path.get() == nullptr) return E_OUTOFMEMORY;
    // USE_MAX_WAIT bounds the connection attempt itself (two minutes at most by contract).
    HRESULT hr = locator->ConnectServer(path.get(), nullptr, nullptr, nullptr,
                                        WBEM_FLAG_CONNECT_USE_MAX_WAIT, nullptr, nullptr,
                                        services.Put());
    if (FAILED(hr)) return hr;
    if (!services) return E_POINTER;
    hr = os::com().CoSetProxyBlanket(services.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE,
                                     nullptr, RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE,
                                     nullptr, EOAC_NONE);
    // E_NOINTERFACE: an in-process provider, no proxy to secure.
    if (FAILED(hr) && hr != E_NOINTERFACE) return hr;
    connections.emplace_back(name_space, services);
    return S_OK;
  }

  // A batch answers "SELECT * FROM Class WHERE Property='n'" from the whole class's rows it
  // holds, when the property is a whole number in every one of them: WMI would enumerate the
  // same objects in the same order and compare the number alike. A host reading each disk by
  // index then costs one query, not one per disk.
  std::optional<Snapshot> FromClassRows(const std::wstring& name_space, const std::wstring& key) {
    const std::optional<NumberFilter> filter = ParseNumberFilter(key);
    if (!filter) return std::nullopt;
    for (const Snapshot& kept : snapshots) {
      if (kept.key != filter->class_key || !kept.complete || FAILED(kept.result) ||
          !SameNamespace(kept.name_space, name_space)) {
        continue;
      }
      Snapshot filtered{name_space, key, S_OK, {}, true};
      for (const ComPtr<IWbemClassObject>& object : kept.objects) {
        const Match match = HoldsNumber(*object.Get(), filter->property, filter->number);
        if (match == Match::kUnknown) return std::nullopt;
        if (match == Match::kYes) filtered.objects.push_back(object);
      }
      return filtered;
    }
    return std::nullopt;
  }

  // The rows of wql, from this session's snapshot when it has them (a first-object snapshot
  // serves only first-object questions), else from WMI.
  HRESULT Rows(const std::wstring& name_space, const std::wstring& asked, bool first_only,
               const Snapshot*& rows) {
    const std::wstring wql = whole_objects ? WholeObjects(asked) : asked;
    std::wstring key = RowsKey(wql);
    for (auto kept = snapshots.begin(); kept != snapshots.end(); ++kept) {
      if (kept->key != key || !SameNamespace(kept->name_space, name_space)) continue;
      if (kept->complete || first_only) {
        rows = &*kept;
        return S_OK;
      }
      snapshots.erase(kept);
      break;
    }
    if (whole_objects) {
      if (std::optional<Snapshot> filtered = FromClassRows(name_space, key)) {
        snapshots.push_back(std::move(*filtered));
        rows = &snapshots.back();
        return S_OK;
      }
    }
    ComPtr<IWbemServices> services;
    HRESULT hr = Connect(name_space, services);
    if (FAILED(hr)) return hr;
    const Bstr language(L"WQL");
    const Bstr query(wql);
    if (language.get() == nullptr || query.get() == nullptr) return E_OUTOFMEMORY;
    Snapshot snapshot;
    snapshot.name_space = name_space;
    snapshot.key = std::move(key);
    snapshot.complete = !first_only;
    ComPtr<IEnumWbemClassObject> enumerator;
    hr = services->ExecQuery(language.get(), query.get(),
                             WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr,
                             enumerator.Put());
    if (SUCCEEDED(hr) && !enumerator) hr = E_POINTER;
    snapshot.result =
        SUCCEEDED(hr) ? Fetch(enumerator.Get(), first_only, snapshot.objects) : hr;
    snapshots.push_back(std::move(snapshot));
    rows = &snapshots.back();
    return S_OK;
  }
};

SessionScope::SessionScope() {
  if (t_session == nullptr) {
    owned_ = std::make_unique<State>();
    t_session = owned_.get();
  }
}

SessionScope::~SessionScope() {
  if (owned_) t_session = nullptr;
}

void BeginBatch() {
  if (t_batch_depth == 0 && t_session == nullptr) {
    t_batch = new SessionScope::State();  // may throw: then no batch was begun
    t_batch->whole_objects = true;
    t_session = t_batch;
  }
  ++t_batch_depth;
}

bool EndBatch() {
  if (t_batch_depth == 0) return false;
  if (--t_batch_depth > 0 || t_batch == nullptr) return true;
  if (t_session == t_batch) t_session = nullptr;
  delete std::exchange(t_batch, nullptr);
  return true;
}

std::chrono::milliseconds QueryTimeout() {
  return std::chrono::milliseconds(g_query_timeout_ms.load());
}

ScopedQueryTimeoutForTesting::ScopedQueryTimeoutForTesting(std::chrono::milliseconds bound)
    : previous_(g_query_timeout_ms.exchange(bound.count())) {}

ScopedQueryTimeoutForTesting::~ScopedQueryTimeoutForTesting() {
  g_query_timeout_ms.store(previous_.count());
}

Turn::Turn() : held_(SerializesQueries() && GateMutex().try_lock_for(QueryTimeout())) {
  granted_ = held_ || !SerializesQueries();
}

Turn::~Turn() {
  if (held_) GateMutex().unlock();
}

bool SerializesQueries() {
  // Wine's WMI corrupts its own heap under concurrent queries (two threads end the process
  // within a few dozen queries); Windows' is safe, and stays concurrent.
  static const bool serialize = [] {
    const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
    return ntdll != nullptr && ::GetProcAddress(ntdll, "wine_get_version") != nullptr;
  }();
  return serialize;
}

HRESULT RunQuery(const std::wstring& name_space, const std::wstring& wql,
                 const std::wstring& property, bool first_only,
                 const os::Wmi::ValueCallback& on_value) {
  const SessionScope scope;  // outside any session, this query connects for itself
  SessionScope::State& session = *t_session;
  if (FAILED(session.apartment.status())) return session.apartment.status();
  const Turn turn;
  if (!turn.granted()) return kTimedOut;
  const Snapshot* rows = nullptr;
  const HRESULT hr = session.Rows(name_space, wql, first_only, rows);
  if (FAILED(hr)) return hr;
  return Replay(*rows, property, first_only, on_value);
}

}  // namespace velhal::wmi

namespace velhal::os {
namespace {

class Engine final : public Wmi {
 public:
  HRESULT ExecQuery(const std::wstring& name_space, const std::wstring& wql,
                    const std::wstring& property, bool first_only,
                    const ValueCallback& on_value) override {
    return wmi::RunQuery(name_space, wql, property, first_only, on_value);
  }
};

}  // namespace

Wmi& Wmi::Real() noexcept {
  static Engine engine;
  return engine;
}

}  // namespace velhal::os
