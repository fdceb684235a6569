// A maker's firmware interface as a test scripts it. Readings are scripted by kind and number
// ('F' fans, 'T' temperatures, 'V' voltages and currents, 'S' switches); what is not scripted
// is not this maker's (ERROR_NOT_SUPPORTED), so it falls to the standard sources. Every
// question is recorded, scripted or not.
#pragma once

#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "components/firmware_provider.h"

namespace velhal::testing {

class FakeFirmware final : public FirmwareProvider {
 public:
  DWORD result = 0;
  unsigned char first = 0, second = 0;
  std::vector<std::pair<unsigned char, unsigned char>> thresholds_set;

  struct Answer {
    DWORD result;
    std::optional<int> value;  // written whatever the result; nullopt writes nothing
  };
  using Question = std::pair<char, uint32_t>;
  std::map<Question, Answer> readings;
  std::vector<Question> asked;

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
  DWORD GetFanSpeed(int& rpm, FanSpeedLocateNumber locate) override {
    return Read('F', locate, rpm);
  }
  DWORD GetSensorTemperature(int& celsius, QuerySensorTemperatureIndex index) override {
    return Read('T', index, celsius);
  }
  DWORD GetVoltageOrCurrent(int& value, VoltageCurrentLocateNumber locate) override {
    return Read('V', locate, value);
  }
  DWORD GetDeviceBiosSwitchStatus(DeviceBiosSwitchNumber number, bool& status) override {
    int value = status ? 1 : 0;
    const DWORD answer = Read('S', number, value);
    status = value != 0;
    return answer;
  }

 private:
  DWORD Read(char kind, uint32_t number, int& out) {
    asked.emplace_back(kind, number);
    const auto found = readings.find({kind, number});
    if (found == readings.end()) return ERROR_NOT_SUPPORTED;
    if (found->second.value) out = *found->second.value;
    return found->second.result;
  }
};

}  // namespace velhal::testing
