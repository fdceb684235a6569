// The devices of this machine by setup class: the first hardware ID and the description of
// every present device, as DeviceInformention reports them.
#include "platform/win32.h"

#include <objbase.h>

#include <initguid.h>
#include <devguid.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/device_informention.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

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

std::string ItemAt(const std::vector<std::wstring>& list, size_t i) {
  return i < list.size() ? ToUtf8(list[i]) : std::string();
}

Node Device(const std::string& hardware_id, const std::string& description) {
  return Object("", description.empty() ? "?" : description,
                {Text("hardwareId", "hardware ID", hardware_id),
                 Text("description", "", description)});
}

}  // namespace

Node DevicesSection() {
  DeviceInformention database;
  std::vector<Node> classes;
  for (const KnownClass& known : kClasses) {
    const std::vector<std::wstring> ids = database.GetDeviceHardwareId(*known.guid);
    const std::vector<std::wstring> descriptions = database.GetDeviceDesc(*known.guid);
    // Both lists walk the same set; a device arriving in between makes one longer.
    const size_t count = std::max(ids.size(), descriptions.size());
    if (count == 0) continue;
    std::vector<Node> devices;
    for (size_t i = 0; i < count; ++i) {
      devices.push_back(Device(ItemAt(ids, i), ItemAt(descriptions, i)));
    }
    const std::string guid = GuidText(*known.guid);
    classes.push_back(Object("", std::string(known.name) + " " + guid,
                             {Text("class", "", known.name),
                              Text("classGuid", "", guid),
                              Array("devices", "", std::move(devices))}));
  }
  return Array("devices", "Devices by setup class", std::move(classes));
}

}  // namespace halinfo
