// Graphics adapters and the screen, through device class 4: the adapter block GpInit takes, and
// the classes that answer for the adapter the library selects on each side and for the screen.
#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hal/hal_api.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};
using Block = std::unique_ptr<GpAdapterList, FreeBlock>;

std::string TextOf(GpAdapterList* block, uint32_t info_class) {
  std::array<wchar_t, 261> text{};
  uint32_t returned = 0;
  if (!GpQueryInforamtion(block, info_class, text.data(), 520, &returned)) return {};
  return ToUtf8(std::wstring_view(text.data(), returned / sizeof(wchar_t)));
}

std::optional<uint32_t> NumberOf(GpAdapterList* block, uint32_t info_class) {
  uint32_t value = 0, returned = 0;
  if (!GpQueryInforamtion(block, info_class, &value, sizeof(value), &returned)) return std::nullopt;
  return value;
}

const GpAdapterEntry& RecordAt(const GpAdapterList* block, uint32_t index) {
  return *reinterpret_cast<const GpAdapterEntry*>(reinterpret_cast<const unsigned char*>(block) +
                                                  8 + sizeof(GpAdapterEntry) * index);
}

// Status, driver and problem code are answered for the selected adapter of each side only (the
// last record of its kind); the others' stay unknown.
Node AdapterNode(GpAdapterList* block, uint32_t index, bool selected) {
  const GpAdapterEntry& record = RecordAt(block, index);
  const bool discrete = record.discrete != 0;
  const uint32_t first_text =
      discrete ? HAL_GRAPHICS_INFO_DISCRETE_NAME : HAL_GRAPHICS_INFO_INTEGRATED_NAME;
  const uint32_t problem = discrete ? HAL_GRAPHICS_INFO_DISCRETE_PROBLEM_CODE
                                    : HAL_GRAPHICS_INFO_INTEGRATED_PROBLEM_CODE;
  const auto text = [&](uint32_t offset) {
    return selected ? TextOf(block, first_text + offset) : std::string();
  };
  return Object(
      "", "Adapter " + std::to_string(index),
      {Number("index", "", index), Text("name", "name", ToUtf8(GraphicsAdapterName(block, index))),
       Text("kind", "kind", discrete ? "discrete" : "integrated"),
       Flag("active", "drives a display", record.active != 0),
       Number("videoMemoryMiB", "dedicated memory", record.videoMemoryMiB, "MiB"),
       Text("status", "status", text(1)), Text("driverVersion", "driver version", text(2)),
       Text("driverDate", "driver date", text(3)),
       Number("problemCode", "problem code", selected ? NumberOf(block, problem) : std::nullopt)});
}

}  // namespace

std::wstring GraphicsAdapterName(const GpAdapterList* block, uint32_t index) {
  const GpAdapterEntry& record = RecordAt(block, index);
  std::wstring name;
  for (size_t i = 0; i < 260 && record.name[i] != 0; ++i)
    name += static_cast<wchar_t>(record.name[i]);
  return name;
}

Node GraphicsSection() {
  GpAdapterList* list = nullptr;
  GpInit(&list);
  const Block block(list);
  std::vector<Node> adapters;
  const uint32_t count = block ? block->count : 0;
  for (uint32_t i = 0; i < count; ++i) {
    bool last_of_kind = true;
    for (uint32_t j = i + 1; j < count; ++j) {
      if ((RecordAt(block.get(), j).discrete != 0) == (RecordAt(block.get(), i).discrete != 0))
        last_of_kind = false;
    }
    adapters.push_back(AdapterNode(block.get(), i, last_of_kind));
  }
  // The screen classes need a block but no adapter: an empty one asks them when GpInit found
  // none (Wine without a display, for one).
  GpAdapterList empty{8, 0, {}};
  GpAdapterList* screen = block ? block.get() : &empty;
  return Object(
      "graphics", "Graphics",
      {Array("adapters", "adapters", std::move(adapters)),
       Object("screen", "screen",
              {Text("resolution", "resolution", TextOf(screen, HAL_GRAPHICS_INFO_RESOLUTION)),
               Number("refreshRateHz", "refresh rate",
                      NumberOf(screen, HAL_GRAPHICS_INFO_REFRESH_RATE), "Hz"),
               Number("bitsPerPixel", "colour depth",
                      NumberOf(screen, HAL_GRAPHICS_INFO_BITS_PER_PIXEL), "bits")})});
}

}  // namespace halinfo
