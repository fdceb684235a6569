// IP helper facility: the adapter tables of the IP stack (iphlpapi), as the library reads them.
#pragma once

#include "platform/win32.h"

#include <winsock2.h>
#include <ws2ipdef.h>

#include <iphlpapi.h>

#include "platform/os/seam.h"

namespace velhal::os {

class IpHelper {
 public:
  // ERROR_BUFFER_OVERFLOW with the needed size when the buffer is too small.
  virtual ULONG GetAdaptersInfo(IP_ADAPTER_INFO* adapters, ULONG* size) = 0;
  // The same contract; the table's lists point into the caller's buffer.
  virtual ULONG GetAdaptersAddresses(ULONG family, ULONG flags, void* reserved,
                                     IP_ADAPTER_ADDRESSES* addresses, ULONG* size) = 0;

  static IpHelper& Real() noexcept;

 protected:
  ~IpHelper() = default;
};

inline IpHelper& ip_helper() noexcept { return Seam<IpHelper>::Get(); }

}  // namespace velhal::os
