#include "components/bios_fun.h"

#include <map>

#include "components/bios_wmi.h"
#include "platform/boundary.h"

namespace {

// The firmware's item code of a device type; false, code unchanged, for other types.
bool GetItemCodeByDeviceType(unsigned char& code, DeviceDriverType type) {
  switch (type) {
    case DriverType_WirelessNetwork: code = DeviceBiosSwitchWirelessNetwork; return true;
    case DriverType_Bluetooth: code = DeviceBiosSwitchBluetooth; return true;
    case DriverType_Biometric: code = DeviceBiosSwitchBiometric; return true;
    case DriverType_Audio: code = DeviceBiosSwitchAudio; return true;
    default: return false;
  }
}

}  // namespace

bool BiosFun::GetBiosSwitch(bool& status, DeviceDriverType type) {
  status = true;
  return velhal::CallGuarded(false, [&] {
    // Filled once from the item codes; read-only after.
    static const std::map<DeviceDriverType, DeviceBiosSwitchNumber> switches = [] {
      std::map<DeviceDriverType, DeviceBiosSwitchNumber> known;
      for (DeviceDriverType candidate : {DriverType_WirelessNetwork, DriverType_Bluetooth,
                                         DriverType_Biometric, DriverType_Audio}) {
        unsigned char code = 0;
        if (GetItemCodeByDeviceType(code, candidate)) {
          known[candidate] = static_cast<DeviceBiosSwitchNumber>(code);
        }
      }
      return known;
    }();
    const auto found = switches.find(type);
    if (found == switches.end()) return false;
    return VelSDK::BiosWmi::GetDeviceBiosSwitchStatus(found->second, status) == 0;
  });
}
