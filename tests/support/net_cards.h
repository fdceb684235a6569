// Network cards for unit tests, scripted into a FakeSystem: a network-class device with its
// description, the network class's registry key of an adapter, the connection name WMI gives,
// and the processor name that the candidate rule consults.
#pragma once

#include <cstdio>
#include <string>

#include "platform/device_classes.h"
#include "tests/support/fake_system.h"

namespace velhal::testing {

class NetCards {
 public:
  explicit NetCards(FakeSystem& os) : os_(os) {}

  FakeDevice& Add(const std::wstring& hard_id, const std::wstring& description) {
    return os_.devices.Add(device_class::kNet).HardwareIds({hard_id}).Description(description);
  }

  // SYSTEM\...\Class\{4d36e972-...}\NNNN with the adapter's component ID and medium.
  void ClassKey(int instance, const std::wstring& component_id, DWORD medium) {
    wchar_t name[8];
    std::swprintf(name, 8, L"%04d", instance);
    const std::wstring key = kClassRoot + std::wstring(name);
    os_.registry.SetString(key, L"ComponentId", component_id);
    os_.registry.SetDword(key, L"*PhysicalMediaType", medium);
  }

  void ConnectionName(const std::wstring& description, const std::wstring& connection) {
    os_.wmi.Script(L"ROOT\\CIMV2",
                   L"SELECT NetConnectionID FROM Win32_NetworkAdapter WHERE NetConnectionID IS "
                   L"NOT NULL and Name='" +
                       description + L"'",
                   L"NetConnectionID", {FakeValue::Text(connection)});
  }

  void Processor(const std::wstring& name) {
    os_.registry.SetString(L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0",
                           L"ProcessorNameString", name);
  }

  static constexpr wchar_t kClassRoot[] =
      L"SYSTEM\\CurrentControlSet\\Control\\Class\\{4d36e972-e325-11ce-bfc1-08002be10318}\\";

 private:
  FakeSystem& os_;
};

}  // namespace velhal::testing
