// The real backend: the driver's control object through COM.
#include "platform/os/intel_driver.h"

#include <ole2.h>

#include "platform/com_ptr.h"

namespace velhal::os {
namespace {

class RealIntelDriver final : public IntelDriver {
 public:
  HRESULT CreateControl(ICUIExternal8** control) override {
    *control = nullptr;
    ComPtr<IUnknown> object;
    HRESULT hr = ::CoCreateInstance(kCuiExternalClass, nullptr, kCuiExternalContext, IID_IUnknown,
                                    object.PutVoid());
    if (FAILED(hr)) return hr;
    if (!object) return E_NOINTERFACE;
    hr = ::OleRun(object.Get());
    if (FAILED(hr)) return hr;
    hr = object->QueryInterface(kCuiExternal8Interface, reinterpret_cast<void**>(control));
    if (SUCCEEDED(hr) && *control == nullptr) return E_NOINTERFACE;
    return hr;
  }
};

}  // namespace

IntelDriver& IntelDriver::Real() noexcept {
  static RealIntelDriver backend;
  return backend;
}

}  // namespace velhal::os
