// The real backend: wlanapi.dll's functions, looked up by name on first use. The library stays
// loaded for the life of the process, so the addresses stay valid.
#include "platform/os/wlan.h"

#include <type_traits>

namespace velhal::os {
namespace {

HMODULE WlanApi() noexcept {
  static const HMODULE module =
      ::LoadLibraryExW(L"wlanapi.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  return module;
}

// One wlanapi function; a call without it answers why it is missing.
template <class Function>
class Bound {
 public:
  explicit Bound(const char* name) noexcept {
    const HMODULE module = WlanApi();
    error_ = module == nullptr ? ERROR_MOD_NOT_FOUND : ERROR_PROC_NOT_FOUND;
    if (module != nullptr) {
      function_ =
          reinterpret_cast<Function*>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
    }
  }

  template <class... Args>
  auto operator()(Args... args) const noexcept {
    using Result = decltype(function_(args...));
    if (function_ == nullptr) {
      ::SetLastError(error_);
      if constexpr (std::is_void_v<Result>) {
        return;
      } else {
        return static_cast<Result>(error_);
      }
    }
    return function_(args...);
  }

 private:
  Function* function_ = nullptr;
  DWORD error_ = 0;
};

class RealWlan final : public Wlan {
 public:
  DWORD WlanOpenHandle(DWORD client_version, void* reserved, DWORD* negotiated_version,
                       HANDLE* client) override {
    static const Bound<decltype(::WlanOpenHandle)> call("WlanOpenHandle");
    return call(client_version, reserved, negotiated_version, client);
  }
  DWORD WlanCloseHandle(HANDLE client, void* reserved) override {
    static const Bound<decltype(::WlanCloseHandle)> call("WlanCloseHandle");
    return call(client, reserved);
  }
  DWORD WlanEnumInterfaces(HANDLE client, void* reserved,
                           WLAN_INTERFACE_INFO_LIST** interfaces) override {
    static const Bound<decltype(::WlanEnumInterfaces)> call("WlanEnumInterfaces");
    return call(client, reserved, interfaces);
  }
  DWORD WlanQueryInterface(HANDLE client, const GUID* interface_guid, WLAN_INTF_OPCODE opcode,
                           void* reserved, DWORD* data_size, void** data,
                           WLAN_OPCODE_VALUE_TYPE* value_type) override {
    static const Bound<decltype(::WlanQueryInterface)> call("WlanQueryInterface");
    return call(client, interface_guid, opcode, reserved, data_size, data, value_type);
  }
  DWORD WlanSetInterface(HANDLE client, const GUID* interface_guid, WLAN_INTF_OPCODE opcode,
                         DWORD data_size, void* data, void* reserved) override {
    static const Bound<decltype(::WlanSetInterface)> call("WlanSetInterface");
    return call(client, interface_guid, opcode, data_size, data, reserved);
  }
  DWORD WlanGetNetworkBssList(HANDLE client, const GUID* interface_guid, const DOT11_SSID* ssid,
                              DOT11_BSS_TYPE bss_type, BOOL security_enabled, void* reserved,
                              WLAN_BSS_LIST** bss_list) override {
    static const Bound<decltype(::WlanGetNetworkBssList)> call("WlanGetNetworkBssList");
    // The system's declaration takes the SSID without const; it only reads it.
    return call(client, interface_guid, const_cast<DOT11_SSID*>(ssid), bss_type, security_enabled,
                reserved, bss_list);
  }
  void WlanFreeMemory(void* memory) override {
    static const Bound<decltype(::WlanFreeMemory)> call("WlanFreeMemory");
    call(memory);
  }
};

}  // namespace

Wlan& Wlan::Real() noexcept {
  static RealWlan backend;
  return backend;
}

}  // namespace velhal::os
