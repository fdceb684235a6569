// AudioCard, Bluetooth, Biometric and Keyboard against the fakes: the devices of each class
// with their driver facts, the Bluetooth radio, the biometric units, the keyboard layout.
#include "platform/win32.h"

#include <gtest/gtest.h>

#include <cstring>

#include "components/audio_card.h"
#include "components/biometric.h"
#include "components/bluetooth.h"
#include "components/keyboard.h"
#include "drivers/device_driver.h"
#include "platform/device_classes.h"
#include "platform/device_informention.h"
#include "platform/device_property_keys.h"
#include "tests/fakes/fake_common.h"
#include "tests/support/fake_system.h"

namespace {

namespace keys = velhal::device_keys;
namespace device_class = velhal::device_class;
using velhal::testing::Bytes;
using velhal::testing::FakeDevice;

const DEVPROPKEY kManufacturer = keys::kByProperty[DeviceProperty_Manufacturer];
const DEVPROPKEY kDriverVersion = keys::kByProperty[DeviceProperty_DriverVersion];
const DEVPROPKEY kProblemCode = keys::kByProperty[DeviceProperty_ProblemCode];

FILETIME Day(WORD year, WORD month, WORD day) {
  SYSTEMTIME time{};
  time.wYear = year;
  time.wMonth = month;
  time.wDay = day;
  FILETIME file_time{};
  ::SystemTimeToFileTime(&time, &file_time);
  return file_time;
}

class ComponentClassesTest : public ::testing::Test {
 protected:
  FakeDevice& Driven(const GUID& setup_class, const std::wstring& id, const std::wstring& version) {
    return os_.devices.Add(setup_class)
        .HardwareIds({id, L"GENERIC\\ID"})
        .Description(L"Device " + id)
        .String(kManufacturer, L"Maker of " + id)
        .String(kDriverVersion, version)
        .Set(keys::kDriverDate, DEVPROP_TYPE_FILETIME, Bytes(Day(2023, 5, 17)));
  }

