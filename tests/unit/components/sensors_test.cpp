#include "platform/win32.h"

#include <gtest/gtest.h>

#include <functional>

#include "components/baseboard.h"
#include "components/bios_fun.h"
#include "components/bios_wmi.h"
#include "components/hot_interface.h"
#include "platform/process_state.h"
#include "platform/wmi_namespaces.h"
#include "tests/fakes/fake_battery.h"
#include "tests/fakes/fake_firmware.h"
#include "tests/fakes/fake_pdh.h"
#include "tests/support/fake_system.h"
#include "tests/support/smbios_builder.h"

namespace {

using namespace velhal::testing;
using VelSDK::BiosWmi;

constexpr wchar_t kThermalZones[] = L"SELECT CurrentTemperature FROM MSAcpi_ThermalZoneTemperature";
constexpr wchar_t kFans[] = L"SELECT DesiredSpeed FROM Win32_Fan";

class SensorsTest : public ::testing::Test {
 protected:
  // What BiosWmi answers, as (result, reading); the reading starts at -1.
  static std::pair<int, int> Temperature(uint32_t index) {
    int celsius = -1;
    const int result =
        BiosWmi::GetSensorTemperature(celsius, static_cast<QuerySensorTemperatureIndex>(index));
    return {result, celsius};
  }
  static std::pair<int, int> Reading(uint32_t locate) {
    int value = -1;
    const int result =
        BiosWmi::GetVoltageOrCurrent(value, static_cast<VoltageCurrentLocateNumber>(locate));
    return {result, value};
  }
  static std::pair<int, int> Fan(uint32_t index) {
    int rpm = -1;
    const int result = BiosWmi::GetFanSpeed(rpm, static_cast<FanSpeedLocateNumber>(index));
    return {result, rpm};
  }
  static std::pair<int, int> Ok(int value) { return {0, value}; }
  static std::pair<int, int> None() { return {ERROR_NOT_SUPPORTED, -1}; }

  FakeSystem os_;
  FakeFirmware maker_;
};

TEST_F(SensorsTest, EachMemberAsksItsLocateNumberAndKeepsItsInitialValue) {
  const velhal::os::ScopedBackend<velhal::FirmwareProvider> installed(maker_);
  struct Case {
    const char* member;
    std::function<int(HotInterface&)> call;
    FakeFirmware::Question question;
    int missing;
  };
  const Case cases[] = {
      {"GetFan0Speed",
       [](HotInterface& h) { return static_cast<int>(h.GetFan0Speed()); },
       {'F', 0},
       0},
      {"GetFan1Speed",
       [](HotInterface& h) { return static_cast<int>(h.GetFan1Speed()); },
       {'F', 1},
       0},
      {"GetVoltageUSB0", [](HotInterface& h) { return h.GetVoltageUSB0(); }, {'V', 0x00}, 0},
      {"GetVoltageUSB1", [](HotInterface& h) { return h.GetVoltageUSB1(); }, {'V', 0x01}, 0},
      {"GetCurrentUSB0", [](HotInterface& h) { return h.GetCurrentUSB0(); }, {'V', 0x10}, 0},
      {"GetCurrentUSB1", [](HotInterface& h) { return h.GetCurrentUSB1(); }, {'V', 0x10}, 0},
      {"GetVoltageBattery0",
       [](HotInterface& h) { return h.GetVoltageBattery0(); },
       {'V', 0x20},
       0},
      {"GetVoltageBattery1",
       [](HotInterface& h) { return h.GetVoltageBattery1(); },
       {'V', 0x21},
       0},
      {"GetCurrentBattery0",
       [](HotInterface& h) { return h.GetCurrentBattery0(); },
       {'V', 0x30},
       0},
      {"GetCurrentBattery1",
       [](HotInterface& h) { return h.GetCurrentBattery1(); },
       {'V', 0x31},
       0},
      // Only the index's low 32 bits reach the firmware.
      {"GetSensorTemperature",
       [](HotInterface& h) { return h.GetSensorTemperature(0x100000003ull); },
       {'T', 3},
       0x7FFFFFFF},
  };
  HotInterface hot;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.member);
    // Not the maker's, and no standard source on this machine: the initial value.
    maker_.asked.clear();
    maker_.readings.clear();
    EXPECT_EQ(c.call(hot), c.missing);
    ASSERT_FALSE(maker_.asked.empty());
    EXPECT_EQ(maker_.asked.front(), c.question);
    maker_.readings[c.question] = {0, 1234};
    EXPECT_EQ(c.call(hot), 1234);
    // The import's result is not looked at: whatever it left in the value is the answer.
    maker_.readings[c.question] = {ERROR_GEN_FAILURE, 77};
    EXPECT_EQ(c.call(hot), 77);
    maker_.readings[c.question] = {ERROR_GEN_FAILURE, std::nullopt};
    EXPECT_EQ(c.call(hot), c.missing);
  }
}

