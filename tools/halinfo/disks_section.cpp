// Physical disks: model, serial, firmware, size, free space, SSD/TRIM and the system disk, from
// the Disk class or, when it lists none, from device class 5 drive by drive.
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "hal/disk.h"
#include "hal/hal_api.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

constexpr uint32_t kProbeLimit = 16;

struct Item {
  uint32_t index = 0;
  std::string model, serial_number, firmware, media_type;
  std::optional<uint64_t> size_mib, size_gb, free_mib;
  std::optional<bool> ssd, trim;
};

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

std::vector<Item> FromDiskClass(Disk& disks, int count) {
  std::vector<Item> items;
  for (int i = 0; i < count; ++i) {
    Item item;
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
    items.push_back(std::move(item));
  }
  return items;
}

// Without a list, opens the drives one by one through class 5 until one does not open.
std::vector<Item> ByProbing() {
  std::vector<Item> items;
  for (uint32_t n = 0; n < kProbeLimit; ++n) {
    HalDeviceEntry entry{nullptr, n, 0};
    if (!HalOpenDevice(HAL_CLASS_DISK, &entry)) break;
    Item item;
    item.index = n;
    item.model = Trimmed(QueryText(&entry, HAL_DISK_INFO_CAPTION));
    item.serial_number = Trimmed(QueryText(&entry, HAL_DISK_INFO_SERIAL_NUMBER));
    item.firmware = Trimmed(QueryText(&entry, HAL_DISK_INFO_FIRMWARE_REVISION));
    item.media_type = QueryText(&entry, HAL_DISK_INFO_MEDIA_TYPE_TEXT);
    item.size_mib = QueryNumber<uint64_t>(&entry, HAL_DISK_INFO_SIZE_MIB);
    item.size_gb = QueryNumber<uint64_t>(&entry, HAL_DISK_INFO_SIZE_DECIMAL_GB);
    item.free_mib = QueryNumber<uint64_t>(&entry, HAL_DISK_INFO_FREE_MIB);
    const auto trim = QueryNumber<uint32_t>(&entry, HAL_DISK_INFO_TRIM_ENABLED);
    if (trim) item.trim = *trim == 1;
    HalCloseDevice(HAL_CLASS_DISK, &entry);
    items.push_back(std::move(item));
  }
  return items;
}

Node ItemNode(const Item& item, bool system_disk) {
  return Object("", "Disk " + std::to_string(item.index),
                {Number("index", "", item.index),
                 Text("model", "model", item.model),
                 Text("serialNumber", "serial number", item.serial_number),
                 Text("firmware", "firmware", item.firmware),
                 Number("sizeMiB", "size", item.size_mib, "MiB"),
                 Number("sizeGB", "decimal size", item.size_gb, "GB"),
                 Number("freeMiB", "free", item.free_mib, "MiB"),
                 Text("mediaType", "media", item.media_type),
                 Flag("ssd", "SSD", item.ssd),
                 Flag("trim", "TRIM", item.trim),
                 Flag("systemDisk", "system disk", system_disk)});
}

}  // namespace

Node DisksSection() {
  Disk disks;
  const int count = disks.GetPhysicDiskNumbers();
  // "list" when the library listed the disks (HalInit); "probe" when they were opened one by
  // one as \\.\PHYSICALDRIVE<n>.
  const bool listed = count > 0;
  const std::vector<Item> items = listed ? FromDiskClass(disks, count) : ByProbing();
  std::optional<uint32_t> system_disk;
  uint32_t index = 0;
  if (disks.GetSystemDiskIndex(index)) system_disk = index;

  std::vector<Node> nodes;
  for (const Item& item : items) nodes.push_back(ItemNode(item, system_disk == item.index));
  return Object("disks", "Disks",
                {Text("source", "source", listed ? "list" : "probe"),
                 Number("systemDisk", "system disk", system_disk),
                 Array("items", "", std::move(nodes))});
}

}  // namespace halinfo
