#include "tests/fakes/fake_com.h"

#include "tests/fakes/fake_common.h"

namespace velhal::testing {
namespace {

// Reference counting shared by the fake objects, reported to the FakeCom.
template <class Interface>
class FakeObject : public Interface {
 public:
  explicit FakeObject(FakeCom& com) : com_(com) { ++com_.live_objects; }
  virtual ~FakeObject() { --com_.live_objects; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (iid == __uuidof(IUnknown) || iid == __uuidof(Interface)) {
      *out = static_cast<Interface*>(this);
      AddRef();
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    com_.RequireApartment("Release");
    if (references_ == 0) {
      com_.violations.push_back("Release of a released object");
      return 0;
    }
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  FakeCom& com_;

 private:
  ULONG references_ = 1;
};

class FakeClassObject final : public FakeObject<IWbemClassObject> {
 public:
  // A copy of the stored row: Put changes the copy, PutInstance writes it back.
  FakeClassObject(FakeCom& com, FakeCom::Row& stored)
      : FakeObject(com), stored_(stored), row_(stored) {}

  HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG, VARIANT* value, CIMTYPE* type,
                                LONG*) override {
    com_.RequireApartment("IWbemClassObject::Get");
    if (com_.record_name_units && name != nullptr) {
      com_.get_name_units.push_back(::SysStringLen(const_cast<BSTR>(name)));
    }
    const FakeValue* cell = Find(name);
    if (cell == nullptr) return WBEM_E_NOT_FOUND;
    if (value != nullptr) cell->ToVariant(value);
    if (type != nullptr) *type = cell->cim;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG, VARIANT* value, CIMTYPE type) override {
    com_.RequireApartment("IWbemClassObject::Put");
    if (name == nullptr || value == nullptr) return WBEM_E_INVALID_PARAMETER;
    const VARTYPE vt = V_VT(value);
    const LONG raw = vt == VT_BOOL ? V_BOOL(value) : vt == VT_I4 ? V_I4(value) : 0;
    const UINT units = com_.record_name_units ? ::SysStringLen(const_cast<BSTR>(name)) : 0;
    com_.puts.push_back({name, units, vt, raw, type});
    if (FAILED(com_.put_result)) return com_.put_result;
    FakeValue* cell = Find(name);
    if (cell == nullptr) return WBEM_E_NOT_FOUND;
    cell->vt = vt;
    cell->integer = raw;
    return S_OK;
  }

  void Save() { stored_ = row_; }

  HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR, LONG, VARIANT*, SAFEARRAY**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Next(LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE EndEnumeration() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetObjectText(LONG, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SpawnInstance(LONG, IWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CompareTo(LONG, IWbemClassObject*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR, LONG, IWbemClassObject**, IWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*, IWbemClassObject*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE NextMethod(LONG, BSTR*, IWbemClassObject**, IWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR, BSTR*) override { return E_NOTIMPL; }

 private:
  FakeValue* Find(LPCWSTR name) {
    for (auto& [property, cell] : row_) {
      if (name != nullptr && EqualsIgnoringCase(property, name)) return &cell;
    }
    return nullptr;
  }

  FakeCom::Row& stored_;
  FakeCom::Row row_;
};

class FakeEnumerator final : public FakeObject<IEnumWbemClassObject> {
 public:
  FakeEnumerator(FakeCom& com, FakeCom::Query& query) : FakeObject(com), query_(query) {}

  HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                 ULONG* returned) override {
    com_.RequireApartment("IEnumWbemClassObject::Next");
    com_.next_timeouts.push_back(timeout);
    if (count != 1 || objects == nullptr || returned == nullptr) return WBEM_E_INVALID_PARAMETER;
    *returned = 0;
    if (next_ < query_.rows.size()) {
      *objects = new FakeClassObject(com_, query_.rows[next_++]);
      *returned = 1;
      return WBEM_S_NO_ERROR;
    }
    if (!query_.stall_after_rows) return WBEM_S_FALSE;
    // WBEM_INFINITE (-1 as a LONG) would hang the test: noted instead of waited for.
    if (timeout < 0) {
      com_.violations.push_back("IEnumWbemClassObject::Next waits forever");
      return WBEM_S_TIMEDOUT;
    }
    ++com_.stalls;
    ::Sleep(static_cast<DWORD>(timeout));
    return WBEM_S_TIMEDOUT;
  }
  HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE NextAsync(ULONG, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Skip(LONG, ULONG) override { return E_NOTIMPL; }

 private:
  FakeCom::Query& query_;
  size_t next_ = 0;
};

class FakeServices final : public FakeObject<IWbemServices> {
 public:
  using FakeObject::FakeObject;

  HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                      IWbemContext*, IEnumWbemClassObject** rows) override {
    com_.RequireApartment("IWbemServices::ExecQuery");
    com_.languages.emplace_back(language ? language : L"");
    com_.exec_flags.push_back(flags);
    if (rows == nullptr) return WBEM_E_INVALID_PARAMETER;
    *rows = nullptr;
    FakeCom::Query* found = com_.FindQuery(query ? query : L"");
    if (found == nullptr) return WBEM_E_INVALID_QUERY;
    if (FAILED(found->exec_result)) return found->exec_result;
    *rows = new FakeEnumerator(com_, *found);
    return WBEM_S_NO_ERROR;
  }

  HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR name, LONG flags, IWbemContext*,
                                               IEnumWbemClassObject** instances) override {
    com_.RequireApartment("IWbemServices::CreateInstanceEnum");
    com_.instance_enum_flags.push_back(flags);
    if (instances == nullptr) return WBEM_E_INVALID_PARAMETER;
    *instances = nullptr;
    FakeCom::Query* found = com_.FindClass(name ? name : L"");
    if (found == nullptr) return WBEM_E_INVALID_CLASS;  // as Windows answers; Wine lists none
    if (FAILED(found->exec_result)) return found->exec_result;
    *instances = new FakeEnumerator(com_, *found);
    return WBEM_S_NO_ERROR;
  }

  HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject* instance, LONG flags, IWbemContext*,
                                        IWbemCallResult** result) override {
    com_.RequireApartment("IWbemServices::PutInstance");
    com_.put_instance_flags.push_back(flags);
    auto* fake = dynamic_cast<FakeClassObject*>(instance);
    if (fake == nullptr || result != nullptr) return WBEM_E_INVALID_PARAMETER;
    if (FAILED(com_.put_instance_result)) return com_.put_instance_result;
    fake->Save();
    return WBEM_S_NO_ERROR;
  }

  HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR, LONG, IWbemContext*, IWbemServices**, IWbemCallResult**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetObject(const BSTR, LONG, IWbemContext*, IWbemClassObject**, IWbemCallResult**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*, IWbemCallResult**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR, LONG, IWbemContext*, IWbemCallResult**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR, LONG, IWbemContext*, IEnumWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR, LONG, IWbemContext*, IWbemCallResult**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*, IEnumWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*, IWbemClassObject**, IWbemCallResult**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*, IWbemObjectSink*) override { return E_NOTIMPL; }
};

class FakeLocator final : public FakeObject<IWbemLocator> {
 public:
  using FakeObject::FakeObject;

  HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR name_space, const BSTR, const BSTR,
                                          const BSTR, LONG flags, const BSTR, IWbemContext*,
                                          IWbemServices** services) override {
    com_.RequireApartment("IWbemLocator::ConnectServer");
    com_.connect_flags.push_back(flags);
    if (services == nullptr) return WBEM_E_INVALID_PARAMETER;
    *services = nullptr;
    if (!com_.KnowsNamespace(name_space ? name_space : L"")) return WBEM_E_INVALID_NAMESPACE;
    ++com_.connections;
    *services = new FakeServices(com_);
    return WBEM_S_NO_ERROR;
  }
};

}  // namespace

void FakeCom::RequireApartment(const char* call) {
  if (apartment_ == Apartment::kNone) violations.push_back(std::string(call) + " outside COM");
}

bool FakeCom::KnowsNamespace(const std::wstring& name_space) const {
  for (const std::wstring& known : namespaces_) {
    if (EqualsIgnoringCase(known, name_space)) return true;
  }
  return false;
}

FakeCom::Query* FakeCom::FindQuery(const std::wstring& wql) {
  const auto found = queries_.find(wql);
  return found == queries_.end() ? nullptr : &found->second;
}

FakeCom::Query* FakeCom::FindClass(const std::wstring& name) {
  for (auto& [known, instances] : classes_) {
    if (EqualsIgnoringCase(known, name)) return &instances;
  }
  return nullptr;
}

namespace {

ULONG ReferencesOf(IUnknown* object) {
  object->AddRef();
  return object->Release();
}

}  // namespace

void FakeCom::SetHostApartment(Apartment apartment) {
  apartment_ = apartment;
  host_inits_ = apartment == Apartment::kNone ? 0 : 1;
  init_count_ = host_inits_;
}

void FakeCom::RegisterClassObject(const CLSID& clsid, IUnknown* object) {
  registered_.push_back({clsid, object, ReferencesOf(object)});
}

ULONG FakeCom::RegisteredReferencesHeld() const {
  ULONG held = 0;
  for (const Registered& entry : registered_) {
    held += ReferencesOf(entry.object) - entry.own_references;
  }
  return held;
}

HRESULT FakeCom::CoGetApartmentType(APTTYPE* type, APTTYPEQUALIFIER* qualifier) {
  if (type == nullptr || qualifier == nullptr) return E_INVALIDARG;
  if (apartment_query_fails_) return E_FAIL;
  if (apartment_ == Apartment::kNone) return CO_E_NOTINITIALIZED;
  *type = apartment_ == Apartment::kMta ? APTTYPE_MTA : APTTYPE_STA;
  *qualifier = APTTYPEQUALIFIER_NONE;
  return S_OK;
}

HRESULT FakeCom::CoInitializeEx(void*, DWORD model) {
  ++initialize_calls;
  if (FAILED(init_failure_)) return init_failure_;
  const Apartment wanted =
      (model & COINIT_APARTMENTTHREADED) ? Apartment::kSta : Apartment::kMta;
  if (apartment_ != Apartment::kNone && apartment_ != wanted) return RPC_E_CHANGED_MODE;
  const bool first = init_count_ == 0;
  apartment_ = wanted;
  ++init_count_;
  return first ? S_OK : S_FALSE;
}

HRESULT FakeCom::CoInitialize(void* reserved) {
  return CoInitializeEx(reserved, COINIT_APARTMENTTHREADED);
}

void FakeCom::CoUninitialize() {
  ++uninitialize_calls;
  if (init_count_ <= host_inits_) {
    violations.push_back("CoUninitialize without a matching CoInitializeEx");
    return;
  }
  if (--init_count_ == 0) {
    if (live_objects != 0 || RegisteredReferencesHeld() != 0) {
      violations.push_back("COM objects alive at CoUninitialize");
    }
    apartment_ = Apartment::kNone;
  }
}

HRESULT FakeCom::CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                                  void** object) {
  RequireApartment("CoCreateInstance");
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  if (FAILED(create_result)) return create_result;
  for (const Registered& entry : registered_) {
    if (entry.clsid != clsid) continue;
    create_contexts.push_back(context);
    return entry.object->QueryInterface(iid, object);
  }
  if (clsid != CLSID_WbemLocator) return REGDB_E_CLASSNOTREG;
  if (iid != IID_IWbemLocator) return E_NOINTERFACE;
  ++locators_created;
  *object = static_cast<IWbemLocator*>(new FakeLocator(*this));
  return S_OK;
}

HRESULT FakeCom::CoCreateGuid(GUID* guid) {
  if (guid == nullptr) return E_INVALIDARG;
  *guid = GUID{static_cast<unsigned long>(++guids_created), 0, 0, {0xFA, 0xCE}};
  return S_OK;
}

HRESULT FakeCom::CoSetProxyBlanket(IUnknown* proxy, DWORD, DWORD, OLECHAR*, DWORD, DWORD,
                                   RPC_AUTH_IDENTITY_HANDLE, DWORD) {
  RequireApartment("CoSetProxyBlanket");
  if (proxy == nullptr) return E_INVALIDARG;
  ++blankets_set;
  return S_OK;
}

}  // namespace velhal::testing
