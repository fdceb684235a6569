// One pass over the library as a host uses it: every flat class initialised, opened, queried,
// closed and freed, and every exported class constructed and asked each of its getters. The
// soak repeats it to see whether anything grows; the COM check runs it on every kind of thread.
#pragma once

#include "platform/win32.h"

#include <cstdlib>
#include <string>
#include <vector>

#include "components/audio_card.h"
#include "components/baseboard.h"
#include "components/biometric.h"
#include "components/bios_fun.h"
#include "components/bios_wmi.h"
#include "components/bluetooth.h"
#include "components/hot_interface.h"
#include "components/keyboard.h"
#include "components/monitor_device_interface.h"
#include "components/touch_screen.h"
#include "components/usb_device_interface.h"
#include "components/video_card.h"
#include "drivers/device_driver.h"
#include "firmware/device_id.h"
#include "firmware/hardware_config.h"
#include "firmware/smbios_helper.h"
#include "firmware/system_environment_info.h"
#include "firmware/system_info.h"
#include "hal/battery.h"
#include "hal/cpu.h"
#include "hal/disk.h"
#include "hal/hal_api.h"
#include "hal/memory.h"
#include "network/network_adapter.h"
#include "network/network_card.h"
#include "platform/device_classes.h"
#include "platform/device_informention.h"
#include "platform/file_process.h"
#include "platform/read_reg.h"
#include "platform/service_helpers.h"

