// A maker's firmware interface as a test scripts it.
#pragma once

#include <utility>
#include <vector>

#include "components/firmware_provider.h"

namespace velhal::testing {

class FakeFirmware final : public FirmwareProvider {
 public:
  DWORD result = 0;
  unsigned char first = 0, second = 0;
  std::vector<std::pair<unsigned char, unsigned char>> thresholds_set;

  DWORD SetChargeThreshold(unsigned char a, unsigned char b) override {
    thresholds_set.emplace_back(a, b);
    if (result == 0) {
      first = a;
      second = b;
    }
    return result;
  }
  DWORD GetChargeThreshold(unsigned char& a, unsigned char& b) override {
    if (result != 0) return result;
    a = first;
    b = second;
    return 0;
  }
};

}  // namespace velhal::testing
