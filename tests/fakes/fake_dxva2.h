// The monitor-configuration library as a test sets it: dxva2.dll in the fake module's system
// folder, its physical monitors per desktop monitor (FakeDisplay's HMONITOR is the desktop
// entry's index + 1) with the brightness range each reports over DDC/CI. Physical monitors
// handed out and not destroyed are counted.
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
    DWORD minimum = 0, current = 0, maximum = 100;
    BOOL answers = TRUE;  // FALSE: the monitor does not speak DDC/CI
  };

  explicit FakeDxva2(FakeModule& module)
      : module_(module), path_(module.system_directory + os::dxva2::kLibrary) {
    module_.libraries[path_]
        .Procedure(os::dxva2::kEntryNames[0], &Count)
        .Procedure(os::dxva2::kEntryNames[1], &Monitors)
        .Procedure(os::dxva2::kEntryNames[2], &Brightness)
        .Procedure(os::dxva2::kEntryNames[3], &Destroy);
    active_ = this;
  }
  ~FakeDxva2() {
    active_ = nullptr;
    module_.libraries.erase(path_);
    EXPECT_EQ(handed_out, 0) << "physical monitors were not destroyed";
  }
  FakeDxva2(const FakeDxva2&) = delete;
  FakeDxva2& operator=(const FakeDxva2&) = delete;

  std::map<size_t, std::vector<Physical>> monitors;  // by desktop index
  int handed_out = 0;

 private:
  static const std::vector<Physical>* Of(HMONITOR monitor) {
    const auto found = active_->monitors.find(reinterpret_cast<size_t>(monitor) - 1);
    return found == active_->monitors.end() ? nullptr : &found->second;
  }
  static BOOL WINAPI Count(HMONITOR monitor, DWORD* count) {
    const std::vector<Physical>* physical = Of(monitor);
    *count = physical ? static_cast<DWORD>(physical->size()) : 0;
    return physical != nullptr;
  }
  static BOOL WINAPI Monitors(HMONITOR monitor, DWORD count, PHYSICAL_MONITOR* out) {
    const std::vector<Physical>* physical = Of(monitor);
    if (physical == nullptr || count != physical->size()) return FALSE;
    for (DWORD i = 0; i < count; ++i)
      out[i].hPhysicalMonitor = const_cast<Physical*>(&(*physical)[i]);
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
  std::wstring path_;
};

}  // namespace velhal::testing
