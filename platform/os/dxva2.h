// Monitor configuration (dxva2.dll): the physical monitors behind a desktop monitor and their
// brightness over DDC/CI, bound at run time through the module facility from the system folder.
// A system without it, or without one of the entry points, gives no brightness; Wine has them
// all and answers FALSE with ERROR_CALL_NOT_IMPLEMENTED. A fake is a library of fake entry
// points in the fake module's table.
#pragma once

#include "platform/win32.h"

#include <physicalmonitorenumerationapi.h>

#include <array>

#include "platform/os/module.h"

namespace velhal::os::dxva2 {

using GetNumberOfPhysicalMonitorsFn = BOOL(WINAPI*)(HMONITOR monitor, DWORD* count);
using GetPhysicalMonitorsFn = BOOL(WINAPI*)(HMONITOR monitor, DWORD count,
                                            PHYSICAL_MONITOR* monitors);
using GetMonitorBrightnessFn = BOOL(WINAPI*)(HANDLE physical, DWORD* minimum, DWORD* current,
                                             DWORD* maximum);
using DestroyPhysicalMonitorsFn = BOOL(WINAPI*)(DWORD count, PHYSICAL_MONITOR* monitors);

inline constexpr wchar_t kLibrary[] = L"\\dxva2.dll";
inline constexpr std::array<const char*, 4> kEntryNames = {
    "GetNumberOfPhysicalMonitorsFromHMONITOR", "GetPhysicalMonitorsFromHMONITOR",
    "GetMonitorBrightness", "DestroyPhysicalMonitors"};

// The library, loaded for the owner's lifetime, with its entry points; usable only when all
// were found.
struct Library {
  UniqueModule module;
  GetNumberOfPhysicalMonitorsFn get_count = nullptr;
  GetPhysicalMonitorsFn get_monitors = nullptr;
  GetMonitorBrightnessFn get_brightness = nullptr;
  DestroyPhysicalMonitorsFn destroy = nullptr;

  bool Usable() const { return get_count && get_monitors && get_brightness && destroy; }
};

inline Library Load() {
  Library library;
  const std::wstring path = SystemFolderFile(kLibrary);
  if (path.empty()) return library;
  library.module.Reset(module().LoadLibraryExW(path.c_str(), nullptr, 0));
  if (!library.module.IsValid()) return library;
  const auto find = [&](size_t entry) {
    return reinterpret_cast<void*>(
        module().GetProcAddress(library.module.Get(), kEntryNames[entry]));
  };
  library.get_count = reinterpret_cast<GetNumberOfPhysicalMonitorsFn>(find(0));
  library.get_monitors = reinterpret_cast<GetPhysicalMonitorsFn>(find(1));
  library.get_brightness = reinterpret_cast<GetMonitorBrightnessFn>(find(2));
  library.destroy = reinterpret_cast<DestroyPhysicalMonitorsFn>(find(3));
  return library;
}

}  // namespace velhal::os::dxva2
