#include "platform/display_config.h"

#include <algorithm>

#include "platform/os/display.h"

namespace velhal {
namespace {

constexpr UINT32 kMaxDisplayConfigEntries = 61'440;

}  // namespace

std::optional<DisplayConfig> ActiveDisplayConfig() {
  UINT32 path_count = 0, mode_count = 0;
  if (os::display().GetDisplayConfigBufferSizes(QDC_ONLY_ACTIVE_PATHS, &path_count, &mode_count) !=
          ERROR_SUCCESS ||
      path_count < 1 || path_count > kMaxDisplayConfigEntries || mode_count < 1 ||
      mode_count > kMaxDisplayConfigEntries) {
    return std::nullopt;
  }
  DisplayConfig config{std::vector<DISPLAYCONFIG_PATH_INFO>(path_count),
                       std::vector<DISPLAYCONFIG_MODE_INFO>(mode_count)};
  if (os::display().QueryDisplayConfig(QDC_ONLY_ACTIVE_PATHS, &path_count, config.paths.data(),
                                       &mode_count, config.modes.data(),
                                       nullptr) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  config.paths.resize(std::min<size_t>(path_count, config.paths.size()));
  config.modes.resize(std::min<size_t>(mode_count, config.modes.size()));
  return config;
}

std::wstring MonitorDeviceId(const std::wstring& interface_name) {
  const size_t model = interface_name.find(L'#');
  if (model == std::wstring::npos) return {};
  const size_t instance = interface_name.find(L'#', model + 1);
  if (instance == std::wstring::npos) return {};
  const size_t end = interface_name.find(L'#', instance + 1);
  if (end == std::wstring::npos || instance == model + 1 || end == instance + 1) return {};
  std::wstring id = L"DISPLAY\\" + interface_name.substr(model + 1, instance - model - 1) + L"\\" +
                    interface_name.substr(instance + 1, end - instance - 1);
  for (wchar_t& c : id) {
    if (c >= L'a' && c <= L'z') c = static_cast<wchar_t>(c - L'a' + L'A');
  }
  return id;
}

}  // namespace velhal
