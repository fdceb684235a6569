// Device class 3: the default audio endpoints' volume and mute (speaker: render, microphone:
// capture), through Core Audio's IAudioEndpointVolume.
//
// Process-wide state, as hosts use it: the endpoints held and the callbacks registered. The
// host initialises, registers callbacks and closes from one thread; nothing here locks.
#pragma once

#include "platform/win32.h"

#include <mmdeviceapi.h>

#include "hal/class_dispatch.h"

namespace velhal::hal {

const ClassModule& AudioEndpointsModule();

// The endpoint-open step: holds the default endpoint of flow (role eConsole) unless one is held
// already (then S_FALSE). HalInit(3) runs it only for an endpoint already held, so callers that
// want endpoints open them through here.
HRESULT OpenAudioEndpoint(EDataFlow flow);

}  // namespace velhal::hal
