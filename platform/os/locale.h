// Locale facility: the national-language settings of the user and the system (interface
// languages, locales) and the time zone.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

namespace velhal::os {

class Locale {
 public:
  virtual LANGID GetUserDefaultUILanguage() = 0;
  virtual LANGID GetSystemDefaultUILanguage() = 0;
  virtual int GetUserDefaultLocaleName(wchar_t* name, int size) = 0;
  virtual int GetSystemDefaultLocaleName(wchar_t* name, int size) = 0;
  virtual int LCIDToLocaleName(LCID locale, wchar_t* name, int size, DWORD flags) = 0;
  virtual DWORD GetDynamicTimeZoneInformation(DYNAMIC_TIME_ZONE_INFORMATION* zone) = 0;

  static Locale& Real() noexcept;

 protected:
  ~Locale() = default;
};

inline Locale& locale() noexcept { return Seam<Locale>::Get(); }

}  // namespace velhal::os
