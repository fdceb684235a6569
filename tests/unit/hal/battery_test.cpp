#include "platform/win32.h"

#include "hal/battery.h"

#include <gtest/gtest.h>

#include <winioctl.h>

#include <batclass.h>

#include <array>
#include <cstring>

#include "hal/hal_api.h"
#include "platform/device_classes.h"
#include "platform/wmi_namespaces.h"
#include "tests/fakes/fake_battery.h"
#include "tests/fakes/fake_firmware.h"
#include "tests/support/fake_system.h"
#include "tests/support/hal_query.h"

namespace {

using namespace velhal::testing;

using velhal::wmi::kRootWmi;

class BatteryTest : public ::testing::Test {
 protected:
  std::optional<uint32_t> Query(uint32_t info_class) {
    return QueryNumber<uint32_t>(HAL_CLASS_BATTERY, nullptr, info_class);
  }
  void OnBattery(int32_t rate, ULONG remaining = 36480, ULONG full = 45600) {
    os_.power.status.ACLineStatus = 0;
    os_.power.status.BatteryFlag = 1;
    os_.power.battery.AcOnLine = FALSE;
    os_.power.battery.BatteryPresent = TRUE;
    os_.power.battery.Discharging = rate < 0;
    os_.power.battery.Rate = static_cast<ULONG>(rate);
    os_.power.battery.RemainingCapacity = remaining;
    os_.power.battery.MaxCapacity = full;
  }
  // A battery driver: tag 7, design capacity, voltage and the two names.
  void Driver(ULONG design, ULONG voltage, const std::wstring& name, const std::wstring& maker) {
    FakeBattery battery;
    battery.information.DesignedCapacity = design;
    battery.status.Voltage = voltage;
    battery.name = name;
    battery.maker = maker;
    battery_path_ = battery.Install(os_.devices, os_.io);
  }

