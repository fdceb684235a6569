// The real backends: each member forwards to the Win32 function of the same name.
#include "platform/win32.h"

#include "platform/os/com.h"
#include "platform/os/debug_output.h"
#include "platform/os/registry.h"

namespace velhal::os {
namespace {

class RealRegistry final : public Registry {
 public:
  LSTATUS RegOpenKeyExW(HKEY key, const wchar_t* sub_key, DWORD options, REGSAM access,
                        HKEY* result) override {
    return ::RegOpenKeyExW(key, sub_key, options, access, result);
  }
  LSTATUS RegQueryValueExW(HKEY key, const wchar_t* value_name, DWORD* reserved, DWORD* type,
                           BYTE* data, DWORD* data_size) override {
    return ::RegQueryValueExW(key, value_name, reserved, type, data, data_size);
  }
  LSTATUS RegSetKeyValueW(HKEY key, const wchar_t* sub_key, const wchar_t* value_name, DWORD type,
                          const void* data, DWORD data_size) override {
    return ::RegSetKeyValueW(key, sub_key, value_name, type, data, data_size);
  }
  LSTATUS RegCloseKey(HKEY key) override { return ::RegCloseKey(key); }
};

class RealDebugOutput final : public DebugOutput {
 public:
  void OutputDebugStringW(const wchar_t* text) override { ::OutputDebugStringW(text); }
};

class RealCom final : public Com {
 public:
  HRESULT CoGetApartmentType(APTTYPE* type, APTTYPEQUALIFIER* qualifier) override {
    return ::CoGetApartmentType(type, qualifier);
  }
  HRESULT CoInitializeEx(void* reserved, DWORD model) override {
    return ::CoInitializeEx(reserved, model);
  }
  void CoUninitialize() override { ::CoUninitialize(); }
  HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                           void** object) override {
    return ::CoCreateInstance(clsid, outer, context, iid, object);
  }
  HRESULT CoSetProxyBlanket(IUnknown* proxy, DWORD authn_service, DWORD authz_service,
                            OLECHAR* server_principal, DWORD authn_level, DWORD imp_level,
                            RPC_AUTH_IDENTITY_HANDLE auth_info, DWORD capabilities) override {
    return ::CoSetProxyBlanket(proxy, authn_service, authz_service, server_principal,
                               authn_level, imp_level, auth_info, capabilities);
  }
};

}  // namespace

Com& Com::Real() noexcept {
  static RealCom backend;
  return backend;
}

Registry& Registry::Real() noexcept {
  static RealRegistry backend;
  return backend;
}

DebugOutput& DebugOutput::Real() noexcept {
  static RealDebugOutput backend;
  return backend;
}

}  // namespace velhal::os
