#include "platform/win32.h"

#include "hal/battery_module.h"

#include <optional>
#include <string>

#include "components/bios_wmi.h"
#include "hal/battery_driver.h"
#include "hal/hal_api.h"
#include "hal/query_output.h"
#include "platform/boundary.h"
#include "platform/os/power.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace velhal::hal {
namespace {

using wmi::kRootWmi;
constexpr int kPowerStatusAttempts = 3;
constexpr int kBatteryStateAttempts = 4;
constexpr BYTE kNoSystemBattery = 128;
constexpr BYTE kUnknownBattery = 255;

std::optional<SYSTEM_POWER_STATUS> PowerStatus() {
  SYSTEM_POWER_STATUS status{};
  for (int attempt = 0; attempt < kPowerStatusAttempts; ++attempt) {
    if (os::power().GetSystemPowerStatus(&status) == TRUE) return status;
  }
  return std::nullopt;
}

bool BatteryPresent() {
  const auto status = PowerStatus();
  return status && status->BatteryFlag != kNoSystemBattery &&
         status->BatteryFlag != kUnknownBattery;
}

std::optional<SYSTEM_BATTERY_STATE> BatteryState() {
  SYSTEM_BATTERY_STATE state{};
  for (int attempt = 0; attempt < kBatteryStateAttempts; ++attempt) {
    if (os::power().CallNtPowerInformation(SystemBatteryState, nullptr, 0, &state, sizeof(state)) ==
        0) {
      return state;
    }
  }
  return std::nullopt;
}

// The name as the first source that answers gives it, empty included; nullopt when none does.
std::optional<std::wstring> Name(uint32_t info_class) {
  std::wstring name;
  if (info_class == HAL_BATTERY_INFO_MANUFACTURER) {
    // The manufacturer falls back to WMI only when the driver read fails.
    if (auto driver = ReadBatteryDriverName(BatteryManufactureName)) return driver;
    if (WmiQueryFirstString(kRootWmi, L"SELECT ManufactureName FROM BatteryStaticData",
                            L"ManufactureName", name)) {
      return name;
    }
    return std::nullopt;
  }
  // The device name also when the driver gives an empty one.
  auto driver = ReadBatteryDriverName(BatteryDeviceName);
  if (driver && !driver->empty()) return driver;
  if (WmiQueryFirstString(kRootWmi, L"SELECT DeviceName FROM BatteryStaticData", L"DeviceName",
                          name)) {
    return name;
  }
  return driver;
}

std::optional<uint32_t> DesignCapacity() {
  unsigned int design = 0;
  if (const auto driver = ReadBatteryDriver()) {
    design = driver->information.DesignedCapacity;
  } else if (!WmiQueryFirstUInt(kRootWmi, L"SELECT DesignedCapacity FROM BatteryStaticData",
                                L"DesignedCapacity", &design)) {
    return std::nullopt;
  }
  if (design == 0 || design == 0xFFFFFFFF) return std::nullopt;
  return design;
}

std::optional<uint32_t> Voltage() {
  unsigned int voltage = 0;
  if (const auto driver = ReadBatteryDriver()) {
    voltage = driver->status.Voltage;
  } else if (!WmiQueryFirstUInt(kRootWmi, L"SELECT Voltage FROM BatteryStatus", L"Voltage",
                                &voltage)) {
    return std::nullopt;
  }
  return voltage != 0 ? std::optional(voltage) : std::nullopt;
}

// Wear in hundredths of a percent. A battery holding more than its design is a failure, not 0.
std::optional<uint32_t> Loss() {
  // The presence test is made twice, as the loss reading always has; callers rely on it.
  if (!BatteryPresent() || !BatteryPresent()) return std::nullopt;
  const auto state = BatteryState();
  if (!state) return std::nullopt;
  const auto design = DesignCapacity();
  if (!design || *design <= state->MaxCapacity) return std::nullopt;
  return static_cast<uint32_t>(uint64_t{*design - state->MaxCapacity} * 10000 / *design);
}

std::optional<uint32_t> Number(uint32_t info_class) {
  switch (info_class) {
    case HAL_BATTERY_INFO_PRESENT: return BatteryPresent() ? std::optional(1u) : std::nullopt;
    case HAL_BATTERY_INFO_REMAINING_CAPACITY:
    case HAL_BATTERY_INFO_FULL_CHARGE_CAPACITY: {
      if (!BatteryPresent()) return std::nullopt;
      const auto state = BatteryState();
      if (!state) return std::nullopt;
      return info_class == HAL_BATTERY_INFO_REMAINING_CAPACITY ? state->RemainingCapacity
                                                               : state->MaxCapacity;
    }
    case HAL_BATTERY_INFO_DESIGN_CAPACITY:
      return BatteryPresent() ? DesignCapacity() : std::nullopt;
    case HAL_BATTERY_INFO_AC_LINE_STATUS: {
      const auto status = PowerStatus();
      if (!status) return std::nullopt;
      return status->ACLineStatus;
    }
    case HAL_BATTERY_INFO_VOLTAGE: return BatteryPresent() ? Voltage() : std::nullopt;
    case HAL_BATTERY_INFO_LOSS: return Loss();
    case HAL_BATTERY_INFO_DISCHARGE_RATE: {
      const auto state = BatteryState();
      const auto rate = state ? static_cast<int32_t>(state->Rate) : 0;
      if (!state || state->AcOnLine != 0 || rate >= 0) return std::nullopt;
      return static_cast<uint32_t>(-static_cast<int64_t>(rate));
    }
    case HAL_BATTERY_INFO_CHARGE_RATE: {
      const auto state = BatteryState();
      const auto rate = state ? static_cast<int32_t>(state->Rate) : 0;
      if (!state || state->AcOnLine != 1 || rate < 1) return std::nullopt;
      return static_cast<uint32_t>(rate);
    }
    default: return std::nullopt;
  }
}

uint32_t InitBattery(void* /*list*/) { return BtInit(); }

uint32_t Query(void* /*entry*/, uint32_t info_class, void* buffer, uint32_t buffer_size,
               uint32_t* returned) {
  return BtQueryInformation(info_class, buffer, buffer_size, returned);
}

uint32_t Set(void* /*entry*/, uint32_t info_class, void* buffer, uint32_t buffer_size,
             uint32_t* returned) {
  return BtSetInformation(info_class, buffer, buffer_size, returned);
}

}  // namespace

