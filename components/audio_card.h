// The audio card (the media setup class).
#pragma once

#include <string>

#include "hal/velhal_export.h"

class VELHAL_API AudioCard {
 public:
  // Of the first present media-class device that has a driver; empty when there is none.
  std::wstring GetDriverVersion();
};
