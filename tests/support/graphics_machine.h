// A machine's graphics adapters scripted into the fakes: display-class devices (first hardware
// ID and description), their Win32_VideoController rows under the WQL texts the graphics module
// sends, and an optional problem code. DXGI is the test's own FakeDxgi.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/device_classes.h"
#include "platform/device_informention.h"
#include "platform/device_property_keys.h"
#include "platform/wmi_namespaces.h"
#include "tests/support/fake_system.h"

namespace velhal::testing {

struct ScriptedAdapter {
  std::wstring hardware_id;  // "PCI\\VEN_8086&DEV_9A49&SUBSYS_..."
  std::wstring name;         // the device description and WMI's caption
  std::optional<std::wstring> dac_type = L"Integrated RAMDAC";  // nullopt: the query fails
  std::optional<uint32_t> refresh = 60;                         // nullopt: the query fails
  std::wstring status = L"OK";
  std::wstring driver_version = L"31.0.101.2111";
  std::wstring driver_date = L"20220328000000.000000-000";
  std::optional<uint32_t> problem_code = std::nullopt;  // DEVPKEY_Device_ProblemCode
};

inline void ScriptAdapters(FakeSystem& os, const std::vector<ScriptedAdapter>& adapters) {
  for (const ScriptedAdapter& a : adapters) {
    FakeDevice& device =
        os.devices.Add(device_class::kDisplay).HardwareIds({a.hardware_id}).Description(a.name);
    if (a.problem_code)
      device.UInt32(*device_keys::ForProperty(DeviceProperty_ProblemCode), *a.problem_code);
    const auto script = [&](const std::wstring& property, std::optional<FakeValue> value) {
      os.wmi.Script(
          wmi::kCimV2,
          L"SELECT " + property + L" FROM Win32_VideoController WHERE Caption ='" + a.name + L"'",
          property, value ? std::vector<FakeValue>{*value} : std::vector<FakeValue>{},
          value ? S_OK : static_cast<HRESULT>(0x80041002));  // WBEM_E_NOT_FOUND
    };
    script(L"AdapterDACType",
           a.dac_type ? std::optional(FakeValue::Text(*a.dac_type)) : std::nullopt);
    script(L"CurrentRefreshRate",
           a.refresh ? std::optional(FakeValue::UInt32(*a.refresh)) : std::nullopt);
    script(L"Status", FakeValue::Text(a.status));
    script(L"DriverVersion", FakeValue::Text(a.driver_version));
    script(L"DriverDate", FakeValue::Text(a.driver_date));
  }
}

// WMI's PNP ID of the monitor (nullopt: the query fails, as Wine's does).
inline void ScriptMonitorPnpId(FakeSystem& os, const std::optional<std::wstring>& id) {
  os.wmi.Script(wmi::kCimV2,
                L"SELECT PNPDeviceID FROM Win32_DesktopMonitor WHERE PNPDeviceID IS NOT NULL",
                L"PNPDeviceID", id ? std::vector{FakeValue::Text(*id)} : std::vector<FakeValue>{},
                id ? S_OK : static_cast<HRESULT>(0x80041001));  // WBEM_E_FAILED
}

}  // namespace velhal::testing
