// The fingerprint sensor and other biometric units (the biometric setup class, and the Windows
// Biometric Framework's units).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "components/component_device.h"
#include "hal/velhal_export.h"

// One biometric unit as the Windows Biometric Framework lists it (WINBIO_UNIT_SCHEMA).
struct BiometricUnit {
  uint32_t unitId = 0;
  uint32_t factor = 0;         // WINBIO_TYPE_*: 0x02 facial features, 0x08 fingerprint, 0x10 iris
  uint32_t sensorSubType = 0;  // fingerprints: 1 swipe, 2 touch; 0 unknown
  std::wstring deviceInstanceId;
  std::wstring description;
  std::wstring manufacturer;
  std::wstring model;
  std::wstring firmwareVersion;  // "major.minor"
};

class VELHAL_API Biometric {
 public:
  // Of the first present biometric device that has a driver; empty when there is none.
  std::wstring GetDriverVersion();
  // Whether a biometric-class device is present (device database).
  bool IsPresent();
  // The present biometric-class devices, in the device database's order.
  std::vector<ComponentDevice> GetDevices();
  // The units of the Windows Biometric Framework (winbio.dll, bound at run time): fingerprint,
  // then facial-feature, then iris units. Empty without the framework or its service.
  std::vector<BiometricUnit> GetUnits();
};
