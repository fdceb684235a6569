#include "tools/halinfo/machine_sections.h"

#include "hal/battery.h"
#include "hal/cpu.h"
#include "hal/memory.h"
#include "tools/halinfo/json_util.h"
#include "tools/halinfo/output.h"

namespace halinfo {
namespace {

const char* TypeName(EnmHalCpuType type) {
  switch (type) {
    case HalCpuTypeIntel: return "Intel";
    case HalCpuTypeAmd: return "AMD";
    case HalCpuTypeSnapdragon: return "Snapdragon";
    default: return "unknown";
  }
}

std::string AcLineText(const std::optional<uint32_t>& line) {
  if (!line) return "unknown";
  return *line == 1 ? "online" : *line == 0 ? "offline" : "unknown";
}

}  // namespace

ProcessorSection ProcessorSection::Collect() {
  Cpu cpu;
  ProcessorSection section;
  section.name = ToUtf8(cpu.GetCpuName());
  section.vendor = ToUtf8(cpu.GetCpuManufacturer());
  section.type = TypeName(cpu.GetCputype());
  section.current_mhz = Reported<uint32_t>(cpu.GetCpuCurClock());
  section.max_mhz = Reported<uint32_t>(cpu.GetCpuMaxClock());
  section.external_mhz = Reported<uint32_t>(cpu.GetCpuExtClock());
  section.cores = Reported<uint32_t>(cpu.GetCpuCoreNumbers());
  section.threads = Reported<uint32_t>(cpu.GetCpuCoreThreads());
  section.load_percent = Reported<uint32_t>(cpu.GetCpuLoadPercent());
  section.cache_kib[0] = Reported<uint32_t>(cpu.GetL1CacheSize());
  section.cache_kib[1] = Reported<uint32_t>(cpu.GetL2CacheSize());
  section.cache_kib[2] = Reported<uint32_t>(cpu.GetL3CacheSize());
  section.associativity[0] = ToUtf8(cpu.GetL1Associativity());
  section.associativity[1] = ToUtf8(cpu.GetL2Associativity());
  section.associativity[2] = ToUtf8(cpu.GetL3Associativity());
  return section;
}

void ProcessorSection::AddTo(nlohmann::ordered_json& document) const {
  nlohmann::ordered_json caches = nlohmann::ordered_json::array();
  for (int level = 0; level < 3; ++level) {
    caches.push_back({{"level", level + 1},
                      {"sizeKiB", OrNull(cache_kib[level])},
                      {"associativity", associativity[level]}});
  }
  document["processor"] = {{"name", name},
                           {"vendor", vendor},
                           {"type", type},
                           {"currentClockMHz", OrNull(current_mhz)},
                           {"maxClockMHz", OrNull(max_mhz)},
                           {"externalClockMHz", OrNull(external_mhz)},
                           {"cores", OrNull(cores)},
                           {"logicalProcessors", OrNull(threads)},
                           {"loadPercent", OrNull(load_percent)},
                           {"caches", std::move(caches)}};
}

std::string ProcessorSection::ToText() const {
  std::string text = "\nProcessor\n  " + OrUnknown(name) + "  (vendor " + OrUnknown(vendor) +
                     ", type " + type + ")\n";
  text += "  clock " + OrUnknown(current_mhz, " MHz") + " now, " + OrUnknown(max_mhz, " MHz") +
          " max; " + OrUnknown(cores) + " cores, " + OrUnknown(threads) + " threads; load " +
          OrUnknown(load_percent, " %") + "\n";
  for (int level = 0; level < 3; ++level) {
    text += "  L" + std::to_string(level + 1) + " cache " + OrUnknown(cache_kib[level], " KiB") +
            ", " + associativity[level] + "\n";
  }
  return text;
}

MemorySection MemorySection::Collect() {
  Memory memory;
  MemorySection section;
  uint32_t count = 0;
  if (memory.GetMemoryNums(count)) {
    for (uint32_t i = 0; i < count; ++i) {
      const int index = static_cast<int>(i);
      Module module;
      std::wstring text;
      if (memory.GetLocatorbyIndex(text, index)) module.locator = ToUtf8(text);
      if (memory.GetManufacturerbyIndex(text, index)) module.manufacturer = ToUtf8(text);
      if (memory.GetSerialNumberbyIndex(text, index)) module.serial_number = ToUtf8(text);
      if (memory.GetPartNumberbyIndex(text, index)) module.part_number = ToUtf8(text);
      uint64_t bytes = 0;
      if (memory.GetCapacitybyIndex(bytes, index)) module.capacity_mib = bytes >> 20;
      uint32_t speed = 0;
      if (memory.GetSpeedbyIndex(speed, index)) module.speed = speed;
      section.modules.push_back(std::move(module));
    }
  }
  uint64_t total = 0;
  if (memory.GetTotalMemoryNums(total) && total != 0) section.total_mib = total >> 20;
  section.load_percent = Reported<uint32_t>(static_cast<uint32_t>(memory.GetMemoryLoad()));
  return section;
}

void MemorySection::AddTo(nlohmann::ordered_json& document) const {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const Module& module : modules) {
    list.push_back({{"locator", module.locator},
                    {"manufacturer", module.manufacturer},
                    {"serialNumber", module.serial_number},
                    {"partNumber", module.part_number},
                    {"capacityMiB", OrNull(module.capacity_mib)},
                    {"speedMHz", OrNull(module.speed)}});
  }
  document["memory"] = {{"totalMiB", OrNull(total_mib)},
                        {"loadPercent", OrNull(load_percent)},
                        {"modules", std::move(list)}};
}

