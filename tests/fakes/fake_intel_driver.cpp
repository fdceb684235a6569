#include "tests/fakes/fake_intel_driver.h"

#include <algorithm>
#include <cstring>

namespace velhal::testing {

HRESULT FakeCuiControl::QueryInterface(REFIID iid, void** out) {
  if (out == nullptr) return E_POINTER;
  if (iid != IID_IUnknown && iid != kCuiExternal8Interface) {
    *out = nullptr;
    return E_NOINTERFACE;
  }
  *out = this;
  AddRef();
  return S_OK;
}

ULONG FakeCuiControl::Release() {
  if (references == 0) {
    over_released = true;
    return 0;
  }
  return --references;
}

HRESULT FakeCuiControl::EnumActiveDevices(BSTR device, UINT index, DWORD* found, DWORD* type) {
  adapters_asked.emplace_back(device ? device : L"");
  if (FAILED(enum_result)) return enum_result;
  if (index != 0) return S_FALSE;
  *found = display;
  *type = 0;
  return S_OK;
}

HRESULT FakeCuiControl::SetGammaRamp(DWORD target, UINT size, BYTE* ramp, DWORD* status) {
  Ramp seen{target, size, std::vector<uint16_t>(size / sizeof(uint16_t))};
  std::memcpy(seen.entries.data(), ramp, seen.entries.size() * sizeof(uint16_t));
  ramps.push_back(std::move(seen));
  *status = set_status;
  return set_result;
}

HRESULT FakeCuiControl::GetDeviceData(REFGUID parameter, DWORD size, BYTE* data, DWORD* status) {
  parameters_asked.push_back(parameter);
  parameter_sizes.push_back(size);
  if (FAILED(get_result)) return get_result;
  std::memcpy(data, parameter_block.data(), std::min<size_t>(size, parameter_block.size()));
  *status = get_status;
  return get_result;
}

HRESULT FakeIntelDriver::CreateControl(ICUIExternal8** out) {
  ++creations;
  *out = nullptr;
  if (FAILED(create_result)) return create_result;
  control.AddRef();
  *out = &control;
  return S_OK;
}

}  // namespace velhal::testing