  velhal::testing::FakeSystem os_;
};

TEST_F(ComponentClassesTest, EachClassListsItsPresentDevicesWithTheirDriverFacts) {
  Driven(device_class::kMedia, L"HDAUDIO\\FUNC_01&VEN_10EC", L"6.0.9549.1")
      .UInt32(kProblemCode, 28);
  os_.devices.Add(device_class::kMedia).HardwareIds({L"SWD\\NO_DRIVER"});  // nothing else known
  Driven(device_class::kMedia, L"HDAUDIO\\GONE", L"1.0").present = false;
  Driven(device_class::kBluetooth, L"USB\\VID_8087&PID_0026", L"22.240.0.2");
  Driven(device_class::kKeyboard, L"ACPI\\VEN_PNP&DEV_0303", L"10.0.22621.1");
  // A date of the wrong type is no date.
  os_.devices.devices.back().Set(keys::kDriverDate, DEVPROP_TYPE_UINT64, Bytes(uint64_t{1}));

  const std::vector<ComponentDevice> audio = AudioCard().GetDevices();
  ASSERT_EQ(audio.size(), 2u);
  EXPECT_EQ(audio[0].hardwareId, L"HDAUDIO\\FUNC_01&VEN_10EC");
  EXPECT_EQ(audio[0].description, L"Device HDAUDIO\\FUNC_01&VEN_10EC");
  EXPECT_EQ(audio[0].manufacturer, L"Maker of HDAUDIO\\FUNC_01&VEN_10EC");
  EXPECT_EQ(audio[0].driverVersion, L"6.0.9549.1");
  EXPECT_EQ(audio[0].driverDate, L"2023-05-17");
  EXPECT_EQ(audio[0].problemCode, 28u);
  EXPECT_EQ(audio[1].hardwareId, L"SWD\\NO_DRIVER");
  EXPECT_EQ(
      audio[1].description + audio[1].manufacturer + audio[1].driverVersion + audio[1].driverDate,
      L"");
  EXPECT_EQ(audio[1].problemCode, 0u);

  const std::vector<ComponentDevice> keyboards = Keyboard().GetDevices();
  ASSERT_EQ(keyboards.size(), 1u);
  EXPECT_EQ(keyboards[0].driverVersion, L"10.0.22621.1");
  EXPECT_EQ(keyboards[0].driverDate, L"");
  ASSERT_EQ(Bluetooth().GetDevices().size(), 1u);

  // A kind with no device: nothing listed, not present.
  EXPECT_TRUE(Biometric().GetDevices().empty());
  EXPECT_FALSE(Biometric().IsPresent());
  EXPECT_TRUE(AudioCard().IsPresent());
  EXPECT_TRUE(Bluetooth().IsPresent());
  EXPECT_TRUE(Keyboard().IsPresent());
  for (const auto& open : os_.devices.opens) {
    EXPECT_EQ(open.flags, static_cast<DWORD>(DIGCF_PRESENT));
    EXPECT_TRUE(open.class_guid.has_value()) << "each walk stays in its class";
  }
}

TEST_F(ComponentClassesTest, DriverVersionsFollowTheirKindsRules) {
  Driven(device_class::kBluetooth, L"BTHENUM\\{0000110b}", L"1.0");
  Driven(device_class::kBluetooth, L"QCA_SHB\\BT", L"2.1");
  Driven(device_class::kKeyboard, L"HID\\VID_04F3", L"9.9");
  Driven(device_class::kKeyboard, L"ACPI\\PNP0303", L"10.0");
  EXPECT_EQ(Bluetooth().GetDriverVersion(), L"2.1");
  EXPECT_EQ(Keyboard().GetDriverVersion(), L"10.0");
  EXPECT_EQ(GetDeviceDriverVersion(DriverType_Bluetooth), Bluetooth().GetDriverVersion());
  EXPECT_EQ(GetDeviceDriverVersion(DriverType_Keyboard), Keyboard().GetDriverVersion());
}

// IOCTL_BTH_GET_LOCAL_INFO's packed answer, of which the LMP version is the last byte.
std::vector<BYTE> LocalInfo(uint8_t lmp_version) {
  std::vector<BYTE> info(292, 0);
  info.back() = lmp_version;
  return info;
}

TEST_F(ComponentClassesTest, TheRadioIsReadFromTheBluetoothApi) {
  // No radio (Wine's bthprops.cpl answers so): everything empty.
  os_.bluetooth.find_error = ERROR_CALL_NOT_IMPLEMENTED;
  Bluetooth bluetooth;
  EXPECT_FALSE(bluetooth.IsRadioPresent());
  EXPECT_FALSE(bluetooth.IsRadioOn());
  EXPECT_FALSE(bluetooth.GetRadio().present);
  EXPECT_EQ(bluetooth.GetRadio().address, L"");

  velhal::testing::FakeBluetooth::Radio radio;
  radio.info.address.ullLong = 0x0000A1B2C3D4E5F6ULL;
  std::wcscpy(radio.info.szName, L"BUILD-HOST");
  radio.info.manufacturer = 0x0002;
  radio.info.lmpSubversion = 0x2222;
  radio.local_info = LocalInfo(12);
  os_.bluetooth.radio = radio;
  BluetoothRadio answer = bluetooth.GetRadio();
  EXPECT_TRUE(answer.present);
  EXPECT_TRUE(answer.on);
  EXPECT_EQ(answer.address, L"A1:B2:C3:D4:E5:F6");
  EXPECT_EQ(answer.name, L"BUILD-HOST");
  EXPECT_EQ(answer.manufacturer, 0x0002);
  EXPECT_EQ(answer.manufacturerName, L"Intel");
  EXPECT_EQ(answer.subversion, 0x2222);
  EXPECT_EQ(answer.coreVersion, L"5.3");
  EXPECT_TRUE(bluetooth.IsRadioPresent());
  EXPECT_TRUE(bluetooth.IsRadioOn());

  // Switched off: found, but it accepts no connections. A maker without a name, an LMP version
  // beyond the table and a refused IOCTL leave their fields empty.
  os_.bluetooth.radio->connectable = false;
  os_.bluetooth.radio->info.manufacturer = 0x0999;
  os_.bluetooth.radio->local_info = LocalInfo(99);
  answer = bluetooth.GetRadio();
  EXPECT_TRUE(answer.present);
  EXPECT_FALSE(answer.on);
  EXPECT_FALSE(bluetooth.IsRadioOn());
  EXPECT_EQ(answer.manufacturerName, L"");
  EXPECT_EQ(answer.coreVersion, L"");
  os_.bluetooth.radio->local_info.clear();
  os_.bluetooth.radio->info_error = ERROR_INVALID_PARAMETER;
  answer = bluetooth.GetRadio();
  EXPECT_TRUE(answer.present);
  EXPECT_EQ(answer.address + answer.name + answer.coreVersion, L"");
}

velhal::os::WinBioUnitSchema Unit(ULONG id, ULONG factor, ULONG subtype, const wchar_t* model) {
  velhal::os::WinBioUnitSchema unit{};
  unit.UnitId = id;
  unit.BiometricFactor = factor;
  unit.SensorSubType = subtype;
  std::wcscpy(unit.Model, model);
  std::wcscpy(unit.Manufacturer, L"Example Sensors");
  unit.FirmwareVersion = {10, 35};
  return unit;
}

TEST_F(ComponentClassesTest, BiometricUnitsOfEveryFactorTheFrameworkKnows) {
  auto fingerprint = Unit(1, 0x08, 2, L"Touch 5110");
  for (wchar_t& unit : fingerprint.Description) unit = L'x';  // no terminator at all
  os_.biometric.units[0x08] = {fingerprint};
  os_.biometric.units[0x02] = {Unit(7, 0x02, 0, L"IR Camera")};
  // Iris (0x10) has no entry: the framework refuses that factor, which hides nothing else.
  const std::vector<BiometricUnit> units = Biometric().GetUnits();
  ASSERT_EQ(units.size(), 2u);
  EXPECT_EQ(units[0].unitId, 1u);
  EXPECT_EQ(units[0].factor, 0x08u);
  EXPECT_EQ(units[0].sensorSubType, 2u);
  EXPECT_EQ(units[0].model, L"Touch 5110");
  EXPECT_EQ(units[0].manufacturer, L"Example Sensors");
  EXPECT_EQ(units[0].firmwareVersion, L"10.35");
  EXPECT_EQ(units[0].description, std::wstring(256, L'x'));
  EXPECT_EQ(units[1].factor, 0x02u);
  EXPECT_EQ(os_.biometric.factors_asked, (std::vector<ULONG>{0x08, 0x02, 0x10}));

  os_.biometric.missing = true;  // no winbio.dll
  EXPECT_TRUE(Biometric().GetUnits().empty());
}

TEST_F(ComponentClassesTest, KeyboardLayoutAndType) {
  os_.locale.names[0x0407] = L"de-DE";
  os_.input.layout_name = L"00000407";
  os_.input.layouts = {reinterpret_cast<HKL>(0x04070407), reinterpret_cast<HKL>(0xF0020409),
                       reinterpret_cast<HKL>(0x04150415)};  // the last: a language without a name
  os_.input.keyboard_type = {{0, 7}, {1, 2}, {2, 12}};
  Keyboard keyboard;
  EXPECT_EQ(keyboard.GetLayoutId(), L"00000407");
  EXPECT_EQ(keyboard.GetLayoutLanguage(), L"de-DE");
  EXPECT_EQ(keyboard.GetLayoutLanguages(), (std::vector<std::wstring>{L"de-DE", L"en-US", L""}));
  EXPECT_EQ(keyboard.GetKeyboardType(), 7u);
  EXPECT_EQ(keyboard.GetKeyboardSubType(), 2u);
  EXPECT_EQ(keyboard.GetFunctionKeyCount(), 12u);

  os_.input.layout_name.clear();
  os_.input.layouts.clear();
  os_.input.keyboard_type.clear();
  EXPECT_EQ(keyboard.GetLayoutId(), L"");
  EXPECT_EQ(keyboard.GetLayoutLanguage(), L"");
  EXPECT_TRUE(keyboard.GetLayoutLanguages().empty());
  EXPECT_EQ(keyboard.GetKeyboardType(), 0u);
}

}  // namespace
