// Reading one unified property of a device in an open device-information set, whatever its
// length: ask for the size, then read exactly that many bytes. Shared by DeviceInformention and
// the component classes' device lists.
#pragma once

#include "platform/win32.h"

#include <setupapi.h>
#include <devpropdef.h>

#include <optional>
#include <vector>

namespace velhal {

struct DevicePropertyValue {
  DEVPROPTYPE type = DEVPROP_TYPE_EMPTY;
  DWORD size = 0;
  std::vector<wchar_t> units;  // size / 2 + 1 units, zeroed: string data always ends
};

// Nothing when the size query does not answer ERROR_INSUFFICIENT_BUFFER with a size, or the
// read fails.
std::optional<DevicePropertyValue> ReadDeviceProperty(HDEVINFO set, SP_DEVINFO_DATA& device,
                                                      const DEVPROPKEY& key);

inline bool IsStringProperty(DEVPROPTYPE type) {
  return type == DEVPROP_TYPE_STRING || type == DEVPROP_TYPE_STRING_LIST;
}

}  // namespace velhal
