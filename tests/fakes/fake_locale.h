// Languages, locales and the time zone as a test sets them. Locale names are known for the
// languages in names (by LANGID); another language has none (LCIDToLocaleName answers 0).
#pragma once

#include "platform/win32.h"

#include <map>
#include <string>

#include "platform/os/locale.h"
#include "tests/fakes/fake_common.h"

namespace velhal::testing {

class FakeLocale final : public os::Locale {
 public:
  LANGID user_ui_language = 0x0409;
  LANGID system_ui_language = 0x0409;
  std::wstring user_locale = L"en-US";
  std::wstring system_locale = L"en-US";
  std::map<LANGID, std::wstring> names = {{0x0409, L"en-US"}};
  DYNAMIC_TIME_ZONE_INFORMATION zone{};
  DWORD zone_id = TIME_ZONE_ID_UNKNOWN;  // what GetDynamicTimeZoneInformation answers

  LANGID GetUserDefaultUILanguage() override { return user_ui_language; }
  LANGID GetSystemDefaultUILanguage() override { return system_ui_language; }
  int GetUserDefaultLocaleName(wchar_t* name, int size) override {
    return Copy(user_locale, name, size);
  }
  int GetSystemDefaultLocaleName(wchar_t* name, int size) override {
    return Copy(system_locale, name, size);
  }
  int LCIDToLocaleName(LCID locale, wchar_t* name, int size, DWORD) override {
    const auto found = names.find(LANGIDFROMLCID(locale));
    return found == names.end() ? Copy(L"", name, size) : Copy(found->second, name, size);
  }
  DWORD GetDynamicTimeZoneInformation(DYNAMIC_TIME_ZONE_INFORMATION* out) override {
    *out = zone;
    return zone_id;
  }

 private:
  // Characters written with the NUL, or 0 (and the last error) when there is nothing to write
  // or no room.
  static int Copy(const std::wstring& text, wchar_t* name, int size) {
    if (text.empty()) return Fail(ERROR_INVALID_PARAMETER);
    if (static_cast<size_t>(size) <= text.size()) return Fail(ERROR_INSUFFICIENT_BUFFER);
    text.copy(name, text.size());
    name[text.size()] = L'\0';
    return static_cast<int>(text.size() + 1);
  }
};

}  // namespace velhal::testing
