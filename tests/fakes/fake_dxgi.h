// DXGI as a test sets it: a dxgi.dll in the fake module's system folder whose factory creator
// hands out a factory that enumerates the test's adapters. The objects count their references
// (tests/fakes/counted.h); the destructor fails the test on one left over.
#pragma once

#include "platform/win32.h"

#include <dxgi.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/fakes/counted.h"
#include "tests/fakes/fake_module.h"

namespace velhal::testing {

template <class Interface>
class FakeDxgiObject : public Counted<Interface> {
 public:
  HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID, UINT, const void*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID, const IUnknown*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetPrivateData(REFGUID, UINT*, void*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetParent(REFIID, void**) override { return E_NOTIMPL; }
};

class FakeDxgiAdapter final : public FakeDxgiObject<IDXGIAdapter> {
 public:
  FakeDxgiAdapter(std::wstring description, uint64_t dedicated_bytes)
      : description_(std::move(description)), dedicated_bytes_(dedicated_bytes) {}
  HRESULT desc_result = S_OK;

  HRESULT STDMETHODCALLTYPE EnumOutputs(UINT, IDXGIOutput**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetDesc(DXGI_ADAPTER_DESC* desc) override;
  HRESULT STDMETHODCALLTYPE CheckInterfaceSupport(REFGUID, LARGE_INTEGER*) override {
    return E_NOTIMPL;
  }

 private:
  std::wstring description_;
  uint64_t dedicated_bytes_;
};

class FakeDxgiFactory final : public FakeDxgiObject<IDXGIFactory> {
 public:
  std::vector<std::unique_ptr<FakeDxgiAdapter>> adapters;

  HRESULT STDMETHODCALLTYPE EnumAdapters(UINT index, IDXGIAdapter** adapter) override;
  HRESULT STDMETHODCALLTYPE MakeWindowAssociation(HWND, UINT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetWindowAssociation(HWND*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CreateSwapChain(IUnknown*, DXGI_SWAP_CHAIN_DESC*,
                                            IDXGISwapChain**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateSoftwareAdapter(HMODULE, IDXGIAdapter**) override {
    return E_NOTIMPL;
  }
};

class FakeDxgi {
 public:
  enum class Exports { kFactory1, kFactoryOnly, kNone };

  // Puts dxgi.dll into module's system folder for the object's lifetime.
  explicit FakeDxgi(FakeModule& module, Exports exports = Exports::kFactory1);
  ~FakeDxgi();
  FakeDxgi(const FakeDxgi&) = delete;
  FakeDxgi& operator=(const FakeDxgi&) = delete;

  FakeDxgiAdapter& Add(const std::wstring& description, uint64_t dedicated_bytes);

  FakeDxgiFactory factory;
  HRESULT create_result = S_OK;
  std::vector<std::string> creators_called;
  std::vector<GUID> iids_asked;

 private:
  static HRESULT WINAPI CreateFactory1(REFIID iid, void** out);
  static HRESULT WINAPI CreateFactory(REFIID iid, void** out);
  HRESULT Create(const char* creator, REFIID iid, void** out);

  static FakeDxgi* active_;  // the creators are plain functions: they find the test's fake here
  FakeModule& module_;
  std::wstring path_;
};

}  // namespace velhal::testing
