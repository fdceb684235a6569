#include "hal/memory_module.h"

#include <cerrno>
#include <cwctype>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "hal/hal_api.h"
#include "hal/query_output.h"
#include "platform/boundary.h"
#include "platform/string_conversion.h"
#include "platform/wmi_engine.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace velhal::hal {
namespace {

using wmi::kCimV2;
constexpr uint64_t kMaxModules = 0x0FFFFFFF;

// How the modules are named in the per-field queries.
struct Modules {
  std::vector<std::wstring> keys;
  bool by_locator = false;  // keys are DeviceLocators, else BankLabels
};

bool ContainsChannel(const std::wstring& text) {
  std::wstring folded = text;
  for (wchar_t& c : folded) c = static_cast<wchar_t>(std::towlower(c));
  return folded.find(L"channel") != std::wstring::npos;
}

// Locators are the keys when the first one names a channel ("ChannelA-DIMM0"); otherwise every
// module is named by its bank label, even modules whose own locator would do.
Modules Enumerate() {
  VelSDK::WmiQuery wmi(kCimV2);
  Modules modules;
  if (wmi.ExcuteQuery(L"SELECT DeviceLocator FROM Win32_PhysicalMemory", L"DeviceLocator",
                      modules.keys, false) == 0 &&
      !modules.keys.empty() && ContainsChannel(modules.keys.front())) {
    modules.by_locator = true;
    return modules;
  }
  modules.keys.clear();
  wmi.ExcuteQuery(L"SELECT BankLabel FROM Win32_PhysicalMemory", L"BankLabel", modules.keys, false);
  return modules;
}

// The first value of one field of the module, as text. The key goes in as it stands.
std::wstring Field(const Modules& modules, const std::wstring& key, const wchar_t* field) {
  const std::wstring query =
      std::wstring(L"SELECT ") + field + L" FROM Win32_PhysicalMemory WHERE " +
      (modules.by_locator ? L"DeviceLocator='" : L"BankLabel='") + key + L"'";
  std::wstring value;
  WmiQueryFirstString(kCimV2, query, field, value);
  return value;
}

// Unparsable text reads as 0, which both numeric classes then refuse.
uint64_t ParseDecimal(const std::wstring& text) {
  if (text.empty() || text.size() > 20) return 0;
  uint64_t value = 0;
  for (wchar_t c : text) {
    if (c < L'0' || c > L'9') return 0;
    const uint64_t digit = static_cast<uint64_t>(c - L'0');
    if (value > (UINT64_MAX - digit) / 10) return 0;
    value = value * 10 + digit;
  }
  return value;
}

uint32_t WriteModuleText(void* buffer, uint32_t buffer_size, uint32_t* returned,
                         const std::wstring& text) {
  return WriteText(buffer, buffer_size, returned, text, TextForm::kAnsiWithoutNul,
                   EmptyText::kFails);
}

uint32_t QueryCount(void* buffer, uint32_t buffer_size, uint32_t* returned) {
  const uint64_t count = Enumerate().keys.size();
  if (count == 0) return 0;
  if (buffer_size < 4) {
    std::memset(buffer, 0, buffer_size);
    errno = ERANGE;  // 34: callers read errno on this path
    return 0;
  }
  return WriteNumber(buffer, buffer_size, returned, static_cast<uint32_t>(count));
}

uint32_t QueryModule(const HalDeviceEntry* entry, uint32_t info_class, void* buffer,
                     uint32_t buffer_size, uint32_t* returned) {
  const Modules modules = Enumerate();
  if (entry == nullptr || entry->index >= modules.keys.size()) return 0;
  const std::wstring& key = modules.keys[entry->index];
  switch (info_class) {
    case HAL_MEMORY_INFO_LOCATOR: return WriteModuleText(buffer, buffer_size, returned, key);
    case HAL_MEMORY_INFO_MANUFACTURER:
      return WriteModuleText(buffer, buffer_size, returned, Field(modules, key, L"Manufacturer"));
    case HAL_MEMORY_INFO_SERIAL_NUMBER:
      return WriteModuleText(buffer, buffer_size, returned, Field(modules, key, L"SerialNumber"));
    case HAL_MEMORY_INFO_PART_NUMBER:
      return WriteModuleText(buffer, buffer_size, returned, Field(modules, key, L"PartNumber"));
    case HAL_MEMORY_INFO_CAPACITY: {
      const uint64_t bytes = ParseDecimal(Field(modules, key, L"Capacity"));
      return bytes != 0 ? WriteNumber(buffer, buffer_size, returned, bytes) : 0;
    }
    case HAL_MEMORY_INFO_SPEED: {
      const uint64_t speed = ParseDecimal(Field(modules, key, L"Speed"));
      if (speed == 0 || speed >= 0xFFFFFFFF) return 0;
      return WriteNumber(buffer, buffer_size, returned, static_cast<uint32_t>(speed));
    }
    default: return 0;
  }
}

uint32_t Query(void* entry, uint32_t info_class, void* buffer, uint32_t buffer_size,
               uint32_t* returned) {
  return MmQueryInformation(static_cast<HalDeviceEntry*>(entry), info_class, buffer, buffer_size,
                            returned);
}

}  // namespace

const ClassModule& MemoryModule() {
  static constexpr ClassModule kModule{.init = MmInit, .query = Query};
  return kModule;
}

}  // namespace velhal::hal

uint32_t MmInit(void* list) {
  using namespace velhal::hal;
  return velhal::CallGuarded(0u, [&]() -> uint32_t {
    if (list == nullptr) return 0;
    const uint64_t count = Enumerate().keys.size();
    if (count == 0 || count > kMaxModules) return 0;
    return MakeDeviceList(list, count);
  });
}

uint32_t MmQueryInformation(HalDeviceEntry* entry, uint32_t infoClass, void* buffer,
                            uint32_t bufferSize, uint32_t* returnedSize) {
  using namespace velhal::hal;
  return velhal::CallGuarded(0u, [&]() -> uint32_t {
    if (buffer == nullptr || returnedSize == nullptr || infoClass >= (HAL_MEMORY_INFO_SPEED + 1))
      return 0;
    // One connection serves the enumeration and the field query of this call.
    const velhal::wmi::SessionScope session;
    if (infoClass == HAL_MEMORY_INFO_COUNT) return QueryCount(buffer, bufferSize, returnedSize);
    return QueryModule(entry, infoClass, buffer, bufferSize, returnedSize);
  });
}
