#include "platform/win32.h"

#include "hal/graphics_module.h"

#include <shlwapi.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "hal/graphics_inventory.h"
#include "hal/query_output.h"
#include "platform/boundary.h"
#include "platform/device_classes.h"
#include "platform/device_informention.h"
#include "platform/os/display.h"
#include "platform/os/system_info.h"
#include "platform/string_conversion.h"
#include "platform/wmi_engine.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace velhal::hal {
namespace {

using wmi::kCimV2;

constexpr uint64_t kHeaderSize = 8;
constexpr uint64_t kRecordSize = sizeof(GpAdapterEntry);                        // 552
constexpr size_t kNameUnits = sizeof(GpAdapterEntry::name) / sizeof(uint16_t);  // 260
// Beyond this many records 8 + 552 x count no longer fits the 32-bit size field.
constexpr uint64_t kMaxAdapters = 7'780'736;
constexpr UINT32 kMaxDisplayConfigEntries = 61'440;
static_assert(sizeof(DEVMODEW) == 220, "EnumDisplaySettingsW is given dmSize 220");

// Whether [start, start + size) lies in committed, readable memory. The block comes back from
// the caller: a header that claims more records than were allocated is refused, not read into
// a fault.
bool Readable(const void* start, uint64_t size) {
  constexpr DWORD kReadable = PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READ |
                              PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
  uintptr_t at = reinterpret_cast<uintptr_t>(start);
  if (size > UINTPTR_MAX - at) return false;
  const uintptr_t end = at + static_cast<uintptr_t>(size);
  while (at < end) {
    MEMORY_BASIC_INFORMATION region{};
    if (os::system_info().VirtualQuery(reinterpret_cast<const void*>(at), &region,
                                       sizeof(region)) != sizeof(region) ||
        region.State != MEM_COMMIT || (region.Protect & (PAGE_GUARD | PAGE_NOACCESS)) != 0 ||
        (region.Protect & kReadable) == 0) {
      return false;
    }
    at = reinterpret_cast<uintptr_t>(region.BaseAddress) + region.RegionSize;
  }
  return true;
}

GpAdapterEntry* RecordAt(GpAdapterList* block, uint64_t index) {
  return reinterpret_cast<GpAdapterEntry*>(reinterpret_cast<unsigned char*>(block) + kHeaderSize +
                                           kRecordSize * index);
}

// The value of one Win32_VideoController property of the adapter whose caption is name. The
// name goes into the WQL text as it stands, quotes and all: callers rely on that match.
std::wstring ControllerText(const std::wstring& name, const wchar_t* property) {
  std::wstring value;
  WmiQueryFirstString(kCimV2,
                      std::wstring(L"SELECT ") + property +
                          L" FROM Win32_VideoController WHERE Caption ='" + name + L"'",
                      property, value);
  return value;
}

uint8_t ActiveFlag(const std::wstring& name) {
  unsigned int rate = 0;
  const bool read = WmiQueryFirstUInt(
      kCimV2,
      L"SELECT CurrentRefreshRate FROM Win32_VideoController WHERE Caption ='" + name + L"'",
      L"CurrentRefreshRate", &rate);
  return read && rate != 0 && rate != 0xFFFFFFFF ? 1 : 0;
}

// A failed query counts as integrated; an answered but empty type as discrete.
uint32_t DiscreteFlag(const std::wstring& name) {
  std::wstring type;
  if (!WmiQueryFirstString(
          kCimV2,
          L"SELECT AdapterDACType FROM Win32_VideoController WHERE Caption ='" + name + L"'",
          L"AdapterDACType", type)) {
    return 0;
  }
  return !type.empty() && ::StrStrIW(type.c_str(), L"Integrated") != nullptr ? 0 : 1;
}

// Writes the block record by record; a name the field cannot hold fails as wcscpy_s would,
// leaving the block in *list for the caller to free.
uint32_t WriteBlock(const std::vector<GraphicsAdapter>& adapters, GpAdapterList** list) {
  const uint64_t count = adapters.size();
  auto* block = static_cast<GpAdapterList*>(
      std::malloc(static_cast<size_t>(kHeaderSize + kRecordSize * count)));
  *list = block;
  if (block == nullptr) return 0;
  block->totalSize = static_cast<uint32_t>(kHeaderSize + kRecordSize * count);
  block->count = static_cast<uint32_t>(count);
  for (uint32_t i = 0; i < count; ++i) {
    GpAdapterEntry& record = *RecordAt(block, i);
    const std::wstring& name = adapters[i].name;
    record.videoMemoryMiB = adapters[i].memory_mib;
    record.zero = 0;
    record.index = i;
    if (name.size() >= kNameUnits) {
      record.name[0] = 0;
      return 0;
    }
    std::copy(name.begin(), name.end(), record.name);
    record.name[name.size()] = 0;
    record.active = ActiveFlag(name);
    record.discrete = DiscreteFlag(name);
  }
  return 1;
}

// The last record on the asked side: discrete or integrated. The active flag plays no part.
const GpAdapterEntry* Select(std::span<const GpAdapterEntry> records, bool discrete) {
  const GpAdapterEntry* chosen = nullptr;
  for (const GpAdapterEntry& record : records) {
    if ((record.discrete != 0) == discrete) chosen = &record;
  }
  return chosen;
}

// Classes 0-15: name, Status, DriverVersion and driver date of the selected adapter.
std::wstring AdapterText(const std::wstring& name, uint32_t field) {
  switch (field) {
    case 0: return name;
    case 1: return ControllerText(name, L"Status");
    case 2: return ControllerText(name, L"DriverVersion");
    default: {
      // The YYYYMMDD part of a CIM date-time; anything shorter is no date.
      const std::wstring date = ControllerText(name, L"DriverDate");
      return date.size() >= 8 ? date.substr(0, 8) : std::wstring();
    }
  }
}

// Class 16: the model part of the monitor's PNP instance path (DISPLAY\ABC1234\5&2a... gives
// ABC1234), or WMI's caption when no monitor reports a PNP ID.
std::wstring MonitorText() {
  std::wstring pnp;
  if (WmiQueryFirstString(kCimV2, kMonitorPnpIdQuery, L"PNPDeviceID", pnp) && !pnp.empty()) {
    const std::string narrow = WideToAnsi(pnp);
    const size_t first = narrow.find('\\');
    if (first == std::string::npos) return {};
    const size_t second = narrow.find('\\', first + 1);
    return AnsiToWide(narrow.substr(
        first + 1, second == std::string::npos ? std::string::npos : second - first - 1));
  }
  std::wstring caption;
  WmiQueryFirstString(kCimV2, L"SELECT Caption FROM Win32_DesktopMonitor", L"Caption", caption);
  return caption;
}

std::wstring ResolutionText() {
  const int width = os::display().GetSystemMetrics(SM_CXSCREEN);
  const int height = os::display().GetSystemMetrics(SM_CYSCREEN);
  if (width == 0 || height == 0) return {};
  return std::to_wstring(width) + L"x" + std::to_wstring(height);
}

std::optional<DEVMODEW> CurrentMode() {
  DEVMODEW mode{};
  mode.dmSize = sizeof(DEVMODEW);
  if (!os::display().EnumDisplaySettingsW(nullptr, ENUM_CURRENT_SETTINGS, &mode))
    return std::nullopt;
  return mode;
}

// The refresh rate of the first active path to the built-in panel, rounded to nearest; 0 when
// there is none or it reports none.
uint32_t InternalPanelRefreshRate() {
  UINT32 path_count = 0, mode_count = 0;
  if (os::display().GetDisplayConfigBufferSizes(QDC_ONLY_ACTIVE_PATHS, &path_count, &mode_count) !=
          ERROR_SUCCESS ||
      path_count < 1 || path_count > kMaxDisplayConfigEntries || mode_count < 1 ||
      mode_count > kMaxDisplayConfigEntries) {
    return 0;
  }
  std::vector<DISPLAYCONFIG_PATH_INFO> paths(path_count);
  std::vector<DISPLAYCONFIG_MODE_INFO> modes(mode_count);
  if (os::display().QueryDisplayConfig(QDC_ONLY_ACTIVE_PATHS, &path_count, paths.data(),
                                       &mode_count, modes.data(), nullptr) != ERROR_SUCCESS) {
    return 0;
  }
  paths.resize(std::min<size_t>(path_count, paths.size()));
  for (const DISPLAYCONFIG_PATH_INFO& path : paths) {
    if (path.targetInfo.outputTechnology != DISPLAYCONFIG_OUTPUT_TECHNOLOGY_INTERNAL) continue;
    const DISPLAYCONFIG_RATIONAL rate = path.targetInfo.refreshRate;
    if (rate.Denominator == 0) return 0;
    return static_cast<uint32_t>((uint64_t{rate.Numerator} + rate.Denominator / 2) /
                                 rate.Denominator);
  }
  return 0;
}

// The built-in panel's rate, else WMI's, else the current display mode's; 0 when all are silent.
uint32_t RefreshRate() {
  if (const uint32_t panel = InternalPanelRefreshRate(); panel != 0) return panel;
  unsigned int reported = 0;
  if (WmiQueryFirstUInt(kCimV2,
                        L"SELECT CurrentRefreshRate FROM Win32_VideoController WHERE "
                        L"CurrentRefreshRate IS NOT NULL",
                        L"CurrentRefreshRate", &reported) &&
      reported != 0 && reported != 0xFFFFFFFF) {
    return reported;
  }
  const std::optional<DEVMODEW> mode = CurrentMode();
  return mode ? mode->dmDisplayFrequency : 0;
}

uint32_t WriteNonZero(void* buffer, uint32_t buffer_size, uint32_t* returned, uint64_t value) {
  if (value == 0) return 0;
  return WriteNumber(buffer, buffer_size, returned, static_cast<uint32_t>(value));
}

uint32_t WriteAnswer(void* buffer, uint32_t buffer_size, uint32_t* returned,
                     const std::wstring& text) {
  return WriteText(buffer, buffer_size, returned, text, TextForm::kUtf16, EmptyText::kFails);
}

// Classes 0-15 and 20-25: one adapter chosen by the class, or failure when none qualifies.
uint32_t QueryAdapter(std::span<const GpAdapterEntry> records, uint32_t info_class, void* buffer,
                      uint32_t buffer_size, uint32_t* returned) {
  bool discrete = true;
  uint32_t field = 0;  // 0-3: texts of classes 0-15; 4: memory; 5: problem code
  if (info_class <= HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_DATE_ALIAS) {
    discrete = info_class % 8 < 4;
    field = info_class % 4;
  } else {
    discrete = info_class == HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY ||
               info_class == HAL_GRAPHICS_INFO_DISCRETE_PROBLEM_CODE ||
               info_class == HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY_ALIAS;
    field = info_class == HAL_GRAPHICS_INFO_DISCRETE_PROBLEM_CODE ||
                    info_class == HAL_GRAPHICS_INFO_INTEGRATED_PROBLEM_CODE
                ? 5
                : 4;
  }
  const GpAdapterEntry* record = Select(records, discrete);
  if (record == nullptr) return 0;
  if (field == 4) return WriteNumber(buffer, buffer_size, returned, record->videoMemoryMiB);
  const std::optional<std::wstring> name = AdapterName(*record);
  if (!name) return 0;
  if (field == 5) {
    return WriteNumber(buffer, buffer_size, returned,
                       DeviceInformention().GetDeviceULONGInfoByDesc(*name, device_class::kDisplay,
                                                                     DeviceProperty_ProblemCode));
  }
  return WriteAnswer(buffer, buffer_size, returned, AdapterText(*name, field));
}

uint32_t Query(const GpAdapterList* block, uint32_t info_class, void* buffer, uint32_t buffer_size,
               uint32_t* returned) {
  if (info_class > HAL_GRAPHICS_INFO_BITS_PER_PIXEL) return 0;
  const std::optional<std::span<const GpAdapterEntry>> records = AdapterRecords(block);
  if (!records) return 0;
  // One connection serves every WMI read of this call.
  const wmi::SessionScope session;
  switch (info_class) {
    case HAL_GRAPHICS_INFO_MONITOR:
      return WriteAnswer(buffer, buffer_size, returned, MonitorText());
    case HAL_GRAPHICS_INFO_RESOLUTION:
      return WriteAnswer(buffer, buffer_size, returned, ResolutionText());
    case HAL_GRAPHICS_INFO_NOT_SERVED: return 0;
    case HAL_GRAPHICS_INFO_COUNT: return WriteNumber(buffer, buffer_size, returned, block->count);
    case HAL_GRAPHICS_INFO_SCREEN_WIDTH:
      return WriteNonZero(buffer, buffer_size, returned,
                          static_cast<uint32_t>(os::display().GetSystemMetrics(SM_CXSCREEN)));
    case HAL_GRAPHICS_INFO_SCREEN_HEIGHT:
      return WriteNonZero(buffer, buffer_size, returned,
                          static_cast<uint32_t>(os::display().GetSystemMetrics(SM_CYSCREEN)));
    case HAL_GRAPHICS_INFO_REFRESH_RATE:
      return WriteNonZero(buffer, buffer_size, returned, RefreshRate());
    case HAL_GRAPHICS_INFO_BITS_PER_PIXEL: {
      const std::optional<DEVMODEW> mode = CurrentMode();
      return WriteNonZero(buffer, buffer_size, returned, mode ? mode->dmBitsPerPel : 0);
    }
    default: return QueryAdapter(*records, info_class, buffer, buffer_size, returned);
  }
}

uint32_t RouteInit(void* list) { return GpInit(static_cast<GpAdapterList**>(list)); }

uint32_t RouteQuery(void* block, uint32_t info_class, void* buffer, uint32_t buffer_size,
                    uint32_t* returned) {
  return GpQueryInforamtion(static_cast<GpAdapterList*>(block), info_class, buffer, buffer_size,
                            returned);
}

uint32_t RouteSet(void* block, uint32_t info_class, void* buffer, uint32_t buffer_size,
                  uint32_t* returned) {
  return GpSetInformation(static_cast<GpAdapterList*>(block), info_class, buffer, buffer_size,
                          returned);
}

}  // namespace

