// The audio card (the media setup class).
#pragma once

#include <string>
#include <vector>

#include "components/component_device.h"
#include "hal/velhal_export.h"

class VELHAL_API AudioCard {
 public:
  // Of the first present media-class device that has a driver; empty when there is none.
  std::wstring GetDriverVersion();
  // Whether a media-class device is present (device database).
  bool IsPresent();
  // The present media-class devices, in the device database's order.
  std::vector<ComponentDevice> GetDevices();
};
