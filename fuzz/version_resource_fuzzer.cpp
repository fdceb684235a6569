// libFuzzer target for the version-resource reader: any read outside the input is caught by
// AddressSanitizer, and versions come only out of a block that fits the input.
#include <cstddef>
#include <cstdint>

#include "core/version_resource.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto versions = velhal::version_resource::ParseFixedVersions(data, size);
  if (versions && (size < 92 || (data[0] | data[1] << 8) > static_cast<int>(size))) {
    __builtin_trap();
  }
  return 0;
}
