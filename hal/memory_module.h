// Device class 11: the installed memory modules, from WMI's Win32_PhysicalMemory, enumerated
// afresh on every call.
#pragma once

#include "hal/class_dispatch.h"

namespace velhal::hal {

const ClassModule& MemoryModule();

}  // namespace velhal::hal
