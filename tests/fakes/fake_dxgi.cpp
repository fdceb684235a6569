#include "tests/fakes/fake_dxgi.h"

#include <gtest/gtest.h>

#include <cwchar>

namespace velhal::testing {

FakeDxgi* FakeDxgi::active_ = nullptr;

HRESULT FakeDxgiAdapter::GetDesc(DXGI_ADAPTER_DESC* desc) {
  if (FAILED(desc_result)) return desc_result;
  wcsncpy(desc->Description, description_.c_str(), std::size(desc->Description));
  desc->DedicatedVideoMemory = static_cast<SIZE_T>(dedicated_bytes_);
  return S_OK;
}

HRESULT FakeDxgiFactory::EnumAdapters(UINT index, IDXGIAdapter** adapter) {
  *adapter = nullptr;
  if (index >= adapters.size()) return DXGI_ERROR_NOT_FOUND;
  adapters[index]->AddRef();
  *adapter = adapters[index].get();
  return S_OK;
}

FakeDxgi::FakeDxgi(FakeModule& module, Exports exports)
    : module_(module), path_(module.system_directory + L"\\dxgi.dll") {
  FakeModule::Library& library = module_.libraries[path_];
  if (exports == Exports::kFactory1) library.Procedure("CreateDXGIFactory1", &CreateFactory1);
  if (exports != Exports::kNone) library.Procedure("CreateDXGIFactory", &CreateFactory);
  active_ = this;
}

FakeDxgi::~FakeDxgi() {
  active_ = nullptr;
  module_.libraries.erase(path_);
  EXPECT_EQ(factory.references, 1u) << "the DXGI factory leaked";
  for (const auto& adapter : factory.adapters)
    EXPECT_EQ(adapter->references, 1u) << "a DXGI adapter leaked";
}

FakeDxgiAdapter& FakeDxgi::Add(const std::wstring& description, uint64_t dedicated_bytes) {
  factory.adapters.push_back(std::make_unique<FakeDxgiAdapter>(description, dedicated_bytes));
  return *factory.adapters.back();
}

HRESULT WINAPI FakeDxgi::CreateFactory1(REFIID iid, void** out) {
  return active_->Create("CreateDXGIFactory1", iid, out);
}

HRESULT WINAPI FakeDxgi::CreateFactory(REFIID iid, void** out) {
  return active_->Create("CreateDXGIFactory", iid, out);
}

HRESULT FakeDxgi::Create(const char* creator, REFIID iid, void** out) {
  creators_called.push_back(creator);
  iids_asked.push_back(iid);
  *out = nullptr;
  if (FAILED(create_result)) return create_result;
  return factory.QueryInterface(iid, out);
}

}  // namespace velhal::testing
