// Owns one COM reference. Out-parameters of COM calls go through Put(), which releases what
// was held first, so no reference is ever dropped or released twice.
#pragma once

#include <utility>

#include "platform/win32.h"

namespace velhal {

template <class T>
class ComPtr {
 public:
  ComPtr() noexcept = default;
  ComPtr(const ComPtr& other) noexcept : ptr_(other.ptr_) { AddRef(); }
  ComPtr(ComPtr&& other) noexcept : ptr_(std::exchange(other.ptr_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(ptr_, other.ptr_);
    return *this;
  }
  ~ComPtr() { Reset(); }

  // Takes over a reference the caller already owns.
  static ComPtr Attach(T* ptr) noexcept {
    ComPtr owned;
    owned.ptr_ = ptr;
    return owned;
  }

  T* Get() const noexcept { return ptr_; }
  T* operator->() const noexcept { return ptr_; }
  explicit operator bool() const noexcept { return ptr_ != nullptr; }

  T** Put() noexcept {
    Reset();
    return &ptr_;
  }
  void** PutVoid() noexcept { return reinterpret_cast<void**>(Put()); }

  void Reset() noexcept {
    if (T* old = std::exchange(ptr_, nullptr)) old->Release();
  }
  [[nodiscard]] T* Detach() noexcept { return std::exchange(ptr_, nullptr); }

 private:
  void AddRef() noexcept {
    if (ptr_ != nullptr) ptr_->AddRef();
  }

  T* ptr_ = nullptr;
};

}  // namespace velhal
