// The processor, through device class 0. Clock speeds are in MHz and cache sizes in KiB, as WMI
// gives them. A failed reading is 0 or an empty string. GetUlongPropter is spelt so in the
// export table; hosts bind that name.
#pragma once

#include <cstdint>
#include <string>

#include "hal/velhal_export.h"

enum EnmHalCpuType : uint32_t {
  HalCpuTypeUnknown = 0,
  HalCpuTypeIntel = 1,
  HalCpuTypeAmd = 2,
  HalCpuTypeSnapdragon = 3,
};

// Information classes of CpuQueryInformation: 0-4 texts, 6-18 numbers; 5, 15, 16 unanswered.
enum EnumHalCpuQueryInformation : uint32_t {
  HalCpuVendor = 0,
  HalCpuName = 1,
  HalCpuL1Associativity = 2,
  HalCpuL2Associativity = 3,
  HalCpuL3Associativity = 4,
  HalCpuExtendedLeafProbe = 6,
  HalCpuCurrentClock = 7,
  HalCpuExternalClock = 8,
  HalCpuMaxClock = 9,
  HalCpuCores = 10,
  HalCpuLogicalProcessors = 11,
  HalCpuL1CacheSize = 12,
  HalCpuL2CacheSize = 13,
  HalCpuL3CacheSize = 14,
  HalCpuLoadPercentage = 17,
  HalCpuType = 18,
};

class VELHAL_API Cpu {
 public:
  Cpu();

  void Init();  // detects the processor type
  EnmHalCpuType GetCputype();
  std::wstring GetProperty(EnumHalCpuQueryInformation infoClass);
  unsigned long GetUlongPropter(EnumHalCpuQueryInformation infoClass);

  std::wstring GetCpuManufacturer();
  std::wstring GetCpuName();
  std::wstring GetL1Associativity();
  std::wstring GetL2Associativity();
  std::wstring GetL3Associativity();
  unsigned long GetCpuCurClock();
  unsigned long GetCpuExtClock();
  unsigned long GetCpuMaxClock();
  unsigned long GetCpuCoreNumbers();
  unsigned long GetCpuCoreThreads();
  unsigned long GetL1CacheSize();
  unsigned long GetL2CacheSize();
  unsigned long GetL3CacheSize();
  unsigned long GetCpuLoadPercent();  // 0 also when the processor is idle
  float GetCpuUsage();                // not measured: always 0.0

 private:
  void EnsureDetected();

  bool initialized_;
};
