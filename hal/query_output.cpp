#include "hal/query_output.h"

#include <cstddef>
#include <cstdlib>

#include "hal/hal_api.h"

namespace velhal::hal {

HalDeviceEntry* EntryAt(HalDeviceList* list, uint32_t index) {
  return reinterpret_cast<HalDeviceEntry*>(reinterpret_cast<unsigned char*>(list) +
                                           offsetof(HalDeviceList, entries)) +
         index;
}

uint32_t MakeDeviceList(void* list, uint64_t count) {
  const uint64_t size = 8 + 16 * count;
  if (list == nullptr || count == 0 || size > 0xFFFFFFFFull) return 0;
  auto* block = static_cast<HalDeviceList*>(std::malloc(static_cast<size_t>(size)));
  *static_cast<HalDeviceList**>(list) = block;
  if (block == nullptr) return 0;
  block->totalSize = static_cast<uint32_t>(size);
  block->count = static_cast<uint32_t>(count);
  for (uint32_t i = 0; i < count; ++i) {
    EntryAt(block, i)->handle = nullptr;
    EntryAt(block, i)->index = i;
  }
  return 1;
}

}  // namespace velhal::hal
