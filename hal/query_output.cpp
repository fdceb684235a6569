#include "hal/query_output.h"

#include <cstddef>
#include <cstdlib>

#include "hal/hal_api.h"

namespace velhal::hal {

uint32_t MakeDeviceList(void* list, uint64_t count) {
  const uint64_t size = 8 + 16 * count;
  if (list == nullptr || count == 0 || size > 0xFFFFFFFFull) return 0;
  auto* block = static_cast<HalDeviceList*>(std::malloc(static_cast<size_t>(size)));
  *static_cast<HalDeviceList**>(list) = block;
  if (block == nullptr) return 0;
  block->totalSize = static_cast<uint32_t>(size);
  block->count = static_cast<uint32_t>(count);
  // Entries are addressed from the block's start: the header declares only one.
  auto* entries = reinterpret_cast<HalDeviceEntry*>(reinterpret_cast<unsigned char*>(block) +
                                                    offsetof(HalDeviceList, entries));
  for (uint32_t i = 0; i < count; ++i) {
    entries[i].handle = nullptr;
    entries[i].index = i;
  }
  return 1;
}

}  // namespace velhal::hal
