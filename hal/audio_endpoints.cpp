#include "hal/audio_endpoints.h"

#include <endpointvolume.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "hal/query_output.h"
#include "platform/device_classes.h"
#include "platform/device_informention.h"
#include "platform/os/audio.h"
#include "platform/os/com.h"
#include "platform/process_state.h"

namespace velhal::hal {
namespace {

constexpr wchar_t kControllerVendor[] = L"VEN_10EC";
constexpr uint64_t kMaxControllers = 0x0FFFFFFF;

struct Endpoint {
  IAudioEndpointVolume* volume = nullptr;
  IAudioEndpointVolumeCallback* callback = nullptr;  // one reference, taken over from the host
  GUID event_context{};                              // marks the changes this library makes
};

Endpoint g_render;   // speaker
Endpoint g_capture;  // microphone

Endpoint& EndpointOf(EDataFlow flow) { return flow == eRender ? g_render : g_capture; }

int32_t PercentOf(float scalar) { return static_cast<int32_t>(std::roundf(scalar * 100.0f)); }

uint32_t Init(void* list) {
  const std::vector<std::wstring> ids =
      DeviceInformention().GetDeviceHardwareId(device_class::kMedia);
  const uint64_t count = std::count_if(ids.begin(), ids.end(), [](const std::wstring& id) {
    return id.find(kControllerVendor) != std::wstring::npos;
  });
  if (count == 0 || count > kMaxControllers) return 0;
  // Re-opens only endpoints already held, which the open step leaves as they are: so this never
  // opens an endpoint. Hosts rely on HalInit(3) not touching the audio system.
  if (g_render.volume != nullptr) OpenAudioEndpoint(eRender);
  if (g_capture.volume != nullptr) OpenAudioEndpoint(eCapture);
  return MakeDeviceList(list, count);
}

void Release(Endpoint& endpoint) {
  if (endpoint.callback != nullptr) {
    if (endpoint.volume != nullptr)
      endpoint.volume->UnregisterControlChangeNotify(endpoint.callback);
    endpoint.callback->Release();
    endpoint.callback = nullptr;
  }
  if (endpoint.volume != nullptr) {
    endpoint.volume->Release();
    endpoint.volume = nullptr;
  }
}

uint32_t Close(HalDeviceEntry* /*entry*/) {
  Release(g_render);
  Release(g_capture);
  return 1;
}

void ReleaseEndpoints() { Close(nullptr); }

// The endpoints and callbacks are process-wide state: a test reset releases them as
// HalCloseDevice(3) does.
void RegisterReset() {
  static const bool registered = (RegisterProcessStateReset(&ReleaseEndpoints), true);
  (void)registered;
}

uint32_t QueryMute(const Endpoint& endpoint, void* buffer, uint32_t* returned) {
  BOOL muted = FALSE;
  if (endpoint.volume == nullptr || FAILED(endpoint.volume->GetMute(&muted))) return 0;
  if (buffer == nullptr || returned == nullptr) return 0;
  // The mute queries take any buffer size: a u32 is written whatever size was given.
  const uint32_t value = static_cast<uint32_t>(muted);
  std::memcpy(buffer, &value, sizeof(value));
  *returned = sizeof(value);
  return 1;
}

uint32_t Query(void* /*entry*/, uint32_t info_class, void* buffer, uint32_t buffer_size,
               uint32_t* returned) {
  switch (info_class) {
    case HAL_AUDIO_INFO_SPEAKER_VOLUME: {
      if (buffer_size < 4 || buffer == nullptr || returned == nullptr || !g_render.volume) return 0;
      float scalar = 0;
      if (FAILED(g_render.volume->GetMasterVolumeLevelScalar(&scalar))) return 0;
      return WriteNumber(buffer, buffer_size, returned, PercentOf(scalar));
    }
    case HAL_AUDIO_INFO_SPEAKER_MUTE: return QueryMute(g_render, buffer, returned);
    case HAL_AUDIO_INFO_MICROPHONE_MUTE: return QueryMute(g_capture, buffer, returned);
    default: return 0;
  }
}

uint32_t SetSpeakerVolume(const void* buffer, uint32_t buffer_size) {
  if (buffer_size < 8 || buffer == nullptr) return 0;
  int32_t level = 0;
  uint8_t relative = 0;
  std::memcpy(&level, buffer, sizeof(level));
  std::memcpy(&relative, static_cast<const uint8_t*>(buffer) + 4, sizeof(relative));

  int64_t wanted = level;  // wide enough that current + level cannot overflow
  if (relative == 1) {
    float scalar = 0;
    if (g_render.volume == nullptr ||
        FAILED(g_render.volume->GetMasterVolumeLevelScalar(&scalar))) {
      return 0;
    }
    wanted += PercentOf(scalar);
  }
  wanted = std::clamp<int64_t>(wanted, 0, 100);
  if (g_render.volume == nullptr) return 0;
  return SUCCEEDED(g_render.volume->SetMasterVolumeLevelScalar(static_cast<float>(wanted) / 100.0f,
                                                               &g_render.event_context))
             ? 1
             : 0;
}

uint32_t SetMute(Endpoint& endpoint, const void* buffer, uint32_t buffer_size) {
  if (buffer_size < 4) return 0;
  BOOL current = FALSE;
  if (endpoint.volume == nullptr || FAILED(endpoint.volume->GetMute(&current))) return 0;
  if (buffer == nullptr) return 1;  // nothing to change
  uint32_t wanted = 0;
  std::memcpy(&wanted, buffer, sizeof(wanted));
  if (wanted == static_cast<uint32_t>(current)) return 1;
  return SUCCEEDED(endpoint.volume->SetMute(static_cast<BOOL>(wanted), &endpoint.event_context))
             ? 1
             : 0;
}

uint32_t Set(void* entry, uint32_t info_class, void* buffer, uint32_t buffer_size,
             uint32_t* /*returned*/) {
  if (entry == nullptr) return 0;  // otherwise unused, but required
  switch (info_class) {
    case HAL_AUDIO_INFO_SPEAKER_VOLUME: return SetSpeakerVolume(buffer, buffer_size);
    case HAL_AUDIO_INFO_SPEAKER_MUTE: return SetMute(g_render, buffer, buffer_size);
    case HAL_AUDIO_INFO_MICROPHONE_MUTE: return SetMute(g_capture, buffer, buffer_size);
    default: return 0;
  }
}

uint32_t SetCallback(uint32_t endpoint_number, IAudioEndpointVolumeCallback* callback,
                     void* /*context*/) {
  if (callback == nullptr) return 0;
  // Numbered unlike the information classes: 0 is the microphone, 1 the speaker. Any other
  // number succeeds without effect; callers rely on both.
  if (endpoint_number != HAL_AUDIO_ENDPOINT_MICROPHONE &&
      endpoint_number != HAL_AUDIO_ENDPOINT_SPEAKER)
    return 1;
  Endpoint& endpoint = endpoint_number == HAL_AUDIO_ENDPOINT_SPEAKER ? g_render : g_capture;
  RegisterReset();
  // An earlier callback is replaced, neither released nor unregistered: hosts that register
  // twice keep the first registration alive and rely on it.
  endpoint.callback = callback;
  if (endpoint.volume == nullptr) return 0;
  endpoint.volume->RegisterControlChangeNotify(callback);
  return 1;
}

}  // namespace

HRESULT OpenAudioEndpoint(EDataFlow flow) {
  Endpoint& endpoint = EndpointOf(flow);
  if (endpoint.volume != nullptr) return S_FALSE;
  RegisterReset();
  const HRESULT hr = os::com().CoCreateGuid(&endpoint.event_context);
  if (FAILED(hr)) return hr;
  return os::audio().ActivateDefaultEndpointVolume(flow, eConsole, &endpoint.volume);
}

const ClassModule& AudioEndpointsModule() {
  static constexpr ClassModule kModule{
      .init = Init, .close = Close, .query = Query, .set = Set, .set_callback = SetCallback};
  return kModule;
}

}  // namespace velhal::hal
