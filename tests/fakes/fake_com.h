// A COM world for the WMI clients' own tests: apartments with init counts, and a WMI locator
// whose services, enumerators and objects serve scripted rows (of queries, or the instances of a
// class) and take changed instances back. Every object counts its references; the fake notes a
// leak, a release too many, a call outside an apartment and an object still alive when the
// thread's COM is uninitialised. Other classes are objects a test
// registers by CLSID (a Counted fake of the class's interface): CoCreateInstance hands out a
// reference to it, and a reference still held when COM is uninitialised is noted as well.
#pragma once

#include "platform/win32.h"

#include <wbemcli.h>

#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "platform/os/com.h"
#include "tests/fakes/fake_variant.h"

namespace velhal::testing {

class FakeCom final : public os::Com {
 public:
  enum class Apartment { kNone, kMta, kSta };
  using Row = std::map<std::wstring, FakeValue>;  // property (any case) -> value

  struct Query {
    HRESULT exec_result = S_OK;
    std::vector<Row> rows;
    // After the rows, Next never answers: it waits out the timeout it was given and says so.
    bool stall_after_rows = false;
  };

  // A thread given an apartment got it from the host, whose initialisation is never undone.
  explicit FakeCom(Apartment apartment = Apartment::kNone)
      : apartment_(apartment), host_inits_(apartment == Apartment::kNone ? 0 : 1),
        init_count_(host_inits_) {}

  void AddNamespace(const std::wstring& name_space) { namespaces_.push_back(name_space); }
  void AddQuery(const std::wstring& wql, Query query) { queries_[wql] = std::move(query); }
  // The instances CreateInstanceEnum hands out; PutInstance writes a changed one back here.
  void AddClass(const std::wstring& name, Query instances) {
    classes_[name] = std::move(instances);
  }
  const Row& Instance(const std::wstring& name, size_t index) const {
    return classes_.at(name).rows.at(index);
  }
  void FailInitialize(HRESULT result) { init_failure_ = result; }
  // The thread's apartment as the host left it (none: the library's own initialisation counts).
  void SetHostApartment(Apartment apartment);
  // CoCreateInstance of clsid answers object's interfaces; the test keeps the object alive.
  void RegisterClassObject(const CLSID& clsid, IUnknown* object);
  // References the library still holds on registered objects.
  ULONG RegisteredReferencesHeld() const;
  void FailApartmentQuery() { apartment_query_fails_ = true; }

  // What happened.
  int initialize_calls = 0;
  int uninitialize_calls = 0;
  int locators_created = 0;
  int connections = 0;
  int blankets_set = 0;
  int guids_created = 0;
  std::vector<LONG> connect_flags;
  std::vector<LONG> exec_flags;
  std::vector<std::wstring> languages;
  std::vector<LONG> next_timeouts;
  std::atomic<int> stalls{0};  // Next calls now waiting out their timeout, or done so
  std::vector<LONG> instance_enum_flags;
  std::vector<LONG> put_instance_flags;
  struct Put {
    std::wstring name;
    UINT name_units;  // the BSTR's own length, where record_name_units is set
    VARTYPE vt;
    LONG raw;  // V_BOOL or V_I4 as written
    CIMTYPE type;
  };
  std::vector<Put> puts;
  std::vector<UINT> get_name_units;
  bool record_name_units = false;  // only for callers that pass property names as BSTRs
  HRESULT create_result = S_OK;    // a failure here fails CoCreateInstance
  HRESULT put_result = S_OK;
  HRESULT put_instance_result = S_OK;
  std::vector<DWORD> create_contexts;  // of CoCreateInstance for registered classes
  int live_objects = 0;
  std::vector<std::string> violations;  // must stay empty

  HRESULT CoGetApartmentType(APTTYPE* type, APTTYPEQUALIFIER* qualifier) override;
  HRESULT CoInitializeEx(void* reserved, DWORD model) override;
  HRESULT CoInitialize(void* reserved) override;
  void CoUninitialize() override;
  HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                           void** object) override;
  HRESULT CoCreateGuid(GUID* guid) override;
  HRESULT CoSetProxyBlanket(IUnknown* proxy, DWORD authn_service, DWORD authz_service,
                            OLECHAR* server_principal, DWORD authn_level, DWORD imp_level,
                            RPC_AUTH_IDENTITY_HANDLE auth_info, DWORD capabilities) override;

  // Used by the fake objects.
  void RequireApartment(const char* call);
  bool KnowsNamespace(const std::wstring& name_space) const;
  Query* FindQuery(const std::wstring& wql);
  Query* FindClass(const std::wstring& name);

 private:
  Apartment apartment_;
  int host_inits_;
  int init_count_;  // CoInitializeEx successes not yet balanced, the host's included
  HRESULT init_failure_ = S_OK;
  bool apartment_query_fails_ = false;
  std::vector<std::wstring> namespaces_;
  std::map<std::wstring, Query> queries_;
  std::map<std::wstring, Query> classes_;
  struct Registered {
    CLSID clsid;
    IUnknown* object;
    ULONG own_references;  // the test's, when it registered the object
  };
  std::vector<Registered> registered_;
};

}  // namespace velhal::testing
