#include "components/bios_wmi.h"

#include "components/firmware_provider.h"
#include "components/standard_sensors.h"
#include "platform/boundary.h"

namespace velhal {
namespace {

// No maker's interface: every question falls to the standard sources, or stays unanswered.
class NoMakerFirmware final : public FirmwareProvider {
 public:
  DWORD SetChargeThreshold(unsigned char, unsigned char) override { return ERROR_NOT_SUPPORTED; }
  DWORD GetChargeThreshold(unsigned char&, unsigned char&) override { return ERROR_NOT_SUPPORTED; }
};

// The maker's interface first; what it does not have, the standard source.
template <class Maker, class Standard>
int Answer(Maker&& maker, Standard&& standard) {
  return CallGuarded(static_cast<int>(ERROR_NOT_ENOUGH_MEMORY), [&] {
    const DWORD result = maker(firmware_provider());
    return static_cast<int>(result == ERROR_NOT_SUPPORTED ? standard() : result);
  });
}

DWORD NotSupported() { return ERROR_NOT_SUPPORTED; }

}  // namespace

FirmwareProvider& FirmwareProvider::Real() noexcept {
  static NoMakerFirmware provider;
  return provider;
}

}  // namespace velhal

namespace VelSDK {

int BiosWmi::GetFanSpeed(int& rpm, FanSpeedLocateNumber locate) {
  return velhal::Answer([&](auto& maker) { return maker.GetFanSpeed(rpm, locate); },
                        [&] { return velhal::sensors::FanRpm(locate, rpm); });
}

int BiosWmi::GetSensorTemperature(int& celsius, QuerySensorTemperatureIndex index) {
  return velhal::Answer([&](auto& maker) { return maker.GetSensorTemperature(celsius, index); },
                        [&] { return velhal::sensors::ThermalZoneCelsius(index, celsius); });
}

int BiosWmi::GetVoltageOrCurrent(int& value, VoltageCurrentLocateNumber locate) {
  if (locate > 0x3F) return ERROR_INVALID_PARAMETER;
  // USB ports (0x0n, 0x1n) have no standard source; batteries (0x2n, 0x3n) have their driver.
  const auto standard = [&] {
    if (locate < VoltageLocateBattery0) return velhal::NotSupported();
    return velhal::sensors::BatteryVoltageOrCurrent(locate & 0x0F, locate >= CurrentLocateBattery0,
                                                    value);
  };
  return velhal::Answer([&](auto& maker) { return maker.GetVoltageOrCurrent(value, locate); },
                        standard);
}

int BiosWmi::GetDeviceBiosSwitchStatus(DeviceBiosSwitchNumber number, bool& status) {
  return velhal::Answer(
      [&](auto& maker) { return maker.GetDeviceBiosSwitchStatus(number, status); },
      velhal::NotSupported);
}

int BiosWmi::SetBatteryChargeThreshlod(unsigned char first, unsigned char second) {
  return velhal::Answer([&](auto& maker) { return maker.SetChargeThreshold(first, second); },
                        velhal::NotSupported);
}

int BiosWmi::GetBatteryChargeThreshold(unsigned char& first, unsigned char& second) {
  return velhal::Answer([&](auto& maker) { return maker.GetChargeThreshold(first, second); },
                        velhal::NotSupported);
}

}  // namespace VelSDK
