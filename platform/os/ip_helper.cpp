// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/ip_helper.h"

namespace velhal::os {
namespace {

class RealIpHelper final : public IpHelper {
 public:
  ULONG GetAdaptersInfo(IP_ADAPTER_INFO* adapters, ULONG* size) override {
    return ::GetAdaptersInfo(adapters, size);
  }
  ULONG GetAdaptersAddresses(ULONG family, ULONG flags, void* reserved,
                             IP_ADAPTER_ADDRESSES* addresses, ULONG* size) override {
    return ::GetAdaptersAddresses(family, flags, reserved, addresses, size);
  }
};

}  // namespace

IpHelper& IpHelper::Real() noexcept {
  static RealIpHelper backend;
  return backend;
}

}  // namespace velhal::os
