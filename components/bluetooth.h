// Bluetooth: the devices of the Bluetooth setup class and the local radio as the Bluetooth API
// reports it (bthprops.cpl, bound at run time).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "components/component_device.h"
#include "hal/velhal_export.h"

// The first local radio BluetoothFindFirstRadio finds.
struct BluetoothRadio {
  bool present = false;
  // BluetoothIsConnectable: the radio accepts incoming connections. Off when the radio is
  // switched off (Settings, airplane mode) or the host turned connections off.
  bool on = false;
  std::wstring address;           // "AA:BB:CC:DD:EE:FF", most significant byte first
  std::wstring name;              // the radio's Bluetooth name (usually the computer's)
  uint16_t manufacturer = 0;      // Bluetooth SIG company identifier of the radio's maker
  std::wstring manufacturerName;  // for a few radio makers ("Intel"); empty for the others
  uint16_t subversion = 0;        // LMP subversion: the maker's firmware number
  // Bluetooth core version the radio implements ("5.3"), from its LMP version number
  // (IOCTL_BTH_GET_LOCAL_INFO on the radio); empty when the radio does not say.
  std::wstring coreVersion;
};

class VELHAL_API Bluetooth {
 public:
  // The radio's driver version: of the first present Bluetooth-class device whose first
  // hardware ID begins "USB" or "QCA_SHB"; empty when there is none. GetDeviceDriverVersion's
  // answer for kind 1.
  std::wstring GetDriverVersion();
  // Whether a Bluetooth-class device is present (device database).
  bool IsPresent();
  // The present Bluetooth-class devices (radios, their enumerators, paired devices' services),
  // in the device database's order.
  std::vector<ComponentDevice> GetDevices();
  // Whether the Bluetooth API finds a local radio; whether it is on (BluetoothIsConnectable).
  bool IsRadioPresent();
  bool IsRadioOn();
  // The radio; present false (and everything empty) when there is none.
  BluetoothRadio GetRadio();
};
