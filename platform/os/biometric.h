// Biometric facility: the Windows Biometric Framework's list of biometric units. winbio.dll
// (Windows 7 and later; Wine has none) is bound at run time: without it or a function the call
// answers HRESULT_FROM_WIN32 of ERROR_MOD_NOT_FOUND or ERROR_PROC_NOT_FOUND.
#pragma once

#include "platform/win32.h"

#include "platform/os/seam.h"
#include "platform/unique_resource.h"

namespace velhal::os {

// WINBIO_UNIT_SCHEMA of winbio_types.h, which MinGW lacks: five numbers, five WINBIO_STRINGs of
// 256 UTF-16 units, the firmware version.
struct WinBioUnitSchema {
  ULONG UnitId;
  ULONG PoolType;
  ULONG BiometricFactor;  // WINBIO_TYPE_*: 0x02 facial features, 0x08 fingerprint, 0x10 iris
  ULONG SensorSubType;    // for fingerprints: 1 swipe, 2 touch
  ULONG Capabilities;
  wchar_t DeviceInstanceId[256];
  wchar_t Description[256];
  wchar_t Manufacturer[256];
  wchar_t Model[256];
  wchar_t SerialNumber[256];
  struct {
    ULONG MajorVersion;
    ULONG MinorVersion;
  } FirmwareVersion;
};
static_assert(sizeof(WinBioUnitSchema) == 5 * 4 + 5 * 512 + 8);

class Biometric {
 public:
  virtual HRESULT WinBioEnumBiometricUnits(ULONG factor, WinBioUnitSchema** units,
                                           SIZE_T* count) = 0;
  virtual HRESULT WinBioFree(void* memory) = 0;

  static Biometric& Real() noexcept;

 protected:
  ~Biometric() = default;
};

inline Biometric& biometric() noexcept { return Seam<Biometric>::Get(); }

}  // namespace velhal::os

namespace velhal {

struct WinBioMemoryTraits {
  using Handle = os::WinBioUnitSchema*;
  static Handle Invalid() noexcept { return nullptr; }
  static bool IsValid(Handle memory) noexcept { return memory != nullptr; }
  static void Close(Handle memory) noexcept { os::biometric().WinBioFree(memory); }
};
using UniqueWinBioUnits = UniqueResource<WinBioMemoryTraits>;

}  // namespace velhal
