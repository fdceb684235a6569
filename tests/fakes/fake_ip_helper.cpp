#include "tests/fakes/fake_ip_helper.h"

#include <ws2tcpip.h>

namespace velhal::testing {
namespace {

// Hands out aligned pieces of the buffer in order.
class Arena {
 public:
  explicit Arena(BYTE* start) : start_(start) {}
  template <class T>
  T* Take(size_t count = 1) {
    used_ = (used_ + 7) / 8 * 8;
    T* piece = reinterpret_cast<T*>(start_ + used_);
    used_ += sizeof(T) * count;
    std::memset(piece, 0, sizeof(T) * count);
    return piece;
  }
  wchar_t* Text(const std::wstring& text) {
    wchar_t* copy = Take<wchar_t>(text.size() + 1);
    std::memcpy(copy, text.c_str(), text.size() * sizeof(wchar_t));
    return copy;
  }
  // The system's own parser, so that the library's formatting is checked against it.
  SOCKET_ADDRESS Address(const std::string& text) {
    SOCKET_ADDRESS address{};
    if (text.find(':') == std::string::npos) {
      auto* v4 = Take<sockaddr_in>();
      v4->sin_family = AF_INET;
      ::inet_pton(AF_INET, text.c_str(), &v4->sin_addr);
      address = {reinterpret_cast<sockaddr*>(v4), sizeof(*v4)};
    } else {
      auto* v6 = Take<sockaddr_in6>();
      v6->sin6_family = AF_INET6;
      ::inet_pton(AF_INET6, text.c_str(), &v6->sin6_addr);
      address = {reinterpret_cast<sockaddr*>(v6), sizeof(*v6)};
    }
    return address;
  }
  size_t used() const { return used_; }

 private:
  BYTE* start_;
  size_t used_ = 0;
};

template <class Entry>
Entry* Chain(Arena& arena, const std::vector<std::string>& texts) {
  Entry* first = nullptr;
  Entry** next = &first;
  for (const std::string& text : texts) {
    *next = arena.Take<Entry>();
    (*next)->Length = sizeof(Entry);
    (*next)->Address = arena.Address(text);
    next = &(*next)->Next;
  }
  return first;
}

}  // namespace

size_t FakeIpHelper::LayOut(BYTE* start) const {
  Arena arena(start);
  IP_ADAPTER_ADDRESSES** next = nullptr;
  for (size_t i = 0; i < ip_adapters.size(); ++i) {
    const IpAdapter& from = ip_adapters[i];
    IP_ADAPTER_ADDRESSES* entry = arena.Take<IP_ADAPTER_ADDRESSES>();
    if (next != nullptr) *next = entry;
    next = &entry->Next;
    entry->Length = sizeof(*entry);
    entry->IfIndex = static_cast<DWORD>(i + 1);
    const std::string guid = "{0000000" + std::to_string(i + 1) + "-0000-0000-0000-000000000000}";
    entry->AdapterName = arena.Take<char>(guid.size() + 1);
    guid.copy(entry->AdapterName, guid.size());
    entry->FriendlyName = arena.Text(from.name);
    entry->Description = arena.Text(from.description);
    entry->DnsSuffix = arena.Text(L"");
    entry->PhysicalAddressLength = static_cast<DWORD>(from.mac.size());
    std::memcpy(entry->PhysicalAddress, from.mac.data(), from.mac.size());
    entry->Flags = from.dhcp ? IP_ADAPTER_DHCP_ENABLED : 0;
    entry->OperStatus = from.status;
    entry->IfType = from.type;
    entry->TransmitLinkSpeed = from.speed;
    IP_ADAPTER_UNICAST_ADDRESS** unicast = &entry->FirstUnicastAddress;
    for (const auto& [text, prefix] : from.unicast) {
      *unicast = arena.Take<IP_ADAPTER_UNICAST_ADDRESS>();
      (*unicast)->Length = sizeof(**unicast);
      (*unicast)->Address = arena.Address(text);
      (*unicast)->OnLinkPrefixLength = prefix;
      unicast = &(*unicast)->Next;
    }
    entry->FirstGatewayAddress = Chain<IP_ADAPTER_GATEWAY_ADDRESS>(arena, from.gateways);
    entry->FirstDnsServerAddress = Chain<IP_ADAPTER_DNS_SERVER_ADDRESS>(arena, from.dns_servers);
  }
  return arena.used();
}

ULONG FakeIpHelper::GetAdaptersAddresses(ULONG family, ULONG flags, void*,
                                         IP_ADAPTER_ADDRESSES* table, ULONG* size) {
  if (size == nullptr || family != AF_UNSPEC) return ERROR_INVALID_PARAMETER;
  offered.push_back(*size);
  flags_seen.push_back(flags);
  if (failure != ERROR_SUCCESS) return failure;
  if (ip_adapters.empty()) return ERROR_NO_DATA;
  std::vector<BYTE> scratch(1 << 16);
  const ULONG needed = static_cast<ULONG>(LayOut(scratch.data()));
  if (table == nullptr || *size < needed) {
    *size = needed;
    return ERROR_BUFFER_OVERFLOW;
  }
  LayOut(reinterpret_cast<BYTE*>(table));
  return ERROR_SUCCESS;
}

}  // namespace velhal::testing
