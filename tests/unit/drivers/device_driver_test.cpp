#include "drivers/device_driver.h"

#include <gtest/gtest.h>

#include "platform/batch.h"
#include "platform/device_classes.h"
#include "platform/device_informention.h"
#include "platform/device_property_keys.h"
#include "tests/support/fake_system.h"

namespace {

namespace keys = velhal::device_keys;
namespace device_class = velhal::device_class;

constexpr unsigned long kNoMatch = 0xFFFFFFFF;
const DEVPROPKEY kProblemCode = keys::kByProperty[DeviceProperty_ProblemCode];
const DEVPROPKEY kDriverVersion = keys::kByProperty[DeviceProperty_DriverVersion];
const std::wstring kWifi = L"PCI\\VEN_8086&DEV_2723";
const std::wstring kScanTail = L"(DeviceDriver::ScanForHardwareChange)\n";

class DeviceDriverTest : public ::testing::Test {
 protected:
  velhal::testing::FakeSystem os_;
  velhal::testing::FakeDeviceDatabase& db_ = os_.devices;
  DeviceDriver driver_;
};

TEST_F(DeviceDriverTest, ResetRescansUntilTheProblemCodeReadsZero) {
  struct Case {
    const char* name;
    std::vector<uint32_t> problems_after_rescan;  // empty: the device stays away
    DWORD remove_error;
    unsigned long result;
    size_t rounds;
  };
  const Case cases[] = {
      {"not back, which reads as no problem", {}, 0, 0, 1},
      {"back with a problem, then without", {28, 28, 0}, 0, 0, 3},
      {"never without a problem", {10}, 0, kNoMatch, 10},
      {"removal refused", {0}, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    db_.devices.clear();
    db_.reenumerate_flags.clear();
    os_.timing.slept_ms = 0;
    auto& wifi = db_.Add(device_class::kNet).HardwareIds({kWifi});
    wifi.problems_after_rescan = c.problems_after_rescan;
    wifi.remove_error = c.remove_error;
    EXPECT_EQ(driver_.ResetDeviceDriver(kWifi, DriverType_WirelessNetwork), c.result);
    EXPECT_EQ(db_.reenumerate_flags, std::vector<ULONG>(c.rounds, CM_REENUMERATE_ASYNCHRONOUS));
    EXPECT_EQ(os_.timing.slept_ms, 1000 * c.rounds);
  }

  // Early returns: no such device in the class, or a kind the reset does not take.
  db_.reenumerate_flags.clear();
  EXPECT_EQ(driver_.ResetDeviceDriver(L"PCI\\VEN_8086&DEV_0000", DriverType_WirelessNetwork),
            kNoMatch);
  EXPECT_EQ(driver_.ResetDeviceDriver(kWifi, DriverType_Audio), kNoMatch);  // other class
  const size_t opens = db_.opens.size();
  for (unsigned int type : {2u, 4u, 6u, 8u, 9u, 10u}) {
    SCOPED_TRACE(type);
    EXPECT_EQ(driver_.ResetDeviceDriver(kWifi, static_cast<DeviceDriverType>(type)), kNoMatch);
    EXPECT_EQ(driver_.GetDeviceDriverErrorCode(kWifi, static_cast<DeviceDriverType>(type)),
              kNoMatch);
  }
  EXPECT_EQ(db_.opens.size(), opens);
  EXPECT_TRUE(db_.reenumerate_flags.empty());
}

TEST_F(DeviceDriverTest, RescanDiagnosticsAreWordForWord) {
  driver_.ScanForHardwareChange();
  EXPECT_EQ(db_.reenumerate_flags, std::vector<ULONG>{CM_REENUMERATE_ASYNCHRONOUS});
  EXPECT_TRUE(os_.debug.messages.empty());

  db_.reenumerate_result = CR_ACCESS_DENIED;
  driver_.ScanForHardwareChange();
  db_.locate_result = CR_FAILURE;
  driver_.ScanForHardwareChange();
  EXPECT_EQ(db_.reenumerate_flags.size(), 2u);  // no rescan without the root
  EXPECT_EQ(
      os_.debug.messages,
      (std::vector<std::wstring>{L"CM_Reenumerate_DevNode failed and error code is :51" + kScanTail,
                                 L"CM_Locate_DevNode failed and error code is :19" + kScanTail}));

  // A reset reads the problem code all the same when the rescan could not start.
  db_.Add(device_class::kNet).HardwareIds({kWifi});
  os_.debug.messages.clear();
  EXPECT_EQ(driver_.ResetDeviceDriver(kWifi, DriverType_WirelessNetwork), 0u);
  EXPECT_EQ(os_.debug.messages, std::vector<std::wstring>{
                                    L"CM_Locate_DevNode failed and error code is :19" + kScanTail});
}

// In a host's batch, a device the rescan brings back is seen by the next read.
TEST_F(DeviceDriverTest, ARescanInABatchIsSeenByTheNextRead) {
  auto& wifi = db_.Add(device_class::kNet).HardwareIds({kWifi});
  wifi.present = false;
  wifi.problems_after_rescan = {28};
  velhal::batch::Begin();
  EXPECT_EQ(driver_.GetDeviceDriverErrorCode(kWifi, DriverType_WirelessNetwork), 0u);  // away
  driver_.ScanForHardwareChange();
  EXPECT_EQ(driver_.GetDeviceDriverErrorCode(kWifi, DriverType_WirelessNetwork), 28u);
  EXPECT_TRUE(velhal::batch::End());
}

TEST_F(DeviceDriverTest, UninstallAndProblemCodeTakeTheirKindsClass) {
  db_.Add(device_class::kUsb).HardwareIds({L"USB\\ROOT_HUB30"});
  db_.Add(device_class::kMedia).HardwareIds({L"HDAUDIO\\FUNC_01"}).UInt32(kProblemCode, 22);
  db_.Add(device_class::kKeyboard).HardwareIds({L"ACPI\\PNP0303"});

  EXPECT_EQ(driver_.UnInstallDeviceDriver(L"USB\\ROOT_HUB30", DriverType_Usb), 0u);
  EXPECT_EQ(db_.removed, std::vector<size_t>{0});
  EXPECT_EQ(driver_.UnInstallDeviceDriver(L"ACPI\\PNP0303", DriverType_Keyboard), kNoMatch);
  EXPECT_EQ(driver_.UnInstallDeviceDriver(L"HDAUDIO\\FUNC_01", DriverType_Bluetooth), kNoMatch);
  EXPECT_EQ(driver_.UnInstallDeviceDriver(L"USB\\ROOT_HUB30", static_cast<DeviceDriverType>(10)),
            kNoMatch);

  // The problem code is read system-wide: the kind's class does not narrow the search.
  EXPECT_EQ(driver_.GetDeviceDriverErrorCode(L"HDAUDIO\\FUNC_01", DriverType_DisplayAdapter), 22u);
  EXPECT_EQ(driver_.GetDeviceDriverErrorCode(L"HDAUDIO\\FUNC_99", DriverType_Audio), 0u);
  EXPECT_EQ(db_.opens.back().flags, static_cast<DWORD>(DIGCF_PRESENT | DIGCF_ALLCLASSES));
}

TEST_F(DeviceDriverTest, StatusWalkMatchesTheFirstIdAsWritten) {
  db_.Add(device_class::kSystem).Description(L"No hardware IDs");
  db_.Add(device_class::kUsb).HardwareIds({L"USB\\VID_046D&PID_C52B", L"USB\\Class_03"});
  db_.Add(device_class::kNet).HardwareIds({kWifi});

  struct Case {
    const wchar_t* id;
    bool found;
  };
  const Case cases[] = {
      {L"USB\\VID_046D&PID_C52B", true},
      {L"USB\\Class_03", false},  // the second entry is compared from its second character...
      {L"SB\\Class_03", true},    // ...so this is what matches it
      {L"usb\\vid_046d&pid_c52b", false},
      {L"PCI\\VEN_8086&DEV_2723", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.id);
    db_.change_params.clear();
    EXPECT_EQ(driver_.SetDriverStatus(false, c.id), c.found);
    ASSERT_EQ(db_.change_params.size(), c.found ? 1u : 0u);
    if (!c.found) continue;
    const SP_PROPCHANGE_PARAMS& params = db_.change_params[0];
    EXPECT_EQ(params.ClassInstallHeader.cbSize, 8u);
    EXPECT_EQ(params.ClassInstallHeader.InstallFunction,
              static_cast<DI_FUNCTION>(DIF_PROPERTYCHANGE));
    EXPECT_EQ(params.StateChange, static_cast<DWORD>(DICS_DISABLE));
    EXPECT_EQ(params.Scope, static_cast<DWORD>(DICS_FLAG_GLOBAL));
    EXPECT_EQ(params.HwProfile, 0u);
  }
  EXPECT_TRUE(driver_.SetDriverStatus(true, kWifi));
  EXPECT_EQ(db_.devices[2].state_change, static_cast<DWORD>(DICS_ENABLE));
  EXPECT_FALSE(db_.opens.back().class_guid.has_value());
  EXPECT_EQ(db_.opens.back().flags, static_cast<DWORD>(DIGCF_PRESENT | DIGCF_ALLCLASSES));

  // The class installer's refusal, or a read error other than "no such property" before the
  // device, ends with false.
  db_.devices[2].change_error = ERROR_ACCESS_DENIED;
  EXPECT_FALSE(driver_.SetDriverStatus(true, kWifi));
  db_.devices[2].change_error = 0;
  db_.devices[1].registry_read_error = ERROR_GEN_FAILURE;
  EXPECT_FALSE(driver_.SetDriverStatus(true, kWifi));
  db_.devices.clear();
  EXPECT_FALSE(driver_.SetDriverStatus(true, kWifi));
}

TEST_F(DeviceDriverTest, DriverVersionByKind) {
  db_.Add(device_class::kNet)
      .HardwareIds({kWifi})
      .Description(L"Wireless-AC 9560")
      .String(kDriverVersion, L"22.250.1.2");
  db_.Add(device_class::kBluetooth)
      .HardwareIds({L"BTHENUM\\{0000110b}"})
      .String(kDriverVersion, L"1.0");
  db_.Add(device_class::kBluetooth).HardwareIds({L"QCA_SHB\\BT"}).String(kDriverVersion, L"2.1");
  db_.Add(device_class::kBiometric).HardwareIds({L"USB\\VID_27C6&PID_538C"});  // no driver
  db_.Add(device_class::kBiometric)
      .HardwareIds({L"USB\\VID_06CB&PID_00FC"})
      .String(kDriverVersion, L"6.0");
  db_.Add(device_class::kMedia).HardwareIds({L"HDAUDIO\\FUNC_01"}).String(kDriverVersion, L"6.0.9");
  db_.Add(device_class::kKeyboard).HardwareIds({L"HID\\VID_04F3"}).String(kDriverVersion, L"9.9");
  db_.Add(device_class::kKeyboard).HardwareIds({L"ACPI\\PNP0303"}).String(kDriverVersion, L"10.0");
  db_.Add(device_class::kDisplay)
      .HardwareIds({L"PCI\\VEN_8086&DEV_9A49"})
      .String(kDriverVersion, L"31.0");
  db_.Add(device_class::kUsb).HardwareIds({L"USB\\ROOT_HUB30"}).String(kDriverVersion, L"10.1");

  const std::pair<unsigned int, const wchar_t*> cases[] = {
      {0, L"22.250.1.2"}, {1, L"2.1"},  {2, L""},     {3, L"6.0"}, {4, L""},
      {5, L"6.0.9"},      {6, L"10.0"}, {7, L"31.0"}, {8, L""},    {9, L""},
  };
  for (const auto& [type, version] : cases) {
    SCOPED_TRACE(type);
    EXPECT_EQ(GetDeviceDriverVersion(static_cast<DeviceDriverType>(type)), version);
  }
}

}  // namespace
