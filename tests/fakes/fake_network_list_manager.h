// The Network List Manager's connectivity answers, as a test sets them; register it with
// FakeCom under the class's CLSID.
#pragma once

#include "platform/win32.h"

#include <netlistmgr.h>

#include "tests/fakes/counted.h"

namespace velhal::testing {

class FakeNetworkListManager final : public Counted<INetworkListManager> {
 public:
  HRESULT connected_result = S_OK;
  HRESULT internet_result = S_OK;
  VARIANT_BOOL connected = VARIANT_TRUE;
  VARIANT_BOOL internet = VARIANT_TRUE;
  HRESULT connectivity_result = S_OK;
  NLM_CONNECTIVITY connectivity = NLM_CONNECTIVITY_IPV4_INTERNET;

  HRESULT STDMETHODCALLTYPE IsConnected(VARIANT_BOOL* value) override {
    return Answer(connected_result, connected, value);
  }
  HRESULT STDMETHODCALLTYPE IsConnectedToInternet(VARIANT_BOOL* value) override {
    return Answer(internet_result, internet, value);
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetNetworks(NLM_ENUM_NETWORK, IEnumNetworks**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetNetwork(GUID, INetwork**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetNetworkConnections(IEnumNetworkConnections**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetNetworkConnection(GUID, INetworkConnection**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetConnectivity(NLM_CONNECTIVITY* value) override {
    if (value == nullptr) return E_POINTER;
    if (SUCCEEDED(connectivity_result)) *value = connectivity;
    return connectivity_result;
  }

 private:
  static HRESULT Answer(HRESULT result, VARIANT_BOOL answer, VARIANT_BOOL* value) {
    if (value == nullptr) return E_POINTER;
    if (FAILED(result)) return result;
    *value = answer;
    return S_OK;
  }
};

}  // namespace velhal::testing
