#include "tools/halinfo/disks_section.h"

#include <array>

#include "hal/disk.h"
#include "hal/hal_api.h"
#include "tools/halinfo/json_util.h"
#include "tools/halinfo/output.h"

namespace halinfo {
namespace {

constexpr uint32_t kProbeLimit = 16;

template <class T>
std::optional<T> QueryNumber(HalDeviceEntry* entry, uint32_t info_class) {
  T value{};
  uint32_t returned = 0;
  if (!HalQueryInformation(HAL_CLASS_DISK, entry, info_class, &value, sizeof(T), &returned)) {
    return std::nullopt;
  }
  return value;
}

std::string QueryText(HalDeviceEntry* entry, uint32_t info_class) {
  std::array<wchar_t, 512> text{};
  uint32_t returned = 0;
  if (!HalQueryInformation(HAL_CLASS_DISK, entry, info_class, text.data(),
                           static_cast<uint32_t>(text.size() * sizeof(wchar_t)), &returned)) {
    return {};
  }
  return ToUtf8(std::wstring_view(text.data(), returned / sizeof(wchar_t)));
}

// Trims the blanks WMI pads serial numbers and models with.
std::string Trimmed(std::string text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void FromDiskClass(Disk& disks, int count, DisksSection& section) {
  for (int i = 0; i < count; ++i) {
    DisksSection::Item item;
    item.index = static_cast<uint32_t>(i);
    item.model = Trimmed(ToUtf8(disks.GetCaption(i)));
    item.serial_number = Trimmed(ToUtf8(disks.GetSerialNumber(i)));
    item.firmware = Trimmed(ToUtf8(disks.GetFirmwareRevision(i)));
    item.media_type = ToUtf8(disks.GetMediaType(i));
    item.size_mib = Reported(disks.GetTotalCapacity(i));
    item.size_gb = Reported(disks.GetTotalVendorCapacity(i));
    item.free_mib = disks.GetRemainCapacity(i);
    bool ssd = false;
    if (disks.JudgeSSd(i, ssd)) item.ssd = ssd;
    section.items.push_back(std::move(item));
  }
}

// Without a list, opens the drives one by one through class 5 until one does not open.
void ByProbing(DisksSection& section) {
  for (uint32_t n = 0; n < kProbeLimit; ++n) {
    HalDeviceEntry entry{nullptr, n, 0};
    if (!HalOpenDevice(HAL_CLASS_DISK, &entry)) break;
    DisksSection::Item item;
    item.index = n;
    item.model = Trimmed(QueryText(&entry, 1));
    item.serial_number = Trimmed(QueryText(&entry, 2));
    item.firmware = Trimmed(QueryText(&entry, 9));
    item.media_type = QueryText(&entry, 0);
    item.size_mib = QueryNumber<uint64_t>(&entry, 3);
    item.size_gb = QueryNumber<uint64_t>(&entry, 5);
    item.free_mib = QueryNumber<uint64_t>(&entry, 4);
    if (const auto trim = QueryNumber<uint32_t>(&entry, 10)) item.trim = *trim == 1;
    HalCloseDevice(HAL_CLASS_DISK, &entry);
    section.items.push_back(std::move(item));
  }
}

std::string YesNo(const std::optional<bool>& value) {
  return value ? (*value ? "yes" : "no") : "unknown";
}

}  // namespace

DisksSection DisksSection::Collect() {
  DisksSection section;
  Disk disks;
  const int count = disks.GetPhysicDiskNumbers();
  if (count > 0) {
    section.source = "list";
    FromDiskClass(disks, count, section);
  } else {
    section.source = "probe";
    ByProbing(section);
  }
  uint32_t system_disk = 0;
  if (disks.GetSystemDiskIndex(system_disk)) section.system_disk = system_disk;
  return section;
}

void DisksSection::AddTo(nlohmann::ordered_json& document) const {
  nlohmann::ordered_json items_json = nlohmann::ordered_json::array();
  for (const Item& item : items) {
    items_json.push_back({{"index", item.index},
                          {"model", item.model},
                          {"serialNumber", item.serial_number},
                          {"firmware", item.firmware},
                          {"sizeMiB", OrNull(item.size_mib)},
                          {"sizeGB", OrNull(item.size_gb)},
                          {"freeMiB", OrNull(item.free_mib)},
                          {"mediaType", item.media_type},
                          {"ssd", OrNull(item.ssd)},
                          {"trim", OrNull(item.trim)},
                          {"systemDisk", system_disk && *system_disk == item.index}});
  }
  document["disks"] = {{"source", source},
                       {"systemDisk", OrNull(system_disk)},
                       {"items", std::move(items_json)}};
}

std::string DisksSection::ToText() const {
  std::string text = "\nDisks\n";
  if (source == "probe") {
    text += "  (no disk list from the system's WMI; drives opened one by one)\n";
  }
  if (items.empty()) text += "  none found\n";
  for (const Item& item : items) {
    text += "  Disk " + std::to_string(item.index) + ": " +
            (item.model.empty() ? "(model unknown)" : item.model);
    if (system_disk && *system_disk == item.index) text += "  [system disk]";
    text += "\n    serial " + OrUnknown(item.serial_number) + ", firmware " +
            OrUnknown(item.firmware) + "\n";
    text += "    size " + OrUnknown(item.size_mib) + " MiB (" + OrUnknown(item.size_gb) +
            " GB), free " + OrUnknown(item.free_mib) + " MiB\n";
    text += "    media " + OrUnknown(item.media_type) + ", SSD " +
            YesNo(item.ssd) + ", TRIM " + YesNo(item.trim) + "\n";
  }
  return text;
}

}  // namespace halinfo
