// One typed owner per kind of operating-system resource. The traits name the invalid value
// and how to close; the owner closes exactly once and keeps the thread's last error intact,
// so a failure code read after cleanup is still the failing call's own.
#pragma once

#include <utility>

#include "platform/win32.h"
#include "platform/os/device_database.h"
#include "platform/os/device_io.h"
#include "platform/os/registry.h"
#include "platform/os/service_control.h"

namespace velhal {

template <class Traits>
class UniqueResource {
 public:
  using Handle = typename Traits::Handle;

  UniqueResource() noexcept = default;
  explicit UniqueResource(Handle handle) noexcept : handle_(handle) {}
  UniqueResource(UniqueResource&& other) noexcept : handle_(other.Release()) {}
  UniqueResource& operator=(UniqueResource&& other) noexcept {
    Reset(other.Release());
    return *this;
  }
  UniqueResource(const UniqueResource&) = delete;
  UniqueResource& operator=(const UniqueResource&) = delete;
  ~UniqueResource() { Reset(); }

  bool IsValid() const noexcept { return Traits::IsValid(handle_); }
  Handle Get() const noexcept { return handle_; }
  [[nodiscard]] Handle Release() noexcept { return std::exchange(handle_, Traits::Invalid()); }

  void Reset(Handle handle = Traits::Invalid()) noexcept {
    if (Traits::IsValid(handle_)) {
      const DWORD last_error = ::GetLastError();
      Traits::Close(handle_);
      ::SetLastError(last_error);
    }
    handle_ = handle;
  }

  // For out-parameters of the opening call: closes what is held and hands out the slot.
  Handle* Put() noexcept {
    Reset();
    return &handle_;
  }

 private:
  Handle handle_ = Traits::Invalid();
};

struct RegistryKeyTraits {
  using Handle = HKEY;
  static HKEY Invalid() noexcept { return nullptr; }
  static bool IsValid(HKEY key) noexcept { return key != nullptr; }
  static void Close(HKEY key) noexcept { os::registry().RegCloseKey(key); }
};
// Never adopt a predefined root such as HKEY_LOCAL_MACHINE: it would be closed.
using UniqueRegistryKey = UniqueResource<RegistryKeyTraits>;

struct DeviceInfoSetTraits {
  using Handle = HDEVINFO;
  static HDEVINFO Invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static bool IsValid(HDEVINFO set) noexcept {
    return set != INVALID_HANDLE_VALUE && set != nullptr;
  }
  static void Close(HDEVINFO set) noexcept { os::device_database().SetupDiDestroyDeviceInfoList(set); }
};
using UniqueDeviceInfoSet = UniqueResource<DeviceInfoSetTraits>;

struct FileHandleTraits {
  using Handle = HANDLE;
  static HANDLE Invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static bool IsValid(HANDLE handle) noexcept {
    return handle != INVALID_HANDLE_VALUE && handle != nullptr;
  }
  static void Close(HANDLE handle) noexcept { os::device_io().CloseHandle(handle); }
};
using UniqueFileHandle = UniqueResource<FileHandleTraits>;

struct ServiceHandleTraits {
  using Handle = SC_HANDLE;
  static SC_HANDLE Invalid() noexcept { return nullptr; }
  static bool IsValid(SC_HANDLE handle) noexcept { return handle != nullptr; }
  static void Close(SC_HANDLE handle) noexcept { os::service_control().CloseServiceHandle(handle); }
};
using UniqueServiceHandle = UniqueResource<ServiceHandleTraits>;

}  // namespace velhal
