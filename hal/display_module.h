// Device class 16: the built-in display's brightness and colour. The back-end is chosen once
// from the graphics inventory: the AMD display library when an adapter's name contains "AMD",
// else the Intel driver with the power scheme when one contains "Intel" (both case-sensitive).
#pragma once

#include "hal/class_dispatch.h"

namespace velhal::hal {

const ClassModule& DisplayModule();

}  // namespace velhal::hal
