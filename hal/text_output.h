// Narrow-text answers of the processor and battery modules: ANSI code page, copied with their
// NUL into a buffer that must be longer than the text; *returned gets the length without NUL.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

#include "platform/string_conversion.h"

namespace velhal::hal {

inline uint32_t WriteNarrowText(void* buffer, uint32_t buffer_size, uint32_t* returned,
                                const std::wstring& text) {
  if (buffer == nullptr || returned == nullptr) return 0;
  const std::string narrow = WideToAnsi(text);
  // A copy that would overflow is refused, never truncated.
  if (narrow.empty() || uint64_t{buffer_size} <= narrow.size()) return 0;
  std::memcpy(buffer, narrow.c_str(), narrow.size() + 1);
  *returned = static_cast<uint32_t>(narrow.size());
  return 1;
}

}  // namespace velhal::hal
