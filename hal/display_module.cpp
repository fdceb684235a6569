#include "hal/display_module.h"

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "hal/display_adl.h"
#include "hal/display_intel.h"
#include "hal/graphics_module.h"
#include "hal/hal_api.h"

namespace velhal::hal {
namespace {

struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }
};

// A back-end that says it is ready must still have what it needs.
bool ReadyCheck() {
  return (!adl::Ready() || adl::EntryPointsPresent()) &&
         (!intel::Ready() || intel::ControlPresent());
}

// The first record naming a vendor decides; "AMD" is looked for before "Intel" in each name.
uint32_t Init(void* list) {
  GpAdapterList* graphics = nullptr;
  const uint32_t inventory = GpInit(&graphics);
  const std::unique_ptr<GpAdapterList, FreeDeleter> owned(graphics);
  if (inventory == 0 || graphics == nullptr || !ReadyCheck()) return inventory;
  const auto records = AdapterRecords(graphics);
  if (!records) return inventory;
  for (const GpAdapterEntry& record : *records) {
    const std::optional<std::wstring> name = AdapterName(record);
    if (!name) continue;
    if (name->find(L"AMD") != std::wstring::npos)
      return adl::Init(static_cast<DpDisplayList**>(list));
    if (name->find(L"Intel") != std::wstring::npos) return intel::Init();
  }
  return inventory;  // neither vendor: success without a block, callers rely on it
}

uint32_t Query(void* entry, uint32_t info_class, void* buffer, uint32_t buffer_size,
               uint32_t* returned) {
  if (!ReadyCheck()) return 0;
  if (adl::Ready())
    return adl::Query(static_cast<const uint32_t*>(entry), info_class, buffer, buffer_size,
                      returned);
  if (intel::Ready()) return intel::Query(info_class, buffer, buffer_size, returned);
  return 0;
}

uint32_t Set(void* entry, uint32_t info_class, void* buffer, uint32_t buffer_size,
             uint32_t* /*returned*/) {
  if (!ReadyCheck()) return 0;
  if (adl::Ready())
    return adl::Set(static_cast<const uint32_t*>(entry), info_class, buffer, buffer_size);
  if (intel::Ready()) return intel::Set(info_class, buffer, buffer_size);
  return 0;
}

}  // namespace

const ClassModule& DisplayModule() {
  static constexpr ClassModule kModule{.init = Init, .query = Query, .set = Set};
  return kModule;
}

}  // namespace velhal::hal
