// AudioCard, Bluetooth, Biometric, Keyboard and CDeviceId against the system's real device
// database, Bluetooth API, biometric framework and keyboard, checked against the test's own
// reads. Wine 8 has no device in these setup classes, answers every unified-property read with
// ERROR_NOT_FOUND, finds no Bluetooth radio (bthprops.cpl answers ERROR_CALL_NOT_IMPLEMENTED;
// BluetoothApis.dll's function would end the process, and neither the library nor this test
// calls it) and has no winbio.dll: there the device lists, the radio and the units are the
// empty answers the own reads also find. On Windows the same assertions compare real devices.
#include "platform/win32.h"

#include <gtest/gtest.h>

#include <bluetoothapis.h>

#include <string>
#include <vector>

#include "components/audio_card.h"
#include "components/biometric.h"
#include "components/bluetooth.h"
#include "components/keyboard.h"
#include "firmware/device_id.h"
#include "network/network_card.h"
#include "platform/device_classes.h"
#include "tests/support/device_walk.h"
#include "tests/support/system_function.h"

namespace {

using velhal::testing::SystemFunction;

namespace device_class = velhal::device_class;
using velhal::testing::WalkDevices;
using velhal::testing::WalkedDevice;

void ExpectSameDevices(const std::vector<ComponentDevice>& listed, const GUID& setup_class) {
  const std::vector<WalkedDevice> walked = WalkDevices(&setup_class, DIGCF_PRESENT);
  ASSERT_EQ(listed.size(), walked.size());
  for (size_t i = 0; i < listed.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(listed[i].hardwareId, walked[i].first_id.value_or(L""));
    EXPECT_EQ(listed[i].description, walked[i].description.value_or(L""));
    EXPECT_EQ(listed[i].problemCode, walked[i].problem_code.value_or(0));
  }
}

TEST(ComponentBackendTest, EachClassListsTheDevicesAnOwnWalkFinds) {
  EXPECT_EQ(AudioCard().IsPresent(), !WalkDevices(&device_class::kMedia, DIGCF_PRESENT).empty());
  ExpectSameDevices(AudioCard().GetDevices(), device_class::kMedia);
  EXPECT_EQ(Bluetooth().IsPresent(),
            !WalkDevices(&device_class::kBluetooth, DIGCF_PRESENT).empty());
  ExpectSameDevices(Bluetooth().GetDevices(), device_class::kBluetooth);
  EXPECT_EQ(Biometric().IsPresent(),
            !WalkDevices(&device_class::kBiometric, DIGCF_PRESENT).empty());
  ExpectSameDevices(Biometric().GetDevices(), device_class::kBiometric);
  EXPECT_EQ(Keyboard().IsPresent(), !WalkDevices(&device_class::kKeyboard, DIGCF_PRESENT).empty());
  ExpectSameDevices(Keyboard().GetDevices(), device_class::kKeyboard);
}

TEST(ComponentBackendTest, DeviceIdNamesTheFirstDeviceWithItsKindsPrefix) {
  struct Kind {
    DeviceDriverType type;
    GUID setup_class;
    std::vector<std::wstring> prefixes;  // as CDeviceId's header states them
  };
  const Kind kinds[] = {
      {DriverType_Bluetooth, device_class::kBluetooth, {L"USB", L"QCA_SHB"}},
      {DriverType_Biometric, device_class::kBiometric, {L"USB", L"ACPI"}},
      {DriverType_Audio,
       device_class::kMedia,
       {L"HDAUDIO\\FUNC_01", L"INTELAUDIO\\FUNC_01", L"USB"}},
      {DriverType_Keyboard, device_class::kKeyboard, {L"ACPI"}},
      {DriverType_DisplayAdapter, device_class::kDisplay, {L"PCI"}},
      {DriverType_Usb, device_class::kUsb, {L"PCI"}},
  };
  CDeviceId* ids = CDeviceId::GetInstance();
  ASSERT_NE(ids, nullptr);
  for (const Kind& kind : kinds) {
    SCOPED_TRACE(kind.type);
    std::wstring id, description;
    for (const WalkedDevice& device : WalkDevices(&kind.setup_class, DIGCF_PRESENT)) {
      const std::wstring first = device.first_id.value_or(L"");
      for (const std::wstring& prefix : kind.prefixes) {
        if (id.empty() && first.rfind(prefix, 0) == 0) {
          id = first;
          description = device.description.value_or(L"");
        }
      }
    }
    EXPECT_EQ(ids->GetHardwareId(kind.type), id);
    EXPECT_EQ(ids->GetHardwareDesc(kind.type), description);
    EXPECT_FALSE(ids->GetDeviceTypeName(kind.type).empty());
  }
  EXPECT_EQ(ids->GetHardwareId(DriverType_WirelessNetwork), NetworkCard().GetWireLessCardHardId());
}

TEST(ComponentBackendTest, TheRadioIsTheOneTheBluetoothApiFinds) {
  const auto find_first =
      SystemFunction<HBLUETOOTH_RADIO_FIND WINAPI(BLUETOOTH_FIND_RADIO_PARAMS*, HANDLE*)>(
          L"bthprops.cpl", "BluetoothFindFirstRadio");
  BLUETOOTH_FIND_RADIO_PARAMS params{sizeof(params)};
  HANDLE radio = nullptr;
  const HBLUETOOTH_RADIO_FIND find = find_first ? find_first(&params, &radio) : nullptr;
  Bluetooth bluetooth;
  const BluetoothRadio answer = bluetooth.GetRadio();
  EXPECT_EQ(bluetooth.IsRadioPresent(), find != nullptr);
  EXPECT_EQ(answer.present, find != nullptr);
  if (find == nullptr) {
    EXPECT_FALSE(bluetooth.IsRadioOn());
    EXPECT_EQ(answer.address + answer.name + answer.coreVersion, L"");
    return;
  }
  BLUETOOTH_RADIO_INFO info{};
  info.dwSize = sizeof(info);
  ASSERT_EQ(SystemFunction<DWORD WINAPI(HANDLE, BLUETOOTH_RADIO_INFO*)>(
                L"bthprops.cpl", "BluetoothGetRadioInfo")(radio, &info),
            static_cast<DWORD>(ERROR_SUCCESS));
  EXPECT_EQ(answer.on, SystemFunction<BOOL WINAPI(HANDLE)>(
                           L"bthprops.cpl", "BluetoothIsConnectable")(radio) != FALSE);
  EXPECT_EQ(answer.name, info.szName);
  EXPECT_EQ(answer.manufacturer, info.manufacturer);
  EXPECT_EQ(answer.subversion, info.lmpSubversion);
  EXPECT_EQ(answer.address.size(), 17u);
  ::CloseHandle(radio);
  SystemFunction<BOOL WINAPI(HBLUETOOTH_RADIO_FIND)>(L"bthprops.cpl",
                                                     "BluetoothFindRadioClose")(find);
}

TEST(ComponentBackendTest, BiometricUnitsAreTheFrameworks) {
  const std::vector<BiometricUnit> units = Biometric().GetUnits();
  const auto enumerate = SystemFunction<HRESULT WINAPI(ULONG, void**, SIZE_T*)>(
      L"winbio.dll", "WinBioEnumBiometricUnits");
  if (enumerate == nullptr) {
    EXPECT_TRUE(units.empty());
    GTEST_SKIP() << "the system has no Windows Biometric Framework (Wine has no winbio.dll): "
                    "only the empty answer is checked";
  }
  const auto free_memory = SystemFunction<HRESULT WINAPI(void*)>(L"winbio.dll", "WinBioFree");
  size_t expected = 0;
  for (const ULONG factor : {0x08u, 0x02u, 0x10u}) {
    void* schemas = nullptr;
    SIZE_T count = 0;
    if (SUCCEEDED(enumerate(factor, &schemas, &count))) expected += count;
    if (schemas != nullptr) free_memory(schemas);
  }
  EXPECT_EQ(units.size(), expected);
}

TEST(ComponentBackendTest, KeyboardLayoutAndTypeAreTheSystems) {
  Keyboard keyboard;
  wchar_t name[KL_NAMELENGTH] = {};
  ASSERT_TRUE(::GetKeyboardLayoutNameW(name));
  EXPECT_EQ(keyboard.GetLayoutId(), name);
  const auto language = [](HKL layout) {
    wchar_t locale[LOCALE_NAME_MAX_LENGTH] = {};
    const LCID id = MAKELCID(LOWORD(reinterpret_cast<uintptr_t>(layout)), SORT_DEFAULT);
    return ::LCIDToLocaleName(id, locale, LOCALE_NAME_MAX_LENGTH, 0) > 0 ? std::wstring(locale)
                                                                         : std::wstring();
  };
  EXPECT_EQ(keyboard.GetLayoutLanguage(), language(::GetKeyboardLayout(0)));
  EXPECT_FALSE(keyboard.GetLayoutLanguage().empty());
  std::vector<HKL> layouts(static_cast<size_t>(::GetKeyboardLayoutList(0, nullptr)));
  layouts.resize(static_cast<size_t>(
      ::GetKeyboardLayoutList(static_cast<int>(layouts.size()), layouts.data())));
  std::vector<std::wstring> languages;
  for (const HKL layout : layouts) languages.push_back(language(layout));
  EXPECT_EQ(keyboard.GetLayoutLanguages(), languages);
  EXPECT_EQ(keyboard.GetKeyboardType(), static_cast<uint32_t>(::GetKeyboardType(0)));
  EXPECT_EQ(keyboard.GetKeyboardSubType(), static_cast<uint32_t>(::GetKeyboardType(1)));
  EXPECT_EQ(keyboard.GetFunctionKeyCount(), static_cast<uint32_t>(::GetKeyboardType(2)));
}

}  // namespace
