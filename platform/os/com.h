// COM facility: apartment handling, object creation and proxy security, as the library uses
// them. The objects created are real COM interfaces, so a fake hands out fake objects.
#pragma once

#include "platform/win32.h"

#include <objbase.h>

#include "platform/os/seam.h"

namespace velhal::os {

class Com {
 public:
  virtual HRESULT CoGetApartmentType(APTTYPE* type, APTTYPEQUALIFIER* qualifier) = 0;
  virtual HRESULT CoInitializeEx(void* reserved, DWORD model) = 0;
  virtual HRESULT CoInitialize(void* reserved) = 0;  // a single-threaded apartment
  virtual void CoUninitialize() = 0;
  virtual HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                                   void** object) = 0;
  virtual HRESULT CoCreateGuid(GUID* guid) = 0;
  virtual HRESULT CoSetProxyBlanket(IUnknown* proxy, DWORD authn_service, DWORD authz_service,
                                    OLECHAR* server_principal, DWORD authn_level, DWORD imp_level,
                                    RPC_AUTH_IDENTITY_HANDLE auth_info, DWORD capabilities) = 0;

  static Com& Real() noexcept;

 protected:
  ~Com() = default;
};

inline Com& com() noexcept { return Seam<Com>::Get(); }

}  // namespace velhal::os
