// The eight flat entry points: route by device class, never let an exception out.
#include "hal/hal_api.h"

#include <cstdlib>

#include "hal/class_dispatch.h"
#include "platform/boundary.h"
#include "platform/batch.h"

namespace {

using velhal::hal::ClassModule;
using velhal::hal::FindClassModule;

// Runs one module operation: an unknown class or a missing operation fails with 0, and so
// does anything thrown inside (allocation failure included).
template <class Operation, class... Args>
uint32_t Route(HalDeviceClass device_class, Operation ClassModule::*operation,
               Args&&... args) noexcept {
  return velhal::CallGuarded(0u, [&]() -> uint32_t {
    const ClassModule* module = FindClassModule(device_class);
    if (module == nullptr || module->*operation == nullptr) return 0;
    return (module->*operation)(static_cast<Args&&>(args)...);
  });
}

}  // namespace

uint32_t HalGetVersion() { return VELHAL_VERSION; }

void HalFreeBlock(void* block) { std::free(block); }

uint32_t HalBeginBatch() {
  return velhal::CallGuarded(0u, [] {
    velhal::batch::Begin();
    return 1u;
  });
}

uint32_t HalEndBatch() {
  return velhal::CallGuarded(0u, [] { return velhal::batch::End() ? 1u : 0u; });
}

uint32_t HalInit(HalDeviceClass deviceClass, void* list) {
  const ClassModule* module = FindClassModule(deviceClass);
  if (module != nullptr && module->init_makes_list && list == nullptr) return 0;
  return Route(deviceClass, &ClassModule::init, list) != 0 ? 1 : 0;
}

uint32_t HalOpenDevice(HalDeviceClass deviceClass, HalDeviceEntry* entry) {
  return Route(deviceClass, &ClassModule::open, entry);
}

uint32_t HalCloseDevice(HalDeviceClass deviceClass, HalDeviceEntry* entry) {
  return Route(deviceClass, &ClassModule::close, entry);
}

uint32_t HalRead(HalDeviceClass deviceClass, HalDeviceEntry* entry, int64_t* offset,
                 void* buffer, uint32_t length, uint32_t* bytesRead) {
  return Route(deviceClass, &ClassModule::read, entry, offset, buffer, length, bytesRead);
}

uint32_t HalWrite(HalDeviceClass deviceClass, HalDeviceEntry* entry, int64_t* offset,
                  const void* buffer, uint32_t length, uint32_t* bytesWritten) {
  return Route(deviceClass, &ClassModule::write, entry, offset, buffer, length, bytesWritten);
}

uint32_t HalQueryInformation(HalDeviceClass deviceClass, void* entry, uint32_t infoClass,
                             void* buffer, uint32_t bufferSize, uint32_t* returnedSize) {
  return Route(deviceClass, &ClassModule::query, entry, infoClass, buffer, bufferSize,
               returnedSize);
}

uint32_t HalSetInformation(HalDeviceClass deviceClass, void* entry, uint32_t infoClass,
                           void* buffer, uint32_t bufferSize, uint32_t* returnedSize) {
  return Route(deviceClass, &ClassModule::set, entry, infoClass, buffer, bufferSize,
               returnedSize);
}

uint32_t HalSetCallback(HalDeviceClass deviceClass, uint32_t endpoint,
                        IAudioEndpointVolumeCallback* callback, void* context) {
  return Route(deviceClass, &ClassModule::set_callback, endpoint, callback, context);
}
