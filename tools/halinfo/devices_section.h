// The devices of this machine, grouped by setup class: first hardware ID and description of
// every present device, as DeviceInformention reports them.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace halinfo {

struct DevicesSection {
  struct Device {
    std::string hardware_id;
    std::string description;
  };
  struct SetupClass {
    std::string name;
    std::string guid;
    std::vector<Device> devices;
  };
  std::vector<SetupClass> classes;  // only classes with at least one present device

  static DevicesSection Collect();
  void AddTo(nlohmann::ordered_json& document) const;
  std::string ToText() const;
};

}  // namespace halinfo
