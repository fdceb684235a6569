// The processor, through device class 0. Clock speeds are in MHz and cache sizes in KiB, as WMI
// gives them. A failed reading is 0 or an empty string. GetUlongPropter is spelt so in the
// export table; hosts bind that name.
#pragma once

#include <cstdint>
#include <string>

#include "hal/hal_api.h"
#include "hal/velhal_export.h"

enum EnmHalCpuType : uint32_t {
  HalCpuTypeUnknown = 0,
  HalCpuTypeIntel = 1,
  HalCpuTypeAmd = 2,
  HalCpuTypeSnapdragon = 3,
};

// Information classes of CpuQueryInformation (hal_api.h names each number): 0-4 texts, 6-18
// numbers; 5, 15, 16 unanswered.
enum EnumHalCpuQueryInformation : uint32_t {
  HalCpuVendor = HAL_CPU_INFO_VENDOR,
  HalCpuName = HAL_CPU_INFO_NAME,
  HalCpuL1Associativity = HAL_CPU_INFO_L1_ASSOCIATIVITY,
  HalCpuL2Associativity = HAL_CPU_INFO_L2_ASSOCIATIVITY,
  HalCpuL3Associativity = HAL_CPU_INFO_L3_ASSOCIATIVITY,
  HalCpuExtendedLeafProbe = HAL_CPU_INFO_EXTENDED_LEAF_PROBE,
  HalCpuCurrentClock = HAL_CPU_INFO_CURRENT_CLOCK,
  HalCpuExternalClock = HAL_CPU_INFO_EXTERNAL_CLOCK,
  HalCpuMaxClock = HAL_CPU_INFO_MAX_CLOCK,
  HalCpuCores = HAL_CPU_INFO_CORES,
  HalCpuLogicalProcessors = HAL_CPU_INFO_LOGICAL_PROCESSORS,
  HalCpuL1CacheSize = HAL_CPU_INFO_L1_CACHE_SIZE,
  HalCpuL2CacheSize = HAL_CPU_INFO_L2_CACHE_SIZE,
  HalCpuL3CacheSize = HAL_CPU_INFO_L3_CACHE_SIZE,
  HalCpuLoadPercentage = HAL_CPU_INFO_LOAD_PERCENTAGE,
  HalCpuType = HAL_CPU_INFO_TYPE,
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
  bool initialized_;  // the processor type detected for this object
};
