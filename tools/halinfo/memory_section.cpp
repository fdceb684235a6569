// Memory: the total, the load and every module, through the Memory class.
#include <string>
#include <vector>

#include "hal/memory.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

using TextGetter = int (Memory::*)(std::wstring& text, int index);

// A getter's text, or empty when it fails.
std::string TextOf(Memory& memory, TextGetter getter, int index) {
  std::wstring text;
  return (memory.*getter)(text, index) ? ToUtf8(text) : std::string();
}

Node Module(Memory& memory, int index) {
  uint64_t bytes = 0;
  std::optional<uint64_t> capacity_mib;
  if (memory.GetCapacitybyIndex(bytes, index)) capacity_mib = bytes >> 20;
  uint32_t speed = 0;
  std::optional<uint32_t> speed_mhz;
  if (memory.GetSpeedbyIndex(speed, index)) speed_mhz = speed;
  return Object("", "Module " + std::to_string(index + 1),
                {Text("locator", "slot", TextOf(memory, &Memory::GetLocatorbyIndex, index)),
                 Text("manufacturer", "manufacturer",
                      TextOf(memory, &Memory::GetManufacturerbyIndex, index)),
                 Text("serialNumber", "serial number",
                      TextOf(memory, &Memory::GetSerialNumberbyIndex, index)),
                 Text("partNumber", "part number",
                      TextOf(memory, &Memory::GetPartNumberbyIndex, index)),
                 Number("capacityMiB", "capacity", capacity_mib, "MiB"),
                 Number("speedMHz", "speed", speed_mhz, "MHz")});
}

}  // namespace

Node MemorySection() {
  Memory memory;
  std::vector<Node> modules;
  uint32_t count = 0;
  if (memory.GetMemoryNums(count)) {
    for (uint32_t i = 0; i < count; ++i) modules.push_back(Module(memory, static_cast<int>(i)));
  }
  uint64_t total = 0;
  std::optional<uint64_t> total_mib;
  if (memory.GetTotalMemoryNums(total) && total != 0) total_mib = total >> 20;
  const auto load = Reported<uint32_t>(static_cast<uint32_t>(memory.GetMemoryLoad()));
  return Object("memory", "Memory",
                {Number("totalMiB", "total", total_mib, "MiB"),
                 Number("loadPercent", "load", load, "%"),
                 Array("modules", "", std::move(modules))});
}

}  // namespace halinfo
