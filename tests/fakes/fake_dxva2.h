// The monitor-configuration library as a test sets it: dxva2.dll in the fake module's system
// folder, and the physical monitors of each desktop monitor (FakeDisplay's HMONITOR is the
// desktop entry's index + 1) with the brightness range each reports over DDC/CI. Physical
// monitors handed out and not destroyed are counted.
#pragma once

#include "platform/win32.h"

#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "platform/os/dxva2.h"
#include "tests/fakes/fake_module.h"

namespace velhal::testing {

class FakeDxva2 {
 public:
  struct Physical {
    DWORD minimum, current, maximum;
    BOOL answers = TRUE;  // FALSE: the monitor does not speak DDC/CI
  };

  explicit FakeDxva2(FakeModule& module) : module_(module) {
    module_.libraries[path_]
        .Procedure(os::dxva2::kEntryNames[0], &Count)
        .Procedure(os::dxva2::kEntryNames[1], &Monitors)
        .Procedure(os::dxva2::kEntryNames[2], &Brightness)
        .Procedure(os::dxva2::kEntryNames[3], &Destroy);
    active_ = this;
  }
  ~FakeDxva2() {
    module_.libraries.erase(path_);
    EXPECT_EQ(handed_out, 0) << "physical monitors were not destroyed";
  }

  std::map<size_t, std::vector<Physical>> monitors;  // by desktop index
  int handed_out = 0;

 private:
  static std::vector<Physical>& Of(HMONITOR monitor) {
    return active_->monitors[reinterpret_cast<size_t>(monitor) - 1];
  }
  static BOOL WINAPI Count(HMONITOR monitor, DWORD* count) {
    *count = static_cast<DWORD>(Of(monitor).size());
    return TRUE;
  }
  static BOOL WINAPI Monitors(HMONITOR monitor, DWORD count, PHYSICAL_MONITOR* out) {
    if (count != Of(monitor).size()) return FALSE;
    for (DWORD i = 0; i < count; ++i) out[i].hPhysicalMonitor = &Of(monitor)[i];
    active_->handed_out += static_cast<int>(count);
    return TRUE;
  }
  static BOOL WINAPI Brightness(HANDLE handle, DWORD* minimum, DWORD* current, DWORD* maximum) {
    const Physical& physical = *static_cast<const Physical*>(handle);
    *minimum = physical.minimum;
    *current = physical.current;
    *maximum = physical.maximum;
    return physical.answers;
  }
  static BOOL WINAPI Destroy(DWORD count, PHYSICAL_MONITOR*) {
    active_->handed_out -= static_cast<int>(count);
    return TRUE;
  }

  static inline FakeDxva2* active_ = nullptr;
  FakeModule& module_;
  const std::wstring path_ = module_.system_directory + os::dxva2::kLibrary;
};

}  // namespace velhal::testing
