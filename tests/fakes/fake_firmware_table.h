// GetSystemFirmwareTable as a test sets it: present or not, serving a scripted table. The
// second call may report fewer bytes than the first announced (short_by), as a table that
// changed between the calls would.
#pragma once

#include "platform/win32.h"

#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/os/firmware_table.h"

namespace velhal::testing {

class FakeFirmwareTable final : public os::FirmwareTable {
 public:
  bool available = true;
  std::vector<uint8_t> table;
  UINT short_by = 0;
  int calls = 0;

  bool IsAvailable() override { return available; }
  UINT GetSystemFirmwareTable(DWORD provider, DWORD id, void* buffer, DWORD size) override {
    ++calls;
    if (!available || provider != 0x52534D42 || id != 0) return 0;
    const UINT needed = static_cast<UINT>(table.size());
    if (buffer == nullptr || size < needed) return needed;
    std::memcpy(buffer, table.data(), needed);
    return needed - short_by;
  }
};

}  // namespace velhal::testing
