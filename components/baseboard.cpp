#include "components/baseboard.h"

#include <mutex>

#include "firmware/smbios_helper.h"
#include "platform/boundary.h"
#include "platform/process_state.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace {

// Filled once from a non-empty answer; an empty one is asked again next time.
std::mutex g_serial_mutex;
std::wstring g_bios_serial;

void ForgetSerial() {
  const std::lock_guard<std::mutex> lock(g_serial_mutex);
  g_bios_serial.clear();
}

std::wstring FromSmBios(std::wstring (SmBiosHelper::*getter)() const) {
  return velhal::CallGuarded(std::wstring(), [&] {
    const SmBiosHelper* helper = SmBiosHelper::GetInstance();
    return helper != nullptr ? (helper->*getter)() : std::wstring();
  });
}

}  // namespace

std::wstring Baseboard::GetBaseboardManufacturer() {
  return FromSmBios(&SmBiosHelper::GetBoardManufactor);
}
std::wstring Baseboard::GetBaseboardProduct() {
  return FromSmBios(&SmBiosHelper::GetBoardProductName);
}
std::wstring Baseboard::GetBaseboardVersion() { return FromSmBios(&SmBiosHelper::GetBoardVersion); }
std::wstring Baseboard::GetBaseboardSerialNumber() {
  return FromSmBios(&SmBiosHelper::GetBoardSerialNumber);
}
std::wstring Baseboard::GetBIOSManufacturer() { return FromSmBios(&SmBiosHelper::GetBIOSVendor); }
std::wstring Baseboard::GetBIOSVersion() { return FromSmBios(&SmBiosHelper::GetBIOSVersion); }
std::wstring Baseboard::GetBIOSReaseDate() { return FromSmBios(&SmBiosHelper::GetBIOSReleaseDate); }

std::wstring Baseboard::GetBIOSSerialNumber() {
  return velhal::CallGuarded(std::wstring(), [] {
    {
      const std::lock_guard<std::mutex> lock(g_serial_mutex);
      if (!g_bios_serial.empty()) return g_bios_serial;
    }
    std::wstring serial = FromSmBios(&SmBiosHelper::GetSysSerialNumber);
    if (serial.empty()) {
      WmiQueryFirstString(velhal::wmi::kCimV2, L"SELECT SerialNumber FROM Win32_BIOS",
                          L"SerialNumber", serial);
    }
    velhal::RegisterProcessStateReset(&ForgetSerial);
    const std::lock_guard<std::mutex> lock(g_serial_mutex);
    if (g_bios_serial.empty()) g_bios_serial = serial;
    return g_bios_serial;
  });
}
