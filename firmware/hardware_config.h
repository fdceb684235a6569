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
  static const HardwareConfig& GetInstance();

  // Reads the file again; a failed read keeps the list it had.
  int LoadConfig() const;
  // Copies the list (possibly stale or empty) and returns the code of the last load.
  int GetAudioVendor(std::vector<std::string>& vendors) const;
  int Reset() const;

  HardwareConfig(const HardwareConfig&) = delete;
  HardwareConfig& operator=(const HardwareConfig&) = delete;

 private:
  HardwareConfig();
  int InitHardwareConfigNode(const std::wstring& path) const;
  void InitHardwareConfigInfo(const std::wstring& vendorText) const;
  void ResetFeatureStatus() const;

  // The instance is handed out const; loading updates these under the lock.
  mutable std::mutex mutex_;
  mutable int load_result_;
  mutable std::vector<std::string> audio_vendors_;
};
