// The test's own walk of the system's device database (SetupAPI, unified properties and the
// registry-property form of the hardware IDs), to cross-check what the library answers.
#pragma once

#include "platform/win32.h"

#include <setupapi.h>

#include <initguid.h>
#include <devpkey.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velhal::testing {

struct WalkedDevice {
  std::optional<std::wstring> first_id;     // DEVPKEY_Device_HardwareIds, first string
  std::optional<std::wstring> description;  // DEVPKEY_Device_DeviceDesc
  std::optional<uint32_t> problem_code;     // DEVPKEY_Device_ProblemCode
  std::vector<std::wstring> registry_ids;   // SPDRP_HARDWAREID, every string
  bool has_class = false;                   // DEVPKEY_Device_Class readable as a GUID
  DWORD class_error = 0;
};

inline std::optional<std::wstring> ReadDeviceText(HDEVINFO set, SP_DEVINFO_DATA& device,
                                                  const DEVPROPKEY& key) {
  wchar_t buffer[262] = {};
  DEVPROPTYPE type = 0;
  if (!::SetupDiGetDevicePropertyW(set, &device, &key, &type, reinterpret_cast<BYTE*>(buffer), 520,
                                   nullptr, 0)) {
    return std::nullopt;
  }
  return std::wstring(buffer);
}

inline std::vector<std::wstring> ReadRegistryIds(HDEVINFO set, SP_DEVINFO_DATA& device) {
  std::vector<wchar_t> buffer(4096, L'\0');
  std::vector<std::wstring> ids;
  if (!::SetupDiGetDeviceRegistryPropertyW(set, &device, SPDRP_HARDWAREID, nullptr,
                                           reinterpret_cast<BYTE*>(buffer.data()),
                                           static_cast<DWORD>((buffer.size() - 2) * 2), nullptr)) {
    return ids;
  }
  for (const wchar_t* id = buffer.data(); *id != L'\0'; id += ids.back().size() + 1) {
    ids.emplace_back(id);
  }
  return ids;
}

inline std::vector<WalkedDevice> WalkDevices(const GUID* class_guid, DWORD flags) {
  std::vector<WalkedDevice> seen;
  HDEVINFO set = ::SetupDiGetClassDevsW(class_guid, nullptr, nullptr, flags);
  if (set == INVALID_HANDLE_VALUE) return seen;
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  for (DWORD i = 0; ::SetupDiEnumDeviceInfo(set, i, &device); ++i) {
    WalkedDevice d;
    d.first_id = ReadDeviceText(set, device, DEVPKEY_Device_HardwareIds);
    d.description = ReadDeviceText(set, device, DEVPKEY_Device_DeviceDesc);
    d.registry_ids = ReadRegistryIds(set, device);
    DEVPROPTYPE type = 0;
    uint32_t problem = 0;
    if (::SetupDiGetDevicePropertyW(set, &device, &DEVPKEY_Device_ProblemCode, &type,
                                    reinterpret_cast<BYTE*>(&problem), sizeof(problem), nullptr,
                                    0) &&
        type == DEVPROP_TYPE_UINT32) {
      d.problem_code = problem;
    }
    GUID guid{};
    d.has_class =
        ::SetupDiGetDevicePropertyW(set, &device, &DEVPKEY_Device_Class, &type,
                                    reinterpret_cast<BYTE*>(&guid), sizeof(guid), nullptr, 0) &&
        type == DEVPROP_TYPE_GUID;
    d.class_error = d.has_class ? 0 : ::GetLastError();
    seen.push_back(d);
  }
  ::SetupDiDestroyDeviceInfoList(set);
  return seen;
}

// What GetUnknownDeviceHardId answers for the walk of every present device: the devices without
// a setup class, the last one examined twice.
inline std::vector<std::wstring> DevicesWithoutClass(const std::vector<WalkedDevice>& all) {
  std::vector<std::wstring> unknown;
  for (const WalkedDevice& d : all) {
    if (!d.has_class && d.class_error == ERROR_NOT_FOUND)
      unknown.push_back(d.first_id.value_or(L""));
  }
  if (!all.empty() && !all.back().has_class && all.back().class_error == ERROR_NOT_FOUND) {
    unknown.push_back(all.back().first_id.value_or(L""));
  }
  return unknown;
}

}  // namespace velhal::testing
