#include "platform/win32.h"

#include "components/usb_device_interface.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>

#include "core/usb.h"
#include "platform/boundary.h"
#include "platform/device_classes.h"
#include "platform/device_interfaces.h"
#include "platform/os/device_database.h"
#include "platform/os/device_io.h"

namespace {

namespace os = velhal::os;
namespace usb = velhal::usb;
using velhal::CallGuarded;

constexpr DWORD kMaxControllers = 64;

std::wstring Wide(const std::u16string& text) { return std::wstring(text.begin(), text.end()); }

std::wstring Upper(std::wstring text) {
  for (wchar_t& c : text) {
    if (c >= L'a' && c <= L'z') c = static_cast<wchar_t>(c - L'a' + L'A');
  }
  return text;
}

// A controller or hub opened through the device-I/O facility.
class DriverDevice final : public usb::Device {
 public:
  explicit DriverDevice(velhal::UniqueFileHandle handle) : handle_(std::move(handle)) {}

  std::optional<std::vector<uint8_t>> Control(uint32_t code, const std::vector<uint8_t>& in,
                                              size_t out_size) override {
    std::vector<uint8_t> input = in;
    std::vector<uint8_t> out(out_size, 0);
    DWORD returned = 0;
    if (!os::device_io().DeviceIoControl(handle_.Get(), code, input.data(),
                                         static_cast<DWORD>(input.size()), out.data(),
                                         static_cast<DWORD>(out.size()), &returned, nullptr)) {
      return std::nullopt;
    }
    out.resize(std::min<size_t>(returned, out_size));
    return out;
  }

 private:
  velhal::UniqueFileHandle handle_;
};

class HubDriver final : public usb::Transport {
 public:
  std::unique_ptr<usb::Device> Open(const std::u16string& path) override {
    const std::wstring name(path.begin(), path.end());
    velhal::UniqueFileHandle handle(os::device_io().CreateFileW(
        name.c_str(), GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!handle.IsValid()) return nullptr;
    return std::make_unique<DriverDevice>(std::move(handle));
  }
};

// A text registry property of a device (SPDRP_DRIVER, SPDRP_DEVICEDESC); empty when absent.
std::wstring RegistryText(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD property) {
  auto& db = os::device_database();
  DWORD size = 0;
  if (db.SetupDiGetDeviceRegistryPropertyW(set, &device, property, nullptr, nullptr, 0, &size) ||
      ::GetLastError() != ERROR_INSUFFICIENT_BUFFER || size == 0) {
    return {};
  }
  std::vector<wchar_t> text(size / sizeof(wchar_t) + 1, L'\0');  // one unit more: always ends
  if (!db.SetupDiGetDeviceRegistryPropertyW(set, &device, property, nullptr,
                                            reinterpret_cast<BYTE*>(text.data()), size, nullptr)) {
    return {};
  }
  return std::wstring(text.data());
}

// Driver key (upper case) to device description, for every present device.
std::map<std::wstring, std::wstring> DescriptionsByDriverKey() {
  std::map<std::wstring, std::wstring> descriptions;
  const velhal::UniqueDeviceInfoSet set(os::device_database().SetupDiGetClassDevsW(
      nullptr, nullptr, nullptr, DIGCF_ALLCLASSES | DIGCF_PRESENT));
  if (!set.IsValid()) return descriptions;
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  for (DWORD i = 0; os::device_database().SetupDiEnumDeviceInfo(set.Get(), i, &device); ++i) {
    const std::wstring key = RegistryText(set.Get(), device, SPDRP_DRIVER);
    if (!key.empty()) descriptions[Upper(key)] = RegistryText(set.Get(), device, SPDRP_DEVICEDESC);
  }
  return descriptions;
}

class Publisher {
 public:
  explicit Publisher(std::map<std::wstring, std::wstring> descriptions)
      : descriptions_(std::move(descriptions)) {}

