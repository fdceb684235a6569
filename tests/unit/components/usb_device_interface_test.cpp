#include "platform/win32.h"

#include "components/usb_device_interface.h"

#include <gtest/gtest.h>

#include <winioctl.h>
#include <usbioctl.h>

#include <cstring>

#include "tests/fakes/fake_common.h"
#include "tests/fakes/fake_usb.h"
#include "tests/support/fake_system.h"

namespace {

using velhal::testing::FakeDeviceIo;
using velhal::testing::FakeUsb;

const std::wstring kController = L"\\\\?\\pci#ven_8086&dev_a36d#3&11583659&0&a0#{3abf6f2d}";
const std::wstring kRootHub = L"USB#ROOT_HUB30#4&1aa1c1e&0&0#{f18a0e88}";
const std::wstring kHub = L"USB#VID_05E3&PID_0610#5&3a2b&0&2#{f18a0e88}";

class UsbDeviceInterfaceTest : public ::testing::Test {
 public:
  UsbDeviceInterfaceTest() { BuildTree(); }

  // On the root hub a receiver, a hub, an empty port and a device without strings or driver
  // key; below the hub, a disk at SuperSpeed (which the older answer reports as high speed).
  void BuildTree() {
    os_.io.devices.clear();
    os_.devices.devices.clear();
    usb_.Controller(kController, L"USB xHCI Compliant Host Controller", kRootHub);
    usb_.Hub(
        kRootHub, 4,
        {{1, 0x046D, 0xC52B, {L"Logitech", L"USB Receiver", L""}, L"", L"USB Composite Device", 1},
         {2, 0x05E3, 0x0610, {}, kHub, L"Generic USB Hub"},
         {4, 0x1234, 0x5678}});
    usb_.Hub(kHub, 4,
             {{3, 0x0BC2, 0x2322, {L"Seagate", L"Expansion", L"NAAB1234"}, L"", L"UAS", 2, 1}});
  }
  FakeDeviceIo::Device& Hub(const std::wstring& name) {
    return os_.io.devices.at(FakeUsb::HubPath(name));
  }