TEST_F(SensorsTest, BiosSwitchesGoThroughTheFourKnownTypes) {
  const velhal::os::ScopedBackend<velhal::FirmwareProvider> installed(maker_);
  const std::map<unsigned, uint32_t> known = {{0, 0x25}, {1, 0x26}, {3, 0x27}, {5, 0x24}};
  for (const auto& [type, number] : known) maker_.readings[{'S', number}] = {0, 0};  // off
  BiosFun bios;
  for (unsigned type = 0; type <= 9; ++type) {
    SCOPED_TRACE(type);
    maker_.asked.clear();
    bool status = false;
    const bool answered = bios.GetBiosSwitch(status, static_cast<DeviceDriverType>(type));
    const auto found = known.find(type);
    if (found == known.end()) {
      EXPECT_FALSE(answered);
      EXPECT_TRUE(status);  // set first, then left alone
      EXPECT_TRUE(maker_.asked.empty());
    } else {
      EXPECT_TRUE(answered);
      EXPECT_FALSE(status);
      EXPECT_EQ(maker_.asked, (std::vector<FakeFirmware::Question>{{'S', found->second}}));
    }
  }
  maker_.readings[{'S', 0x25}] = {ERROR_GEN_FAILURE, std::nullopt};
  bool status = false;
  EXPECT_FALSE(bios.GetBiosSwitch(status, DriverType_WirelessNetwork));
  EXPECT_TRUE(status);
}

TEST_F(SensorsTest, WithoutAMakerOnlyStandardReadingsAnswer) {
  EXPECT_EQ(Reading(0x00), None());  // USB: no standard source
  EXPECT_EQ(Reading(0x11), None());
  EXPECT_EQ(Reading(0x40), std::make_pair(static_cast<int>(ERROR_INVALID_PARAMETER), -1));
  bool status = false;
  EXPECT_EQ(BiosWmi::GetDeviceBiosSwitchStatus(DeviceBiosSwitchAudio, status), ERROR_NOT_SUPPORTED);
  BiosFun bios;
  EXPECT_FALSE(bios.GetBiosSwitch(status, DriverType_Audio));
  unsigned char first = 0, second = 0;
  EXPECT_EQ(BiosWmi::GetBatteryChargeThreshold(first, second), ERROR_NOT_SUPPORTED);

  // A maker's answer comes first; what it does not have falls to the standard source.
  os_.wmi.Script(velhal::wmi::kRootWmi, kThermalZones, L"CurrentTemperature",
                 {FakeValue::UInt32(3032)});
  EXPECT_EQ(Temperature(0), Ok(30));
  const velhal::os::ScopedBackend<velhal::FirmwareProvider> installed(maker_);
  EXPECT_EQ(Temperature(0), Ok(30));
  maker_.readings[{'T', 0}] = {0, 55};
  EXPECT_EQ(Temperature(0), Ok(55));
  maker_.readings[{'T', 0}] = {ERROR_GEN_FAILURE, std::nullopt};  // a maker's failure stands
  EXPECT_EQ(Temperature(0), std::make_pair(static_cast<int>(ERROR_GEN_FAILURE), -1));
}

TEST_F(SensorsTest, ThermalZonesAreTenthsOfAKelvinRoundedToDegrees) {
  os_.wmi.Script(velhal::wmi::kRootWmi, kThermalZones, L"CurrentTemperature",
                 {FakeValue::UInt32(3032), FakeValue::UInt32(2737), FakeValue::UInt32(2700),
                  FakeValue::UInt32(0)});
  EXPECT_EQ(Temperature(0), Ok(30));  // 30.05
  EXPECT_EQ(Temperature(1), Ok(1));   // 0.55
  EXPECT_EQ(Temperature(2), Ok(-3));  // -3.15
  EXPECT_EQ(Temperature(3), None());  // 0 K: the firmware has no reading
  EXPECT_EQ(Temperature(4), None());
  EXPECT_EQ(HotInterface().GetSensorTemperature(4), 0x7FFFFFFF);
}

TEST_F(SensorsTest, WhereWmiRefusesTheCountersAnswerInKelvin) {
  FakePdh pdh(os_.module);
  pdh.values = {301, std::nullopt, 310};
  os_.wmi.Script(velhal::wmi::kRootWmi, kThermalZones, L"CurrentTemperature", {},
                 static_cast<HRESULT>(WBEM_E_ACCESS_DENIED));
  EXPECT_EQ(Temperature(0), Ok(28));
  EXPECT_EQ(pdh.counter_path, L"\\Thermal Zone Information(*)\\Temperature");
  EXPECT_EQ(Temperature(1), None());
  EXPECT_EQ(Temperature(2), Ok(37));
  EXPECT_EQ(Temperature(3), None());
  // A zone-less answer from WMI is no answer either.
  os_.wmi.Script(velhal::wmi::kRootWmi, kThermalZones, L"CurrentTemperature", {});
  EXPECT_EQ(Temperature(2), Ok(37));
  pdh.add_result = static_cast<PDH_STATUS>(PDH_CSTATUS_NO_OBJECT);
  EXPECT_EQ(Temperature(0), None());
  EXPECT_EQ(pdh.open_queries, 0);  // every query closed (the library is checked by FakeSystem)
  os_.module.libraries.clear();    // no pdh.dll at all
  EXPECT_EQ(Temperature(0), None());
}

