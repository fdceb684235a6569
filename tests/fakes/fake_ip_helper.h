// The IP stack's adapter table as a test sets it: adapters with a description and a gateway,
// laid out as GetAdaptersInfo lays them out (a chain inside the caller's buffer). Records the
// buffer size of every call.
#pragma once

#include "platform/win32.h"

#include <cstring>
#include <string>
#include <vector>

#include "platform/os/ip_helper.h"

namespace velhal::testing {

class FakeIpHelper final : public os::IpHelper {
 public:
  struct Adapter {
    std::string description;
    std::string gateway;
  };

  std::vector<Adapter> adapters;
  ULONG failure = ERROR_SUCCESS;  // otherwise every call answers it
  std::vector<ULONG> offered;

  ULONG GetAdaptersInfo(IP_ADAPTER_INFO* table, ULONG* size) override {
    if (size == nullptr) return ERROR_INVALID_PARAMETER;
    offered.push_back(*size);
    if (failure != ERROR_SUCCESS) return failure;
    if (adapters.empty()) return ERROR_NO_DATA;
    const ULONG needed = static_cast<ULONG>(adapters.size() * sizeof(IP_ADAPTER_INFO));
    if (table == nullptr || *size < needed) {
      *size = needed;
      return ERROR_BUFFER_OVERFLOW;
    }
    std::memset(table, 0, needed);
    for (size_t i = 0; i < adapters.size(); ++i) {
      IP_ADAPTER_INFO& entry = table[i];
      entry.Next = i + 1 < adapters.size() ? &table[i + 1] : nullptr;
      entry.Index = static_cast<DWORD>(i + 1);
      adapters[i].description.copy(entry.Description, sizeof(entry.Description) - 1);
      adapters[i].gateway.copy(entry.GatewayList.IpAddress.String,
                               sizeof(entry.GatewayList.IpAddress.String) - 1);
    }
    return ERROR_SUCCESS;
  }
};

}  // namespace velhal::testing
