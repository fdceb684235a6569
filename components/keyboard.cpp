#include "platform/win32.h"

#include "components/keyboard.h"

#include "components/class_devices.h"
#include "components/class_driver_version.h"
#include "components/device_kinds.h"
#include "platform/boundary.h"
#include "platform/device_classes.h"
#include "platform/os/input.h"
#include "platform/os/locale.h"

namespace {

namespace components = velhal::components;
using velhal::device_class::kKeyboard;

// The language half of an input-locale identifier, as a locale name.
std::wstring LanguageOf(HKL layout) {
  const LCID language = MAKELCID(LOWORD(reinterpret_cast<uintptr_t>(layout)), SORT_DEFAULT);
  wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
  if (velhal::os::locale().LCIDToLocaleName(language, name, LOCALE_NAME_MAX_LENGTH, 0) == 0) {
    return {};
  }
  return name;
}

uint32_t TypeAnswer(int what) {
  const int answer = velhal::os::input().GetKeyboardType(what);
  return answer > 0 ? static_cast<uint32_t>(answer) : 0;
}

}  // namespace

std::wstring Keyboard::GetDriverVersion() {
  return velhal::CallGuarded(std::wstring{}, [] {
    return components::DriverVersionOfFirstWith(
        kKeyboard, components::FindDeviceKind(DriverType_Keyboard)->Prefixes());
  });
}

bool Keyboard::IsPresent() {
  return velhal::CallGuarded(false, [] { return components::AnyPresentDevice(kKeyboard); });
}

std::vector<ComponentDevice> Keyboard::GetDevices() {
  return velhal::CallGuarded(std::vector<ComponentDevice>{},
                             [] { return components::PresentDevices(kKeyboard); });
}

std::wstring Keyboard::GetLayoutId() {
  return velhal::CallGuarded(std::wstring{}, []() -> std::wstring {
    wchar_t name[KL_NAMELENGTH] = {};
    if (!velhal::os::input().GetKeyboardLayoutNameW(name)) return {};
    return name;
  });
}

std::wstring Keyboard::GetLayoutLanguage() {
  return velhal::CallGuarded(std::wstring{}, []() -> std::wstring {
    const HKL layout = velhal::os::input().GetKeyboardLayout(0);
    return layout != nullptr ? LanguageOf(layout) : std::wstring{};
  });
}

std::vector<std::wstring> Keyboard::GetLayoutLanguages() {
  return velhal::CallGuarded(std::vector<std::wstring>{}, [] {
    std::vector<std::wstring> languages;
    auto& input = velhal::os::input();
    const int count = input.GetKeyboardLayoutList(0, nullptr);
    std::vector<HKL> layouts(static_cast<size_t>(count > 0 ? count : 0));
    const int filled = layouts.empty() ? 0 : input.GetKeyboardLayoutList(count, layouts.data());
    layouts.resize(static_cast<size_t>(filled > 0 ? filled : 0));
    for (const HKL layout : layouts) languages.push_back(LanguageOf(layout));
    return languages;
  });
}

uint32_t Keyboard::GetKeyboardType() {
  return velhal::CallGuarded(0u, [] { return TypeAnswer(0); });
}

uint32_t Keyboard::GetKeyboardSubType() {
  return velhal::CallGuarded(0u, [] { return TypeAnswer(1); });
}

uint32_t Keyboard::GetFunctionKeyCount() {
  return velhal::CallGuarded(0u, [] { return TypeAnswer(2); });
}
