// The keyboard as a test sets it: the active layout's name, the loaded layouts (the first is
// the active one) and the keyboard type by GetKeyboardType's argument.
#pragma once

#include "platform/win32.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "platform/os/input.h"
#include "tests/fakes/fake_common.h"

namespace velhal::testing {

class FakeInput final : public os::Input {
 public:
  std::wstring layout_name = L"00000409";  // empty: GetKeyboardLayoutNameW fails
  std::vector<HKL> layouts = {reinterpret_cast<HKL>(0x04090409)};
  std::map<int, int> keyboard_type = {{0, 4}, {1, 0}, {2, 12}};

  BOOL GetKeyboardLayoutNameW(wchar_t name[KL_NAMELENGTH]) override {
    if (layout_name.empty() || layout_name.size() >= KL_NAMELENGTH) return Fail(ERROR_INVALID_DATA);
    layout_name.copy(name, layout_name.size());
    name[layout_name.size()] = L'\0';
    return TRUE;
  }
  HKL GetKeyboardLayout(DWORD) override { return layouts.empty() ? nullptr : layouts.front(); }
  int GetKeyboardLayoutList(int count, HKL* out) override {
    if (count == 0) return static_cast<int>(layouts.size());
    const int copied = std::min(count, static_cast<int>(layouts.size()));
    std::copy(layouts.begin(), layouts.begin() + copied, out);
    return copied;
  }
  int GetKeyboardType(int what) override {
    const auto found = keyboard_type.find(what);
    return found == keyboard_type.end() ? 0 : found->second;
  }
};

}  // namespace velhal::testing
