// Physical disks, through device class 5. Indexes are physical-drive numbers 0 .. count - 1.
// Every member fails softly: 0, an empty string or false. GetAllTotalVendorCapcity is spelt so
// in the export table; hosts bind that name.
#pragma once

#include <cstdint>
#include <string>

#include "hal/velhal_export.h"

struct HalDeviceList;

class VELHAL_API Disk {
 public:
  Disk();
  ~Disk();  // closes the disks it opened and frees its list
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;

  int GetPhysicDiskNumbers();
  uint64_t GetTotalCapacity(int index);         // MiB
  uint64_t GetTotalVendorCapacity(int index);   // decimal GB, as drive makers count
  uint64_t GetTotalVendorCapacityM(int index);  // decimal MB
  uint64_t GetRemainCapacity(int index);        // MiB free on the disk's lettered volumes
  uint64_t GetUsedCapacity(int index);          // total minus free, MiB
  uint64_t GetAllTotalCapacity();
  uint64_t GetAllTotalVendorCapcity();
  uint64_t GetAllRemainCapacity();
  uint64_t GetAllUsedCapacity();

  std::wstring GetCaption(int index);
  std::wstring GetFirmwareRevision(int index);
  std::wstring GetSerialNumber(int index);
  // "SSD", "HDD" or "SCM" from the storage namespace's media type; where that has no answer (or
  // says Unspecified), WMI's media text such as "Fixed hard disk media".
  std::wstring GetMediaType(int index);
  // Decides from the storage media type (SSD or HDD) and, where that is silent, from TRIM
  // support. True when it could decide, with isSsd set; false leaves isSsd false.
  bool JudgeSSd(int index, bool& isSsd);
  // The physical-drive number of the disk holding the volume labelled "Windows".
  bool GetSystemDiskIndex(uint32_t& index);

 private:
  HalDeviceList* list_;  // class 5's list, opened by the first member that needs it
  int32_t count_;
};
