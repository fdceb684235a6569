#include "firmware/hardware_config.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/identity.h"
#include "firmware/config_files.h"
#include "platform/boundary.h"
#include "platform/lazy_instance.h"
#include "platform/process_state.h"
#include "platform/string_conversion.h"

// The header starts the load result at "no file" without the internal codes.
static_assert(velhal::firmware::kConfigMissing == -4);

namespace {

// The list from the element's text: newlines removed, the whole trimmed of spaces, split at ";".
std::vector<std::string> InitHardwareConfigInfo(const std::wstring& vendorText) {
  return velhal::identity::ParseVendorList(WideToAnsi(vendorText));
}

// Loads the file at path as it stands and parses it: 0, -5 or -6, and the vendor list when the
// "hardwareVendor" element is there (a missing one leaves the caller's list as it was).
int InitHardwareConfigNode(const std::wstring& path,
                           std::optional<std::vector<std::string>>& vendors) {
  const velhal::firmware::ChildText found =
      velhal::firmware::ReadFirstChildText(path, L"hardwareVendor");
  if (found.code != velhal::firmware::kConfigLoaded) return found.code;
  if (found.text) vendors = InitHardwareConfigInfo(*found.text);
  return velhal::firmware::kConfigLoaded;
}

velhal::LazyInstance<HardwareConfig>& Instance() {
  static velhal::LazyInstance<HardwareConfig> instance;
  return instance;
}

void ForgetInstance() { Instance().Forget(); }

}  // namespace

const HardwareConfig& HardwareConfig::GetInstance() {
  return Instance().Get([] {
    velhal::RegisterProcessStateReset(&ForgetInstance);
    std::unique_ptr<HardwareConfig> config(new HardwareConfig());
    config->Reset();  // the first load, its code kept
    return config;
  });
}

int HardwareConfig::LoadConfig() {
  return velhal::CallGuarded(static_cast<int>(velhal::firmware::kConfigUnreadable), [&] {
    const std::optional<std::wstring> path =
        velhal::firmware::ProductAdapterPath(L"HardwareConfig.xml");
    if (!path) return static_cast<int>(velhal::firmware::kConfigNoPath);
    if (!velhal::firmware::FileExists(*path))
      return static_cast<int>(velhal::firmware::kConfigMissing);
    std::optional<std::vector<std::string>> vendors;
    const int code = InitHardwareConfigNode(*path, vendors);
    if (vendors) {
      const std::lock_guard<std::mutex> lock(mutex_);
      audio_vendors_ = std::move(*vendors);
    }
    return code;
  });
}

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
