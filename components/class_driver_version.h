// The driver version of a device class's first device that has one, shared by the component
// classes whose kind is one setup class.
#pragma once

#include <guiddef.h>

#include <string>

namespace velhal::components {

// Visits the present devices of the class in enumeration order; empty when none has a driver
// version.
std::wstring FirstDriverVersionOfClass(const GUID& setup_class);

}  // namespace velhal::components
