#include "platform/win32.h"

#include "hal/display_adl.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "hal/query_output.h"
#include "platform/os/adl.h"
#include "platform/os/module.h"
#include "platform/process_state.h"

namespace velhal::hal::adl {
namespace {

namespace api = os::adl;

struct Library {
  bool ready = false;  // never cleared: the library stays bound for the process
  HMODULE module = nullptr;
  api::EntryPoints entry;
};
Library g_library;

void Forget() {
  if (g_library.module != nullptr) os::module().FreeLibrary(g_library.module);
  g_library = Library{};
}

void* __stdcall Allocate(int size) {
  return size > 0 ? std::malloc(static_cast<size_t>(size)) : nullptr;
}

// Binds the library unless it already is; true when all entry points are there.
bool Load() {
  if (g_library.ready) return true;
  const std::wstring path = SystemFolderFile(L"\\atiadlxx.dll");
  if (path.empty()) return false;
  UniqueModule module(os::module().LoadLibraryExW(path.c_str(), nullptr, 0));
  if (!module.IsValid()) return false;
  const api::EntryPoints entry = api::Bind(module.Get());
  if (!entry.Complete()) return false;
  static const bool registered = (RegisterProcessStateReset(&Forget), true);
  (void)registered;
  g_library = Library{true, module.Release(), entry};
  return true;
}

template <class Function>
Function Call(api::Entry entry) {
  return g_library.entry.As<Function>(entry);
}

// One ADL context for the length of a call.
class Context {
 public:
  Context() {
    if (Call<api::ControlX2CreateFn>(api::kMainControlX2Create)(
            &Allocate, 1, &handle_, api::kThreadingLocked) != api::kOk) {
      handle_ = nullptr;
    }
  }
  ~Context() {
    if (handle_ != nullptr) Call<api::ControlDestroyFn>(api::kMainControlDestroy)(handle_);
  }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  explicit operator bool() const { return handle_ != nullptr; }
  api::Context get() const { return handle_; }

