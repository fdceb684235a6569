// Processor, memory and battery, through the Cpu, Memory and Battery classes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace halinfo {

struct ProcessorSection {
  std::string name, vendor, type;
  std::optional<uint32_t> current_mhz, max_mhz, external_mhz, cores, threads, load_percent;
  std::optional<uint32_t> cache_kib[3];
  std::string associativity[3];

  static ProcessorSection Collect();
  void AddTo(nlohmann::ordered_json& document) const;
  std::string ToText() const;
};

struct MemorySection {
  struct Module {
    std::string locator, manufacturer, serial_number, part_number;
    std::optional<uint64_t> capacity_mib;
    std::optional<uint32_t> speed;
  };
  std::vector<Module> modules;
  std::optional<uint64_t> total_mib;
  std::optional<uint32_t> load_percent;

  static MemorySection Collect();
  void AddTo(nlohmann::ordered_json& document) const;
  std::string ToText() const;
};

struct BatterySection {
  bool present = false;
  std::optional<uint32_t> ac_line;  // 0 offline, 1 online, 255 unknown
  std::string name, manufacturer;
  std::optional<uint32_t> design_mwh, full_mwh, remaining_mwh, percent, voltage_mv;
  std::optional<uint32_t> charge_mw, discharge_mw;
  std::optional<float> wear_percent;

  static BatterySection Collect();
  void AddTo(nlohmann::ordered_json& document) const;
  std::string ToText() const;
};

}  // namespace halinfo
