#include "platform/win32.h"

#include <gtest/gtest.h>

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
using Answer = std::pair<int, int>;  // BiosWmi's result and the reading
using VelSDK::BiosWmi;

constexpr wchar_t kZones[] = L"SELECT CurrentTemperature FROM MSAcpi_ThermalZoneTemperature";
const Answer kNone{ERROR_NOT_SUPPORTED, -1};
Answer Ok(int value) { return {0, value}; }

// A BiosWmi reading of a number, the value starting at -1.
template <class Number>
Answer Ask(int (*read)(int&, Number), uint32_t number) {
  int value = -1;
  const int result = read(value, static_cast<Number>(number));
  return {result, value};
}
Answer Temperature(uint32_t index) { return Ask(&BiosWmi::GetSensorTemperature, index); }
Answer Reading(uint32_t locate) { return Ask(&BiosWmi::GetVoltageOrCurrent, locate); }

class SensorsTest : public ::testing::Test {
 protected:
  FakeSystem os_;
  FakeFirmware maker_;
};

TEST_F(SensorsTest, EachMemberAsksItsLocateNumberAndKeepsItsInitialValue) {
  const velhal::os::ScopedBackend<velhal::FirmwareProvider> installed(maker_);
  struct Case {
    int (*call)(HotInterface&);
    FakeFirmware::Question question;
    int missing;
  };
  const Case cases[] = {
      {[](HotInterface& h) { return static_cast<int>(h.GetFan0Speed()); }, {'F', 0}, 0},
      {[](HotInterface& h) { return static_cast<int>(h.GetFan1Speed()); }, {'F', 1}, 0},
      {[](HotInterface& h) { return h.GetVoltageUSB0(); }, {'V', 0x00}, 0},
      {[](HotInterface& h) { return h.GetVoltageUSB1(); }, {'V', 0x01}, 0},
      {[](HotInterface& h) { return h.GetCurrentUSB0(); }, {'V', 0x10}, 0},
      {[](HotInterface& h) { return h.GetCurrentUSB1(); }, {'V', 0x10}, 0},  // as USB0, kept
      {[](HotInterface& h) { return h.GetVoltageBattery0(); }, {'V', 0x20}, 0},
      {[](HotInterface& h) { return h.GetVoltageBattery1(); }, {'V', 0x21}, 0},
      {[](HotInterface& h) { return h.GetCurrentBattery0(); }, {'V', 0x30}, 0},
      {[](HotInterface& h) { return h.GetCurrentBattery1(); }, {'V', 0x31}, 0},
      // Only the index's low 32 bits go on.
      {[](HotInterface& h) { return h.GetSensorTemperature(0x100000003ull); },
       {'T', 3},
       0x7FFFFFFF},
  };
  HotInterface hot;
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.question.first << c.question.second);
    // Not the maker's, and no standard source on this machine: the initial value.
    maker_.asked.clear();
    maker_.readings.clear();
    EXPECT_EQ(c.call(hot), c.missing);
    EXPECT_EQ(maker_.asked, std::vector<FakeFirmware::Question>{c.question});
    maker_.readings[c.question] = {0, 1234};
    EXPECT_EQ(c.call(hot), 1234);
    // The import's result is not looked at: what it left in the value is the answer.
    maker_.readings[c.question] = {ERROR_GEN_FAILURE, 77};
    EXPECT_EQ(c.call(hot), 77);
    maker_.readings[c.question] = {ERROR_GEN_FAILURE, std::nullopt};
    EXPECT_EQ(c.call(hot), c.missing);
  }
}

TEST_F(SensorsTest, BiosSwitchesGoThroughTheFourKnownTypes) {
  // Without a maker's interface no switch is known.
  bool status = false;
  EXPECT_FALSE(BiosFun().GetBiosSwitch(status, DriverType_Audio));
  const velhal::os::ScopedBackend<velhal::FirmwareProvider> installed(maker_);
  const std::map<unsigned, uint32_t> known = {{0, 0x25}, {1, 0x26}, {3, 0x27}, {5, 0x24}};
  for (const auto& [type, number] : known) maker_.readings[{'S', number}] = {0, 0};  // off
  for (unsigned type = 0; type <= 9; ++type) {
    SCOPED_TRACE(type);
    maker_.asked.clear();
    status = false;
    const bool answered = BiosFun().GetBiosSwitch(status, static_cast<DeviceDriverType>(type));
    const bool is_known = known.count(type) != 0;
    EXPECT_EQ(answered, is_known);
    EXPECT_EQ(status, !is_known);  // set true first; an unknown type leaves it so
    std::vector<FakeFirmware::Question> asked;
    if (is_known) asked.emplace_back('S', known.at(type));
    EXPECT_EQ(maker_.asked, asked);
  }
  maker_.readings[{'S', 0x25}] = {ERROR_GEN_FAILURE, std::nullopt};
  EXPECT_FALSE(BiosFun().GetBiosSwitch(status, DriverType_WirelessNetwork));
  EXPECT_TRUE(status);
}

TEST_F(SensorsTest, AMakersAnswerComesFirstAndTheStandardSourcesBehindIt) {
  EXPECT_EQ(Reading(0x11), kNone);  // USB: no standard source
  EXPECT_EQ(Reading(0x40), Answer(ERROR_INVALID_PARAMETER, -1));
  os_.wmi.Script(velhal::wmi::kRootWmi, kZones, L"CurrentTemperature", {FakeValue::UInt32(3032)});
  const velhal::os::ScopedBackend<velhal::FirmwareProvider> installed(maker_);
  EXPECT_EQ(Temperature(0), Ok(30));
  maker_.readings[{'T', 0}] = {0, 55};
  EXPECT_EQ(Temperature(0), Ok(55));
  maker_.readings[{'T', 0}] = {ERROR_GEN_FAILURE, std::nullopt};  // a maker's failure stands
  EXPECT_EQ(Temperature(0), Answer(ERROR_GEN_FAILURE, -1));
}

