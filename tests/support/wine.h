// Test-side helpers for telling Wine from Windows, so a test can skip a known Wine gap with
// its reason instead of weakening an assertion everywhere.
#pragma once

#include "platform/win32.h"

namespace velhal::testing {

inline const char* WineVersion() {
  const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
  if (ntdll == nullptr) return nullptr;
  using WineGetVersion = const char*(__cdecl*)();
  const auto get = reinterpret_cast<WineGetVersion>(
      reinterpret_cast<void*>(::GetProcAddress(ntdll, "wine_get_version")));
  return get ? get() : nullptr;
}

inline bool RunningOnWine() { return WineVersion() != nullptr; }

}  // namespace velhal::testing
