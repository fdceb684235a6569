// Device class 5: physical disks. The list comes from WMI, each entry's index is the drive
// number n of "\\.\PHYSICALDRIVE<n>", and its handle slot holds the query-only handle that
// HalOpenDevice(5) opened.
#pragma once

#include "hal/class_dispatch.h"

namespace velhal::hal {

const ClassModule& DiskModule();

// Information classes of the class-5 query.
enum DiskInfo : uint32_t {
  kDiskMediaTypeText = 0,
  kDiskCaption = 1,
  kDiskSerialNumber = 2,
  kDiskSizeMiB = 3,
  kDiskFreeMiB = 4,
  kDiskSizeDecimalGB = 5,
  kDiskSizeDecimalMB = 6,
  kDiskCount = 7,
  kDiskFreeMiBSecondForm = 8,
  kDiskFirmwareRevision = 9,
  kDiskTrimEnabled = 10,
  kDiskStorageMediaType = 11,
  kDiskSystemDiskIndex = 12,
};

}  // namespace velhal::hal