TEST_F(SensorsTest, FansAreTheInstancesThatReportASpeed) {
  EXPECT_EQ(Fan(0), None());
  os_.wmi.Script(velhal::wmi::kCimV2, kFans, L"DesiredSpeed",
                 {FakeValue::Null(CIM_UINT64), FakeValue::UInt64(2400)});
  EXPECT_EQ(Fan(0), Ok(2400));
  EXPECT_EQ(Fan(1), None());
}

TEST_F(SensorsTest, BatteryCurrentIsRateOverVoltageWithItsSign) {
  EXPECT_EQ(Reading(0x20), None());  // no battery
  FakeBattery discharging;
  discharging.status.Voltage = 11400;
  discharging.status.Rate = -9000;
  discharging.Install(os_.devices, os_.io);
  FakeBattery charging;
  charging.status.Voltage = 12000;
  charging.status.Rate = 15000;
  const std::wstring second = charging.Install(os_.devices, os_.io);
  EXPECT_EQ(Reading(0x20), Ok(11400));
  EXPECT_EQ(Reading(0x30), Ok(-789));  // -9000 mW / 11.4 V
  EXPECT_EQ(Reading(0x21), Ok(12000));
  EXPECT_EQ(Reading(0x31), Ok(1250));
  EXPECT_EQ(Reading(0x22), None());

  FakeBattery odd = charging;
  odd.status.Rate = static_cast<LONG>(BATTERY_UNKNOWN_RATE);
  odd.Install(os_.devices, os_.io);  // the third
  EXPECT_EQ(Reading(0x22), Ok(12000));
  EXPECT_EQ(Reading(0x32), None());
  odd.status.Rate = 15000;
  odd.information.Capabilities = BATTERY_CAPACITY_RELATIVE;  // the rate is not in mW
  odd.Install(os_.devices, os_.io);
  EXPECT_EQ(Reading(0x33), None());
  odd.status.Voltage = BATTERY_UNKNOWN_VOLTAGE;
  odd.Install(os_.devices, os_.io);
  EXPECT_EQ(Reading(0x24), None());
  EXPECT_EQ(Reading(0x34), None());
  os_.io.devices[second].ioctls[IOCTL_BATTERY_QUERY_TAG] = FakeDeviceIo::Answer(Bytes(ULONG{0}));
  EXPECT_EQ(Reading(0x21), None());  // an empty slot
  EXPECT_EQ(os_.io.open_handles(), 0u);
}

TEST_F(SensorsTest, BaseboardReadsTheTableAndKeepsTheSerialOnceKnown) {
  os_.firmware_table.table =
      SmbiosBuilder()
          .Record(0, {1, 2, 0, 0, 3, 0}, {"BIOS Maker", "F.21", "05/06/2024"})
          .Record(1, {0, 0, 0, 0})
          .Record(2, {1, 2, 3, 4, 0}, {"Board Maker", "8A4F", "KBC 1.0", "PB1"})
          .RawFirmwareTable(3, 4);
  Baseboard board;
  EXPECT_EQ(board.GetBaseboardManufacturer(), L"Board Maker");
  EXPECT_EQ(board.GetBaseboardProduct(), L"8A4F");
  EXPECT_EQ(board.GetBaseboardVersion(), L"KBC 1.0");
  EXPECT_EQ(board.GetBaseboardSerialNumber(), L"PB1");
  EXPECT_EQ(board.GetBIOSManufacturer(), L"BIOS Maker");
  EXPECT_EQ(board.GetBIOSVersion(), L"F.21");
  EXPECT_EQ(board.GetBIOSReaseDate(), L"05/06/2024");

  // The table has no system serial: WMI's, kept once known.
  EXPECT_EQ(board.GetBIOSSerialNumber(), L"");
  const wchar_t kBios[] = L"SELECT SerialNumber FROM Win32_BIOS";
  os_.wmi.Script(velhal::wmi::kCimV2, kBios, L"SerialNumber", {FakeValue::Text(L"CND1")});
  EXPECT_EQ(board.GetBIOSSerialNumber(), L"CND1");
  os_.wmi.Script(velhal::wmi::kCimV2, kBios, L"SerialNumber", {FakeValue::Text(L"changed")});
  const size_t asked = os_.wmi.calls.size();
  EXPECT_EQ(board.GetBIOSSerialNumber(), L"CND1");
  EXPECT_EQ(os_.wmi.calls.size(), asked);
  velhal::ResetProcessStateForTesting();  // a fresh process asks again
  EXPECT_EQ(board.GetBIOSSerialNumber(), L"changed");

  velhal::ResetProcessStateForTesting();
  os_.firmware_table.table =
      SmbiosBuilder().Record(1, {0, 0, 0, 1}, {"5CG0001"}).RawFirmwareTable(3, 4);
  EXPECT_EQ(board.GetBIOSSerialNumber(), L"5CG0001");  // the table's system serial first
  EXPECT_EQ(board.GetBaseboardManufacturer(), L"");
}

}  // namespace
