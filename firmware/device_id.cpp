#include "firmware/device_id.h"

#include <memory>

#include "components/class_driver_version.h"
#include "components/device_kinds.h"
#include "network/network_card.h"
#include "platform/boundary.h"
#include "platform/device_informention.h"
#include "platform/lazy_instance.h"
#include "platform/process_state.h"

namespace {

namespace components = velhal::components;

velhal::LazyInstance<CDeviceId>& Instance() {
  static velhal::LazyInstance<CDeviceId> instance;
  return instance;
}

void ForgetInstance() { Instance().Forget(); }

std::wstring HardwareIdOf(const components::DeviceKind& kind) {
  if (kind.type == DriverType_WirelessNetwork) return NetworkCard().GetWireLessCardHardId();
  return components::FirstHardwareIdWith(kind.setup_class, kind.Prefixes());
}

}  // namespace

CDeviceId* CDeviceId::GetInstance() {
  return velhal::CallGuarded<CDeviceId*>(nullptr, [] {
    return &Instance().Get([] {
      velhal::RegisterProcessStateReset(&ForgetInstance);
      return std::make_unique<CDeviceId>();
    });
  });
}

std::wstring CDeviceId::GetDeviceTypeName(DeviceDriverType type) {
  return velhal::CallGuarded(std::wstring{}, [&]() -> std::wstring {
    const components::DeviceKind* kind = components::FindDeviceKind(type);
    return kind != nullptr ? kind->name : L"";
  });
}

std::wstring CDeviceId::GetHardwareId(DeviceDriverType type) {
  return velhal::CallGuarded(std::wstring{}, [&]() -> std::wstring {
    const components::DeviceKind* kind = components::FindDeviceKind(type);
    return kind != nullptr ? HardwareIdOf(*kind) : std::wstring{};
  });
}

std::wstring CDeviceId::GetHardwareDesc(DeviceDriverType type) {
  return velhal::CallGuarded(std::wstring{}, [&]() -> std::wstring {
    const components::DeviceKind* kind = components::FindDeviceKind(type);
    if (kind == nullptr) return {};
    const std::wstring id = HardwareIdOf(*kind);
    if (id.empty()) return {};
    return DeviceInformention().GetDeviceStrInfoByHardwareId(id, kind->setup_class,
                                                             DeviceProperty_DeviceDesc);
  });
}
