// Intel driver facility: the graphics driver's COM control object ("CUI external", the class
// the driver's control panel SDK documents as CUIExternal), which sets gamma ramps on a panel
// and reads the panel's colour parameters.
//
// COM: the caller initialises the thread's apartment; the object may live out of process (the
// driver's extension server), so it is created for every context and started with OleRun.
#pragma once

#include "platform/win32.h"

#include <oaidl.h>

#include "platform/os/seam.h"

namespace velhal {

inline constexpr CLSID kCuiExternalClass{
    0x7160a13d, 0x73da, 0x4cea, {0x95, 0xb9, 0x37, 0x35, 0x64, 0x78, 0x58, 0x8a}};
inline constexpr IID kCuiExternal8Interface{
    0xf932c038, 0x6484, 0x45ca, {0x8f, 0xa1, 0x7c, 0x8c, 0x27, 0x9f, 0x7a, 0xee}};
// CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER.
inline constexpr DWORD kCuiExternalContext = 23;

// The driver's ICUIExternal8, declared after the method order of the driver SDK's published
// interface header (igfxext.h): the table is ICUIExternal2 to 7, ICUIDownScale, then 8's own.
// The library calls three methods: EnumActiveDevices (slot 3), SetGammaRamp (26) and
// GetDeviceData (43). The slots it never calls hold their place by name only, without their
// arguments, and answer E_NOTIMPL when a test's stand-in leaves them; a call on the driver's
// object always reaches the driver's own table.
class ICUIExternal8 : public IUnknown {
 public:
  // The display's identifier for the other methods: device is a display adapter's name
  // ("\\.\DISPLAY1"), index the n-th active display on it.
  virtual HRESULT STDMETHODCALLTYPE EnumActiveDevices(BSTR device, UINT index, DWORD* display,
                                                      DWORD* type) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetConfiguration() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE get_SupportedEvents() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE RegisterEvent() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE RegisterNotify() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE DeRegisterEvent() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE DeRegisterNotify() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE SetConfiguration() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE ChangeActiveDevices() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE EnumAttachableDevices() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE MccsOpen() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE MccsClose() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE MccsGetMax() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE MccsGetMin() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE MccsGetCurrent() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE MccsSetCurrent() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE MccsResetControl() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE PowerApiOpen() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE PowerApiClose() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE GetPowerConsCaps() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE GetPowerPolicy() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE SetPowerPolicy() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE GetGammaRamp() { return E_NOTIMPL; }
  // ramp: size bytes, three channels of 256 u16 in the order red, green, blue.
  virtual HRESULT STDMETHODCALLTYPE SetGammaRamp(DWORD display, UINT size, BYTE* ramp,
                                                 DWORD* status) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetAspectScalingCapabilities() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE SetAspectScalingPreference() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE GetAvailableConnectors() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE SetConnectorSelection() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE GetConnectorAttachedStatus() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE GetConnectorSelection() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE GetCloneRefreshRates() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE SetCloneView() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE GetTvParameters() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE SetTvParameters() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE GetInverterParams() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE SetInverterParams() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE IsDownScalingSupported() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE IsDownScalingEnabled() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE EnableDownScaling() { return E_NOTIMPL; }
  virtual HRESULT STDMETHODCALLTYPE DisableDownScaling() { return E_NOTIMPL; }
  // A parameter block named by its GUID, read in place; status is the driver's own code, 0 for
  // success.
  virtual HRESULT STDMETHODCALLTYPE GetDeviceData(REFGUID parameter, DWORD size, BYTE* data,
                                                  DWORD* status) = 0;
};

namespace os {

class IntelDriver {
 public:
  // CoCreateInstance of kCuiExternalClass for IUnknown with kCuiExternalContext, OleRun, then
  // QueryInterface for ICUIExternal8; the creation reference is released before returning.
  // Returns the first failing HRESULT (E_NOINTERFACE for a null answer).
  virtual HRESULT CreateControl(ICUIExternal8** control) = 0;

  static IntelDriver& Real() noexcept;

 protected:
  ~IntelDriver() = default;
};

inline IntelDriver& intel_driver() noexcept { return Seam<IntelDriver>::Get(); }

}  // namespace os
}  // namespace velhal
