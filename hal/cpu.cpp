#include "hal/cpu.h"

#include <array>
#include <cstring>

#include "hal/hal_api.h"
#include "hal/processor_module.h"
#include "platform/boundary.h"
#include "platform/string_conversion.h"

using velhal::CallGuarded;

namespace {

// Detects the processor type once per object.
void EnsureDetected(bool& initialized) {
  if (initialized) return;
  velhal::hal::DetectCpuType();
  initialized = true;
}

}  // namespace

Cpu::Cpu() : initialized_(false) {}

void Cpu::Init() {
  CallGuarded(false, [] {
    velhal::hal::DetectCpuType();
    return true;
  });
}

std::wstring Cpu::GetProperty(EnumHalCpuQueryInformation infoClass) {
  return CallGuarded(std::wstring{}, [&]() -> std::wstring {
    EnsureDetected(initialized_);
    std::array<char, 260> text{};
    uint32_t returned = 0;
    if (CpuQueryInformation(infoClass, text.data(), static_cast<uint32_t>(text.size()),
                            &returned) != 1) {
      return {};
    }
    return AnsiToWide(std::string(text.data(), returned));
  });
}

unsigned long Cpu::GetUlongPropter(EnumHalCpuQueryInformation infoClass) {
  return CallGuarded(0ul, [&]() -> unsigned long {
    EnsureDetected(initialized_);
    uint32_t value = 0;
    uint32_t returned = 0;
    if (CpuQueryInformation(infoClass, &value, sizeof(value), &returned) != 1) return 0;
    return value;
  });
}

EnmHalCpuType Cpu::GetCputype() { return static_cast<EnmHalCpuType>(GetUlongPropter(HalCpuType)); }

std::wstring Cpu::GetCpuManufacturer() { return GetProperty(HalCpuVendor); }
std::wstring Cpu::GetCpuName() { return GetProperty(HalCpuName); }
std::wstring Cpu::GetL1Associativity() { return GetProperty(HalCpuL1Associativity); }
std::wstring Cpu::GetL2Associativity() { return GetProperty(HalCpuL2Associativity); }
std::wstring Cpu::GetL3Associativity() { return GetProperty(HalCpuL3Associativity); }
unsigned long Cpu::GetCpuCurClock() { return GetUlongPropter(HalCpuCurrentClock); }
unsigned long Cpu::GetCpuExtClock() { return GetUlongPropter(HalCpuExternalClock); }
unsigned long Cpu::GetCpuMaxClock() { return GetUlongPropter(HalCpuMaxClock); }
unsigned long Cpu::GetCpuCoreNumbers() { return GetUlongPropter(HalCpuCores); }
unsigned long Cpu::GetCpuCoreThreads() { return GetUlongPropter(HalCpuLogicalProcessors); }
unsigned long Cpu::GetL1CacheSize() { return GetUlongPropter(HalCpuL1CacheSize); }
unsigned long Cpu::GetL2CacheSize() { return GetUlongPropter(HalCpuL2CacheSize); }
unsigned long Cpu::GetL3CacheSize() { return GetUlongPropter(HalCpuL3CacheSize); }
unsigned long Cpu::GetCpuLoadPercent() { return GetUlongPropter(HalCpuLoadPercentage); }
float Cpu::GetCpuUsage() { return 0.0f; }
