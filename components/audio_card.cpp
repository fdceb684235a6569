#include "components/audio_card.h"

#include "components/class_driver_version.h"
#include "platform/boundary.h"
#include "platform/device_classes.h"

std::wstring AudioCard::GetDriverVersion() {
  return velhal::CallGuarded(std::wstring{}, [] {
    return velhal::components::FirstDriverVersionOfClass(velhal::device_class::kMedia);
  });
}
