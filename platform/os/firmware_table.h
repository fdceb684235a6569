// Firmware-table facility: GetSystemFirmwareTable, which kernel32 exports only from Windows
// Vista SP1 on, so it is looked up by name at run time rather than imported.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

namespace velhal::os {

class FirmwareTable {
 public:
  // Whether kernel32 exports GetSystemFirmwareTable; without it, GetSystemFirmwareTable
  // answers 0 with ERROR_PROC_NOT_FOUND.
  virtual bool IsAvailable() = 0;
  virtual UINT GetSystemFirmwareTable(DWORD provider, DWORD id, void* buffer, DWORD size) = 0;

  static FirmwareTable& Real() noexcept;

 protected:
  ~FirmwareTable() = default;
};

inline FirmwareTable& firmware_table() noexcept { return Seam<FirmwareTable>::Get(); }

}  // namespace velhal::os
