// The sensors, firmware switches and touch screen through VelHal.dll, each checked against the
// test's own read of the same source. Wine serves no thermal zone, fan, battery device or vendor
// WMI class and lists only its virtual mouse and keyboard as HID devices: there the checks are
// the "not available" answers and the failure reports; on Windows the same checks compare real
// readings where the test can read them itself.
#include "platform/win32.h"

#include "components/bios_fun.h"
#include "components/bios_wmi.h"
#include "components/hot_interface.h"
#include "components/touch_screen.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <io.h>
#include <setupapi.h>
#include <wbemcli.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/debug_capture.h"
#include "tests/support/raw_wmi.h"
#include "tests/support/wine.h"

namespace {

using velhal::testing::RawWmiTexts;
using velhal::testing::RunningOnWine;

const GUID kHidClass{0x745a17a0, 0x74d3, 0x11d0, {0xb6, 0xfe, 0x00, 0xa0, 0xc9, 0x0f, 0x57, 0xda}};
const GUID kBatteryInterface{
    0x72631e54, 0x78a4, 0x11d0, {0xbc, 0xf7, 0x00, 0xaa, 0x00, 0xb7, 0xb3, 0x2a}};

// The test's own scan: every present device of any class, its class and hardware IDs compared
// here, letter case folded by hand.
bool OwnTouchScan() {
  HDEVINFO set =
      ::SetupDiGetClassDevsW(nullptr, nullptr, nullptr, DIGCF_ALLCLASSES | DIGCF_PRESENT);
  if (set == INVALID_HANDLE_VALUE) return false;
  bool touch = false;
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  for (DWORD i = 0; ::SetupDiEnumDeviceInfo(set, i, &device); ++i) {
    if (!IsEqualGUID(device.ClassGuid, kHidClass)) continue;
    std::vector<wchar_t> ids(32768, L'\0');
    if (!::SetupDiGetDeviceRegistryPropertyW(set, &device, SPDRP_HARDWAREID, nullptr,
                                             reinterpret_cast<BYTE*>(ids.data()),
                                             static_cast<DWORD>(ids.size() * 2 - 4), nullptr)) {
      continue;
    }
    bool is_virtual = false, has_usage = false;
    for (const wchar_t* id = ids.data(); *id; id += std::wcslen(id) + 1) {
      std::wstring upper(id);
      for (wchar_t& c : upper) c = static_cast<wchar_t>(std::towupper(c));
      is_virtual |= upper == L"HID\\VHIDUM&COL01";
      has_usage |= upper == L"HID_DEVICE_UP:000D_U:0004";
    }
    touch |= has_usage && !is_virtual;
  }
  ::SetupDiDestroyDeviceInfoList(set);
  return touch;
}

// Standard output of the process (the DLL shares the C runtime) into a file while it lives.
class StdoutCapture {
 public:
  StdoutCapture() {
    std::fflush(stdout);
    saved_ = ::_dup(::_fileno(stdout));
    std::FILE* file = std::fopen(path_.c_str(), "w");  // text mode, as a console or pipe is
    ::_dup2(::_fileno(file), ::_fileno(stdout));
    std::fclose(file);
  }
  ~StdoutCapture() { Stop(); }
  std::string Stop() {
    if (saved_ < 0) return text_;
    std::fflush(stdout);
    ::_dup2(saved_, ::_fileno(stdout));
    ::_close(saved_);
    saved_ = -1;
    std::stringstream read;
    read << std::ifstream(path_, std::ios::binary).rdbuf();
    ::DeleteFileA(path_.c_str());
    for (char c : read.str()) {
      if (c != '\r') text_ += c;  // text mode writes CR LF
    }
    return text_;
  }

 private:
  std::string path_ = "velhal-stdout-" + std::to_string(::GetCurrentProcessId()) + ".txt";
  int saved_ = -1;
  std::string text_;
};

TEST(ComponentsTest, TouchScreenPresenceAgreesWithAnIndependentScan) {
  const bool own = OwnTouchScan();
  EXPECT_EQ(TouchScreen::IsTouchDeviceExist(), own);
  if (RunningOnWine()) {
    EXPECT_FALSE(own) << "Wine's HID devices are a mouse and a keyboard";
  }
}

TEST(ComponentsTest, TheSwitchesReportAMissingVendorClass) {
  // The test's own look at the class, so that it never switches a real touch controller.
  const HRESULT init = ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  HRESULT enumerated = E_FAIL;
  bool has_instance = false;
  IWbemLocator* locator = nullptr;
  IWbemServices* services = nullptr;
  BSTR name_space = ::SysAllocString(L"root\\WMI");
  BSTR class_name = ::SysAllocString(L"TouchScreenDeviceInformation");
  if (SUCCEEDED(::CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IWbemLocator, reinterpret_cast<void**>(&locator))) &&
      SUCCEEDED(locator->ConnectServer(name_space, nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                       &services))) {
    IEnumWbemClassObject* instances = nullptr;
    enumerated = services->CreateInstanceEnum(class_name, 0x21, nullptr, &instances);
    if (instances != nullptr) {
      IWbemClassObject* first = nullptr;
      ULONG returned = 0;
      has_instance = SUCCEEDED(instances->Next(10000, 1, &first, &returned)) && returned == 1;
      if (first != nullptr) first->Release();
      instances->Release();
    }
  }
  if (services) services->Release();
  if (locator) locator->Release();
  ::SysFreeString(name_space);
  ::SysFreeString(class_name);
  if (SUCCEEDED(init)) ::CoUninitialize();
  if (has_instance) GTEST_SKIP() << "this machine has the vendor class; the test leaves it alone";