TEST_F(SensorsTest, ThermalZonesAreTenthsOfAKelvinAndCountersWholeKelvin) {
  os_.wmi.Script(velhal::wmi::kRootWmi, kZones, L"CurrentTemperature",
                 {FakeValue::UInt32(3032), FakeValue::UInt32(2737), FakeValue::UInt32(2700),
                  FakeValue::UInt32(0)});
  EXPECT_EQ(Temperature(0), Ok(30));  // 30.05
  EXPECT_EQ(Temperature(1), Ok(1));   // 0.55
  EXPECT_EQ(Temperature(2), Ok(-3));  // -3.15
  EXPECT_EQ(Temperature(3), kNone);   // 0 K: the firmware has no reading
  EXPECT_EQ(Temperature(4), kNone);

  // Where WMI refuses (or has no zone), the counters.
  FakePdh pdh(os_.module);
  pdh.values = {301, std::nullopt};
  os_.wmi.Script(velhal::wmi::kRootWmi, kZones, L"CurrentTemperature", {},
                 static_cast<HRESULT>(WBEM_E_ACCESS_DENIED));
  EXPECT_EQ(Temperature(0), Ok(28));
  EXPECT_EQ(pdh.counter_path, L"\\Thermal Zone Information(*)\\Temperature");
  EXPECT_EQ(Temperature(1), kNone);
  os_.wmi.Script(velhal::wmi::kRootWmi, kZones, L"CurrentTemperature", {});
  EXPECT_EQ(Temperature(0), Ok(28));
  pdh.add_result = static_cast<PDH_STATUS>(PDH_CSTATUS_NO_OBJECT);  // as Wine answers
  EXPECT_EQ(Temperature(0), kNone);
  EXPECT_EQ(pdh.open_queries, 0);  // and FakeSystem sees the library freed
}

TEST_F(SensorsTest, FansAreTheInstancesThatReportASpeed) {
  os_.wmi.Script(velhal::wmi::kCimV2, L"SELECT DesiredSpeed FROM Win32_Fan", L"DesiredSpeed",
                 {FakeValue::Null(CIM_UINT64), FakeValue::UInt64(2400)});
  EXPECT_EQ(Ask(&BiosWmi::GetFanSpeed, 0), Ok(2400));
  EXPECT_EQ(Ask(&BiosWmi::GetFanSpeed, 1), kNone);
}

TEST_F(SensorsTest, BatteryCurrentIsRateOverVoltageWithItsSign) {
  EXPECT_EQ(Reading(0x20), kNone);  // no battery
  struct Battery {
    ULONG voltage;
    LONG rate;
    ULONG capabilities;
    Answer millivolts, milliamperes;
  };
  const Battery batteries[] = {
      {11400, -9000, 0, Ok(11400), Ok(-789)},  // discharging: -9000 mW / 11.4 V
      {12000, 15000, 0, Ok(12000), Ok(1250)},
      {12000, static_cast<LONG>(BATTERY_UNKNOWN_RATE), 0, Ok(12000), kNone},
      {12000, 15000, BATTERY_CAPACITY_RELATIVE, Ok(12000), kNone},  // the rate is not in mW
      {BATTERY_UNKNOWN_VOLTAGE, 15000, 0, kNone, kNone},
  };
  for (const Battery& b : batteries) {
    FakeBattery battery;
    battery.status.Voltage = b.voltage;
    battery.status.Rate = b.rate;
    battery.information.Capabilities = b.capabilities;
    battery.Install(os_.devices, os_.io);
  }
  for (uint32_t n = 0; n < std::size(batteries); ++n) {
    SCOPED_TRACE(n);
    EXPECT_EQ(Reading(0x20 + n), batteries[n].millivolts);
    EXPECT_EQ(Reading(0x30 + n), batteries[n].milliamperes);
  }
}

// The getters themselves are checked under Wine against the test's own walk of the table.
TEST_F(SensorsTest, TheBiosSerialIsTheTablesElseWmisAndKeptOnceKnown) {
  const wchar_t kBios[] = L"SELECT SerialNumber FROM Win32_BIOS";
  Baseboard board;
  EXPECT_EQ(board.GetBIOSSerialNumber(), L"");  // no table, no WMI: asked again next time
  os_.wmi.Script(velhal::wmi::kCimV2, kBios, L"SerialNumber", {FakeValue::Text(L"CND1")});
  EXPECT_EQ(board.GetBIOSSerialNumber(), L"CND1");
  os_.wmi.Script(velhal::wmi::kCimV2, kBios, L"SerialNumber", {FakeValue::Text(L"changed")});
  EXPECT_EQ(board.GetBIOSSerialNumber(), L"CND1");
  velhal::ResetProcessStateForTesting();  // a fresh process asks again, the table first
  os_.firmware_table.table =
      SmbiosBuilder().Record(1, {0, 0, 0, 1}, {"5CG0001"}).RawFirmwareTable(3, 4);
  EXPECT_EQ(board.GetBIOSSerialNumber(), L"5CG0001");
}

}  // namespace
