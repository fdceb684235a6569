#include "platform/win32.h"

#include "components/usb_device_interface.h"

#include <gtest/gtest.h>

#include <winioctl.h>
#include <usbioctl.h>

#include <cstring>
#include <functional>

#include "tests/fakes/fake_common.h"
#include "tests/fakes/fake_usb.h"
#include "tests/support/fake_system.h"

namespace {

using velhal::testing::FakeDeviceIo;
using velhal::testing::FakeUsb;
using velhal::testing::FakeUsbDevice;
using velhal::testing::FakeUsbHub;

const std::wstring kController =
    L"\\\\?\\pci#ven_8086&dev_a36d&subsys_00000000&rev_10#3&11583659&0&a0#"
    L"{3abf6f2d-71c4-462a-8a92-1e6861e6af27}";
const std::wstring kRootHub =
    L"USB#ROOT_HUB30#4&1aa1c1e&0&0#{f18a0e88-c30c-11d0-8815-00a0c906bed8}";
const std::wstring kHub =
    L"USB#VID_05E3&PID_0610#5&3a2b&0&2#{f18a0e88-c30c-11d0-8815-00a0c906bed8}";
const std::wstring kClassKey = L"{36fc9e60-c465-11cf-8056-444553540000}\\";

class UsbDeviceInterfaceTest : public ::testing::Test {
 public:
  UsbDeviceInterfaceTest() { BuildTree(); }

  // A root hub with a receiver, a hub, an empty port and a device without strings; below the
  // hub, a SuperSpeed disk.
  void BuildTree() {
    os_.io.devices.clear();
    os_.devices.devices.clear();
    usb_.Controller(kController, kClassKey + L"0000", L"USB xHCI Compliant Host Controller",
                    kRootHub);
    usb_.Hub({kRootHub,
              4,
              {{1,
                0x046D,
                0xC52B,
                1,
                0,
                {L"Logitech", L"USB Receiver", L""},
                kClassKey + L"0001",
                L"USB Composite Device",
                L""},
               {2, 0x05E3, 0x0610, 2, 0, {}, kClassKey + L"0002", L"Generic USB Hub", kHub},
               {4, 0x1234, 0x5678, 1, 0, {}, L"", L"", L""}}});
    usb_.Hub({kHub,
              4,
              {{3,
                0x0BC2,
                0x2322,
                2,
                0x3,
                {L"Seagate", L"Expansion", L"NAAB1234"},
                kClassKey + L"0003",
                L"USB Attached SCSI (UAS) Mass Storage Device",
                L""}}});
  }

  FakeDeviceIo::Device& Hub(const std::wstring& name) {
    return os_.io.devices.at(FakeUsb::HubPath(name));
  }

