// Input facility: the keyboard as user32 reports it for the calling thread: the active and
// loaded input layouts, and the keyboard type.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

namespace velhal::os {

class Input {
 public:
  virtual BOOL GetKeyboardLayoutNameW(wchar_t name[KL_NAMELENGTH]) = 0;
  virtual HKL GetKeyboardLayout(DWORD thread) = 0;
  virtual int GetKeyboardLayoutList(int count, HKL* layouts) = 0;
  virtual int GetKeyboardType(int what) = 0;

  static Input& Real() noexcept;

 protected:
  ~Input() = default;
};

inline Input& input() noexcept { return Seam<Input>::Get(); }

}  // namespace velhal::os
