// Drivers: the devices that have none, and the driver version of each kind of device the
// driver maintenance knows, through DeviceDriver and GetDeviceDriverVersion.
#include <string>
#include <vector>

#include "drivers/device_driver.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

struct Kind {
  DeviceDriverType type;
  const char* key;
  const char* label;
};

const Kind kKinds[] = {
    {DriverType_WirelessNetwork, "wirelessNetwork", "wireless network card"},
    {DriverType_Bluetooth, "bluetooth", "Bluetooth"},
    {DriverType_Biometric, "biometric", "fingerprint sensor"},
    {DriverType_Audio, "audio", "audio"},
    {DriverType_Keyboard, "keyboard", "keyboard"},
    {DriverType_DisplayAdapter, "displayAdapter", "display adapter"},
};

}  // namespace

Node DriversSection() {
  std::vector<Node> without_driver;
  for (const std::wstring& hard_id : DeviceDriver().GetUnkownHardId()) {
    without_driver.push_back(Text("", "hardware ID", ToUtf8(hard_id)));
  }
  std::vector<Node> versions;
  for (const Kind& kind : kKinds) {
    versions.push_back(Text(kind.key, kind.label, ToUtf8(GetDeviceDriverVersion(kind.type))));
  }
  return Object("drivers", "Drivers",
                {Array("withoutDriver", "devices without a driver", std::move(without_driver)),
                 Object("versionByKind", "driver version by kind", std::move(versions))});
}

}  // namespace halinfo
