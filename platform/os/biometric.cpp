// The real backend: winbio.dll's functions, looked up by name on first use.
#include "platform/os/biometric.h"

#include "platform/os/run_time_binding.h"

namespace velhal::os {
namespace {

class RealBiometric final : public Biometric {
 public:
  HRESULT WinBioEnumBiometricUnits(ULONG factor, WinBioUnitSchema** units, SIZE_T* count) override {
    static const Bound<HRESULT WINAPI(ULONG, WinBioUnitSchema**, SIZE_T*)> call(
        L"winbio.dll", "WinBioEnumBiometricUnits");
    return call.CallOr(HRESULT_FROM_WIN32(call.MissingError()), factor, units, count);
  }
  HRESULT WinBioFree(void* memory) override {
    static const Bound<HRESULT WINAPI(void*)> call(L"winbio.dll", "WinBioFree");
    return call.CallOr(HRESULT_FROM_WIN32(call.MissingError()), memory);
  }
};

}  // namespace

Biometric& Biometric::Real() noexcept {
  static RealBiometric backend;
  return backend;
}

}  // namespace velhal::os
