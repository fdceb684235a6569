// Device class 0: the processor. Vendor and name come from the registry first and WMI second;
// clocks, counts, caches and load from WMI; the type from the name.
#pragma once

#include <cstdint>

#include "hal/class_dispatch.h"

namespace velhal::hal {

const ClassModule& ProcessorModule();

// Classifies the processor from its name and stores the result as the last detected type.
uint32_t DetectCpuType();

}  // namespace velhal::hal
