#include "hal/class_dispatch.h"

#include "hal/audio_endpoints.h"
#include "hal/battery_module.h"
#include "hal/disk_module.h"
#include "hal/display_module.h"
#include "hal/graphics_module.h"
#include "hal/memory_module.h"
#include "hal/processor_module.h"

namespace velhal::hal {
namespace {

constexpr ClassRoute kRoutes[] = {
    {HAL_CLASS_PROCESSOR, ProcessorModule}, {HAL_CLASS_AUDIO_ENDPOINTS, AudioEndpointsModule},
    {HAL_CLASS_DISK, DiskModule},           {HAL_CLASS_BATTERY, BatteryModule},
    {HAL_CLASS_MEMORY, MemoryModule},       {HAL_CLASS_GRAPHICS, GraphicsModule},
    {HAL_CLASS_DISPLAY, DisplayModule},
};

}  // namespace

std::span<const ClassRoute> ClassRoutes() noexcept { return kRoutes; }

const ClassModule* FindClassModule(HalDeviceClass device_class) noexcept {
  for (const ClassRoute& route : kRoutes) {
    if (route.device_class == device_class) return &route.module();
  }
  return nullptr;
}

}  // namespace velhal::hal
