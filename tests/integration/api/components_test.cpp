// The sensors and the touch screen through VelHal.dll, checked against the test's own read of
// the same source. Wine serves no thermal zone or vendor WMI class and lists only a virtual mouse
// and keyboard as HID devices: there the checks are the missing reading and the failure reports;
// on Windows the same checks compare real readings. Fans and batteries: Wine has none, so their
// sources are covered by the unit tests' fakes.
#include "platform/win32.h"

#include "components/hot_interface.h"
#include "components/touch_screen.h"

#include <gtest/gtest.h>

#include <io.h>
#include <setupapi.h>

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

// The test's own scan: present HID devices, their IDs upper-cased here.
bool OwnTouchScan() {
  const GUID hid{0x745a17a0, 0x74d3, 0x11d0, {0xb6, 0xfe, 0x00, 0xa0, 0xc9, 0x0f, 0x57, 0xda}};
  HDEVINFO set = ::SetupDiGetClassDevsW(&hid, nullptr, nullptr, DIGCF_PRESENT);
  bool touch = false;
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  for (DWORD i = 0; ::SetupDiEnumDeviceInfo(set, i, &device); ++i) {
    std::vector<wchar_t> ids(32768, L'\0');
    ::SetupDiGetDeviceRegistryPropertyW(set, &device, SPDRP_HARDWAREID, nullptr,
                                        reinterpret_cast<BYTE*>(ids.data()), 65532, nullptr);
    std::vector<std::wstring> upper;
    for (const wchar_t* id = ids.data(); *id; id += std::wcslen(id) + 1) {
      upper.emplace_back(id);
      for (wchar_t& c : upper.back()) c = static_cast<wchar_t>(std::towupper(c));
    }
    const auto has = [&](const wchar_t* id) { return std::count(upper.begin(), upper.end(), id); };
    touch |= has(L"HID_DEVICE_UP:000D_U:0004") && !has(L"HID\\VHIDUM&COL01");
  }
  ::SetupDiDestroyDeviceInfoList(set);
  return touch;
}

// The process's standard output (the DLL shares the C runtime) into a text-mode file.
std::string CaptureStdout(void (*call)()) {
  const std::string path = "velhal-stdout-" + std::to_string(::GetCurrentProcessId()) + ".txt";
  std::fflush(stdout);
  const int saved = ::_dup(1);
  std::FILE* file = std::fopen(path.c_str(), "w");
  ::_dup2(::_fileno(file), 1);
  std::fclose(file);
  call();
  std::fflush(stdout);
  ::_dup2(saved, 1);
  ::_close(saved);
  std::stringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  ::DeleteFileA(path.c_str());
  std::string printed = text.str();
  std::erase(printed, '\r');  // text mode writes CR LF
  return printed;
}

TEST(ComponentsTest, TouchScreenPresenceAgreesWithAnIndependentScan) {
  const bool own = OwnTouchScan();
  EXPECT_EQ(TouchScreen::IsTouchDeviceExist(), own);
  if (RunningOnWine()) {
    EXPECT_FALSE(own) << "Wine's HID devices are a mouse and a keyboard";
  }
}

TEST(ComponentsTest, TheSwitchesReportAMissingVendorClass) {
  // Never switch a real touch controller: only where the class has no instance.
  const auto instances =
      RawWmiTexts(L"root\\WMI", L"SELECT * FROM TouchScreenDeviceInformation", L"__CLASS");
  if (instances && !instances->empty()) GTEST_SKIP() << "this machine has the vendor class";
  for (void (*flip)() : {&TouchScreen::OpenTrifingerDriver, &TouchScreen::CloseTrifingerDriver}) {
    velhal::testing::DebugCapture debug;
    const std::string printed = CaptureStdout(flip);
    const std::vector<std::wstring> logged = debug.messages;  // before a failure adds its own
    // Windows refuses the unknown class; Wine lists no instance of it and fails nothing.
    EXPECT_EQ(printed, instances
                           ? ""
                           : "Error 80041010: Failed to get a reference to instance enumerator.\n");
    ASSERT_FALSE(logged.empty());
    EXPECT_EQ(logged.back(), L"Could not find the instance.(TouchScreenControlImp::Open)\n");
  }
}

TEST(ComponentsTest, ATemperatureTheMachineDoesNotServeIsTheMissingMark) {
  HotInterface hot;
  const auto zones =
      RawWmiTexts(L"ROOT\\WMI", L"SELECT CurrentTemperature FROM MSAcpi_ThermalZoneTemperature",
                  L"CurrentTemperature");
  if (zones && !zones->empty()) {  // a live zone may move a degree between the two reads
    EXPECT_NEAR(hot.GetSensorTemperature(0), std::lround((std::stod(zones->front()) - 2731.5) / 10),
                2);
  } else if (RunningOnWine()) {  // and Wine has no thermal-zone counters either
    EXPECT_EQ(hot.GetSensorTemperature(0), 2147483647);
  }
}

}  // namespace
