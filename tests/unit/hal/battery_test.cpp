#include "platform/win32.h"

#include "hal/battery.h"

#include <gtest/gtest.h>

#include <winioctl.h>

#include <batclass.h>

#include <array>
#include <cstring>

#include "hal/hal_api.h"
#include "tests/fakes/fake_device_database.h"
#include "tests/fakes/fake_device_io.h"
#include "tests/fakes/fake_firmware.h"
#include "tests/fakes/fake_power.h"
#include "tests/fakes/fake_wmi.h"
#include "tests/support/hal_query.h"

namespace {

using namespace velhal::testing;

const std::wstring kRootWmi = L"ROOT\\WMI";
constexpr GUID kBatteryClass{0x72631e53, 0x78a4, 0x11d0, {0xbc, 0xf7, 0x00, 0xaa, 0x00, 0xb7, 0xb3, 0x2a}};
constexpr GUID kBatteryInterface{0x72631e54, 0x78a4, 0x11d0, {0xbc, 0xf7, 0x00, 0xaa, 0x00, 0xb7, 0xb3, 0x2a}};
const std::wstring kBatteryPath = L"\\\\?\\acpi#pnp0c0a#1#{72631e54-78a4-11d0-bcf7-00aa00b7b32a}";

template <class T>
std::vector<BYTE> Bytes(const T& value) {
  std::vector<BYTE> bytes(sizeof(T));
  std::memcpy(bytes.data(), &value, sizeof(T));
  return bytes;
}

std::vector<BYTE> WideBytes(const std::wstring& text) {
  std::vector<BYTE> bytes((text.size() + 1) * 2, 0);
  std::memcpy(bytes.data(), text.data(), text.size() * 2);
  return bytes;
}

class BatteryTest : public ::testing::Test {
 protected:
  std::optional<uint32_t> Query(uint32_t info_class) {
    return QueryNumber<uint32_t>(HAL_CLASS_BATTERY, nullptr, info_class);
  }
  void OnBattery(int32_t rate, ULONG remaining = 36480, ULONG full = 45600) {
    power_.status.ACLineStatus = 0;
    power_.status.BatteryFlag = 1;
    power_.battery.AcOnLine = FALSE;
    power_.battery.BatteryPresent = TRUE;
    power_.battery.Discharging = rate < 0;
    power_.battery.Rate = static_cast<ULONG>(rate);
    power_.battery.RemainingCapacity = remaining;
    power_.battery.MaxCapacity = full;
  }
  // A battery driver: tag 7, design capacity, voltage and the two names.
  void Driver(ULONG design, ULONG voltage, const std::wstring& name, const std::wstring& maker) {
    db_.Add(kBatteryClass).interfaces.emplace_back(kBatteryInterface, kBatteryPath);
    auto& device = io_.devices[kBatteryPath];
    device.ioctls[IOCTL_BATTERY_QUERY_TAG] = FakeDeviceIo::Answer(Bytes(ULONG{7}));
    FakeDeviceIo::Ioctl information;
    information.by_input = [=](const std::vector<BYTE>& in) {
      BATTERY_QUERY_INFORMATION query{};
      std::memcpy(&query, in.data(), std::min(in.size(), sizeof(query)));
      if (query.BatteryTag != 7) return FakeDeviceIo::Failure(ERROR_FILE_NOT_FOUND);
      if (query.InformationLevel == BatteryInformation) {
        BATTERY_INFORMATION info{};
        info.DesignedCapacity = design;
        return FakeDeviceIo::Answer(Bytes(info));
      }
      if (query.InformationLevel == BatteryDeviceName) return FakeDeviceIo::Answer(WideBytes(name));
      if (query.InformationLevel == BatteryManufactureName) {
        return FakeDeviceIo::Answer(WideBytes(maker));
      }
      return FakeDeviceIo::Failure(ERROR_INVALID_FUNCTION);
    };
    device.ioctls[IOCTL_BATTERY_QUERY_INFORMATION] = information;
    // Drivers refuse a wait-status input shorter than the published 20 bytes.
    FakeDeviceIo::Ioctl status;
    status.by_input = [=](const std::vector<BYTE>& in) {
      if (in.size() < sizeof(BATTERY_WAIT_STATUS)) return FakeDeviceIo::Failure(ERROR_INVALID_PARAMETER);
      BATTERY_STATUS answer{};
      answer.Voltage = voltage;
      return FakeDeviceIo::Answer(Bytes(answer));
    };
    device.ioctls[IOCTL_BATTERY_QUERY_STATUS] = status;
  }