const ClassModule& GraphicsModule() {
  static constexpr ClassModule kModule{.init = RouteInit, .query = RouteQuery, .set = RouteSet};
  return kModule;
}

std::optional<std::span<const GpAdapterEntry>> AdapterRecords(const GpAdapterList* block) {
  if (block == nullptr || !Readable(block, kHeaderSize) ||
      uint64_t{block->totalSize} != kHeaderSize + kRecordSize * uint64_t{block->count} ||
      !Readable(block, block->totalSize)) {
    return std::nullopt;
  }
  const auto* first = reinterpret_cast<const GpAdapterEntry*>(
      reinterpret_cast<const unsigned char*>(block) + kHeaderSize);
  return std::span<const GpAdapterEntry>(first, block->count);
}

std::optional<std::wstring> AdapterName(const GpAdapterEntry& record) {
  const uint16_t* end = std::find(record.name, record.name + kNameUnits, uint16_t{0});
  if (end == record.name + kNameUnits) return std::nullopt;
  return std::wstring(record.name, end);
}

}  // namespace velhal::hal

uint32_t GpInit(GpAdapterList** list) {
  using namespace velhal::hal;
  return velhal::CallGuarded(0u, [&]() -> uint32_t {
    if (list == nullptr) return 0;
    const velhal::wmi::SessionScope session;
    const std::vector<GraphicsAdapter> adapters = TakeGraphicsInventory();
    // Success without a block: callers rely on 1 for an empty (or impossibly large) inventory.
    if (adapters.empty() || adapters.size() > kMaxAdapters) return 1;
    return WriteBlock(adapters, list);
  });
}

uint32_t GpQueryInforamtion(GpAdapterList* block, uint32_t infoClass, void* buffer,
                            uint32_t bufferSize, uint32_t* returnedSize) {
  return velhal::CallGuarded(0u, [&]() -> uint32_t {
    if (block == nullptr || buffer == nullptr || returnedSize == nullptr) return 0;
    return velhal::hal::Query(block, infoClass, buffer, bufferSize, returnedSize);
  });
}

uint32_t GpSetInformation(GpAdapterList*, uint32_t, void*, uint32_t, uint32_t*) {
  return velhal::CallGuarded(0u, [] { return 0u; });  // nothing of class 4 is settable
}
