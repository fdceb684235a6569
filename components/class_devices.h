// The present devices of one setup class, read in one walk of the device database.
#pragma once

#include <guiddef.h>

#include <vector>

#include "components/component_device.h"

namespace velhal::components {

// In enumeration order; a property a device lacks stays empty (0 for the problem code).
std::vector<ComponentDevice> PresentDevices(const GUID& setup_class);
bool AnyPresentDevice(const GUID& setup_class);

}  // namespace velhal::components
