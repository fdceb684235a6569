// The machine's USB topology: every host controller (the USB host-controller device interface),
// its root hub, each hub's ports and the device on each port, hubs below hubs, walked with the
// USB hub driver's I/O controls. Stateless: every call walks the buses afresh. What cannot be
// read is 0 or empty; nothing is thrown or logged.
//
// The walk trusts no answer: a hub is walked at most 127 ports deep and 6 tiers down (the root
// hub being the first), at most 127 devices per bus, and never twice.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hal/velhal_export.h"

enum UsbDeviceSpeed : uint32_t {
  UsbSpeed_Low = 0,        // 1.5 Mbit/s
  UsbSpeed_Full = 1,       // 12 Mbit/s
  UsbSpeed_High = 2,       // 480 Mbit/s
  UsbSpeed_Super = 3,      // 5 Gbit/s
  UsbSpeed_SuperPlus = 4,  // 10 Gbit/s or more
  UsbSpeed_Unknown = 5,
};

// One hub port and what is attached to it.
struct UsbPortInfo {
  uint32_t port = 0;              // 1-based, on its hub
  uint32_t connectionStatus = 0;  // USB_CONNECTION_STATUS: 0 empty, 1 connected, 2-10 failures
  bool isHub = false;
  UsbDeviceSpeed speed = UsbSpeed_Unknown;
  uint32_t address = 0;  // the device's address on its bus
  // The device descriptor; all 0 when it was not read.
  uint16_t vendorId = 0, productId = 0;
  uint16_t usbVersion = 0;     // bcdUSB, 0x0210 for USB 2.10
  uint16_t deviceVersion = 0;  // bcdDevice
  uint8_t deviceClass = 0;     // 0: given per interface; 9: hub
  // The device's string descriptors (US English where offered); empty where it has none.
  std::wstring manufacturer, product, serialNumber;
  std::wstring driverKey;          // {36fc9e60-c465-11cf-8056-444553540000}\0005
  std::wstring description;        // the device description of the driver key's device
  std::wstring hubName;            // a hub: its name (opened as \\.\ + name)
  uint32_t hubPorts = 0;           // a hub: the ports it reports
  std::vector<UsbPortInfo> ports;  // a hub: its ports, in order
};

struct UsbHostControllerInfo {
  std::wstring devicePath;   // the controller's device interface path
  std::wstring driverKey;    // the controller's driver key
  std::wstring description;  // its device description
  std::wstring rootHubName;
  uint32_t rootHubPorts = 0;
  std::vector<UsbPortInfo> ports;  // the root hub's ports, in order
};

class VELHAL_API UsbDeviceInterface {
 public:
  // Every host controller with its tree, in the device database's order.
  std::vector<UsbHostControllerInfo> GetUsbTree();
  // Every connected device of the tree (hubs included), depth first, without their ports.
  std::vector<UsbPortInfo> GetUsbDevices();
  unsigned long GetUsbDeviceNumber();  // entries of GetUsbDevices
  // Whether a device with this vendor and product ID is connected.
  bool IsUsbDeviceConnected(uint16_t vendorId, uint16_t productId);
};
