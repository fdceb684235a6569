// The fingerprint sensor (the biometric setup class).
#pragma once

#include <string>

#include "hal/velhal_export.h"

class VELHAL_API Biometric {
 public:
  // Of the first present biometric device that has a driver; empty when there is none.
  std::wstring GetDriverVersion();
};
