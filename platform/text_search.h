// Text tests the device and network rules share.
#pragma once

#include <string>

namespace velhal {

// Whether needle occurs in haystack, letter case aside, as the shell's StrStrIW finds it: an
// empty needle occurs nowhere.
bool ContainsIgnoringCase(const std::wstring& haystack, const std::wstring& needle);

// Whether text begins with prefix, letter case included.
inline bool StartsWith(const std::wstring& text, const std::wstring& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

}  // namespace velhal
