// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/com.h"

namespace velhal::os {
namespace {

class RealCom final : public Com {
 public:
  HRESULT CoGetApartmentType(APTTYPE* type, APTTYPEQUALIFIER* qualifier) override {
    return ::CoGetApartmentType(type, qualifier);
  }
  HRESULT CoInitializeEx(void* reserved, DWORD model) override {
    return ::CoInitializeEx(reserved, model);
  }
  HRESULT CoInitialize(void* reserved) override { return ::CoInitialize(reserved); }
  void CoUninitialize() override { ::CoUninitialize(); }
  HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                           void** object) override {
    return ::CoCreateInstance(clsid, outer, context, iid, object);
  }
  HRESULT CoCreateGuid(GUID* guid) override { return ::CoCreateGuid(guid); }
  HRESULT CoSetProxyBlanket(IUnknown* proxy, DWORD authn_service, DWORD authz_service,
                            OLECHAR* server_principal, DWORD authn_level, DWORD imp_level,
                            RPC_AUTH_IDENTITY_HANDLE auth_info, DWORD capabilities) override {
    return ::CoSetProxyBlanket(proxy, authn_service, authz_service, server_principal, authn_level,
                               imp_level, auth_info, capabilities);
  }
};

}  // namespace

Com& Com::Real() noexcept {
  static RealCom backend;
  return backend;
}

}  // namespace velhal::os
