// The WLAN service as a test sets it: interfaces with a software radio state, a connection (the
// interface is connected when it has one) and the BSS list of its network, the result of each
// call, and what the library asked to set. Handles and handed-out memory are counted, so a test
// sees a handle left open or memory not given back. An empty interface list still holds one
// zeroed entry, as the service's list type always has room for one.
#pragma once

#include "platform/win32.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/os/wlan.h"

namespace velhal::testing {

class FakeWlan final : public os::Wlan {
 public:
  struct Interface {
    GUID guid{};
    DOT11_RADIO_STATE software_radio = dot11_radio_state_on;
    DWORD query_result = ERROR_SUCCESS;
    std::optional<WLAN_CONNECTION_ATTRIBUTES> connection{};
    std::vector<WLAN_BSS_ENTRY> bss{};
  };
  struct SetCall {
    GUID interface_guid;
    WLAN_INTF_OPCODE opcode;
    std::vector<BYTE> data;
  };

  DWORD open_result = ERROR_SUCCESS;
  bool open_hands_out_null = false;  // succeeds without a handle
  DWORD enum_result = ERROR_SUCCESS;
  bool enum_hands_out_null = false;  // succeeds without a list
  DWORD set_result = ERROR_SUCCESS;
  std::vector<Interface> interfaces;

  std::vector<DWORD> client_versions;
  std::vector<GUID> queried;  // interface of each radio-state query
  std::vector<SetCall> sets;
  std::vector<std::string> bss_ssids_asked;
  size_t open_handles() const { return open_.size(); }
  size_t unfreed() const { return memory_.size(); }
  int bad_closes = 0;
  int bad_frees = 0;

  DWORD WlanOpenHandle(DWORD client_version, void* reserved, DWORD* negotiated_version,
                       HANDLE* client) override;
  DWORD WlanCloseHandle(HANDLE client, void* reserved) override;
  DWORD WlanEnumInterfaces(HANDLE client, void* reserved, WLAN_INTERFACE_INFO_LIST** list) override;
  DWORD WlanQueryInterface(HANDLE client, const GUID* interface_guid, WLAN_INTF_OPCODE opcode,
                           void* reserved, DWORD* data_size, void** data,
                           WLAN_OPCODE_VALUE_TYPE* value_type) override;
  DWORD WlanSetInterface(HANDLE client, const GUID* interface_guid, WLAN_INTF_OPCODE opcode,
                         DWORD data_size, void* data, void* reserved) override;
  DWORD WlanGetNetworkBssList(HANDLE client, const GUID* interface_guid, const DOT11_SSID* ssid,
                              DOT11_BSS_TYPE bss_type, BOOL security_enabled, void* reserved,
                              WLAN_BSS_LIST** bss_list) override;
  void WlanFreeMemory(void* memory) override;

 private:
  void* Allocate(size_t size);

  std::set<HANDLE> open_;
  std::set<void*> memory_;
  uintptr_t next_handle_ = 0x3A10;
};

}  // namespace velhal::testing
