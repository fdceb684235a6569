#include "platform/win32.h"

#include "components/biometric.h"

#include <cwchar>

#include "components/class_devices.h"
#include "components/class_driver_version.h"
#include "platform/boundary.h"
#include "platform/device_classes.h"
#include "platform/os/biometric.h"

namespace {

namespace components = velhal::components;
using velhal::device_class::kBiometric;

// WINBIO_TYPE_FINGERPRINT, WINBIO_TYPE_FACIAL_FEATURES, WINBIO_TYPE_IRIS. Each factor is asked
// on its own: older systems refuse a factor they do not know, which must not hide the others.
constexpr ULONG kFactors[] = {0x08, 0x02, 0x10};

template <size_t N>
std::wstring Bounded(const wchar_t (&text)[N]) {
  return std::wstring(text, ::wcsnlen(text, N));
}

BiometricUnit Describe(const velhal::os::WinBioUnitSchema& schema) {
  BiometricUnit unit;
  unit.unitId = schema.UnitId;
  unit.factor = schema.BiometricFactor;
  unit.sensorSubType = schema.SensorSubType;
  unit.deviceInstanceId = Bounded(schema.DeviceInstanceId);
  unit.description = Bounded(schema.Description);
  unit.manufacturer = Bounded(schema.Manufacturer);
  unit.model = Bounded(schema.Model);
  unit.firmwareVersion = std::to_wstring(schema.FirmwareVersion.MajorVersion) + L"." +
                         std::to_wstring(schema.FirmwareVersion.MinorVersion);
  return unit;
}

void AppendUnits(ULONG factor, std::vector<BiometricUnit>& units) {
  velhal::UniqueWinBioUnits schemas;
  SIZE_T count = 0;
  if (FAILED(velhal::os::biometric().WinBioEnumBiometricUnits(factor, schemas.Put(), &count)) ||
      !schemas.IsValid()) {
    return;
  }
  for (SIZE_T i = 0; i < count; ++i) units.push_back(Describe(schemas.Get()[i]));
}

}  // namespace

std::wstring Biometric::GetDriverVersion() {
  return velhal::CallGuarded(std::wstring{},
                             [] { return components::FirstDriverVersionOfClass(kBiometric); });
}

bool Biometric::IsPresent() {
  return velhal::CallGuarded(false, [] { return components::AnyPresentDevice(kBiometric); });
}

std::vector<ComponentDevice> Biometric::GetDevices() {
  return velhal::CallGuarded(std::vector<ComponentDevice>{},
                             [] { return components::PresentDevices(kBiometric); });
}

std::vector<BiometricUnit> Biometric::GetUnits() {
  return velhal::CallGuarded(std::vector<BiometricUnit>{}, [] {
    std::vector<BiometricUnit> units;
    for (const ULONG factor : kFactors) AppendUnits(factor, units);
    return units;
  });
}
