// AMD Display Library facility: atiadlxx.dll from the system folder, bound at run time through
// the module facility into a table of its entry points. A fake ADL is a library of fake entry
// points in the fake module's table. Types and calls as the ADL SDK publishes them.
#pragma once

#include "platform/win32.h"

#include <array>
#include <cstddef>

#include "platform/os/module.h"

namespace velhal::os::adl {

inline constexpr int kOk = 0;
inline constexpr int kThreadingLocked = 1;  // ADL serialises calls on a context
inline constexpr int kMaxPath = 256;
inline constexpr int kDisplayMapped = 0x2;  // in DisplayInfo::iDisplayInfoValue
inline constexpr int kColorBrightness = 0x01;
inline constexpr int kColorTemperature = 0x10;
inline constexpr int kTemperatureSourceUser = 0x40;

struct AdapterInfo {
  int iSize;
  int iAdapterIndex;
  char strUDID[kMaxPath];
  int iBusNumber;
  int iDeviceNumber;
  int iFunctionNumber;
  int iVendorID;
  char strAdapterName[kMaxPath];
  char strDisplayName[kMaxPath];
  int iPresent;
  int iExist;
  char strDriverPath[kMaxPath];
  char strDriverPathExt[kMaxPath];
  char strPNPString[kMaxPath];
  int iOSDisplayIndex;
};

struct DisplayId {
  int iDisplayLogicalIndex;
  int iDisplayPhysicalIndex;
  int iDisplayLogicalAdapterIndex;
  int iDisplayPhysicalAdapterIndex;
};

struct DisplayInfo {
  DisplayId displayID;
  int iDisplayControllerIndex;
  char strDisplayName[kMaxPath];
  char strDisplayManufacturerName[kMaxPath];
  int iDisplayType;
  int iDisplayOutputType;
  int iDisplayConnector;
  int iDisplayInfoMask;
  int iDisplayInfoValue;
};

using Context = void*;
// ADL allocates the arrays it returns through this; the caller frees them with free().
using MallocCallback = void*(__stdcall*)(int size);
using ControlX2CreateFn = int (*)(MallocCallback, int enumerate_connected, Context*, int threading);
using ControlDestroyFn = int (*)(Context);
using NumberOfAdaptersFn = int (*)(Context, int* count);
using AdapterInfoX2Fn = int (*)(Context, AdapterInfo** adapters);
using DisplayInfoFn = int (*)(Context, int adapter, int* count, DisplayInfo** displays,
                              int force_detect);
using ColorCapsFn = int (*)(Context, int adapter, int display, int* caps, int* valids);
using ColorGetFn = int (*)(Context, int adapter, int display, int type, int* current,
                           int* default_value, int* minimum, int* maximum, int* step);
using ColorSetFn = int (*)(Context, int adapter, int display, int type, int value);
using TemperatureSourceSetFn = int (*)(Context, int adapter, int display, int source);

// Every entry point the library requires, in the order they are bound; only some are called.
// V1 marks the context-free ADL_ functions beside their ADL2_ successors.
enum Entry : size_t {
  kMainControlCreate,
  kMainControlDestroy,
  kDisplayModesGet,
  kAdapterActiveGet,
  kDisplayColorCapsGet,
  kAdapterNumberOfAdaptersGetV1,
  kAdapterAdapterInfoGetV1,
  kDisplayDisplayInfoGetV1,
  kDisplayColorCapsGetV1,
  kDisplayColorGetV1,
  kMainControlX2Create,
  kDisplayDisplayInfoGet,
  kDisplayColorGet,
  kAdapterAdapterInfoX2Get,
  kAdapterNumberOfAdaptersGet,
  kDisplaySharpnessInfoGetV1,
  kDisplaySharpnessGetV1,
  kDisplaySharpnessSetV1,
  kDisplaySharpnessCapsV1,
  kDisplayColorTemperatureSourceSet,
  kDisplayColorSet,
  kEntryCount
};

inline constexpr std::array<const char*, kEntryCount> kEntryNames = {
    "ADL2_Main_Control_Create",
    "ADL2_Main_Control_Destroy",
    "ADL2_Display_Modes_Get",
    "ADL2_Adapter_Active_Get",
    "ADL2_Display_ColorCaps_Get",
    "ADL_Adapter_NumberOfAdapters_Get",
    "ADL_Adapter_AdapterInfo_Get",
    "ADL_Display_DisplayInfo_Get",
    "ADL_Display_ColorCaps_Get",
    "ADL_Display_Color_Get",
    "ADL2_Main_ControlX2_Create",
    "ADL2_Display_DisplayInfo_Get",
    "ADL2_Display_Color_Get",
    "ADL2_Adapter_AdapterInfoX2_Get",
    "ADL2_Adapter_NumberOfAdapters_Get",
    "ADL_Display_Sharpness_Info_Get",
    "ADL_Display_Sharpness_Get",
    "ADL_Display_Sharpness_Set",
    "ADL_Display_Sharpness_Caps",
    "ADL2_Display_ColorTemperatureSource_Set",
    "ADL2_Display_Color_Set",
};

struct EntryPoints {
  std::array<FARPROC, kEntryCount> procedures{};

  bool Complete() const {
    for (const FARPROC procedure : procedures) {
      if (procedure == nullptr) return false;
    }
    return true;
  }
  template <class Function>
  Function As(Entry entry) const {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(procedures[entry]));
  }
};

// Looks every entry point up in library; the table is complete only when all were found.
inline EntryPoints Bind(HMODULE library) {
  EntryPoints table;
  for (size_t i = 0; i < kEntryCount; ++i)
    table.procedures[i] = module().GetProcAddress(library, kEntryNames[i]);
  return table;
}

}  // namespace velhal::os::adl
