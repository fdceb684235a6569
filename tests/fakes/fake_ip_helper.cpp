#include "tests/fakes/fake_ip_helper.h"

#include <ws2tcpip.h>

namespace velhal::testing {
namespace {

constexpr size_t kBytesPerAdapter = 1024;  // the fake's own table: room enough for each

// Hands out zeroed, aligned pieces of the caller's buffer in order.
class Arena {
 public:
  explicit Arena(BYTE* start) : next_(start) {}
  template <class T>
  T* Take() {
    next_ += (8 - reinterpret_cast<uintptr_t>(next_) % 8) % 8;
    T* piece = reinterpret_cast<T*>(next_);
    next_ += sizeof(T);
    std::memset(piece, 0, sizeof(T));
    return piece;
  }

 private:
  BYTE* next_;
};

}  // namespace

ULONG FakeIpHelper::GetAdaptersAddresses(ULONG family, ULONG, void*, IP_ADAPTER_ADDRESSES* table,
                                         ULONG* size) {
  if (size == nullptr || family != AF_UNSPEC) return ERROR_INVALID_PARAMETER;
  offered.push_back(*size);
  if (failure != ERROR_SUCCESS) return failure;
  if (ip_adapters.empty()) return ERROR_NO_DATA;
  const ULONG needed = static_cast<ULONG>(ip_adapters.size() * kBytesPerAdapter);
  if (table == nullptr || *size < needed) {
    *size = needed;
    return ERROR_BUFFER_OVERFLOW;
  }
  Arena arena(reinterpret_cast<BYTE*>(table));
  IP_ADAPTER_ADDRESSES** next = nullptr;
  static wchar_t kNoText[] = L"";
  for (const IpAdapter& from : ip_adapters) {
    IP_ADAPTER_ADDRESSES* entry = arena.Take<IP_ADAPTER_ADDRESSES>();
    if (next != nullptr) *next = entry;
    next = &entry->Next;
    entry->FriendlyName = entry->Description = entry->DnsSuffix = kNoText;
    entry->OperStatus = from.status;
    entry->IfType = from.type;
    IP_ADAPTER_UNICAST_ADDRESS** unicast = &entry->FirstUnicastAddress;
    for (const auto& [text, prefix] : from.unicast) {
      *unicast = arena.Take<IP_ADAPTER_UNICAST_ADDRESS>();
      (*unicast)->OnLinkPrefixLength = prefix;
      auto* address = arena.Take<sockaddr_in6>();  // room for either family
      address->sin6_family = text.find(':') == std::string::npos ? AF_INET : AF_INET6;
      void* bytes = address->sin6_family == AF_INET
                        ? static_cast<void*>(&reinterpret_cast<sockaddr_in*>(address)->sin_addr)
                        : &address->sin6_addr;
      ::inet_pton(address->sin6_family, text.c_str(), bytes);
      (*unicast)->Address = {reinterpret_cast<sockaddr*>(address), sizeof(*address)};
      unicast = &(*unicast)->Next;
    }
  }
  return ERROR_SUCCESS;
}

}  // namespace velhal::testing
