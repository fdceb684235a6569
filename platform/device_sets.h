// The device information sets the read paths walk. Inside a batch each set (its class or none,
// and its flags) is opened once on the thread and kept until the batch ends: a snapshot, like
// the batch's WMI rows. Outside a batch each call opens its own. Calls that change devices open
// their own sets and then forget the kept ones, so reads after them in the batch see the change.
#pragma once

#include "platform/win32.h"

#include <memory>

#include "platform/os/device_database.h"

namespace velhal {

class DeviceSetForReading {
 public:
  // SetupDiGetClassDevsW(class_guid, nullptr, nullptr, flags).
  DeviceSetForReading(const GUID* class_guid, DWORD flags);

  bool IsValid() const noexcept { return set_ && set_->IsValid(); }
  HDEVINFO Get() const noexcept { return set_ ? set_->Get() : INVALID_HANDLE_VALUE; }

 private:
  std::shared_ptr<const UniqueDeviceInfoSet> set_;
};

// After a call that removed, enabled, disabled or rescanned devices.
void ForgetKeptDeviceSets();

}  // namespace velhal
