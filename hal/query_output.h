// How every module's information query hands its answer over: numbers little-endian with
// *returned set to their width; text as UTF-16 without a terminating NUL, *returned counting
// its bytes, though room for the NUL (2n + 2 bytes) is required. Nothing is written on failure.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

#include "hal/hal_api.h"

namespace velhal::hal {

template <class Number>
uint32_t WriteNumber(void* buffer, uint32_t buffer_size, uint32_t* returned, Number value) {
  if (buffer == nullptr || returned == nullptr || buffer_size < sizeof(Number)) return 0;
  std::memcpy(buffer, &value, sizeof(Number));
  *returned = sizeof(Number);
  return 1;
}

// An empty answer is a failure: callers cannot tell it from a missing one.
inline uint32_t WriteText(void* buffer, uint32_t buffer_size, uint32_t* returned,
                          const std::wstring& text) {
  const uint64_t bytes = uint64_t{text.size()} * sizeof(wchar_t);
  if (buffer == nullptr || returned == nullptr || text.empty() ||
      uint64_t{buffer_size} < bytes + sizeof(wchar_t)) {
    return 0;
  }
  std::memcpy(buffer, text.data(), static_cast<size_t>(bytes));
  *returned = static_cast<uint32_t>(bytes);
  return 1;
}

// Entry i of a list. Addressed from the block's start: the header type declares only one entry.
HalDeviceEntry* EntryAt(HalDeviceList* list, uint32_t index);

// The block of classes 3, 5 and 11: header then count entries indexed 0 .. count - 1. The handle
// slots start at 0, so closing an entry that was never opened closes nothing; the reserved bytes
// are left as allocated. On allocation failure *list holds null.
uint32_t MakeDeviceList(void* list, uint64_t count);

}  // namespace velhal::hal