const ClassModule& BatteryModule() {
  static constexpr ClassModule kModule{
      .init_makes_list = false, .init = InitBattery, .query = Query, .set = Set};
  return kModule;
}

}  // namespace velhal::hal

uint32_t BtInit() { return 1; }

uint32_t BtQueryInformation(uint32_t infoClass, void* buffer, uint32_t bufferSize,
                            uint32_t* returnedSize) {
  using namespace velhal::hal;
  return velhal::CallGuarded(0u, [&]() -> uint32_t {
    if (infoClass > HAL_BATTERY_INFO_CHARGE_RATE || buffer == nullptr || returnedSize == nullptr)
      return 0;
    if (infoClass == HAL_BATTERY_INFO_MANUFACTURER || infoClass == HAL_BATTERY_INFO_DEVICE_NAME) {
      const std::optional<std::wstring> name = Name(infoClass);
      return name ? WriteText(buffer, bufferSize, returnedSize, *name, TextForm::kAnsiWithNul,
                              EmptyText::kIsAnswer)
                  : 0;
    }
    if (bufferSize < 4) return 0;
    const std::optional<uint32_t> value = Number(infoClass);
    return value ? WriteNumber(buffer, bufferSize, returnedSize, *value) : 0;
  });
}

uint32_t BtSetInformation(uint32_t infoClass, void* buffer, uint32_t /*bufferSize*/,
                          uint32_t* returnedSize) {
  using namespace velhal::hal;
  return velhal::CallGuarded(0u, [&]() -> uint32_t {
    if (infoClass != HAL_BATTERY_SET_CHARGE_THRESHOLD || buffer == nullptr ||
        returnedSize == nullptr)
      return 0;
    const auto* bytes = static_cast<const unsigned char*>(buffer);
    if (VelSDK::BiosWmi::SetBatteryChargeThreshlod(bytes[0], bytes[1]) != 0) return 0;
    *returnedSize = 2;
    return 1;
  });
}
