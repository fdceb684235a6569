// Physical disks: model, serial, firmware, size, free space, SSD/TRIM and the system disk, from
// the Disk class and device class 5.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace halinfo {

struct DisksSection {
  struct Item {
    uint32_t index = 0;
    std::string model, serial_number, firmware, media_type;
    std::optional<uint64_t> size_mib, size_gb, free_mib;
    std::optional<bool> ssd, trim;
  };
  // "list" when the library listed the disks (HalInit); "probe" when it could not and
  // \\.\PHYSICALDRIVE<n> were opened one by one through class 5.
  std::string source;
  std::optional<uint32_t> system_disk;
  std::vector<Item> items;

  static DisksSection Collect();
  void AddTo(nlohmann::ordered_json& document) const;
  std::string ToText() const;
};

}  // namespace halinfo
