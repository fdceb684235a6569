// The audio-hardware vendor identifiers this product accepts, from
// "config/product_adapter/HardwareConfig.xml" beside the library, read once per process.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "hal/velhal_export.h"

class VELHAL_API HardwareConfig {
 public:
  // Load codes: 0 loaded (also without a "hardwareVendor" element), -3 the library's folder is
  // unknown, -4 no such file, -5 not readable as XML, -6 no root element.
  // The instance is handed out const, as hosts have always bound it, while LoadConfig and Reset
  // are non-const members of the export table; the object itself is not const, so a host calls
  // them through a const_cast of the reference.
  static const HardwareConfig& GetInstance();

  // Reads the file again; a failed read keeps the list it had.
  int LoadConfig();
  // Copies the list (possibly stale or empty) and returns the code of the last load.
  int GetAudioVendor(std::vector<std::string>& vendors) const;
  // LoadConfig again, its code kept as the last load's.
  int Reset();

  HardwareConfig(const HardwareConfig&) = delete;
  HardwareConfig& operator=(const HardwareConfig&) = delete;

 private:
  HardwareConfig() = default;  // GetInstance's, which loads it

  // Loading updates these under the lock; GetAudioVendor reads them under it.
  mutable std::mutex mutex_;
  int load_result_ = -4;  // no file until the first load
  std::vector<std::string> audio_vendors_;
};
