// IP helper facility: the adapter table of the IP stack (iphlpapi), as the library reads it.
#pragma once

#include "platform/win32.h"

#include <iphlpapi.h>

#include "platform/os/seam.h"

namespace velhal::os {

class IpHelper {
 public:
  // ERROR_BUFFER_OVERFLOW with the needed size when the buffer is too small.
  virtual ULONG GetAdaptersInfo(IP_ADAPTER_INFO* adapters, ULONG* size) = 0;

  static IpHelper& Real() noexcept;

 protected:
  ~IpHelper() = default;
};

inline IpHelper& ip_helper() noexcept { return Seam<IpHelper>::Get(); }

}  // namespace velhal::os