std::string MemorySection::ToText() const {
  std::string text = "\nMemory\n  " + OrUnknown(total_mib, " MiB") + " in " +
                     std::to_string(modules.size()) + " module(s), load " +
                     OrUnknown(load_percent, " %") + "\n";
  for (const Module& module : modules) {
    text += "  " + OrUnknown(module.locator) + ": " + OrUnknown(module.capacity_mib, " MiB") +
            ", " + OrUnknown(module.speed, " MHz") + ", maker " + OrUnknown(module.manufacturer) +
            ", part " + OrUnknown(module.part_number) + ", serial " +
            OrUnknown(module.serial_number) + "\n";
  }
  return text;
}

BatterySection BatterySection::Collect() {
  Battery battery;
  BatterySection section;
  section.ac_line = battery.AcLine();
  section.present = battery.CheckBattery();
  if (!section.present) return section;
  section.name = ToUtf8(battery.GetBatteryName());
  section.manufacturer = ToUtf8(battery.GetBatteryManufacturer());
  section.design_mwh = Reported(battery.GetBatteryDesignCapacity());
  section.full_mwh = Reported(battery.GetBatteryFullCapacity());
  section.remaining_mwh = battery.GetBatteryRemainCapacity();
  if (section.full_mwh) section.percent = battery.GetBatteryPercent();
  section.voltage_mv = Reported(battery.GetBatteryVoltage());
  section.charge_mw = battery.GetChargeRate();
  section.discharge_mw = battery.GetDisChargeRate();
  if (section.design_mwh && section.full_mwh) section.wear_percent = battery.GetBattertLoss();
  return section;
}

void BatterySection::AddTo(nlohmann::ordered_json& document) const {
  document["battery"] = {{"present", present},
                         {"acLine", AcLineText(ac_line)},
                         {"name", name},
                         {"manufacturer", manufacturer},
                         {"designCapacityMWh", OrNull(design_mwh)},
                         {"fullChargeCapacityMWh", OrNull(full_mwh)},
                         {"remainingCapacityMWh", OrNull(remaining_mwh)},
                         {"percent", OrNull(percent)},
                         {"voltageMV", OrNull(voltage_mv)},
                         {"chargeRateMW", OrNull(charge_mw)},
                         {"dischargeRateMW", OrNull(discharge_mw)},
                         {"wearPercent", OrNull(wear_percent)}};
}

std::string BatterySection::ToText() const {
  std::string text = "\nBattery\n  AC line " + AcLineText(ac_line) + "\n";
  if (!present) return text + "  no system battery\n";
  text += "  " + OrUnknown(name) + " by " + OrUnknown(manufacturer) + "\n";
  text += "  " + OrUnknown(remaining_mwh, " mWh") + " of " + OrUnknown(full_mwh, " mWh") + " (" +
          OrUnknown(percent, " %") + "), design " + OrUnknown(design_mwh, " mWh") + "\n";
  text += "  " + OrUnknown(voltage_mv, " mV") + ", charging " + OrUnknown(charge_mw, " mW") +
          ", discharging " + OrUnknown(discharge_mw, " mW");
  if (wear_percent) text += ", wear " + std::to_string(*wear_percent).substr(0, 5) + " %";
  return text + "\n";
}

}  // namespace halinfo
