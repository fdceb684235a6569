// Device class 6: the system battery, from the power-management calls first, the battery
// driver second and WMI ("ROOT\WMI") last, value by value.
#pragma once

#include "hal/class_dispatch.h"

namespace velhal::hal {

const ClassModule& BatteryModule();

}  // namespace velhal::hal
