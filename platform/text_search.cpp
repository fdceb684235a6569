#include "platform/win32.h"

#include "platform/text_search.h"

#include <shlwapi.h>

namespace velhal {

bool ContainsIgnoringCase(const std::wstring& haystack, const std::wstring& needle) {
  return ::StrStrIW(haystack.c_str(), needle.c_str()) != nullptr;
}

}  // namespace velhal
