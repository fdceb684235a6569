// Every operating-system facility faked for one unit test. The fakes are public members,
// installed for the object's lifetime; a fixture holds one FakeSystem and scripts what it needs:
//
//   velhal::testing::FakeSystem os_;
//   os_.wmi.Script(L"ROOT\\CIMV2", L"SELECT Name FROM Win32_Processor", L"Name", {...});
//
// The library's process-wide state (identity caches, configuration files, class-3 endpoints)
// is forgotten when the object is made and again when it ends, so every test starts as a fresh
// process would, also when a test executable runs all its tests in one process. When it ends
// it also checks that nothing leaked: open keys, device sets, handles, service handles,
// libraries, COM objects.
#pragma once

#include "platform/os/seam.h"
#include "tests/fakes/fake_audio.h"
#include "tests/fakes/fake_biometric.h"
#include "tests/fakes/fake_bluetooth.h"
#include "tests/fakes/fake_com.h"
#include "tests/fakes/fake_console_output.h"
#include "tests/fakes/fake_debug_output.h"
#include "tests/fakes/fake_device_database.h"
#include "tests/fakes/fake_device_io.h"
#include "tests/fakes/fake_display.h"
#include "tests/fakes/fake_file_system.h"
#include "tests/fakes/fake_firmware_table.h"
#include "tests/fakes/fake_input.h"
#include "tests/fakes/fake_intel_driver.h"
#include "tests/fakes/fake_ip_helper.h"
#include "tests/fakes/fake_locale.h"
#include "tests/fakes/fake_module.h"
#include "tests/fakes/fake_power.h"
#include "tests/fakes/fake_security.h"
#include "tests/fakes/fake_service_control.h"
#include "tests/fakes/fake_system_info.h"
#include "tests/fakes/fake_wlan.h"
#include "tests/fakes/fake_wmi.h"
#include "tests/fakes/scratch_registry.h"

namespace velhal::testing {

class FakeSystem {
 public:
  FakeSystem();
  ~FakeSystem();
  FakeSystem(const FakeSystem&) = delete;
  FakeSystem& operator=(const FakeSystem&) = delete;

  FakeWmi wmi;
  ScratchRegistry registry;
  FakeDeviceDatabase devices;
  FakeDeviceIo io;
  FakePower power;
  FakeSystemInfo system_info;
  FakeModule module;
  FakeFirmwareTable firmware_table;
  FakeDebugOutput debug;
  FakeServiceControl services;
  FakeTiming timing;
  FakeAudio audio;
  FakeCom com{FakeCom::Apartment::kMta};  // the host's apartment
  FakeConsoleOutput console;
  FakeWlan wlan;
  FakeIpHelper ip_helper;
  FakeDisplay display;
  FakeIntelDriver intel_driver;
  FakeLocale locale;
  FakeInput input;
  FakeSecurity security;
  FakeBluetooth bluetooth;
  FakeBiometric biometric;
  FakeFileSystem file_system;

 private:
  template <class Facility>
  using Guard = os::ScopedBackend<Facility>;
  Guard<os::Wmi> wmi_guard_{wmi};
  Guard<os::Registry> registry_guard_{registry};
  Guard<os::DeviceDatabase> devices_guard_{devices};
  Guard<os::DeviceIo> io_guard_{io};
  Guard<os::Power> power_guard_{power};
  Guard<os::SystemInfo> system_info_guard_{system_info};
  Guard<os::Module> module_guard_{module};
  Guard<os::FirmwareTable> firmware_table_guard_{firmware_table};
  Guard<os::DebugOutput> debug_guard_{debug};
  Guard<os::ServiceControl> services_guard_{services};
  Guard<os::Timing> timing_guard_{timing};
  Guard<os::Audio> audio_guard_{audio};
  Guard<os::Com> com_guard_{com};
  Guard<os::ConsoleOutput> console_guard_{console};
  Guard<os::Wlan> wlan_guard_{wlan};
  Guard<os::IpHelper> ip_helper_guard_{ip_helper};
  Guard<os::Display> display_guard_{display};
  Guard<os::IntelDriver> intel_driver_guard_{intel_driver};
  Guard<os::Locale> locale_guard_{locale};
  Guard<os::Input> input_guard_{input};
  Guard<os::Security> security_guard_{security};
  Guard<os::Bluetooth> bluetooth_guard_{bluetooth};
  Guard<os::Biometric> biometric_guard_{biometric};
  Guard<os::FileSystem> file_system_guard_{file_system};
};

}  // namespace velhal::testing
