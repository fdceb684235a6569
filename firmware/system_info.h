// The machine's serial number: the SMBIOS system serial, else WMI's BIOS serial, else the
// placeholder "21111111111111111111".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "hal/velhal_export.h"

enum SNErrorCode : uint32_t {
  SN_NO_BUFFER_OR_TOO_SMALL = 0,  // no buffer (nothing written), or the serial did not fit
  SN_SUCCESS = 1,                 // the real serial was copied
  SN_UNKNOWN = 2,                 // no serial known: the placeholder was written
  SN_CONVERSION_FAILED = 3,       // not convertible to narrow text: the placeholder was written
  SN_COPY_FAILED = 4,             // copying failed: the placeholder was written
  SN_PLACEHOLDER_TOO_LONG = 5,    // not even the placeholder fits (fewer than 20 bytes)
};

class VELHAL_API SystemInfo {
 public:
  std::string GetDeviceSerialNumber();
  // Zero-fills the buffer, then copies the serial (or the placeholder) without a terminator.
  SNErrorCode GetDeviceSerialNumberEx(char* buffer, size_t size);
};