  for (void (*flip)() : {&TouchScreen::OpenTrifingerDriver, &TouchScreen::CloseTrifingerDriver}) {
    velhal::testing::DebugCapture debug;
    StdoutCapture output;
    flip();
    // Taken before any assertion: a failing one writes to the debugger output too.
    const std::vector<std::wstring> logged = debug.messages;
    const std::string printed = output.Stop();
    if (FAILED(enumerated)) {  // Windows: the class does not exist
      char expected[128];
      std::snprintf(expected, sizeof(expected),
                    "Error %lX: Failed to get a reference to instance enumerator.\n",
                    static_cast<unsigned long>(enumerated));
      EXPECT_EQ(printed, expected);
    } else {  // Wine lists no instance of an unknown class and fails nothing
      EXPECT_EQ(printed, "");
    }
    ASSERT_FALSE(logged.empty());
    EXPECT_EQ(logged.back(),
              L"Could not find the instance.(TouchScreenControlImp::Open)\n");
  }
}

TEST(ComponentsTest, ATemperatureTheMachineDoesNotServeIsTheMissingMark) {
  const auto zones =
      RawWmiTexts(L"ROOT\\WMI", L"SELECT CurrentTemperature FROM MSAcpi_ThermalZoneTemperature",
                  L"CurrentTemperature");
  HotInterface hot;
  if (zones && !zones->empty()) {
    const double tenths = std::stod(zones->front());
    // A live zone may move a degree between the two reads.
    EXPECT_NEAR(hot.GetSensorTemperature(0), std::lround((tenths - 2731.5) / 10), 2);
    return;
  }
  if (!RunningOnWine()) GTEST_SKIP() << "WMI serves no zone here; the counters may, unchecked";
  EXPECT_EQ(hot.GetSensorTemperature(0), 2147483647);
  int celsius = -1;
  EXPECT_EQ(VelSDK::BiosWmi::GetSensorTemperature(celsius, QuerySensorTemperature0),
            ERROR_NOT_SUPPORTED);
  EXPECT_EQ(celsius, -1);
}

TEST(ComponentsTest, FansAndBatteriesAnswerOnlyWhereTheMachineHasThem) {
  const auto fans =
      RawWmiTexts(L"ROOT\\CIMV2", L"SELECT DesiredSpeed FROM Win32_Fan", L"DesiredSpeed");
  HotInterface hot;
  int rpm = -1;
  const int fan_result = VelSDK::BiosWmi::GetFanSpeed(rpm, FanSpeedLocateFan0);
  if (fans && !fans->empty()) {
    EXPECT_EQ(fan_result, 0);
    EXPECT_EQ(std::to_wstring(rpm), fans->front());
  } else {
    EXPECT_EQ(fan_result, ERROR_NOT_SUPPORTED);
    EXPECT_EQ(hot.GetFan0Speed(), 0u);
  }

  HDEVINFO set = ::SetupDiGetClassDevsW(&kBatteryInterface, nullptr, nullptr,
                                        DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
  SP_DEVICE_INTERFACE_DATA battery{};
  battery.cbSize = sizeof(battery);
  const bool has_battery =
      ::SetupDiEnumDeviceInterfaces(set, nullptr, &kBatteryInterface, 0, &battery) != FALSE;
  ::SetupDiDestroyDeviceInfoList(set);
  if (has_battery) GTEST_SKIP() << "a live battery's readings move between two reads";
  int value = -1;
  for (auto locate : {VoltageLocateBattery0, CurrentLocateBattery0, VoltageLocateUsb0}) {
    SCOPED_TRACE(locate);
    EXPECT_EQ(VelSDK::BiosWmi::GetVoltageOrCurrent(value, locate), ERROR_NOT_SUPPORTED);
  }
  EXPECT_EQ(value, -1);
  EXPECT_EQ(hot.GetVoltageBattery0(), 0);
  EXPECT_EQ(hot.GetCurrentBattery0(), 0);
}

TEST(ComponentsTest, WithoutAMakersInterfaceNoSwitchIsKnown) {
  BiosFun bios;
  for (unsigned type = 0; type <= 9; ++type) {
    SCOPED_TRACE(type);
    bool status = false;
    EXPECT_FALSE(bios.GetBiosSwitch(status, static_cast<DeviceDriverType>(type)));
    EXPECT_TRUE(status);
  }
}

}  // namespace
