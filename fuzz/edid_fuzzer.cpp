// libFuzzer target for the EDID rules: the name scan and every decoded field over blobs of any
// length. Any read outside the input is caught by AddressSanitizer.
#include <cstddef>
#include <cstdint>

#include "core/edid.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const velhal::edid::Facts facts = velhal::edid::Decode(data, size);
  // The name is at most the 13 text bytes of one descriptor.
  if (facts.monitor_name.size() > 13 || facts.size_bytes != size) __builtin_trap();
  if (facts.preferred_mode &&
      (facts.preferred_mode->width > 4095 || facts.preferred_mode->height > 4095))
    __builtin_trap();
  return 0;
}