  FakeSystem os_;
  FakeFirmware firmware_;
  std::wstring battery_path_;
};

TEST_F(BatteryTest, ADesktopHasNoBatteryButReportsItsAcLine) {
  for (uint32_t info_class :
       {HAL_BATTERY_INFO_PRESENT, HAL_BATTERY_INFO_REMAINING_CAPACITY,
        HAL_BATTERY_INFO_FULL_CHARGE_CAPACITY, HAL_BATTERY_INFO_DESIGN_CAPACITY,
        HAL_BATTERY_INFO_VOLTAGE, HAL_BATTERY_INFO_LOSS}) {
    EXPECT_EQ(Query(info_class), std::nullopt) << info_class;
  }
  EXPECT_EQ(Query(HAL_BATTERY_INFO_AC_LINE_STATUS), 1u);
  EXPECT_EQ(HalInit(HAL_CLASS_BATTERY, nullptr), 1u);
  EXPECT_EQ(Query(11), std::nullopt);
  os_.power.status.BatteryFlag = 255;  // unknown is no battery either
  EXPECT_EQ(Query(HAL_BATTERY_INFO_PRESENT), std::nullopt);
}

TEST_F(BatteryTest, PowerCallsAreRetriedAFixedNumberOfTimes) {
  OnBattery(-9000);
  os_.power.status_failures = 2;  // three attempts in all
  EXPECT_EQ(Query(HAL_BATTERY_INFO_PRESENT), 1u);
  os_.power.status_failures = 3;
  EXPECT_EQ(Query(HAL_BATTERY_INFO_AC_LINE_STATUS), std::nullopt);
  os_.power.status_failures = 0;
  os_.power.battery_failures = 3;  // four attempts in all
  EXPECT_EQ(Query(HAL_BATTERY_INFO_REMAINING_CAPACITY), 36480u);
  os_.power.battery_failures = 4;
  EXPECT_EQ(Query(HAL_BATTERY_INFO_FULL_CHARGE_CAPACITY), std::nullopt);
}

TEST_F(BatteryTest, RatesFollowTheLineAndTheSign) {
  OnBattery(-9000);
  EXPECT_EQ(Query(HAL_BATTERY_INFO_DISCHARGE_RATE), 9000u);
  EXPECT_EQ(Query(HAL_BATTERY_INFO_CHARGE_RATE), std::nullopt);
  os_.power.battery.AcOnLine = TRUE;
  os_.power.battery.Rate = 15000;
  EXPECT_EQ(Query(HAL_BATTERY_INFO_CHARGE_RATE), 15000u);
  EXPECT_EQ(Query(HAL_BATTERY_INFO_DISCHARGE_RATE), std::nullopt);
  os_.power.battery.Rate = 0;  // full and idle on AC
  EXPECT_EQ(Query(HAL_BATTERY_INFO_CHARGE_RATE), std::nullopt);
  os_.power.battery.AcOnLine = 2;  // only exactly 1 is "on AC"
  os_.power.battery.Rate = 15000;
  EXPECT_EQ(Query(HAL_BATTERY_INFO_CHARGE_RATE), std::nullopt);
  os_.power.battery.AcOnLine = FALSE;
  os_.power.battery.Rate = static_cast<ULONG>(INT32_MIN);
  EXPECT_EQ(Query(HAL_BATTERY_INFO_DISCHARGE_RATE), 2147483648u);
}

TEST_F(BatteryTest, LossIsWearInHundredthsOfAPercent) {
  OnBattery(-1000, 30000, 45000);
  os_.wmi.Script(kRootWmi, L"SELECT DesignedCapacity FROM BatteryStaticData", L"DesignedCapacity",
                 {FakeValue::UInt32(50000)});
  EXPECT_EQ(Query(HAL_BATTERY_INFO_DESIGN_CAPACITY), 50000u);
  EXPECT_EQ(Query(HAL_BATTERY_INFO_LOSS), 1000u);
  Battery battery;
  EXPECT_FLOAT_EQ(battery.GetBattertLoss(), 10.0f);
  EXPECT_EQ(battery.GetBatteryPercent(), 67u);  // 30000 / 45000, rounded
  os_.power.battery.MaxCapacity = 50500;        // holds more than its design: failure, not 0
  EXPECT_EQ(Query(HAL_BATTERY_INFO_LOSS), std::nullopt);
  os_.power.battery.MaxCapacity = 50000;
  EXPECT_EQ(Query(HAL_BATTERY_INFO_LOSS), std::nullopt);
  os_.wmi.Script(kRootWmi, L"SELECT DesignedCapacity FROM BatteryStaticData", L"DesignedCapacity",
                 {FakeValue::UInt32(0xFFFFFFFF)});
  EXPECT_EQ(Query(HAL_BATTERY_INFO_DESIGN_CAPACITY), std::nullopt);
}

TEST_F(BatteryTest, TheDriverAnswersBeforeWmi) {
  OnBattery(-1000);
  os_.wmi.Script(kRootWmi, L"SELECT DesignedCapacity FROM BatteryStaticData", L"DesignedCapacity",
                 {FakeValue::UInt32(1)});
  os_.wmi.Script(kRootWmi, L"SELECT Voltage FROM BatteryStatus", L"Voltage",
                 {FakeValue::UInt32(2)});
  os_.wmi.Script(kRootWmi, L"SELECT DeviceName FROM BatteryStaticData", L"DeviceName",
                 {FakeValue::Text(L"WMI name")});
  os_.wmi.Script(kRootWmi, L"SELECT ManufactureName FROM BatteryStaticData", L"ManufactureName",
                 {FakeValue::Text(L"WMI maker")});
  EXPECT_EQ(Query(HAL_BATTERY_INFO_DESIGN_CAPACITY), 1u);  // no driver: WMI
  EXPECT_EQ(Query(HAL_BATTERY_INFO_VOLTAGE), 2u);

  Driver(57000, 12600, L"", L"Example Cells");
  EXPECT_EQ(Query(HAL_BATTERY_INFO_DESIGN_CAPACITY), 57000u);
  EXPECT_EQ(Query(HAL_BATTERY_INFO_VOLTAGE), 12600u);
  Battery battery;
  EXPECT_EQ(battery.GetBatteryManufacturer(), L"Example Cells");
  EXPECT_EQ(battery.GetBatteryName(), L"WMI name");  // an empty driver name falls back too
  const auto& open = os_.io.opens.back();
  EXPECT_EQ(open.access, static_cast<DWORD>(GENERIC_READ | GENERIC_WRITE));
  EXPECT_EQ(open.share, static_cast<DWORD>(FILE_SHARE_READ | FILE_SHARE_WRITE));
  EXPECT_EQ(os_.io.open_handles(), 0u);

  // A tag of 0 means an empty slot: WMI again. An empty manufacturer from the driver stays.
  os_.io.devices[battery_path_].ioctls[IOCTL_BATTERY_QUERY_TAG] =
      FakeDeviceIo::Answer(Bytes(ULONG{0}));
  EXPECT_EQ(Query(HAL_BATTERY_INFO_DESIGN_CAPACITY), 1u);
  EXPECT_EQ(battery.GetBatteryManufacturer(), L"WMI maker");
}

TEST_F(BatteryTest, TextsNeedRoomForTheirTerminator) {
  os_.wmi.Script(kRootWmi, L"SELECT DeviceName FROM BatteryStaticData", L"DeviceName",
                 {FakeValue::Text(L"DELL 7FHHV")});
  std::array<char, 16> text;
  text.fill('#');
  uint32_t returned = 0;
  EXPECT_EQ(BtQueryInformation(HAL_BATTERY_INFO_DEVICE_NAME, text.data(), 10, &returned), 0u);
  EXPECT_EQ(text[0], '#');
  EXPECT_EQ(BtQueryInformation(HAL_BATTERY_INFO_DEVICE_NAME, text.data(), 11, &returned), 1u);
  EXPECT_EQ(returned, 10u);
  EXPECT_EQ(std::string(text.data()), "DELL 7FHHV");

  // An empty name from the source is an answer of 0 bytes, its NUL still needing room; a name
  // no source gives is a failure.
  os_.wmi.Script(kRootWmi, L"SELECT DeviceName FROM BatteryStaticData", L"DeviceName",
                 {FakeValue::Text(L"")});
  EXPECT_EQ(BtQueryInformation(HAL_BATTERY_INFO_DEVICE_NAME, text.data(), 0, &returned), 0u);
  EXPECT_EQ(BtQueryInformation(HAL_BATTERY_INFO_DEVICE_NAME, text.data(), 1, &returned), 1u);
  EXPECT_EQ(returned, 0u);
  EXPECT_EQ(text[0], '\0');
  returned = 0xA5A5;
  EXPECT_EQ(BtQueryInformation(HAL_BATTERY_INFO_MANUFACTURER, text.data(), 16, &returned),
            0u);  // no source answers
  EXPECT_EQ(returned, 0xA5A5u);
}

TEST_F(BatteryTest, ThresholdsGoToTheFirmwareInOrder) {
  unsigned char bytes[2] = {55, 80};
  uint32_t returned = 0xA5A5;
  // No maker's interface: not supported, nothing written.
  EXPECT_EQ(BtSetInformation(HAL_BATTERY_SET_CHARGE_THRESHOLD, bytes, 2, &returned), 0u);
  EXPECT_EQ(returned, 0xA5A5u);

  velhal::os::ScopedBackend<velhal::FirmwareProvider> firmware(firmware_);
  EXPECT_EQ(BtSetInformation(HAL_BATTERY_SET_CHARGE_THRESHOLD, bytes, 0, &returned),
            1u);  // the size is not checked
  EXPECT_EQ(returned, 2u);
  const std::pair<unsigned char, unsigned char> expected{55, 80};
  EXPECT_EQ(firmware_.thresholds_set.back(), expected);
  EXPECT_EQ(HalSetInformation(HAL_CLASS_BATTERY, nullptr, HAL_BATTERY_SET_CHARGE_THRESHOLD, bytes,
                              2, &returned),
            1u);
  EXPECT_EQ(BtSetInformation(11, bytes, 2, &returned), 0u);
  EXPECT_EQ(BtSetInformation(HAL_BATTERY_SET_CHARGE_THRESHOLD, nullptr, 2, &returned), 0u);
  EXPECT_EQ(BtSetInformation(HAL_BATTERY_SET_CHARGE_THRESHOLD, bytes, 2, nullptr), 0u);

  Battery battery;
  StBatteryChangeThresholdLimit limit{0, 0};
  EXPECT_TRUE(battery.GetChargeThreshold(limit));
  EXPECT_EQ(limit.first, 55);
  EXPECT_EQ(limit.second, 80);
  firmware_.result = ERROR_GEN_FAILURE;
  returned = 0xA5A5;
  EXPECT_EQ(BtSetInformation(HAL_BATTERY_SET_CHARGE_THRESHOLD, bytes, 2, &returned), 0u);
  EXPECT_EQ(returned, 0xA5A5u);
  EXPECT_FALSE(battery.SetChargeThreshold(limit));
}

}  // namespace
