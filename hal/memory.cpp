#include "hal/memory.h"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "hal/hal_api.h"
#include "platform/boundary.h"
#include "platform/os/system_info.h"
#include "platform/string_conversion.h"

using velhal::CallGuarded;

namespace {

// The object's class-11 list, opened on first use.
bool Open(HalDeviceList*& list) {
  if (list != nullptr) return true;
  HalDeviceList* opened = nullptr;
  if (!HalInit(HAL_CLASS_MEMORY, &opened) || opened == nullptr) return false;
  list = opened;
  return true;
}

// An entry for a module index within the opened list.
bool EntryFor(HalDeviceList*& list, int index, HalDeviceEntry& entry) {
  if (!Open(list) || index < 0 || static_cast<uint32_t>(index) >= list->count) return false;
  entry = HalDeviceEntry{nullptr, static_cast<uint32_t>(index), 0};
  return true;
}

}  // namespace

Memory::Memory() : list_(nullptr) {}

Memory::~Memory() { std::free(list_); }

int Memory::Init() {
  return CallGuarded(0, [&] { return Open(list_) ? 1 : 0; });
}

int Memory::GetMemoryNums(uint32_t& count) {
  count = 0;
  return CallGuarded(0, [&] {
    if (!Open(list_)) return 0;
    uint32_t returned = 0;
    return MmQueryInformation(nullptr, HAL_MEMORY_INFO_COUNT, &count, sizeof(count), &returned) ? 1
                                                                                                : 0;
  });
}

int Memory::GetTotalMemoryNums(uint64_t& totalBytes) {
  totalBytes = 0;
  return CallGuarded(0, [&] {
    uint32_t count = 0;
    if (!GetMemoryNums(count)) return 0;
    for (uint32_t i = 0; i < count; ++i) {
      uint64_t bytes = 0;
      if (!GetCapacitybyIndex(bytes, static_cast<int>(i))) break;
      totalBytes += bytes;
    }
    return 1;
  });
}

int Memory::GetStringInfoByIndex(std::wstring& text, int index, unsigned long infoClass) {
  text.clear();
  return CallGuarded(0, [&] {
    HalDeviceEntry entry{};
    if (!EntryFor(list_, index, entry)) return 0;
    std::array<char, 260> buffer{};
    uint32_t returned = 0;
    if (!MmQueryInformation(&entry, infoClass, buffer.data(), static_cast<uint32_t>(buffer.size()),
                            &returned)) {
      return 0;
    }
    text = AnsiToWide(std::string(buffer.data(), returned));
    return 1;
  });
}

int Memory::GetLocatorbyIndex(std::wstring& text, int index) {
  return GetStringInfoByIndex(text, index, HAL_MEMORY_INFO_LOCATOR);
}
int Memory::GetManufacturerbyIndex(std::wstring& text, int index) {
  return GetStringInfoByIndex(text, index, HAL_MEMORY_INFO_MANUFACTURER);
}
int Memory::GetSerialNumberbyIndex(std::wstring& text, int index) {
  return GetStringInfoByIndex(text, index, HAL_MEMORY_INFO_SERIAL_NUMBER);
}
int Memory::GetPartNumberbyIndex(std::wstring& text, int index) {
  return GetStringInfoByIndex(text, index, HAL_MEMORY_INFO_PART_NUMBER);
}

int Memory::GetUintInfoByIndex(uint64_t& value, int index, unsigned long infoClass) {
  value = 0;
  return CallGuarded(0, [&] {
    HalDeviceEntry entry{};
    if (!EntryFor(list_, index, entry)) return 0;
    std::array<unsigned char, 8> buffer{};
    uint32_t returned = 0;
    if (!MmQueryInformation(&entry, infoClass, buffer.data(), 8, &returned)) return 0;
    std::memcpy(&value, buffer.data(), sizeof(value));
    return 1;
  });
}

int Memory::GetCapacitybyIndex(uint64_t& bytes, int index) {
  return GetUintInfoByIndex(bytes, index, HAL_MEMORY_INFO_CAPACITY);
}

int Memory::GetSpeedbyIndex(uint32_t& speed, int index) {
  uint64_t value = 0;
  const int ok = GetUintInfoByIndex(value, index, HAL_MEMORY_INFO_SPEED);
  speed = static_cast<uint32_t>(value);
  return ok;
}

// The two load readings open class 11 first, as every member does; the reading itself does not
// depend on the list, so a failed open still answers.
static_assert(sizeof(MEMORYSTATUSEX) == 64);

unsigned long Memory::GetMemoryLoad() {
  return CallGuarded(0ul, [&]() -> unsigned long {
    Open(list_);
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof(status);
    return velhal::os::system_info().GlobalMemoryStatusEx(&status) ? status.dwMemoryLoad : 0;
  });
}

float Memory::GetMemoryLoadF() {
  return CallGuarded(0.0f, [&]() -> float {
    Open(list_);
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof(status);
    if (!velhal::os::system_info().GlobalMemoryStatusEx(&status) || status.ullTotalPhys <= 10000) {
      return 0.0f;
    }
    // In ten-thousandths, with integer divisions: the precision callers have always seen.
    const uint64_t available_parts = status.ullAvailPhys / (status.ullTotalPhys / 10000);
    return static_cast<float>(1.0 - static_cast<double>(available_parts) / 10000.0);
  });
}
