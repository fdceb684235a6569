#include "platform/win32.h"

#include "tools/halinfo/devices_section.h"

#include <objbase.h>

#include <initguid.h>
#include <devguid.h>

#include <algorithm>

#include "platform/device_informention.h"
#include "tools/halinfo/output.h"

namespace halinfo {
namespace {

struct KnownClass {
  const char* name;
  const GUID* guid;
};

// The setup classes a person looks for first; classes not listed here are not shown.
const KnownClass kClasses[] = {
    {"Processors", &GUID_DEVCLASS_PROCESSOR},
    {"Display adapters", &GUID_DEVCLASS_DISPLAY},
    {"Monitors", &GUID_DEVCLASS_MONITOR},
    {"Sound, video and game controllers", &GUID_DEVCLASS_MEDIA},
    {"Network adapters", &GUID_DEVCLASS_NET},
    {"Bluetooth", &GUID_DEVCLASS_BLUETOOTH},
    {"Disk drives", &GUID_DEVCLASS_DISKDRIVE},
    {"Storage controllers", &GUID_DEVCLASS_SCSIADAPTER},
    {"IDE ATA/ATAPI controllers", &GUID_DEVCLASS_HDC},
    {"Batteries", &GUID_DEVCLASS_BATTERY},
    {"Biometric devices", &GUID_DEVCLASS_BIOMETRIC},
    {"Cameras", &GUID_DEVCLASS_CAMERA},
    {"Imaging devices", &GUID_DEVCLASS_IMAGE},
    {"Keyboards", &GUID_DEVCLASS_KEYBOARD},
    {"Mice and other pointing devices", &GUID_DEVCLASS_MOUSE},
    {"Human interface devices", &GUID_DEVCLASS_HIDCLASS},
    {"Universal Serial Bus controllers", &GUID_DEVCLASS_USB},
    {"Sensors", &GUID_DEVCLASS_SENSOR},
    {"Firmware", &GUID_DEVCLASS_FIRMWARE},
    {"Software components", &GUID_DEVCLASS_SOFTWARECOMPONENT},
    {"System devices", &GUID_DEVCLASS_SYSTEM},
    {"Computer", &GUID_DEVCLASS_COMPUTER},
};

std::string GuidText(const GUID& guid) {
  wchar_t text[40] = {};
  return ::StringFromGUID2(guid, text, 40) > 0 ? ToUtf8(text) : std::string();
}

}  // namespace

DevicesSection DevicesSection::Collect() {
  DevicesSection section;
  DeviceInformention database;
  for (const KnownClass& known : kClasses) {
    const std::vector<std::wstring> ids = database.GetDeviceHardwareId(*known.guid);
    const std::vector<std::wstring> descriptions = database.GetDeviceDesc(*known.guid);
    // Both lists walk the same set; a device arriving in between makes one longer.
    const size_t count = std::max(ids.size(), descriptions.size());
    if (count == 0) continue;
    SetupClass setup_class{known.name, GuidText(*known.guid), {}};
    for (size_t i = 0; i < count; ++i) {
      setup_class.devices.push_back({i < ids.size() ? ToUtf8(ids[i]) : std::string(),
                                     i < descriptions.size() ? ToUtf8(descriptions[i])
                                                             : std::string()});
    }
    section.classes.push_back(std::move(setup_class));
  }
  return section;
}

void DevicesSection::AddTo(nlohmann::ordered_json& document) const {
  nlohmann::ordered_json classes_json = nlohmann::ordered_json::array();
  for (const SetupClass& setup_class : classes) {
    nlohmann::ordered_json devices_json = nlohmann::ordered_json::array();
    for (const Device& device : setup_class.devices) {
      devices_json.push_back(
          {{"hardwareId", device.hardware_id}, {"description", device.description}});
    }
    classes_json.push_back({{"class", setup_class.name},
                            {"classGuid", setup_class.guid},
                            {"devices", std::move(devices_json)}});
  }
  document["devices"] = std::move(classes_json);
}

std::string DevicesSection::ToText() const {
  std::string text = "\nDevices (first hardware ID and description, by setup class)\n";
  if (classes.empty()) text += "  none found in the classes shown\n";
  bool any_property = false;
  for (const SetupClass& setup_class : classes) {
    for (const Device& device : setup_class.devices) {
      any_property = any_property || !device.hardware_id.empty() || !device.description.empty();
    }
  }
  if (!classes.empty() && !any_property) {
    text += "  (the system answered no device property; Wine does not serve them)\n";
  }
  for (const SetupClass& setup_class : classes) {
    text += "  " + setup_class.name + " " + setup_class.guid + "\n";
    for (const Device& device : setup_class.devices) {
      text += "    " + (device.hardware_id.empty() ? "(no hardware ID)" : device.hardware_id) +
              "  " + (device.description.empty() ? "(no description)" : device.description) +
              "\n";
    }
  }
  return text;
}

}  // namespace halinfo
