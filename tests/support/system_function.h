// A system function looked up by name, as the test's own independent read of something the
// library binds at run time; null when this system lacks it.
#pragma once

#include "platform/win32.h"

namespace velhal::testing {

template <class Function>
Function* SystemFunction(const wchar_t* library, const char* name) {
  const HMODULE module = ::LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  return module
             ? reinterpret_cast<Function*>(reinterpret_cast<void*>(::GetProcAddress(module, name)))
             : nullptr;
}

}  // namespace velhal::testing
