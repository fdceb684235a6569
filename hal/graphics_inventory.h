// The graphics inventory GpInit takes once: the display-class devices on the PCI bus from the
// device database, joined by description with DXGI's dedicated video memory.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace velhal::hal {

struct GraphicsAdapter {
  std::wstring name;        // the device description
  uint32_t memory_mib = 0;  // dedicated video memory, 0 when DXGI does not know the adapter
};

// Dedicated video memory in MiB by adapter description, in description order; of two adapters
// with the same description the first enumerated keeps its value. Nullopt when DXGI is missing
// or enumerates no adapter.
std::optional<std::map<std::wstring, uint32_t>> DxgiDedicatedMemory();

// The PCI display adapters in enumeration order. Of two with the same description only the
// first receives the memory; with no PCI adapter at all, the one DXGI adapter whose description
// sorts first stands in (a software renderer, for example). Callers rely on both.
std::vector<GraphicsAdapter> TakeGraphicsInventory();

}  // namespace velhal::hal
