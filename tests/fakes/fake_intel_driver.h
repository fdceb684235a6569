// The Intel driver's control object as a test sets it: the display it reports active, the
// parameter block it answers, and every gamma ramp it is given. It counts its references
// without deleting itself, so a test sees a leak or a release too many.
#pragma once

#include "platform/win32.h"

#include <array>
#include <string>
#include <vector>

#include "platform/os/intel_driver.h"

namespace velhal::testing {

class FakeCuiControl final : public ICUIExternal8 {
 public:
  struct Ramp {
    DWORD display;
    UINT size;
    std::vector<uint16_t> entries;  // 768: red, green, blue
  };

  DWORD display = 0x80000100;  // what EnumActiveDevices reports
  HRESULT enum_result = S_OK;
  std::vector<std::wstring> adapters_asked;
  HRESULT set_result = S_OK;
  DWORD set_status = 0;
  std::vector<Ramp> ramps;
  std::array<BYTE, 92> parameter_block{};
  HRESULT get_result = S_OK;
  DWORD get_status = 0;
  std::vector<GUID> parameters_asked;
  std::vector<DWORD> parameter_sizes;
  ULONG references = 1;  // the test's own
  bool over_released = false;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE EnumActiveDevices(BSTR device, UINT index, DWORD* found,
                                              DWORD* type) override;
  HRESULT STDMETHODCALLTYPE SetGammaRamp(DWORD target, UINT size, BYTE* ramp,
                                         DWORD* status) override;
  HRESULT STDMETHODCALLTYPE GetDeviceData(REFGUID parameter, DWORD size, BYTE* data,
                                          DWORD* status) override;
};

class FakeIntelDriver final : public os::IntelDriver {
 public:
  FakeCuiControl control;
  HRESULT create_result = S_OK;
  int creations = 0;

  // One reference to the control object per successful creation.
  HRESULT CreateControl(ICUIExternal8** out) override;
};

}  // namespace velhal::testing
