#include "hal/class_dispatch.h"

#include "hal/audio_endpoints.h"
#include "hal/battery_module.h"
#include "hal/disk_module.h"
#include "hal/memory_module.h"
#include "hal/processor_module.h"

namespace velhal::hal {
// One row per device class; a class without a row fails every entry point.
const ClassModule* FindClassModule(HalDeviceClass device_class) noexcept {
  switch (device_class) {
    case HAL_CLASS_PROCESSOR: return &ProcessorModule();
    case HAL_CLASS_AUDIO_ENDPOINTS: return &AudioEndpointsModule();
    case HAL_CLASS_DISK: return &DiskModule();
    case HAL_CLASS_BATTERY: return &BatteryModule();
    case HAL_CLASS_MEMORY: return &MemoryModule();
    default: return nullptr;
  }
}

}  // namespace velhal::hal
