// The system battery and the AC line, through the Battery class.
#include <optional>
#include <string>

#include "hal/battery.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

const char* AcLineText(uint32_t line) {
  return line == 1 ? "online" : line == 0 ? "offline" : "unknown";
}

// Without a battery every reading stays unknown.
struct Readings {
  std::string name, manufacturer;
  std::optional<uint32_t> design_mwh, full_mwh, remaining_mwh, percent, voltage_mv;
  std::optional<uint32_t> charge_mw, discharge_mw;
  std::optional<float> wear_percent;
};

Readings Read(Battery& battery) {
  Readings r;
  r.name = ToUtf8(battery.GetBatteryName());
  r.manufacturer = ToUtf8(battery.GetBatteryManufacturer());
  r.design_mwh = Reported(battery.GetBatteryDesignCapacity());
  r.full_mwh = Reported(battery.GetBatteryFullCapacity());
  r.remaining_mwh = battery.GetBatteryRemainCapacity();
  // A percentage and a wear need the capacities they are taken of.
  if (r.full_mwh) r.percent = battery.GetBatteryPercent();
  r.voltage_mv = Reported(battery.GetBatteryVoltage());
  r.charge_mw = battery.GetChargeRate();
  r.discharge_mw = battery.GetDisChargeRate();
  if (r.design_mwh && r.full_mwh) r.wear_percent = battery.GetBattertLoss();
  return r;
}

}  // namespace

Node BatterySection() {
  Battery battery;
  const uint32_t ac_line = battery.AcLine();
  const bool present = battery.CheckBattery();
  const Readings r = present ? Read(battery) : Readings();
  return Object("battery", "Battery",
                {Flag("present", "present", present),
                 Text("acLine", "AC line", AcLineText(ac_line)),
                 Text("name", "name", r.name),
                 Text("manufacturer", "manufacturer", r.manufacturer),
                 Number("designCapacityMWh", "design capacity", r.design_mwh, "mWh"),
                 Number("fullChargeCapacityMWh", "full charge capacity", r.full_mwh, "mWh"),
                 Number("remainingCapacityMWh", "remaining capacity", r.remaining_mwh, "mWh"),
                 Number("percent", "charge", r.percent, "%"),
                 Number("voltageMV", "voltage", r.voltage_mv, "mV"),
                 Number("chargeRateMW", "charge rate", r.charge_mw, "mW"),
                 Number("dischargeRateMW", "discharge rate", r.discharge_mw, "mW"),
                 Number("wearPercent", "wear", r.wear_percent, "%")});
}

}  // namespace halinfo