 private:
  api::Context handle_ = nullptr;
};

// Arrays ADL allocated through Allocate.
struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using AdlArray = std::unique_ptr<T, FreeDeleter>;

// The first display of the adapter that is mapped and belongs to this very adapter.
std::optional<int> MappedDisplay(const Context& context, int adapter) {
  int count = 0;
  api::DisplayInfo* raw = nullptr;
  const int result = Call<api::DisplayInfoFn>(api::kDisplayDisplayInfoGet)(context.get(), adapter,
                                                                           &count, &raw, 0);
  const AdlArray<api::DisplayInfo> displays(raw);
  if (result != api::kOk || displays == nullptr) return std::nullopt;
  for (int d = 0; d < count; ++d) {
    const api::DisplayInfo& display = displays.get()[d];
    if ((display.iDisplayInfoValue & api::kDisplayMapped) != 0 &&
        display.displayID.iDisplayLogicalAdapterIndex == adapter) {
      return display.displayID.iDisplayLogicalIndex;
    }
  }
  return std::nullopt;
}

// The adjustments the display supports: its caps masked by the valid bits.
std::optional<uint32_t> ColorCaps(int adapter, int display) {
  const Context context;
  if (!context) return std::nullopt;
  int caps = 0, valids = 0;
  if (Call<api::ColorCapsFn>(api::kDisplayColorCapsGet)(context.get(), adapter, display, &caps,
                                                        &valids) != api::kOk) {
    return std::nullopt;
  }
  return static_cast<uint32_t>(caps & valids);
}

std::optional<DpColorRange> ColorRange(int adapter, int display, int type) {
  const std::optional<uint32_t> caps = ColorCaps(adapter, display);
  if (!caps || (*caps & static_cast<uint32_t>(type)) == 0) return std::nullopt;
  const Context context;
  if (!context) return std::nullopt;
  int current = 0, default_value = 0, minimum = 0, maximum = 0, step = 0;
  if (Call<api::ColorGetFn>(api::kDisplayColorGet)(context.get(), adapter, display, type, &current,
                                                   &default_value, &minimum, &maximum,
                                                   &step) != api::kOk) {
    return std::nullopt;
  }
  return DpColorRange{static_cast<uint32_t>(current), static_cast<uint32_t>(default_value),
                      static_cast<uint32_t>(minimum), static_cast<uint32_t>(maximum),
                      static_cast<uint32_t>(step)};
}

bool SetColor(int adapter, int display, int type, uint32_t level, uint32_t mode) {
  const std::optional<uint32_t> caps = ColorCaps(adapter, display);
  if (!caps || (*caps & static_cast<uint32_t>(type)) == 0) return false;
  const Context context;
  if (!context) return false;
  // A user temperature is only honoured once the source says so.
  if (type == api::kColorTemperature &&
      Call<api::TemperatureSourceSetFn>(api::kDisplayColorTemperatureSourceSet)(
          context.get(), adapter, display, api::kTemperatureSourceUser) != api::kOk) {
    return false;
  }
  const std::optional<DpColorRange> range = ColorRange(adapter, display, type);
  if (!range) return false;
  const int minimum = static_cast<int>(range->minimum);
  const MappedLevel mapped = MapLevel(level, mode, minimum);
  if (mapped.value < minimum || mapped.value > mapped.top) return false;
  return Call<api::ColorSetFn>(api::kDisplayColorSet)(context.get(), adapter, display, type,
                                                      static_cast<int>(mapped.value)) == api::kOk;
}

uint32_t WriteRange(void* buffer, uint32_t buffer_size, uint32_t* returned,
                    const std::optional<DpColorRange>& range) {
  if (!range || buffer == nullptr || returned == nullptr || buffer_size < sizeof(DpColorRange))
    return 0;
  std::memcpy(buffer, &*range, sizeof(DpColorRange));
  *returned = sizeof(DpColorRange);
  return 1;
}

uint32_t StoreDisplayList(DpDisplayList** list, int adapter, int display) {
  auto* block = static_cast<DpDisplayList*>(std::malloc(sizeof(DpDisplayList)));
  if (block == nullptr) return 0;
  *block = {sizeof(DpDisplayList), 1, static_cast<uint32_t>(adapter),
            static_cast<uint32_t>(display)};
  *list = block;
  return 1;
}

}  // namespace

bool Ready() { return g_library.ready; }

bool EntryPointsPresent() { return g_library.entry.Complete(); }

MappedLevel MapLevel(uint32_t level, uint32_t mode, int minimum) {
  const int64_t low = mode != 0 ? 4000 : 5000;
  const int64_t high = mode != 0 ? 6000 : 8000;
  int64_t value = (high - low) * int64_t{level} / 255 + low;
  value -= value % 100;
  if (value < minimum) {
    value = minimum;
  } else if (value > high) {
    value = high;
  }
  return {value, high};
}

uint32_t Init(DpDisplayList** list) {
  if (!Load()) return 0;
  const Context context;
  if (!context) return 0;
  api::AdapterInfo* raw = nullptr;
  const int info_result =
      Call<api::AdapterInfoX2Fn>(api::kAdapterAdapterInfoX2Get)(context.get(), &raw);
  const AdlArray<api::AdapterInfo> adapters(raw);
  int count = 0;
  if (info_result != api::kOk || adapters == nullptr ||
      Call<api::NumberOfAdaptersFn>(api::kAdapterNumberOfAdaptersGet)(context.get(), &count) !=
          api::kOk) {
    return 0;
  }
  for (int i = 0; i < count; ++i) {
    const int adapter = adapters.get()[i].iAdapterIndex;
    if (const std::optional<int> display = MappedDisplay(context, adapter))
      return StoreDisplayList(list, adapter, *display);
  }
  return 0;
}

uint32_t Query(const uint32_t* entry, uint32_t info_class, void* buffer, uint32_t buffer_size,
               uint32_t* returned) {
  if (entry == nullptr) return 0;
  const int adapter = static_cast<int>(entry[0]);
  const int display = static_cast<int>(entry[1]);
  switch (info_class) {
    case HAL_DISPLAY_INFO_COLOR_CAPS: {
      const std::optional<uint32_t> caps = ColorCaps(adapter, display);
      return caps ? WriteNumber(buffer, buffer_size, returned, *caps) : 0;
    }
    case HAL_DISPLAY_INFO_COLOR_TEMPERATURE:
      if (buffer_size < sizeof(DpColorRange)) return 0;
      return WriteRange(buffer, buffer_size, returned,
                        ColorRange(adapter, display, api::kColorTemperature));
    case HAL_DISPLAY_INFO_BRIGHTNESS:
      if (buffer_size < sizeof(DpColorRange)) return 0;
      return WriteRange(buffer, buffer_size, returned,
                        ColorRange(adapter, display, api::kColorBrightness));
    default: return 0;
  }
}

uint32_t Set(const uint32_t* entry, uint32_t info_class, const void* buffer, uint32_t buffer_size) {
  if (entry == nullptr || buffer == nullptr || buffer_size < 8) return 0;
  int type = 0;
  switch (info_class) {
    case HAL_DISPLAY_SET_COLOR_TEMPERATURE:
    case HAL_DISPLAY_SET_COLOR_TEMPERATURE_ALIAS: type = api::kColorTemperature; break;
    case HAL_DISPLAY_SET_BRIGHTNESS: type = api::kColorBrightness; break;
    default: return 0;
  }
  uint32_t words[2];
  std::memcpy(words, buffer, sizeof(words));
  return SetColor(static_cast<int>(entry[0]), static_cast<int>(entry[1]), type, words[0], words[1])
             ? 1
             : 0;
}

}  // namespace velhal::hal::adl
