// One typed owner per kind of operating-system resource. The traits name the invalid value
// and how to close; the owner closes exactly once and keeps the thread's last error intact,
// so a failure code read after cleanup is still the failing call's own. Each facility header
// in platform/os/ declares the traits and owner of its own resources, closing through itself,
// so fakes see every close.
#pragma once

#include <utility>

#include "platform/win32.h"

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

}  // namespace velhal
