// Single-value registry access under HKEY_LOCAL_MACHINE, always in the 64-bit view.
// Each operation opens the key, does one thing and closes it; keys are never created.
// WrightLocalMachineRegDW and WrightLocalMachineRegExpandRZ are spelt so in the export table,
// and hosts bind those names.
#pragma once

#include <string>

#include "hal/velhal_export.h"

static_assert(sizeof(unsigned long) == 4, "unsigned long is DWORD on Windows");

class VELHAL_API ReadReg {
 public:
  // REG_DWORD (the stored type is not checked: any value of up to 4 bytes reads).
  // On failure the output is 0.
  static bool ReadLocalMachineRegDW(const std::wstring& key, const std::wstring& valueName,
                                    unsigned long& value);
  // REG_SZ / REG_EXPAND_SZ, at most 259 characters plus NUL; nothing is expanded and the stored
  // type is not checked. The output is empty on failure, including a longer value.
  static bool ReadLocalMachineRegRZ(const std::wstring& key, const std::wstring& valueName,
                                    std::wstring& value);
  static bool ReadLocalMachineRegExpandRZ(const std::wstring& key, const std::wstring& valueName,
                                          std::wstring& value);

  // Writes into an existing key only.
  static bool WrightLocalMachineRegDW(const std::wstring& key, const std::wstring& valueName,
                                      unsigned long value);
  static bool WriteLocalMachineRegRZ(const std::wstring& key, const std::wstring& valueName,
                                     const std::wstring& value);
  static bool WrightLocalMachineRegExpandRZ(const std::wstring& key, const std::wstring& valueName,
                                            const std::wstring& value);
};