  FakePower power_;
  FakeWmi wmi_;
  FakeDeviceDatabase db_;
  FakeDeviceIo io_;
  FakeFirmware firmware_;
  velhal::os::ScopedBackend<velhal::os::Power> b1_{power_};
  velhal::os::ScopedBackend<velhal::os::Wmi> b2_{wmi_};
  velhal::os::ScopedBackend<velhal::os::DeviceDatabase> b3_{db_};
  velhal::os::ScopedBackend<velhal::os::DeviceIo> b4_{io_};
};

TEST_F(BatteryTest, ADesktopHasNoBatteryButReportsItsAcLine) {
  for (uint32_t info_class : {0u, 3u, 4u, 5u, 7u, 8u}) {
    EXPECT_EQ(Query(info_class), std::nullopt) << info_class;
  }
  EXPECT_EQ(Query(6), 1u);
  EXPECT_EQ(HalInit(HAL_CLASS_BATTERY, nullptr), 1u);
  EXPECT_EQ(Query(11), std::nullopt);
  power_.status.BatteryFlag = 255;  // unknown is no battery either
  EXPECT_EQ(Query(0), std::nullopt);
}

TEST_F(BatteryTest, PowerCallsAreRetriedAFixedNumberOfTimes) {
  OnBattery(-9000);
  power_.status_failures = 2;  // three attempts in all
  EXPECT_EQ(Query(0), 1u);
  power_.status_failures = 3;
  EXPECT_EQ(Query(6), std::nullopt);
  power_.status_failures = 0;
  power_.battery_failures = 3;  // four attempts in all
  EXPECT_EQ(Query(3), 36480u);
  power_.battery_failures = 4;
  EXPECT_EQ(Query(4), std::nullopt);
}

TEST_F(BatteryTest, RatesFollowTheLineAndTheSign) {
  OnBattery(-9000);
  EXPECT_EQ(Query(9), 9000u);
  EXPECT_EQ(Query(10), std::nullopt);
  power_.battery.AcOnLine = TRUE;
  power_.battery.Rate = 15000;
  EXPECT_EQ(Query(10), 15000u);
  EXPECT_EQ(Query(9), std::nullopt);
  power_.battery.Rate = 0;  // full and idle on AC
  EXPECT_EQ(Query(10), std::nullopt);
  power_.battery.AcOnLine = 2;  // only exactly 1 is "on AC"
  power_.battery.Rate = 15000;
  EXPECT_EQ(Query(10), std::nullopt);
  power_.battery.AcOnLine = FALSE;
  power_.battery.Rate = static_cast<ULONG>(INT32_MIN);
  EXPECT_EQ(Query(9), 2147483648u);
}

TEST_F(BatteryTest, LossIsWearInHundredthsOfAPercent) {
  OnBattery(-1000, 30000, 45000);
  wmi_.Script(kRootWmi, L"SELECT DesignedCapacity FROM BatteryStaticData", L"DesignedCapacity",
              {FakeValue::UInt32(50000)});
  EXPECT_EQ(Query(5), 50000u);
  EXPECT_EQ(Query(8), 1000u);
  Battery battery;
  EXPECT_FLOAT_EQ(battery.GetBattertLoss(), 10.0f);
  EXPECT_EQ(battery.GetBatteryPercent(), 67u);  // 30000 / 45000, rounded
  power_.battery.MaxCapacity = 50500;           // holds more than its design: failure, not 0
  EXPECT_EQ(Query(8), std::nullopt);
  power_.battery.MaxCapacity = 50000;
  EXPECT_EQ(Query(8), std::nullopt);
  wmi_.Script(kRootWmi, L"SELECT DesignedCapacity FROM BatteryStaticData", L"DesignedCapacity",
              {FakeValue::UInt32(0xFFFFFFFF)});
  EXPECT_EQ(Query(5), std::nullopt);
}

TEST_F(BatteryTest, TheDriverAnswersBeforeWmi) {
  OnBattery(-1000);
  wmi_.Script(kRootWmi, L"SELECT DesignedCapacity FROM BatteryStaticData", L"DesignedCapacity",
              {FakeValue::UInt32(1)});
  wmi_.Script(kRootWmi, L"SELECT Voltage FROM BatteryStatus", L"Voltage", {FakeValue::UInt32(2)});
  wmi_.Script(kRootWmi, L"SELECT DeviceName FROM BatteryStaticData", L"DeviceName",
              {FakeValue::Text(L"WMI name")});
  wmi_.Script(kRootWmi, L"SELECT ManufactureName FROM BatteryStaticData", L"ManufactureName",
              {FakeValue::Text(L"WMI maker")});
  EXPECT_EQ(Query(5), 1u);  // no driver: WMI
  EXPECT_EQ(Query(7), 2u);

  Driver(57000, 12600, L"", L"Example Cells");
  EXPECT_EQ(Query(5), 57000u);
  EXPECT_EQ(Query(7), 12600u);
  Battery battery;
  EXPECT_EQ(battery.GetBatteryManufacturer(), L"Example Cells");
  EXPECT_EQ(battery.GetBatteryName(), L"WMI name");  // an empty driver name falls back too
  const auto& open = io_.opens.back();
  EXPECT_EQ(open.access, static_cast<DWORD>(GENERIC_READ | GENERIC_WRITE));
  EXPECT_EQ(open.share, static_cast<DWORD>(FILE_SHARE_READ | FILE_SHARE_WRITE));
  EXPECT_EQ(io_.open_handles(), 0u);

  // A tag of 0 means an empty slot: WMI again. An empty manufacturer from the driver stays.
  io_.devices[kBatteryPath].ioctls[IOCTL_BATTERY_QUERY_TAG] = FakeDeviceIo::Answer(Bytes(ULONG{0}));
  EXPECT_EQ(Query(5), 1u);
  EXPECT_EQ(battery.GetBatteryManufacturer(), L"WMI maker");
}

TEST_F(BatteryTest, TextsNeedRoomForTheirTerminator) {
  wmi_.Script(kRootWmi, L"SELECT DeviceName FROM BatteryStaticData", L"DeviceName",
              {FakeValue::Text(L"DELL 7FHHV")});
  std::array<char, 16> text;
  text.fill('#');
  uint32_t returned = 0;
  EXPECT_EQ(BtQueryInformation(2, text.data(), 10, &returned), 0u);
  EXPECT_EQ(text[0], '#');
  EXPECT_EQ(BtQueryInformation(2, text.data(), 11, &returned), 1u);
  EXPECT_EQ(returned, 10u);
  EXPECT_EQ(std::string(text.data()), "DELL 7FHHV");

  // An empty name from the source is an answer of 0 bytes, its NUL still needing room; a name
  // no source gives is a failure.
  wmi_.Script(kRootWmi, L"SELECT DeviceName FROM BatteryStaticData", L"DeviceName",
              {FakeValue::Text(L"")});
  EXPECT_EQ(BtQueryInformation(2, text.data(), 0, &returned), 0u);
  EXPECT_EQ(BtQueryInformation(2, text.data(), 1, &returned), 1u);
  EXPECT_EQ(returned, 0u);
  EXPECT_EQ(text[0], '\0');
  returned = 0xA5A5;
  EXPECT_EQ(BtQueryInformation(1, text.data(), 16, &returned), 0u);  // no source answers
  EXPECT_EQ(returned, 0xA5A5u);
}

TEST_F(BatteryTest, ThresholdsGoToTheFirmwareInOrder) {
  unsigned char bytes[2] = {55, 80};
  uint32_t returned = 0xA5A5;
  // No maker's interface: not supported, nothing written.
  EXPECT_EQ(BtSetInformation(12, bytes, 2, &returned), 0u);
  EXPECT_EQ(returned, 0xA5A5u);

  velhal::os::ScopedBackend<velhal::FirmwareProvider> firmware(firmware_);
  EXPECT_EQ(BtSetInformation(12, bytes, 0, &returned), 1u);  // the size is not checked
  EXPECT_EQ(returned, 2u);
  const std::pair<unsigned char, unsigned char> expected{55, 80};
  EXPECT_EQ(firmware_.thresholds_set.back(), expected);
  EXPECT_EQ(HalSetInformation(HAL_CLASS_BATTERY, nullptr, 12, bytes, 2, &returned), 1u);
  EXPECT_EQ(BtSetInformation(11, bytes, 2, &returned), 0u);
  EXPECT_EQ(BtSetInformation(12, nullptr, 2, &returned), 0u);
  EXPECT_EQ(BtSetInformation(12, bytes, 2, nullptr), 0u);

  Battery battery;
  StBatteryChangeThresholdLimit limit{0, 0};
  EXPECT_TRUE(battery.GetChargeThreshold(limit));
  EXPECT_EQ(limit.first, 55);
  EXPECT_EQ(limit.second, 80);
  firmware_.result = ERROR_GEN_FAILURE;
  returned = 0xA5A5;
  EXPECT_EQ(BtSetInformation(12, bytes, 2, &returned), 0u);
  EXPECT_EQ(returned, 0xA5A5u);
  EXPECT_FALSE(battery.SetChargeThreshold(limit));
}

}  // namespace
