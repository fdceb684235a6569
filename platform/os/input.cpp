// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/input.h"

namespace velhal::os {
namespace {

class RealInput final : public Input {
 public:
  BOOL GetKeyboardLayoutNameW(wchar_t name[KL_NAMELENGTH]) override {
    return ::GetKeyboardLayoutNameW(name);
  }
  HKL GetKeyboardLayout(DWORD thread) override { return ::GetKeyboardLayout(thread); }
  int GetKeyboardLayoutList(int count, HKL* layouts) override {
    return ::GetKeyboardLayoutList(count, layouts);
  }
  int GetKeyboardType(int what) override { return ::GetKeyboardType(what); }
};

}  // namespace

Input& Input::Real() noexcept {
  static RealInput backend;
  return backend;
}

}  // namespace velhal::os
