// Core Audio for class 3: endpoints whose volume and mute a test sets, and callbacks, both
// counting their references (tests/fakes/counted.h).
#pragma once

#include "platform/win32.h"

#include <endpointvolume.h>

#include <vector>

#include "platform/os/audio.h"
#include "tests/fakes/counted.h"

namespace velhal::testing {

class FakeVolumeCallback final : public Counted<IAudioEndpointVolumeCallback> {
 public:
  HRESULT STDMETHODCALLTYPE OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA*) override { return S_OK; }
};

class FakeEndpointVolume final : public Counted<IAudioEndpointVolume> {
 public:
  float scalar = 0.5f;
  BOOL muted = FALSE;
  HRESULT get_result = S_OK;
  HRESULT set_result = S_OK;
  int sets = 0;
  GUID last_context{};
  std::vector<IAudioEndpointVolumeCallback*> registered;

  HRESULT STDMETHODCALLTYPE RegisterControlChangeNotify(IAudioEndpointVolumeCallback* notify) override {
    if (notify == nullptr) return E_POINTER;
    notify->AddRef();  // as Core Audio does
    registered.push_back(notify);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE UnregisterControlChangeNotify(IAudioEndpointVolumeCallback* notify) override {
    for (auto it = registered.begin(); it != registered.end(); ++it) {
      if (*it == notify) {
        registered.erase(it);
        notify->Release();
        return S_OK;
      }
    }
    return E_INVALIDARG;
  }
  HRESULT STDMETHODCALLTYPE SetMasterVolumeLevelScalar(FLOAT level, LPCGUID context) override {
    ++sets;
    if (FAILED(set_result)) return set_result;
    if (level < 0.0f || level > 1.0f) return E_INVALIDARG;
    scalar = level;
    if (context != nullptr) last_context = *context;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetMasterVolumeLevelScalar(FLOAT* level) override {
    if (FAILED(get_result)) return get_result;
    *level = scalar;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SetMute(WINBOOL mute, LPCGUID context) override {
    ++sets;
    if (FAILED(set_result)) return set_result;
    muted = mute;
    if (context != nullptr) last_context = *context;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetMute(WINBOOL* mute) override {
    if (FAILED(get_result)) return get_result;
    *mute = muted;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetChannelCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetMasterVolumeLevel(FLOAT, LPCGUID) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMasterVolumeLevel(FLOAT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetChannelVolumeLevel(UINT, FLOAT, LPCGUID) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetChannelVolumeLevelScalar(UINT, FLOAT, LPCGUID) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetChannelVolumeLevel(UINT, FLOAT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetChannelVolumeLevelScalar(UINT, FLOAT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetVolumeStepInfo(UINT*, UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE VolumeStepUp(LPCGUID) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE VolumeStepDown(LPCGUID) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE QueryHardwareSupport(DWORD*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetVolumeRange(FLOAT*, FLOAT*, FLOAT*) override { return E_NOTIMPL; }
};

// Hands out the render and capture endpoints, one reference per activation.
class FakeAudio final : public os::Audio {
 public:
  FakeEndpointVolume render, capture;
  HRESULT activate_result = S_OK;
  int activations = 0;

  HRESULT ActivateDefaultEndpointVolume(EDataFlow flow, ERole role,
                                        IAudioEndpointVolume** volume) override {
    ++activations;
    if (role != eConsole) return E_INVALIDARG;
    if (FAILED(activate_result)) return activate_result;
    FakeEndpointVolume& endpoint = flow == eRender ? render : capture;
    endpoint.AddRef();
    *volume = &endpoint;
    return S_OK;
  }
};

}  // namespace velhal::testing
