#include "platform/device_sets.h"

#include "platform/batch.h"

namespace velhal {
namespace {

// What a set was asked for, without padding so that its bytes are its value.
struct Asked {
  GUID class_guid;
  DWORD flags;
  DWORD has_class;
};

std::shared_ptr<const UniqueDeviceInfoSet> Open(const Asked& asked) {
  return std::make_shared<const UniqueDeviceInfoSet>(os::device_database().SetupDiGetClassDevsW(
      asked.has_class ? &asked.class_guid : nullptr, nullptr, nullptr, asked.flags));
}

// A set that could not be opened is not kept: the next call tries again.
bool Opened(const UniqueDeviceInfoSet& set) { return set.IsValid(); }

}  // namespace

DeviceSetForReading::DeviceSetForReading(const GUID* class_guid, DWORD flags) {
  Asked asked{};
  asked.flags = flags;
  if (class_guid != nullptr) {
    asked.class_guid = *class_guid;
    asked.has_class = 1;
  }
  set_ = batch::KeptFor(&Open, asked, &Opened);
}

void ForgetKeptDeviceSets() { batch::Forget(&Open); }

}  // namespace velhal