  velhal::testing::FakeSystem os_;
  FakeUsb usb_{os_.io, os_.devices};
};

TEST_F(UsbDeviceInterfaceTest, TreeHasEveryPortAndTheHubBelowTheHub) {
  const std::vector<UsbHostControllerInfo> tree = UsbDeviceInterface().GetUsbTree();
  ASSERT_EQ(tree.size(), 1u);
  EXPECT_EQ(tree[0].description, L"USB xHCI Compliant Host Controller");
  EXPECT_EQ(tree[0].rootHubName, kRootHub);
  ASSERT_EQ(tree[0].ports.size(), 4u);  // the empty port included
  const UsbPortInfo& receiver = tree[0].ports[0];
  EXPECT_EQ(receiver.vendorId, 0x046D);
  EXPECT_EQ(receiver.usbVersion, 0x0210);
  EXPECT_EQ(receiver.speed, UsbSpeed_Full);
  EXPECT_EQ(receiver.manufacturer + L"|" + receiver.product + L"|" + receiver.serialNumber,
            L"Logitech|USB Receiver|");
  EXPECT_EQ(receiver.description, L"USB Composite Device");
  EXPECT_EQ(tree[0].ports[2].connectionStatus, 0u);
  EXPECT_EQ(tree[0].ports[3].productId, 0x5678);
  EXPECT_EQ(tree[0].ports[3].manufacturer + tree[0].ports[3].description, L"");

  const UsbPortInfo& hub = tree[0].ports[1];
  EXPECT_EQ(hub.hubName, kHub);
  ASSERT_EQ(hub.ports.size(), 4u);
  EXPECT_EQ(hub.ports[2].speed, UsbSpeed_Super);
  EXPECT_EQ(hub.ports[2].serialNumber, L"NAAB1234");

  // The connected devices, depth first, without their ports.
  UsbDeviceInterface usb;
  const std::vector<UsbPortInfo> devices = usb.GetUsbDevices();
  ASSERT_EQ(devices.size(), 4u);
  EXPECT_EQ(devices[2].productId, 0x2322);
  EXPECT_TRUE(devices[1].ports.empty());
  EXPECT_TRUE(usb.IsUsbDeviceConnected(0x0BC2, 0x2322));
  EXPECT_FALSE(usb.IsUsbDeviceConnected(0x0BC2, 0x0001));
}

// Raw answer bytes: `header` bytes whose last four hold `actual`, then `body`.
FakeDeviceIo::Ioctl Raw(size_t header, uint32_t actual, std::vector<BYTE> body) {
  std::vector<BYTE> bytes(header, 0);
  std::memcpy(bytes.data() + header - 4, &actual, 4);
  bytes.insert(bytes.end(), body.begin(), body.end());
  FakeDeviceIo::Ioctl ioctl = FakeDeviceIo::Answer(bytes);
  ioctl.truncates = true;
  return ioctl;
}

TEST_F(UsbDeviceInterfaceTest, HostileAnswersGiveABoundedWalk) {
  using Port = const UsbPortInfo&;
  const struct {
    const char* name;
    void (*arrange)(UsbDeviceInterfaceTest&);
    void (*check)(Port root_port_1, Port hub);
  } cases[] = {
      {"a string descriptor longer than the bytes returned",
       [](auto& t) {
         t.Hub(kRootHub).ioctls[IOCTL_USB_GET_DESCRIPTOR_FROM_NODE_CONNECTION] =
             Raw(12, 0, {200, USB_STRING_DESCRIPTOR_TYPE, 'L', 0});
       },
       [](Port receiver, Port) { EXPECT_EQ(receiver.manufacturer + receiver.product, L""); }},
      {"a hub name of size 0",
       [](auto& t) { t.Hub(kRootHub).ioctls[IOCTL_USB_GET_NODE_CONNECTION_NAME] = Raw(8, 0, {}); },
       [](Port, Port hub) { EXPECT_TRUE(hub.hubName.empty() && hub.ports.empty()); }},
      {"a hub name whose size lies past the bytes returned",
       [](auto& t) {
         t.Hub(kRootHub).ioctls[IOCTL_USB_GET_NODE_CONNECTION_NAME] =
             Raw(8, 0x200, velhal::testing::Utf16Bytes(L"HUB"));
       },
       [](Port, Port hub) { EXPECT_TRUE(hub.hubName.empty() && hub.ports.empty()); }},
      {"a hub that reports 255 ports", [](auto& t) { t.usb_.Hub(kHub, 255, {}); },
       [](Port, Port hub) {
         EXPECT_EQ(hub.hubPorts, 255u);
         EXPECT_EQ(hub.ports.size(), 127u);
       }},
      {"a hub whose port leads back to the root hub, or its own name with a path in it",
       [](auto& t) {
         t.usb_.Hub(kHub, 2, {{1, 1, 1, {}, kRootHub}, {2, 1, 1, {}, L"..\\C:"}});
         t.usb_.Hub(L"..\\C:", 1, {{1, 1, 1}});
       },
       [](Port, Port hub) {
         EXPECT_EQ(hub.ports.at(0).hubName, kRootHub);
         EXPECT_TRUE(hub.ports[0].ports.empty());
         EXPECT_TRUE(hub.ports.at(1).ports.empty());
       }},
      {"hubs chained deeper than USB allows",
       [](auto& t) {
         for (int tier = 2; tier <= 9; ++tier) {
           t.usb_.Hub(tier == 2 ? kHub : L"HUB" + std::to_wstring(tier), 1,
                      {{1, 1, 1, {}, L"HUB" + std::to_wstring(tier + 1)}});
         }
       },
       [](Port, Port hub) {
         int tiers = 1;  // the root hub
         for (const UsbPortInfo* below = &hub; !below->ports.empty(); below = &below->ports[0])
           ++tiers;
         EXPECT_EQ(tiers, 6);
       }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    BuildTree();
    c.arrange(*this);
    const std::vector<UsbHostControllerInfo> tree = UsbDeviceInterface().GetUsbTree();
    ASSERT_EQ(tree.size(), 1u);
    ASSERT_EQ(tree[0].ports.size(), 4u);
    c.check(tree[0].ports[0], tree[0].ports[1]);
  }
}

}  // namespace
