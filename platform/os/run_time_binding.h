// Functions that some Windows versions (or Wine) lack, bound by name on first use so that a
// missing one is a failed call instead of a load failure of the library. The library they live
// in is loaded from the system folder and stays loaded for the life of the process, so the
// addresses stay valid. Real backends keep one Bound per function in a function-local static.
#pragma once

#include "platform/win32.h"

#include <type_traits>

namespace velhal::os {

template <class Function>
class Bound {
 public:
  Bound(const wchar_t* library, const char* name) noexcept {
    const HMODULE module = ::LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    error_ = module == nullptr ? ERROR_MOD_NOT_FOUND : ERROR_PROC_NOT_FOUND;
    if (module != nullptr) {
      function_ =
          reinterpret_cast<Function*>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
    }
  }

  bool IsAvailable() const noexcept { return function_ != nullptr; }
  // ERROR_MOD_NOT_FOUND or ERROR_PROC_NOT_FOUND while the function is missing.
  DWORD MissingError() const noexcept { return error_; }

  // Calls the function; without it, sets the thread's last error to why it is missing and
  // returns failure (nothing for a function without a result).
  template <class Result, class... Args>
  Result CallOr(Result failure, Args... args) const noexcept {
    if (function_ == nullptr) {
      ::SetLastError(error_);
      return failure;
    }
    return static_cast<Result>(function_(args...));
  }
  template <class... Args>
  void CallIfPresent(Args... args) const noexcept {
    if (function_ == nullptr) {
      ::SetLastError(error_);
      return;
    }
    function_(args...);
  }

 private:
  Function* function_ = nullptr;
  DWORD error_ = ERROR_PROC_NOT_FOUND;
};

}  // namespace velhal::os
