// Firmware-side readings: thermal zones, fans, battery voltage and current, and the firmware-
// setup switches, through VelSDK::BiosWmi and BiosFun. A reading the machine has no source for
// is null in JSON and reads "not available" in plain text.
#include "platform/win32.h"

#include <string>
#include <vector>

#include "components/bios_fun.h"
#include "components/bios_wmi.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

constexpr uint32_t kZoneLimit = 16;

Node NotAvailable(std::string key, std::string label, int result) {
  return Shown(Leaf(std::move(key), std::move(label), nullptr),
               result == ERROR_NOT_SUPPORTED ? "not available" : "error " + std::to_string(result));
}

Node Reading(std::string key, std::string label, int result, int value, std::string unit) {
  if (result != 0) return NotAvailable(std::move(key), std::move(label), result);
  return Number(std::move(key), std::move(label), value, std::move(unit));
}

// Zone after zone until the first one the machine does not have.
Node Temperatures() {
  std::vector<Node> zones;
  for (uint32_t n = 0; n < kZoneLimit; ++n) {
    int celsius = 0;
    if (VelSDK::BiosWmi::GetSensorTemperature(
            celsius, static_cast<QuerySensorTemperatureIndex>(n)) != 0) {
      break;
    }
    zones.push_back(Number("zone" + std::to_string(n), "zone " + std::to_string(n), celsius, "C"));
  }
  // No zone: an empty object, "none" in plain text.
  return Object("temperaturesC", "temperatures", std::move(zones));
}

Node Fans() {
  std::vector<Node> fans;
  for (FanSpeedLocateNumber fan : {FanSpeedLocateFan0, FanSpeedLocateFan1}) {
    int rpm = 0;
    const int result = VelSDK::BiosWmi::GetFanSpeed(rpm, fan);
    const std::string n = std::to_string(fan);
    fans.push_back(Reading("fan" + n + "Rpm", "fan " + n, result, rpm, "RPM"));
  }
  return Object("fans", "fans", std::move(fans));
}

Node Battery(uint32_t n) {
  const auto voltage = static_cast<VoltageCurrentLocateNumber>(VoltageLocateBattery0 + n);
  const auto current = static_cast<VoltageCurrentLocateNumber>(CurrentLocateBattery0 + n);
  int mv = 0, ma = 0;
  const int voltage_result = VelSDK::BiosWmi::GetVoltageOrCurrent(mv, voltage);
  const int current_result = VelSDK::BiosWmi::GetVoltageOrCurrent(ma, current);
  return Object("battery" + std::to_string(n), "battery " + std::to_string(n),
                {Reading("voltageMV", "voltage", voltage_result, mv, "mV"),
                 Reading("currentMA", "current", current_result, ma, "mA")});
}

Node Switches() {
  struct Row {
    const char* key;
    const char* label;
    DeviceDriverType type;
  };
  constexpr Row kRows[] = {{"wirelessNetwork", "wireless network", DriverType_WirelessNetwork},
                           {"bluetooth", "Bluetooth", DriverType_Bluetooth},
                           {"biometric", "biometric", DriverType_Biometric},
                           {"audio", "audio", DriverType_Audio}};
  BiosFun bios;
  std::vector<Node> switches;
  for (const Row& row : kRows) {
    bool on = false;
    switches.push_back(bios.GetBiosSwitch(on, row.type)
                           ? Flag(row.key, row.label, on)
                           : NotAvailable(row.key, row.label, ERROR_NOT_SUPPORTED));
  }
  return Object("biosSwitches", "BIOS switches (on)", std::move(switches));
}

}  // namespace

Node SensorsSection() {
  return Object("sensors", "Sensors",
                {Temperatures(), Fans(), Object("batteries", "batteries", {Battery(0), Battery(1)}),
                 Switches()});
}

}  // namespace halinfo
