// The system battery, through device class 6. Capacities in mWh, voltage in mV, rates in mW.
// A failed or absent reading is 0 (an empty string for texts), except AcLine, which answers
// 255 (unknown) when the power status cannot be read. GetBattertLoss is spelt so in
// the export table; hosts bind that name.
#pragma once

#include <cstdint>
#include <string>

#include "hal/velhal_export.h"

// Information classes of BtQueryInformation.
enum EnumHalBatteryQueryInfo : uint32_t {
  HalBatteryPresent = 0,
  HalBatteryManufacturer = 1,
  HalBatteryDeviceName = 2,
  HalBatteryRemainingCapacity = 3,
  HalBatteryFullChargeCapacity = 4,
  HalBatteryDesignCapacity = 5,
  HalBatteryAcLineStatus = 6,
  HalBatteryVoltage = 7,
  HalBatteryLoss = 8,
  HalBatteryDischargeRate = 9,
  HalBatteryChargeRate = 10,
};

// The firmware's charge thresholds: two bytes handed over first, then second.
struct StBatteryChangeThresholdLimit {
  unsigned char first;
  unsigned char second;
};

class VELHAL_API Battery {
 public:
  bool Init();
  bool CheckBattery();              // a system battery is present
  uint32_t AcLine();                // 0 offline, 1 online, 255 unknown or unreadable
  std::wstring GetBatteryName();
  std::wstring GetBatteryManufacturer();
  uint32_t GetBatteryDesignCapacity();
  uint32_t GetBatteryFullCapacity();
  uint32_t GetBatteryRemainCapacity();
  uint32_t GetBatteryVoltage();
  float GetBattertLoss();           // wear in percent of the design capacity, e.g. 10.25
  uint32_t GetBatteryPercent();     // remaining / full-charge capacity, rounded, 0 to 100
  uint32_t GetChargeRate();         // 0 unless charging on AC
  uint32_t GetDisChargeRate();      // 0 unless running on the battery
  // Through the maker's firmware interface; false where none is present.
  bool GetChargeThreshold(StBatteryChangeThresholdLimit& limit);
  bool SetChargeThreshold(StBatteryChangeThresholdLimit& limit);
  // Any class as text: numbers in decimal, names as they are; empty on failure.
  std::wstring GetProperty(EnumHalBatteryQueryInfo infoClass);

 private:
  uint32_t Number(EnumHalBatteryQueryInfo infoClass, uint32_t failed = 0);
};
