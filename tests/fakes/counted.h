// A COM object for fakes that counts its references without ever deleting itself, so a test
// can read the count at the end: a leak shows as a count above the test's own, a release too
// many as `over_released`. Interface is the one interface the object answers besides IUnknown.
#pragma once

#include "platform/win32.h"

#include <unknwn.h>

namespace velhal::testing {

template <class Interface>
class Counted : public Interface {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (out == nullptr) return E_POINTER;
    if (iid != __uuidof(IUnknown) && iid != __uuidof(Interface)) {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    *out = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override {
    if (references == 0) {
      over_released = true;
      return 0;
    }
    return --references;
  }

  ULONG references = 1;  // the test's own
  bool over_released = false;
};

}  // namespace velhal::testing