  velhal::testing::FakeSystem os_;
  FakeUsb usb_{os_.io, os_.devices};
  UsbDeviceInterface usb_interface_;
};

TEST_F(UsbDeviceInterfaceTest, TreeHasEveryPortAndTheHubBelowTheHub) {
  const std::vector<UsbHostControllerInfo> tree = usb_interface_.GetUsbTree();
  ASSERT_EQ(tree.size(), 1u);
  EXPECT_EQ(tree[0].devicePath, kController);
  EXPECT_EQ(tree[0].description, L"USB xHCI Compliant Host Controller");
  EXPECT_EQ(tree[0].rootHubName, kRootHub);
  EXPECT_EQ(tree[0].rootHubPorts, 4u);
  // Every port the hub reports, the empty one included.
  ASSERT_EQ(tree[0].ports.size(), 4u);
  const UsbPortInfo& receiver = tree[0].ports[0];
  EXPECT_EQ(receiver.connectionStatus, 1u);
  EXPECT_EQ(receiver.vendorId, 0x046D);
  EXPECT_EQ(receiver.productId, 0xC52B);
  EXPECT_EQ(receiver.usbVersion, 0x0210);
  EXPECT_EQ(receiver.speed, UsbSpeed_Full);
  EXPECT_EQ(receiver.manufacturer, L"Logitech");
  EXPECT_EQ(receiver.product, L"USB Receiver");
  EXPECT_EQ(receiver.serialNumber, L"");  // index 0: not asked
  EXPECT_EQ(receiver.description, L"USB Composite Device");
  EXPECT_EQ(tree[0].ports[2].connectionStatus, 0u);
  EXPECT_EQ(tree[0].ports[2].vendorId, 0);
  const UsbPortInfo& plain = tree[0].ports[3];
  EXPECT_EQ(plain.vendorId, 0x1234);
  EXPECT_EQ(plain.manufacturer + plain.product + plain.description, L"");

  const UsbPortInfo& hub = tree[0].ports[1];
  EXPECT_TRUE(hub.isHub);
  EXPECT_EQ(hub.hubName, kHub);
  EXPECT_EQ(hub.hubPorts, 4u);
  ASSERT_EQ(hub.ports.size(), 4u);
  const UsbPortInfo& disk = hub.ports[2];
  EXPECT_EQ(disk.speed, UsbSpeed_Super);  // reported as high speed, operating at SuperSpeed
  EXPECT_EQ(disk.serialNumber, L"NAAB1234");
  EXPECT_EQ(disk.driverKey, kClassKey + L"0003");

  // The connected devices, depth first; the empty port is not one.
  const std::vector<UsbPortInfo> devices = usb_interface_.GetUsbDevices();
  ASSERT_EQ(devices.size(), 4u);
  EXPECT_EQ(devices[2].productId, 0x2322);
  EXPECT_TRUE(devices[1].ports.empty());
  EXPECT_EQ(usb_interface_.GetUsbDeviceNumber(), 4u);
  EXPECT_TRUE(usb_interface_.IsUsbDeviceConnected(0x0BC2, 0x2322));
  EXPECT_FALSE(usb_interface_.IsUsbDeviceConnected(0x0BC2, 0x0001));
}

// Raw answer bytes: a header of `header` bytes whose last four hold `actual`, then `body`.
FakeDeviceIo::Ioctl Raw(size_t header, uint32_t actual, std::vector<BYTE> body) {
  std::vector<BYTE> bytes(header, 0);
  std::memcpy(bytes.data() + header - 4, &actual, 4);
  bytes.insert(bytes.end(), body.begin(), body.end());
  FakeDeviceIo::Ioctl ioctl = FakeDeviceIo::Answer(bytes);
  ioctl.truncates = true;
  return ioctl;
}

TEST_F(UsbDeviceInterfaceTest, HostileAnswersGiveABoundedWalk) {
  struct Case {
    const char* name;
    std::function<void(UsbDeviceInterfaceTest&)> arrange;
    std::function<void(const UsbHostControllerInfo&)> check;
  };
  const Case cases[] = {
      {"a string descriptor longer than the bytes returned",
       [](auto& t) {
         t.Hub(kRootHub).ioctls[IOCTL_USB_GET_DESCRIPTOR_FROM_NODE_CONNECTION] =
             Raw(12, 0, {200, USB_STRING_DESCRIPTOR_TYPE, 'L', 0, 'o', 0});
       },
       [](const auto& c) {
         EXPECT_EQ(c.ports[0].manufacturer + c.ports[0].product, L"");
         EXPECT_EQ(c.ports[0].vendorId, 0x046D);
       }},
      {"a hub name of size 0",
       [](auto& t) { t.Hub(kRootHub).ioctls[IOCTL_USB_GET_NODE_CONNECTION_NAME] = Raw(8, 0, {}); },
       [](const auto& c) {
         EXPECT_EQ(c.ports[1].hubName, L"");
         EXPECT_TRUE(c.ports[1].ports.empty());
       }},
      {"a hub name whose size lies past the bytes returned",
       [](auto& t) {
         t.Hub(kRootHub).ioctls[IOCTL_USB_GET_NODE_CONNECTION_NAME] =
             Raw(8, 0x200, velhal::testing::Utf16Bytes(L"HUB"));
       },
       [](const auto& c) { EXPECT_EQ(c.ports[1].hubName, L""); }},
      {"a root hub name with a path in it",
       [](auto& t) {
         t.os_.io.devices.at(kController).ioctls[IOCTL_USB_GET_ROOT_HUB_NAME] =
             velhal::testing::UsbNameAnswer(L"..\\C:", false);
       },
       [](const auto& c) {
         EXPECT_EQ(c.rootHubName, L"..\\C:");
         EXPECT_TRUE(c.ports.empty());
         EXPECT_EQ(c.rootHubPorts, 0u);
       }},
      {"a hub that reports 255 ports",
       [](auto& t) {
         t.usb_.Hub({kHub, 255, {}});
       },
       [](const auto& c) {
         EXPECT_EQ(c.ports[1].hubPorts, 255u);
         EXPECT_EQ(c.ports[1].ports.size(), 127u);
       }},
      {"a hub whose port leads back to the root hub",
       [](auto& t) {
         t.usb_.Hub({kHub, 1, {{1, 0x05E3, 0x0610, 2, 0, {}, L"", L"", kRootHub}}});
       },
       [](const auto& c) {
         const UsbPortInfo& loop = c.ports[1].ports.at(0);
         EXPECT_EQ(loop.hubName, kRootHub);
         EXPECT_TRUE(loop.ports.empty());
       }},
      {"hubs chained deeper than USB allows",
       [](auto& t) {
         for (int tier = 2; tier <= 9; ++tier) {
           t.usb_.Hub(
               {tier == 2 ? kHub : L"HUB" + std::to_wstring(tier),
                1,
                {{1, 0x05E3, 0x0610, 2, 0, {}, L"", L"", L"HUB" + std::to_wstring(tier + 1)}}});
         }
       },
       [](const auto& c) {
         int tiers = 1;  // the root hub
         for (const UsbPortInfo* hub = &c.ports[1]; !hub->ports.empty(); hub = &hub->ports[0])
           ++tiers;
         EXPECT_EQ(tiers, 6);
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    BuildTree();
    c.arrange(*this);
    const std::vector<UsbHostControllerInfo> tree = usb_interface_.GetUsbTree();
    ASSERT_EQ(tree.size(), 1u);
    c.check(tree[0]);
  }
  EXPECT_EQ(os_.io.open_handles(), 0u);
}

}  // namespace
