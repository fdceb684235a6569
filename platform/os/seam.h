// Replaceable operating-system backends.
//
// Each facility (registry, debug output, ...) is a small interface whose members mirror the
// Win32 functions they stand for: same names, arguments and result codes, so module code reads
// like ordinary Win32 code. The real backend forwards each member to the Win32 call; tests
// install an in-memory fake with ScopedBackend for the length of a test. Nothing here runs at
// DLL load: the real backend is created on first use.
#pragma once

#include <atomic>

namespace velhal::os {

// Facility must provide `static Facility& Real() noexcept`.
template <class Facility>
class Seam {
 public:
  static Facility& Get() noexcept {
    Facility* installed = installed_.load(std::memory_order_acquire);
    return installed ? *installed : Facility::Real();
  }

  // Returns the backend that was installed before (null meaning the real one).
  static Facility* Install(Facility* backend) noexcept {
    return installed_.exchange(backend, std::memory_order_acq_rel);
  }

 private:
  static inline std::atomic<Facility*> installed_{nullptr};
};

// Installs a backend for the lifetime of the guard and restores the previous one after.
template <class Facility>
class [[nodiscard]] ScopedBackend {
 public:
  explicit ScopedBackend(Facility& backend) noexcept
      : previous_(Seam<Facility>::Install(&backend)) {}
  ~ScopedBackend() { Seam<Facility>::Install(previous_); }

  ScopedBackend(const ScopedBackend&) = delete;
  ScopedBackend& operator=(const ScopedBackend&) = delete;

 private:
  Facility* previous_;
};

}  // namespace velhal::os
