// WLAN facility: the native Wi-Fi client calls the library makes. wlanapi.dll is missing where
// the WLAN service is not installed (Windows Server without the wireless feature), so the real
// backend binds it at run time: a missing library or function is a failed call answering
// ERROR_MOD_NOT_FOUND or ERROR_PROC_NOT_FOUND (also as the thread's last error).
#pragma once

#include "platform/win32.h"

#include <wlanapi.h>

#include "platform/os/seam.h"
#include "platform/unique_resource.h"

namespace velhal::os {

class Wlan {
 public:
  virtual DWORD WlanOpenHandle(DWORD client_version, void* reserved, DWORD* negotiated_version,
                               HANDLE* client) = 0;
  virtual DWORD WlanCloseHandle(HANDLE client, void* reserved) = 0;
  virtual DWORD WlanEnumInterfaces(HANDLE client, void* reserved,
                                   WLAN_INTERFACE_INFO_LIST** interfaces) = 0;
  virtual DWORD WlanQueryInterface(HANDLE client, const GUID* interface_guid,
                                   WLAN_INTF_OPCODE opcode, void* reserved, DWORD* data_size,
                                   void** data, WLAN_OPCODE_VALUE_TYPE* value_type) = 0;
  virtual DWORD WlanSetInterface(HANDLE client, const GUID* interface_guid, WLAN_INTF_OPCODE opcode,
                                 DWORD data_size, void* data, void* reserved) = 0;
  virtual DWORD WlanGetNetworkBssList(HANDLE client, const GUID* interface_guid,
                                      const DOT11_SSID* ssid, DOT11_BSS_TYPE bss_type,
                                      BOOL security_enabled, void* reserved,
                                      WLAN_BSS_LIST** bss_list) = 0;
  virtual void WlanFreeMemory(void* memory) = 0;

  static Wlan& Real() noexcept;

 protected:
  ~Wlan() = default;
};

inline Wlan& wlan() noexcept { return Seam<Wlan>::Get(); }

}  // namespace velhal::os

namespace velhal {

struct WlanHandleTraits {
  using Handle = HANDLE;
  static HANDLE Invalid() noexcept { return nullptr; }
  static bool IsValid(HANDLE client) noexcept {
    return client != nullptr && client != INVALID_HANDLE_VALUE;
  }
  static void Close(HANDLE client) noexcept { os::wlan().WlanCloseHandle(client, nullptr); }
};
using UniqueWlanHandle = UniqueResource<WlanHandleTraits>;

// Memory the WLAN service hands out (interface lists, query results).
template <class T>
struct WlanMemoryTraits {
  using Handle = T*;
  static T* Invalid() noexcept { return nullptr; }
  static bool IsValid(T* memory) noexcept { return memory != nullptr; }
  static void Close(T* memory) noexcept { os::wlan().WlanFreeMemory(memory); }
};
template <class T>
using UniqueWlanMemory = UniqueResource<WlanMemoryTraits<T>>;

}  // namespace velhal
