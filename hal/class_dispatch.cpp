#include "hal/class_dispatch.h"

#include <array>
#include <utility>

namespace velhal::hal {
namespace {

// Class 0: HalInit refreshes the processor type; the processor module plugs its detection in
// here. Class 6: the battery needs no initialisation, so HalInit succeeds and does nothing.
uint32_t InitWithoutList(void* /*list*/) { return 1; }

constexpr ClassModule kProcessor{.init_makes_list = false, .init = InitWithoutList};
constexpr ClassModule kBattery{.init_makes_list = false, .init = InitWithoutList};

constexpr std::array<std::pair<HalDeviceClass, const ClassModule*>, 2> kModules{{
    {HAL_CLASS_PROCESSOR, &kProcessor},
    {HAL_CLASS_BATTERY, &kBattery},
}};

}  // namespace

const ClassModule* FindClassModule(HalDeviceClass device_class) noexcept {
  for (const auto& [number, module] : kModules) {
    if (number == device_class) return module;
  }
  return nullptr;
}

}  // namespace velhal::hal
