// A COM apartment for the length of one call: the thread's own apartment where it has one (the
// host's, or the process's implicit multithreaded one), else the multithreaded apartment joined
// here and left again when the object ends. A thread in a single-threaded apartment that
// CoGetApartmentType could not report (RPC_E_CHANGED_MODE) is used as it is, with nothing to
// undo. So a call leaves the host's apartment as it found it.
#pragma once

#include "platform/win32.h"

#include <objbase.h>

#include "platform/os/com.h"

namespace velhal {

class ComApartment {
 public:
  ComApartment() noexcept {
    APTTYPE type{};
    APTTYPEQUALIFIER qualifier{};
    if (SUCCEEDED(os::com().CoGetApartmentType(&type, &qualifier))) {
      status_ = S_OK;
      return;
    }
    const HRESULT init = os::com().CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    initialised_ = SUCCEEDED(init);  // S_OK or S_FALSE: both need one CoUninitialize
    status_ = initialised_ || init == RPC_E_CHANGED_MODE ? S_OK : init;
  }
  ~ComApartment() {
    if (initialised_) os::com().CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;

  HRESULT status() const noexcept { return status_; }

 private:
  HRESULT status_ = E_UNEXPECTED;
  bool initialised_ = false;
};

}  // namespace velhal
