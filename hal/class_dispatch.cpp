#include "hal/class_dispatch.h"

#include "hal/audio_endpoints.h"
#include "hal/disk_module.h"

namespace velhal::hal {
namespace {

// Class 0: HalInit refreshes the processor type; the processor module plugs its detection in
// here. Class 6: the battery needs no initialisation, so HalInit succeeds and does nothing.
uint32_t InitWithoutList(void* /*list*/) { return 1; }

constexpr ClassModule kProcessor{.init_makes_list = false, .init = InitWithoutList};
constexpr ClassModule kBattery{.init_makes_list = false, .init = InitWithoutList};

}  // namespace

// One row per device class; a class without a row fails every entry point.
const ClassModule* FindClassModule(HalDeviceClass device_class) noexcept {
  switch (device_class) {
    case HAL_CLASS_PROCESSOR: return &kProcessor;
    case HAL_CLASS_AUDIO_ENDPOINTS: return &AudioEndpointsModule();
    case HAL_CLASS_DISK: return &DiskModule();
    case HAL_CLASS_BATTERY: return &kBattery;
    default: return nullptr;
  }
}

}  // namespace velhal::hal
