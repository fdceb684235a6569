// The real backend: the default endpoint's volume control through the MMDevice API.
#include "platform/os/audio.h"

#include "platform/com_ptr.h"

namespace velhal::os {
namespace {

class RealAudio final : public Audio {
 public:
  HRESULT ActivateDefaultEndpointVolume(EDataFlow flow, ERole role,
                                        IAudioEndpointVolume** volume) override {
    ComPtr<IMMDeviceEnumerator> enumerator;
    HRESULT hr = ::CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_INPROC_SERVER,
                                    __uuidof(IMMDeviceEnumerator), enumerator.PutVoid());
    if (FAILED(hr) || !enumerator) return hr;
    ComPtr<IMMDevice> device;
    hr = enumerator->GetDefaultAudioEndpoint(flow, role, device.Put());
    enumerator.Reset();  // released at once, before the device is activated
    if (FAILED(hr) || !device) return hr;
    return device->Activate(__uuidof(IAudioEndpointVolume), CLSCTX_INPROC_SERVER, nullptr,
                            reinterpret_cast<void**>(volume));
  }
};

}  // namespace

Audio& Audio::Real() noexcept {
  static RealAudio backend;
  return backend;
}

}  // namespace velhal::os