namespace velhal::robustness {

// Each step is one public call (or a short sequence a host makes together); after_each runs
// between steps. Without graphics, the steps that take a graphics inventory (classes 4 and 16,
// VideoCard) are left out.
template <class AfterEach>
void ExerciseLibrary(AfterEach&& after_each, bool graphics = true) {
  const auto step = [&](auto&& call) {
    call();
    after_each();
  };
  uint8_t buffer[520];
  uint32_t returned = 0;
  for (uint32_t device_class : {HAL_CLASS_PROCESSOR, HAL_CLASS_AUDIO_ENDPOINTS, HAL_CLASS_GRAPHICS,
                                HAL_CLASS_DISK, HAL_CLASS_BATTERY, HAL_CLASS_MEMORY,
                                HAL_CLASS_DISPLAY}) {
    if (!graphics && (device_class == HAL_CLASS_GRAPHICS || device_class == HAL_CLASS_DISPLAY))
      continue;
    step([&] {
      HalDeviceList* list = nullptr;
      if (!HalInit(device_class, &list) || list == nullptr) return;
      for (uint32_t info = 0; info < 30; ++info) {
        HalQueryInformation(device_class, device_class == HAL_CLASS_GRAPHICS ? static_cast<void*>(list)
                                                                             : &list->entries[0],
                            info, buffer, sizeof(buffer), &returned);
      }
      if (device_class == HAL_CLASS_DISK) {
        HalDeviceEntry* entry = &list->entries[0];
        HalOpenDevice(device_class, entry);
        HalQueryInformation(device_class, entry, HAL_DISK_INFO_SIZE_MIB, buffer, 8, &returned);
        HalCloseDevice(device_class, entry);
      }
      std::free(list);
    });
  }
  step([&] { HalCloseDevice(HAL_CLASS_AUDIO_ENDPOINTS, nullptr); });
  step([&] {
    for (uint32_t info = 0; info < 20; ++info) {
      CpuQueryInformation(info, buffer, sizeof(buffer), &returned);
    }
  });
  step([&] {
    for (uint32_t info = 0; info < 11; ++info) BtQueryInformation(info, buffer, sizeof(buffer), &returned);
  });
  step([&] { IsTypeDetachablePC(); });
  step([&] {
    Cpu cpu;
    cpu.GetCpuName();
    cpu.GetCpuManufacturer();
    cpu.GetCpuMaxClock();
    cpu.GetL2CacheSize();
    cpu.GetCputype();
  });
  step([&] {
    Memory memory;
    uint32_t count = 0;
    uint64_t total = 0;
    std::wstring text;
    memory.GetMemoryNums(count);
    memory.GetTotalMemoryNums(total);
    memory.GetLocatorbyIndex(text, 0);
    memory.GetMemoryLoad();
  });
  step([&] {
    Battery battery;
    battery.CheckBattery();
    battery.AcLine();
    battery.GetBatteryName();
    battery.GetBatteryPercent();
  });
  step([&] {
    Disk disk;
    disk.GetPhysicDiskNumbers();
    disk.GetAllTotalCapacity();
    disk.GetCaption(0);
    bool ssd = false;
    disk.JudgeSSd(0, ssd);
  });
  if (graphics)
    step([&] {
      VideoCard card;
      card.GetInternalVideoCardName();
      card.GetIndependentVedioCardMemorySize();
      card.GetHorizontalResolution();
      card.GetMonitorCaption();
      card.IsMainDeviceActive();
    });
  step([&] {
    MonitorDeviceInterface monitors;
    monitors.GetMonitors();
    MonitorInfo info;
    monitors.GetMonitorByIndex(0, info);
  });
  step([&] {
    const SmBiosHelper* helper = SmBiosHelper::GetInstance();
    helper->GetBIOSVendor();
    helper->GetSysProductName();
    helper->IsUnsupportWifiAndBT();
  });
  step([&] {
    std::vector<std::string> vendors;
    HardwareConfig::GetInstance().GetAudioVendor(vendors);
  });
  step([&] {
    SystemInfo info;
    info.GetDeviceSerialNumber();
  });
  step([&] {
    std::wstring name;
    ReadReg::ReadLocalMachineRegRZ(L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0",
                                   L"ProcessorNameString", name);
  });
  step([&] {
    DeviceInformention devices;
    devices.GetDeviceHardwareId(velhal::device_class::kDisplay);
    devices.GetUnknownDeviceHardId();
  });
  step([&] { IsServiceRunning(L"Spooler"); });
  step([&] {
    NetworkCard cards;
    cards.GetInternalNetCardHardId();
    cards.GetAllWireLessHardId();
    cards.GetMacAddress(NetworkCardType_Wired);
    cards.GetProblemCode(NetworkCardType_Wireless);
  });
  // Not IsInternetAvailable: it enters and leaves an apartment of its own by contract, which
  // leaves a multithreaded host apartment one count short.
  step([&] {
    NetworkAdapter adapter;
    adapter.GetWifiSwitchState();
    adapter.GetWifiManuType();
    std::string gateway;
    adapter.GetWirelessGateWayIP(gateway);
  });
  step([&] {
    NetworkAdapter adapter;
    IpAdapterInfo info;
    adapter.GetIpInfo(0, info);
    adapter.GetIpv6AddressesByIndex(0);
    adapter.GetWireLessIndex();
    IpStateInfo state = IpState_NoAdapter;
    adapter.CHeckIPReady(state);
    WifiConnectionInfo wifi;
    adapter.GetWifiConnectionInfo(wifi);
    adapter.IsAnyInternetAvailable();
  });
  step([&] {
    UsbDeviceInterface usb;
    usb.GetUsbTree();
    usb.GetUsbDeviceNumber();
  });
  step([&] {
    DeviceDriver driver;
    driver.GetUnkownHardId();
    driver.GetDeviceDriverErrorCode(L"PCI\\VEN_0000&DEV_0000", DriverType_DisplayAdapter);
    for (unsigned int type = 0; type < 10; ++type) {
      GetDeviceDriverVersion(static_cast<DeviceDriverType>(type));
    }
  });
  step([&] {
    unsigned char first = 0, second = 0;
    VelSDK::BiosWmi::GetBatteryChargeThreshold(first, second);
  });
  // The touch switches are left out: on a machine with the vendor class they would change it.
  step([&] {
    HotInterface hot;
    hot.GetSensorTemperature(0);
    hot.GetFan0Speed();
    hot.GetVoltageBattery0();
    hot.GetCurrentBattery0();
    bool on = false;
    BiosFun().GetBiosSwitch(on, DriverType_Bluetooth);
  });
  step([&] {
    Baseboard board;
    board.GetBaseboardManufacturer();
    board.GetBIOSSerialNumber();
  });
  step([&] { TouchScreen::IsTouchDeviceExist(); });
  step([&] {
    SystemInfo info;
    info.GetOsMajorVersion();
    info.GetOsRevision();
    info.GetOsDisplayVersion();
    info.GetOsArchitecture();
    info.GetMachineName();
    info.GetSystemDpi();
    info.GetMonitorDpiList();
    info.GetUserUILanguage();
    info.GetTimeZoneName();
    info.GetTimeZoneBias();
  });
  step([&] {
    SystemEnvironmentInfo environment;
    environment.IsRemoteSession();
    environment.IsVirtualMachine();
    environment.IsSlateMode();
    environment.IsOnBatteryPower();
    environment.IsElevated();
  });
  step([&] {
    CDeviceId* ids = CDeviceId::GetInstance();
    for (unsigned int type = 0; type < 10; ++type) {
      ids->GetDeviceTypeName(static_cast<DeviceDriverType>(type));
      ids->GetHardwareDesc(static_cast<DeviceDriverType>(type));
    }
  });
  step([&] {
    AudioCard().GetDevices();
    Biometric().GetDevices();
    Biometric().GetUnits();
    Bluetooth bluetooth;
    bluetooth.GetDevices();
    bluetooth.GetRadio();
    Keyboard keyboard;
    keyboard.GetDevices();
    keyboard.GetLayoutId();
    keyboard.GetLayoutLanguages();
    keyboard.GetKeyboardType();
  });
  step([&] {
    FileProcess files;
    const std::wstring folder = files.GetLibraryFolder();
    files.GetFileVersion(folder + L"VelHal.dll");
    files.GetFileSize(folder + L"VelHal.dll");
    std::wstring text;
    files.ReadTextFile(folder + L"config\\product_adapter\\HardwareConfig.xml", text);
  });
}

}  // namespace velhal::robustness
