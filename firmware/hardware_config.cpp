#include "firmware/hardware_config.h"

#include "core/identity.h"
#include "firmware/config_files.h"
#include "platform/boundary.h"
#include "platform/lazy_instance.h"
#include "platform/process_state.h"
#include "platform/string_conversion.h"

using velhal::firmware::ConfigCode;

HardwareConfig::HardwareConfig() : load_result_(velhal::firmware::kConfigMissing) {
  const int code = LoadConfig();
  const std::lock_guard<std::mutex> lock(mutex_);
  load_result_ = code;
}

namespace {

velhal::LazyInstance<HardwareConfig>& Instance() {
  static velhal::LazyInstance<HardwareConfig> instance;
  return instance;
}

void ForgetInstance() { Instance().Forget(); }

}  // namespace

const HardwareConfig& HardwareConfig::GetInstance() {
  return Instance().Get([] {
    velhal::RegisterProcessStateReset(&ForgetInstance);
    return std::unique_ptr<HardwareConfig>(new HardwareConfig());
  });
}

int HardwareConfig::LoadConfig() {
  return velhal::CallGuarded(static_cast<int>(velhal::firmware::kConfigUnreadable), [&] {
    const std::optional<std::wstring> path =
        velhal::firmware::ProductAdapterPath(L"HardwareConfig.xml");
    if (!path) return static_cast<int>(velhal::firmware::kConfigNoPath);
    if (!velhal::firmware::FileExists(*path)) return static_cast<int>(velhal::firmware::kConfigMissing);
    return InitHardwareConfigNode(*path);
  });
}

int HardwareConfig::InitHardwareConfigNode(const std::wstring& path) {
  const velhal::firmware::ChildText vendors =
      velhal::firmware::ReadFirstChildText(path, L"hardwareVendor");
  if (vendors.code != velhal::firmware::kConfigLoaded) return vendors.code;
  if (vendors.text) InitHardwareConfigInfo(*vendors.text);  // missing: the list stays
  return velhal::firmware::kConfigLoaded;
}

void HardwareConfig::InitHardwareConfigInfo(const std::wstring& vendorText) {
  std::vector<std::string> vendors = velhal::identity::ParseVendorList(WideToAnsi(vendorText));
  const std::lock_guard<std::mutex> lock(mutex_);
  audio_vendors_ = std::move(vendors);
}

void HardwareConfig::ResetFeatureStatus() {}

int HardwareConfig::GetAudioVendor(std::vector<std::string>& vendors) const {
  return velhal::CallGuarded(static_cast<int>(velhal::firmware::kConfigUnreadable), [&] {
    const std::lock_guard<std::mutex> lock(mutex_);
    vendors = audio_vendors_;
    return load_result_;
  });
}

int HardwareConfig::Reset() {
  const int code = LoadConfig();
  const std::lock_guard<std::mutex> lock(mutex_);
  load_result_ = code;
  return code;
}
