#include "tests/fakes/fake_wlan.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace velhal::testing {

void* FakeWlan::Allocate(size_t size) {
  void* memory = std::calloc(1, size);
  memory_.insert(memory);
  return memory;
}

DWORD FakeWlan::WlanOpenHandle(DWORD client_version, void*, DWORD* negotiated_version,
                               HANDLE* client) {
  client_versions.push_back(client_version);
  if (negotiated_version == nullptr || client == nullptr) return ERROR_INVALID_PARAMETER;
  if (open_result != ERROR_SUCCESS) return open_result;
  *negotiated_version = 2;
  if (open_hands_out_null) {
    *client = nullptr;
    return ERROR_SUCCESS;
  }
  *client = reinterpret_cast<HANDLE>(next_handle_ += 0x10);
  open_.insert(*client);
  return ERROR_SUCCESS;
}

DWORD FakeWlan::WlanCloseHandle(HANDLE client, void*) {
  if (open_.erase(client) == 0) {
    ++bad_closes;
    return ERROR_INVALID_HANDLE;
  }
  return ERROR_SUCCESS;
}

DWORD FakeWlan::WlanEnumInterfaces(HANDLE client, void*, WLAN_INTERFACE_INFO_LIST** list) {
  if (open_.count(client) == 0) return ERROR_INVALID_HANDLE;
  if (list == nullptr) return ERROR_INVALID_PARAMETER;
  if (enum_result != ERROR_SUCCESS) return enum_result;
  if (enum_hands_out_null) {
    *list = nullptr;
    return ERROR_SUCCESS;
  }
  const size_t slots = interfaces.empty() ? 1 : interfaces.size();
  auto* made = static_cast<WLAN_INTERFACE_INFO_LIST*>(Allocate(
      offsetof(WLAN_INTERFACE_INFO_LIST, InterfaceInfo) + slots * sizeof(WLAN_INTERFACE_INFO)));
  made->dwNumberOfItems = static_cast<DWORD>(interfaces.size());
  for (size_t i = 0; i < interfaces.size(); ++i) {
    made->InterfaceInfo[i].InterfaceGuid = interfaces[i].guid;
    made->InterfaceInfo[i].isState = interfaces[i].connection ? wlan_interface_state_connected
                                                              : wlan_interface_state_disconnected;
  }
  *list = made;
  return ERROR_SUCCESS;
}

DWORD FakeWlan::WlanQueryInterface(HANDLE client, const GUID* interface_guid,
                                   WLAN_INTF_OPCODE opcode, void*, DWORD* data_size, void** data,
                                   WLAN_OPCODE_VALUE_TYPE* value_type) {
  if (open_.count(client) == 0) return ERROR_INVALID_HANDLE;
  if (interface_guid == nullptr || data_size == nullptr || data == nullptr) {
    return ERROR_INVALID_PARAMETER;
  }
  queried.push_back(*interface_guid);
  if (opcode != wlan_intf_opcode_radio_state && opcode != wlan_intf_opcode_current_connection)
    return ERROR_NOT_SUPPORTED;
  for (const Interface& known : interfaces) {
    if (known.guid != *interface_guid) continue;
    if (known.query_result != ERROR_SUCCESS) return known.query_result;
    if (opcode == wlan_intf_opcode_current_connection) {
      if (!known.connection) return ERROR_INVALID_STATE;
      auto* connection =
          static_cast<WLAN_CONNECTION_ATTRIBUTES*>(Allocate(sizeof(WLAN_CONNECTION_ATTRIBUTES)));
      *connection = *known.connection;
      *data = connection;
      *data_size = sizeof(*connection);
      return ERROR_SUCCESS;
    }
    auto* radio = static_cast<WLAN_RADIO_STATE*>(Allocate(sizeof(WLAN_RADIO_STATE)));
    radio->dwNumberOfPhys = 1;
    radio->PhyRadioState[0].dot11SoftwareRadioState = known.software_radio;
    radio->PhyRadioState[0].dot11HardwareRadioState = dot11_radio_state_on;
    *data = radio;
    *data_size = sizeof(WLAN_RADIO_STATE);
    if (value_type != nullptr) *value_type = wlan_opcode_value_type_query_only;
    return ERROR_SUCCESS;
  }
  return ERROR_NOT_FOUND;
}

DWORD FakeWlan::WlanSetInterface(HANDLE client, const GUID* interface_guid, WLAN_INTF_OPCODE opcode,
                                 DWORD data_size, void* data, void*) {
  if (open_.count(client) == 0) return ERROR_INVALID_HANDLE;
  if (interface_guid == nullptr || data == nullptr) return ERROR_INVALID_PARAMETER;
  const auto* bytes = static_cast<const BYTE*>(data);
  sets.push_back({*interface_guid, opcode, std::vector<BYTE>(bytes, bytes + data_size)});
  return set_result;
}

DWORD FakeWlan::WlanGetNetworkBssList(HANDLE client, const GUID* interface_guid,
                                      const DOT11_SSID* ssid, DOT11_BSS_TYPE, BOOL, void*,
                                      WLAN_BSS_LIST** bss_list) {
  if (open_.count(client) == 0) return ERROR_INVALID_HANDLE;
  if (interface_guid == nullptr || bss_list == nullptr) return ERROR_INVALID_PARAMETER;
  if (ssid != nullptr) {
    bss_ssids_asked.emplace_back(reinterpret_cast<const char*>(ssid->ucSSID),
                                 std::min<size_t>(ssid->uSSIDLength, DOT11_SSID_MAX_LENGTH));
  }
  for (const Interface& known : interfaces) {
    if (known.guid != *interface_guid) continue;
    const size_t size = offsetof(WLAN_BSS_LIST, wlanBssEntries) +
                        std::max<size_t>(known.bss.size(), 1) * sizeof(WLAN_BSS_ENTRY);
    auto* list = static_cast<WLAN_BSS_LIST*>(Allocate(size));
    list->dwTotalSize = static_cast<DWORD>(size);
    list->dwNumberOfItems = static_cast<DWORD>(known.bss.size());
    for (size_t i = 0; i < known.bss.size(); ++i) list->wlanBssEntries[i] = known.bss[i];
    *bss_list = list;
    return ERROR_SUCCESS;
  }
  return ERROR_NOT_FOUND;
}

void FakeWlan::WlanFreeMemory(void* memory) {
  if (memory_.erase(memory) == 0) {
    ++bad_frees;
    return;
  }
  std::free(memory);
}

}  // namespace velhal::testing
