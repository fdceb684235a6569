// Device class 5: physical disks. The list comes from WMI, each entry's index is the drive
// number n of "\\.\PHYSICALDRIVE<n>", and its handle slot holds the query-only handle that
// HalOpenDevice(5) opened.
#pragma once

#include "hal/class_dispatch.h"

namespace velhal::hal {

const ClassModule& DiskModule();

}  // namespace velhal::hal
