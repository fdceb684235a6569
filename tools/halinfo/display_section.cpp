// The built-in display's picture controls, through device class 16: which back-end the library
// took (the AMD display library makes a block, the Intel driver none) and the brightness and
// colour-temperature ranges it reports.
#include <array>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include "hal/hal_api.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

std::optional<DpColorRange> RangeOf(void* entry, uint32_t info_class) {
  std::array<uint8_t, 36> buffer{};
  uint32_t returned = 0;
  if (!HalQueryInformation(HAL_CLASS_DISPLAY, entry, info_class, buffer.data(),
                           static_cast<uint32_t>(buffer.size()), &returned) ||
      returned != sizeof(DpColorRange)) {
    return std::nullopt;
  }
  DpColorRange range;
  std::memcpy(&range, buffer.data(), sizeof(range));
  return range;
}

Node RangeNode(const char* key, const char* label, const std::optional<DpColorRange>& range) {
  if (!range) return Leaf(key, label, nullptr);
  // ADL's ranges may be signed (brightness runs from -100): the words are read as such.
  const auto value = [](uint32_t word) { return static_cast<int32_t>(word); };
  return Object(key, label,
                {Number("current", "current", value(range->current)),
                 Number("default", "default", value(range->defaultValue)),
                 Number("minimum", "minimum", value(range->minimum)),
                 Number("maximum", "maximum", value(range->maximum)),
                 Number("step", "step", value(range->step))});
}

// The library's rule: the first adapter naming "AMD" or "Intel" decides.
std::string VendorOfInventory() {
  GpAdapterList* list = nullptr;
  GpInit(&list);
  std::string vendor;
  for (uint32_t i = 0; list != nullptr && i < list->count && vendor.empty(); ++i) {
    const std::wstring name = GraphicsAdapterName(list, i);
    if (name.find(L"AMD") != std::wstring::npos) {
      vendor = "AMD";
    } else if (name.find(L"Intel") != std::wstring::npos) {
      vendor = "Intel";
    }
  }
  std::free(list);
  return vendor;
}

}  // namespace

Node DisplaySection() {
  DpDisplayList* list = nullptr;
  const uint32_t initialised = HalInit(HAL_CLASS_DISPLAY, &list);
  std::string back_end = "not supported on this machine";
  if (list != nullptr) {
    back_end = "AMD display library";
  } else if (initialised && VendorOfInventory() == "Intel") {
    back_end = "Intel graphics driver and the power scheme";
  }
  void* entry = list != nullptr ? &list->adapterIndex : nullptr;
  const bool supported = list != nullptr || back_end != "not supported on this machine";
  const std::optional<DpColorRange> brightness =
      supported ? RangeOf(entry, HAL_DISPLAY_INFO_BRIGHTNESS) : std::nullopt;
  const std::optional<DpColorRange> temperature =
      list != nullptr ? RangeOf(entry, HAL_DISPLAY_INFO_COLOR_TEMPERATURE) : std::nullopt;
  std::free(list);
  return Object("display", "Display",
                {Flag("supported", "", supported), Text("backEnd", "back-end", back_end),
                 RangeNode("brightness", "brightness", brightness),
                 RangeNode("colorTemperature", "colour temperature", temperature)});
}

}  // namespace halinfo
