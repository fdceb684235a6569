// The real backend: wlanapi.dll's functions, looked up by name on first use.
#include "platform/os/wlan.h"

#include <type_traits>

#include "platform/os/run_time_binding.h"

namespace velhal::os {
namespace {

// Without wlanapi.dll or one of its functions, a call answers why it is missing.
template <class Function>
class WlanCall {
 public:
  explicit WlanCall(const char* name) noexcept : bound_(L"wlanapi.dll", name) {}
  template <class... Args>
  auto operator()(Args... args) const noexcept {
    if constexpr (std::is_void_v<std::invoke_result_t<Function*, Args...>>) {
      bound_.CallIfPresent(args...);
    } else {
      return bound_.CallOr(bound_.MissingError(), args...);
    }
  }

 private:
  Bound<Function> bound_;
};

class RealWlan final : public Wlan {
 public:
  DWORD WlanOpenHandle(DWORD client_version, void* reserved, DWORD* negotiated_version,
                       HANDLE* client) override {
    static const WlanCall<decltype(::WlanOpenHandle)> call("WlanOpenHandle");
    return call(client_version, reserved, negotiated_version, client);
  }
  DWORD WlanCloseHandle(HANDLE client, void* reserved) override {
    static const WlanCall<decltype(::WlanCloseHandle)> call("WlanCloseHandle");
    return call(client, reserved);
  }
  DWORD WlanEnumInterfaces(HANDLE client, void* reserved,
                           WLAN_INTERFACE_INFO_LIST** interfaces) override {
    static const WlanCall<decltype(::WlanEnumInterfaces)> call("WlanEnumInterfaces");
    return call(client, reserved, interfaces);
  }
  DWORD WlanQueryInterface(HANDLE client, const GUID* interface_guid, WLAN_INTF_OPCODE opcode,
                           void* reserved, DWORD* data_size, void** data,
                           WLAN_OPCODE_VALUE_TYPE* value_type) override {
    static const WlanCall<decltype(::WlanQueryInterface)> call("WlanQueryInterface");
    return call(client, interface_guid, opcode, reserved, data_size, data, value_type);
  }
  DWORD WlanSetInterface(HANDLE client, const GUID* interface_guid, WLAN_INTF_OPCODE opcode,
                         DWORD data_size, void* data, void* reserved) override {
    static const WlanCall<decltype(::WlanSetInterface)> call("WlanSetInterface");
    return call(client, interface_guid, opcode, data_size, data, reserved);
  }
  DWORD WlanGetNetworkBssList(HANDLE client, const GUID* interface_guid, const DOT11_SSID* ssid,
                              DOT11_BSS_TYPE bss_type, BOOL security_enabled, void* reserved,
                              WLAN_BSS_LIST** bss_list) override {
    static const WlanCall<decltype(::WlanGetNetworkBssList)> call("WlanGetNetworkBssList");
    // The system's declaration takes the SSID without const; it only reads it.
    return call(client, interface_guid, const_cast<DOT11_SSID*>(ssid), bss_type, security_enabled,
                reserved, bss_list);
  }
  void WlanFreeMemory(void* memory) override {
    static const WlanCall<decltype(::WlanFreeMemory)> call("WlanFreeMemory");
    call(memory);
  }
};

}  // namespace

Wlan& Wlan::Real() noexcept {
  static RealWlan backend;
  return backend;
}

}  // namespace velhal::os
