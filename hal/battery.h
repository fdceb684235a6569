// The system battery, through device class 6. Capacities in mWh, voltage in mV, rates in mW.
// A failed or absent reading is 0 (an empty string for texts), except AcLine, which answers
// 255 (unknown) when the power status cannot be read. GetBattertLoss is spelt so in
// the export table; hosts bind that name.
#pragma once

#include <cstdint>
#include <string>

#include "hal/hal_api.h"
#include "hal/velhal_export.h"

// Information classes of BtQueryInformation, as hal_api.h names them.
enum EnumHalBatteryQueryInfo : uint32_t {
  HalBatteryPresent = HAL_BATTERY_INFO_PRESENT,
  HalBatteryManufacturer = HAL_BATTERY_INFO_MANUFACTURER,
  HalBatteryDeviceName = HAL_BATTERY_INFO_DEVICE_NAME,
  HalBatteryRemainingCapacity = HAL_BATTERY_INFO_REMAINING_CAPACITY,
  HalBatteryFullChargeCapacity = HAL_BATTERY_INFO_FULL_CHARGE_CAPACITY,
  HalBatteryDesignCapacity = HAL_BATTERY_INFO_DESIGN_CAPACITY,
  HalBatteryAcLineStatus = HAL_BATTERY_INFO_AC_LINE_STATUS,
  HalBatteryVoltage = HAL_BATTERY_INFO_VOLTAGE,
  HalBatteryLoss = HAL_BATTERY_INFO_LOSS,
  HalBatteryDischargeRate = HAL_BATTERY_INFO_DISCHARGE_RATE,
  HalBatteryChargeRate = HAL_BATTERY_INFO_CHARGE_RATE,
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

};
