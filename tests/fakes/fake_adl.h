// The AMD display library as a test sets it: atiadlxx.dll in the fake module's system folder,
// a table of fake entry points over the test's adapters, displays and colour ranges. Open
// contexts are counted, so a test sees one left open; every set is recorded.
#pragma once

#include "platform/win32.h"

#include <map>
#include <string>
#include <vector>

#include "platform/os/adl.h"
#include "tests/fakes/fake_module.h"

namespace velhal::testing {

class FakeAdl {
 public:
  struct Display {
    int logical_index;
    int logical_adapter;  // the adapter the display belongs to
    int info_value = os::adl::kDisplayMapped;
  };
  struct Adapter {
    int index;
    std::vector<Display> displays;
  };
  struct Range {
    int current, default_value, minimum, maximum, step;
  };
  struct ColorSet {
    int adapter, display, type, value;
  };

  // Puts atiadlxx.dll with all 21 entry points into module's system folder.
  explicit FakeAdl(FakeModule& module);
  ~FakeAdl();
  FakeAdl(const FakeAdl&) = delete;
  FakeAdl& operator=(const FakeAdl&) = delete;

  void RemoveEntryPoint(const char* name);

  std::vector<Adapter> adapters;
  int caps = os::adl::kColorBrightness | os::adl::kColorTemperature;
  int valids = caps;
  std::map<int, Range> ranges;  // by colour type
  int create_result = os::adl::kOk, set_result = os::adl::kOk, source_result = os::adl::kOk;
  std::vector<ColorSet> sets;
  std::vector<int> sources;  // temperature sources set
  int contexts_open = 0;
  int threading = -1;

 private:
  static FakeAdl& Of(os::adl::Context context) { return *static_cast<FakeAdl*>(context); }
  static int ControlX2Create(os::adl::MallocCallback allocate, int enumerate, os::adl::Context*,
                             int threading_model);
  static int ControlDestroy(os::adl::Context context);
  static int NumberOfAdapters(os::adl::Context context, int* count);
  static int AdapterInfoX2(os::adl::Context context, os::adl::AdapterInfo** out);
  static int DisplayInfo(os::adl::Context context, int adapter, int* count,
                         os::adl::DisplayInfo** out, int force);
  static int ColorCaps(os::adl::Context context, int adapter, int display, int* caps_out,
                       int* valids_out);
  static int ColorGet(os::adl::Context context, int adapter, int display, int type, int* current,
                      int* default_value, int* minimum, int* maximum, int* step);
  static int ColorSetFn(os::adl::Context context, int adapter, int display, int type, int value);
  static int SourceSet(os::adl::Context context, int adapter, int display, int source);
  static int NotCalled() { return -1; }

  static FakeAdl* active_;  // ControlX2Create has no context yet: it finds the test's fake here
  FakeModule& module_;
  std::wstring path_;
  os::adl::MallocCallback allocate_ = nullptr;
};

}  // namespace velhal::testing
