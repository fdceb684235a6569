// The Windows Biometric Framework's units as a test sets them, by the factor asked for; a
// factor without an entry answers WINBIO_E_UNSUPPORTED_FACTOR. Arrays handed out are counted
// until WinBioFree takes them back.
#pragma once

#include "platform/win32.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "platform/os/biometric.h"

namespace velhal::testing {

class FakeBiometric final : public os::Biometric {
 public:
  static constexpr HRESULT kUnsupportedFactor = static_cast<HRESULT>(0x80098001);

  std::map<ULONG, std::vector<os::WinBioUnitSchema>> units;
  bool missing = false;  // no winbio.dll
  std::vector<ULONG> factors_asked;
  int bad_frees = 0;
  size_t unfreed() const { return handed_out_.size(); }

  HRESULT WinBioEnumBiometricUnits(ULONG factor, os::WinBioUnitSchema** out,
                                   SIZE_T* count) override {
    factors_asked.push_back(factor);
    *out = nullptr;
    *count = 0;
    if (missing) return HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND);
    const auto found = units.find(factor);
    if (found == units.end()) return kUnsupportedFactor;
    auto* array = new os::WinBioUnitSchema[found->second.size() + 1];
    std::copy(found->second.begin(), found->second.end(), array);
    handed_out_.insert(array);
    *out = array;
    *count = found->second.size();
    return S_OK;
  }
  HRESULT WinBioFree(void* memory) override {
    auto* array = static_cast<os::WinBioUnitSchema*>(memory);
    if (handed_out_.erase(array) == 0) {
      ++bad_frees;
      return E_INVALIDARG;
    }
    delete[] array;
    return S_OK;
  }

 private:
  std::set<os::WinBioUnitSchema*> handed_out_;
};

}  // namespace velhal::testing
