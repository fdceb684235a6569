// The one instance of a process-wide object: made on first use by whichever thread gets there
// first (the others wait for it), destroyed when the library unloads, and forgotten by the
// test reset of platform/process_state.h. Nothing runs at load: sites keep it in a
// function-local static.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

namespace velhal {

template <class T>
class LazyInstance {
 public:
  // make() returns a std::unique_ptr<T>; it runs once, under the lock.
  template <class Make>
  T& Get(Make&& make) {
    if (T* instance = published_.load(std::memory_order_acquire)) return *instance;
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!owned_) {
      owned_ = make();
      published_.store(owned_.get(), std::memory_order_release);
    }
    return *owned_;
  }

  // For the test reset only: callers must hold no reference into the instance.
  void Forget() {
    const std::lock_guard<std::mutex> lock(mutex_);
    published_.store(nullptr, std::memory_order_release);
    owned_.reset();
  }

 private:
  std::atomic<T*> published_{nullptr};
  std::mutex mutex_;
  std::unique_ptr<T> owned_;
};

}  // namespace velhal