  UsbPortInfo Port(const usb::Port& from) const {
    UsbPortInfo port;
    port.port = from.number;
    port.connectionStatus = from.status;
    port.isHub = from.is_hub;
    port.speed = static_cast<UsbDeviceSpeed>(from.speed);
    port.address = from.address;
    if (from.descriptor) {
      port.vendorId = from.descriptor->vendor_id;
      port.productId = from.descriptor->product_id;
      port.usbVersion = from.descriptor->usb_version;
      port.deviceVersion = from.descriptor->device_version;
      port.deviceClass = from.descriptor->device_class;
    }
    port.manufacturer = Wide(from.manufacturer);
    port.product = Wide(from.product);
    port.serialNumber = Wide(from.serial_number);
    port.driverKey = Wide(from.driver_key);
    port.description = Description(port.driverKey);
    port.hubName = Wide(from.hub_name);
    port.hubPorts = from.hub_ports;
    for (const usb::Port& below : from.ports) port.ports.push_back(Port(below));
    return port;
  }

  std::wstring Description(const std::wstring& driver_key) const {
    if (driver_key.empty()) return {};
    const auto found = descriptions_.find(Upper(driver_key));
    return found == descriptions_.end() ? std::wstring() : found->second;
  }

 private:
  std::map<std::wstring, std::wstring> descriptions_;
};

std::vector<UsbHostControllerInfo> Tree() {
  HubDriver driver;
  std::vector<std::pair<std::wstring, usb::Controller>> walked;
  for (DWORD i = 0; i < kMaxControllers; ++i) {
    const std::optional<std::wstring> path =
        velhal::DeviceInterfacePath(velhal::device_interface::kUsbHostController, i);
    if (!path) break;
    walked.emplace_back(*path,
                        usb::WalkController(driver, std::u16string(path->begin(), path->end())));
  }
  if (walked.empty()) return {};
  const Publisher publisher(DescriptionsByDriverKey());
  std::vector<UsbHostControllerInfo> controllers;
  for (const auto& [path, from] : walked) {
    UsbHostControllerInfo controller;
    controller.devicePath = path;
    controller.driverKey = Wide(from.driver_key);
    controller.description = publisher.Description(controller.driverKey);
    controller.rootHubName = Wide(from.root_hub_name);
    controller.rootHubPorts = from.root_hub_ports;
    for (const usb::Port& port : from.ports) controller.ports.push_back(publisher.Port(port));
    controllers.push_back(std::move(controller));
  }
  return controllers;
}

void CollectDevices(const std::vector<UsbPortInfo>& ports, std::vector<UsbPortInfo>& devices) {
  for (const UsbPortInfo& port : ports) {
    if (port.connectionStatus != usb::kDeviceConnected) continue;
    devices.push_back(port);
    devices.back().ports.clear();
    CollectDevices(port.ports, devices);
  }
}

std::vector<UsbPortInfo> Devices() {
  std::vector<UsbPortInfo> devices;
  for (const UsbHostControllerInfo& controller : Tree()) CollectDevices(controller.ports, devices);
  return devices;
}

}  // namespace

std::vector<UsbHostControllerInfo> UsbDeviceInterface::GetUsbTree() {
  return CallGuarded(std::vector<UsbHostControllerInfo>(), [] { return Tree(); });
}

std::vector<UsbPortInfo> UsbDeviceInterface::GetUsbDevices() {
  return CallGuarded(std::vector<UsbPortInfo>(), [] { return Devices(); });
}

unsigned long UsbDeviceInterface::GetUsbDeviceNumber() {
  return CallGuarded(0ul, [] { return static_cast<unsigned long>(Devices().size()); });
}

bool UsbDeviceInterface::IsUsbDeviceConnected(uint16_t vendorId, uint16_t productId) {
  return CallGuarded(false, [&] {
    const std::vector<UsbPortInfo> devices = Devices();
    return std::any_of(devices.begin(), devices.end(), [&](const UsbPortInfo& device) {
      return device.vendorId == vendorId && device.productId == productId;
    });
  });
}

static_assert(static_cast<int>(usb::Speed::kSuperPlus) == UsbSpeed_SuperPlus &&
              static_cast<int>(usb::Speed::kUnknown) == UsbSpeed_Unknown);
