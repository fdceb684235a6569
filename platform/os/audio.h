// Core Audio facility: the volume control of the default endpoint of a data flow.
#pragma once

#include "platform/win32.h"

#include <endpointvolume.h>
#include <mmdeviceapi.h>

#include "platform/os/seam.h"

namespace velhal::os {

class Audio {
 public:
  // Creates the MMDevice enumerator, takes the default endpoint of flow and role, and activates
  // its IAudioEndpointVolume (in-process). Returns the first failing HRESULT; a step that
  // succeeds without an object ends the call with that step's result. COM must be initialised.
  virtual HRESULT ActivateDefaultEndpointVolume(EDataFlow flow, ERole role,
                                                IAudioEndpointVolume** volume) = 0;

  static Audio& Real() noexcept;

 protected:
  ~Audio() = default;
};

inline Audio& audio() noexcept { return Seam<Audio>::Get(); }

}  // namespace velhal::os
