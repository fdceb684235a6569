// Class 16 through the AMD display library: atiadlxx.dll from the system folder, bound once
// (all 21 entry points or not at all) and kept for the process, with an ADL context created
// and destroyed on every call.
#pragma once

#include <cstdint>

#include "hal/hal_api.h"

namespace velhal::hal::adl {

// Set once the library is bound; never cleared.
bool Ready();
// The ready check: a bound library has all its entry points.
bool EntryPointsPresent();

// HalInit's AMD path: the first mapped display of the first adapter that has one, as a
// DpDisplayList stored in *list. 0 when the library is missing or no display qualifies.
uint32_t Init(DpDisplayList** list);

// entry is &DpDisplayList.adapterIndex: adapter index, then display index.
uint32_t Query(const uint32_t* entry, uint32_t info_class, void* buffer, uint32_t buffer_size,
               uint32_t* returned);
uint32_t Set(const uint32_t* entry, uint32_t info_class, const void* buffer, uint32_t buffer_size);

// The value a set asks for: level 0-255 spread over 4000-6000 (mode non-zero) or 5000-8000
// (mode 0), cut to a multiple of 100, raised to ADL's minimum or lowered to the top of the
// spread. Brightness is mapped the same way: callers rely on it.
struct MappedLevel {
  int64_t value;
  int64_t top;  // 6000 or 8000: a value is set only when it lies between ADL's minimum and this
};
MappedLevel MapLevel(uint32_t level, uint32_t mode, int minimum);

}  // namespace velhal::hal::adl
