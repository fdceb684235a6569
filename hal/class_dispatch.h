// The routing table behind the flat entry points: each device class's module lists the
// operations it answers. An operation a module lacks, and every unknown class, fails with 0.
#pragma once

#include <cstdint>
#include <span>

#include "hal/hal_api.h"

namespace velhal::hal {

struct ClassModule {
  // Modules that make a block refuse a null list before they run; classes 0 and 6 ignore it.
  bool init_makes_list = true;
  uint32_t (*init)(void* list) = nullptr;
  uint32_t (*open)(HalDeviceEntry* entry) = nullptr;
  uint32_t (*close)(HalDeviceEntry* entry) = nullptr;
  uint32_t (*read)(HalDeviceEntry* entry, int64_t* offset, void* buffer, uint32_t length,
                   uint32_t* bytes_read) = nullptr;
  uint32_t (*write)(HalDeviceEntry* entry, int64_t* offset, const void* buffer, uint32_t length,
                    uint32_t* bytes_written) = nullptr;
  uint32_t (*query)(void* entry, uint32_t info_class, void* buffer, uint32_t buffer_size,
                    uint32_t* returned_size) = nullptr;
  uint32_t (*set)(void* entry, uint32_t info_class, void* buffer, uint32_t buffer_size,
                  uint32_t* returned_size) = nullptr;
  uint32_t (*set_callback)(uint32_t endpoint, IAudioEndpointVolumeCallback* callback,
                           void* context) = nullptr;
};

// One row per device class that has a module; every other class fails each entry point.
struct ClassRoute {
  HalDeviceClass device_class;
  const ClassModule& (*module)();
};
std::span<const ClassRoute> ClassRoutes() noexcept;

// The module that owns a class, or null for a class nobody answers.
const ClassModule* FindClassModule(HalDeviceClass device_class) noexcept;

}  // namespace velhal::hal
