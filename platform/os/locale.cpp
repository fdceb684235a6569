// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/locale.h"

namespace velhal::os {
namespace {

class RealLocale final : public Locale {
 public:
  LANGID GetUserDefaultUILanguage() override { return ::GetUserDefaultUILanguage(); }
  LANGID GetSystemDefaultUILanguage() override { return ::GetSystemDefaultUILanguage(); }
  int GetUserDefaultLocaleName(wchar_t* name, int size) override {
    return ::GetUserDefaultLocaleName(name, size);
  }
  int GetSystemDefaultLocaleName(wchar_t* name, int size) override {
    return ::GetSystemDefaultLocaleName(name, size);
  }
  int LCIDToLocaleName(LCID locale, wchar_t* name, int size, DWORD flags) override {
    return ::LCIDToLocaleName(locale, name, size, flags);
  }
  DWORD GetDynamicTimeZoneInformation(DYNAMIC_TIME_ZONE_INFORMATION* zone) override {
    return ::GetDynamicTimeZoneInformation(zone);
  }
};

}  // namespace

Locale& Locale::Real() noexcept {
  static RealLocale backend;
  return backend;
}

}  // namespace velhal::os
