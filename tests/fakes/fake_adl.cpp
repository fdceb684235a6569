#include "tests/fakes/fake_adl.h"

#include <gtest/gtest.h>

#include <cstring>

namespace velhal::testing {

namespace adl = os::adl;

FakeAdl* FakeAdl::active_ = nullptr;

FakeAdl::FakeAdl(FakeModule& module)
    : module_(module), path_(module.system_directory + L"\\atiadlxx.dll") {
  FakeModule::Library& library = module_.libraries[path_];
  for (const char* name : adl::kEntryNames) library.Procedure(name, &NotCalled);
  library.Procedure(adl::kEntryNames[adl::kMainControlX2Create], &ControlX2Create)
      .Procedure(adl::kEntryNames[adl::kMainControlDestroy], &ControlDestroy)
      .Procedure(adl::kEntryNames[adl::kAdapterNumberOfAdaptersGet], &NumberOfAdapters)
      .Procedure(adl::kEntryNames[adl::kAdapterAdapterInfoX2Get], &AdapterInfoX2)
      .Procedure(adl::kEntryNames[adl::kDisplayDisplayInfoGet], &DisplayInfo)
      .Procedure(adl::kEntryNames[adl::kDisplayColorCapsGet], &ColorCaps)
      .Procedure(adl::kEntryNames[adl::kDisplayColorGet], &ColorGet)
      .Procedure(adl::kEntryNames[adl::kDisplayColorSet], &ColorSetFn)
      .Procedure(adl::kEntryNames[adl::kDisplayColorTemperatureSourceSet], &SourceSet);
  active_ = this;
}

FakeAdl::~FakeAdl() {
  active_ = nullptr;
  module_.libraries.erase(path_);
  EXPECT_EQ(contexts_open, 0) << "an ADL context was left open";
}

void FakeAdl::RemoveEntryPoint(const char* name) {
  module_.libraries[path_].procedures.erase(name);
}

int FakeAdl::ControlX2Create(adl::MallocCallback allocate, int enumerate, adl::Context* context,
                             int threading_model) {
  FakeAdl& self = *active_;
  self.threading = threading_model;
  if (self.create_result != adl::kOk || enumerate != 1) return self.create_result;
  self.allocate_ = allocate;
  ++self.contexts_open;
  *context = &self;
  return adl::kOk;
}

int FakeAdl::ControlDestroy(adl::Context context) {
  --Of(context).contexts_open;
  return adl::kOk;
}

int FakeAdl::NumberOfAdapters(adl::Context context, int* count) {
  *count = static_cast<int>(Of(context).adapters.size());
  return adl::kOk;
}

int FakeAdl::AdapterInfoX2(adl::Context context, adl::AdapterInfo** out) {
  FakeAdl& self = Of(context);
  const size_t count = self.adapters.size();
  auto* infos = static_cast<adl::AdapterInfo*>(
      self.allocate_(static_cast<int>((count ? count : 1) * sizeof(adl::AdapterInfo))));
  for (size_t i = 0; i < count; ++i) {
    std::memset(&infos[i], 0, sizeof(infos[i]));
    infos[i].iSize = sizeof(adl::AdapterInfo);
    infos[i].iAdapterIndex = self.adapters[i].index;
  }
  *out = infos;
  return adl::kOk;
}

int FakeAdl::DisplayInfo(adl::Context context, int adapter, int* count, adl::DisplayInfo** out,
                         int) {
  FakeAdl& self = Of(context);
  for (const Adapter& candidate : self.adapters) {
    if (candidate.index != adapter) continue;
    const size_t n = candidate.displays.size();
    auto* infos = static_cast<adl::DisplayInfo*>(
        self.allocate_(static_cast<int>((n ? n : 1) * sizeof(adl::DisplayInfo))));
    for (size_t d = 0; d < n; ++d) {
      std::memset(&infos[d], 0, sizeof(infos[d]));
      infos[d].displayID.iDisplayLogicalIndex = candidate.displays[d].logical_index;
      infos[d].displayID.iDisplayLogicalAdapterIndex = candidate.displays[d].logical_adapter;
      infos[d].iDisplayInfoValue = candidate.displays[d].info_value;
    }
    *count = static_cast<int>(n);
    *out = infos;
    return adl::kOk;
  }
  return -3;  // ADL_ERR_INVALID_ADL_IDX
}

int FakeAdl::ColorCaps(adl::Context context, int, int, int* caps_out, int* valids_out) {
  *caps_out = Of(context).caps;
  *valids_out = Of(context).valids;
  return adl::kOk;
}

int FakeAdl::ColorGet(adl::Context context, int, int, int type, int* current, int* default_value,
                      int* minimum, int* maximum, int* step) {
  FakeAdl& self = Of(context);
  const auto found = self.ranges.find(type);
  if (found == self.ranges.end()) return -1;
  *current = found->second.current;
  *default_value = found->second.default_value;
  *minimum = found->second.minimum;
  *maximum = found->second.maximum;
  *step = found->second.step;
  return adl::kOk;
}

int FakeAdl::ColorSetFn(adl::Context context, int adapter, int display, int type, int value) {
  FakeAdl& self = Of(context);
  self.sets.push_back({adapter, display, type, value});
  return self.set_result;
}

int FakeAdl::SourceSet(adl::Context context, int, int, int source) {
  FakeAdl& self = Of(context);
  self.sources.push_back(source);
  return self.source_result;
}

}  // namespace velhal::testing
