#include "hal/battery.h"

#include <array>

#include "components/bios_wmi.h"
#include "hal/hal_api.h"
#include "platform/boundary.h"
#include "platform/string_conversion.h"

using velhal::CallGuarded;

namespace {

constexpr uint32_t kAcUnknown = 255;

uint32_t Number(EnumHalBatteryQueryInfo infoClass, uint32_t failed = 0) {
  return CallGuarded(failed, [&] {
    uint32_t value = 0;
    uint32_t returned = 0;
    return BtQueryInformation(infoClass, &value, sizeof(value), &returned) ? value : failed;
  });
}

}  // namespace

bool Battery::Init() { return BtInit() == 1; }
bool Battery::CheckBattery() { return Number(HalBatteryPresent) == 1; }
uint32_t Battery::AcLine() { return Number(HalBatteryAcLineStatus, kAcUnknown); }
uint32_t Battery::GetBatteryDesignCapacity() { return Number(HalBatteryDesignCapacity); }
uint32_t Battery::GetBatteryFullCapacity() { return Number(HalBatteryFullChargeCapacity); }
uint32_t Battery::GetBatteryRemainCapacity() { return Number(HalBatteryRemainingCapacity); }
uint32_t Battery::GetBatteryVoltage() { return Number(HalBatteryVoltage); }
uint32_t Battery::GetChargeRate() { return Number(HalBatteryChargeRate); }
uint32_t Battery::GetDisChargeRate() { return Number(HalBatteryDischargeRate); }

float Battery::GetBattertLoss() { return static_cast<float>(Number(HalBatteryLoss)) / 100.0f; }

uint32_t Battery::GetBatteryPercent() {
  return CallGuarded(0u, [&]() -> uint32_t {
    const uint64_t full = GetBatteryFullCapacity();
    const uint64_t remaining = GetBatteryRemainCapacity();
    if (full == 0) return 0;
    const uint64_t percent = (remaining * 100 + full / 2) / full;
    return static_cast<uint32_t>(percent > 100 ? 100 : percent);
  });
}

std::wstring Battery::GetBatteryName() { return GetProperty(HalBatteryDeviceName); }
std::wstring Battery::GetBatteryManufacturer() { return GetProperty(HalBatteryManufacturer); }

bool Battery::GetChargeThreshold(StBatteryChangeThresholdLimit& limit) {
  return CallGuarded(false, [&] {
    unsigned char first = 0, second = 0;
    if (VelSDK::BiosWmi::GetBatteryChargeThreshold(first, second) != 0) return false;
    limit.first = first;
    limit.second = second;
    return true;
  });
}

bool Battery::SetChargeThreshold(StBatteryChangeThresholdLimit& limit) {
  return CallGuarded(false, [&] {
    unsigned char bytes[2] = {limit.first, limit.second};
    uint32_t returned = 0;
    return BtSetInformation(HAL_BATTERY_SET_CHARGE_THRESHOLD, bytes, sizeof(bytes), &returned) == 1;
  });
}

std::wstring Battery::GetProperty(EnumHalBatteryQueryInfo infoClass) {
  return CallGuarded(std::wstring{}, [&]() -> std::wstring {
    if (infoClass == HalBatteryManufacturer || infoClass == HalBatteryDeviceName) {
      std::array<char, 260> text{};
      uint32_t returned = 0;
      if (!BtQueryInformation(infoClass, text.data(), static_cast<uint32_t>(text.size()),
                              &returned)) {
        return {};
      }
      return AnsiToWide(std::string(text.data(), returned));
    }
    uint32_t value = 0;
    uint32_t returned = 0;
    if (!BtQueryInformation(infoClass, &value, sizeof(value), &returned)) return {};
    return std::to_wstring(value);
  });
}
