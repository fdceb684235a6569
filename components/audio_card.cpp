#include "components/audio_card.h"

#include "components/class_devices.h"
#include "components/class_driver_version.h"
#include "platform/boundary.h"
#include "platform/device_classes.h"

namespace components = velhal::components;
using velhal::device_class::kMedia;

std::wstring AudioCard::GetDriverVersion() {
  return velhal::CallGuarded(std::wstring{},
                             [] { return components::FirstDriverVersionOfClass(kMedia); });
}

bool AudioCard::IsPresent() {
  return velhal::CallGuarded(false, [] { return components::AnyPresentDevice(kMedia); });
}

std::vector<ComponentDevice> AudioCard::GetDevices() {
  return velhal::CallGuarded(std::vector<ComponentDevice>{},
                             [] { return components::PresentDevices(kMedia); });
}
