// How every module's information query hands its answer over: numbers little-endian with
// *returned set to their width; texts in the form their class names, *returned counting their
// bytes without a NUL. Nothing is written on failure.
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

// The three ways a module hands text over. Each class's contract names one, and whether an
// empty text is an answer of 0 bytes or a failure; WriteText is the one place that decides.
enum class TextForm {
  kUtf16,          // UTF-16 without a NUL; room for the NUL (2n + 2 bytes) is required
  kAnsiWithNul,    // ANSI code page, copied with its NUL; the buffer must exceed n bytes
  kAnsiWithoutNul  // ANSI code page, no NUL written (callers pass zeroed buffers); n < size
};
enum class EmptyText { kFails, kIsAnswer };

uint32_t WriteText(void* buffer, uint32_t buffer_size, uint32_t* returned,
                   const std::wstring& text, TextForm form, EmptyText empty);

// Entry i of a list. Addressed from the block's start: the header type declares only one entry.
HalDeviceEntry* EntryAt(HalDeviceList* list, uint32_t index);

// The block of classes 3, 5 and 11: header then count entries indexed 0 .. count - 1. The handle
// slots start at 0, so closing an entry that was never opened closes nothing; the reserved bytes
// are left as allocated. On allocation failure *list holds null.
uint32_t MakeDeviceList(void* list, uint64_t count);

}  // namespace velhal::hal
