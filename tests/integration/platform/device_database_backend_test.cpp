// DeviceInformention against the system's real device database, checked against the test's own
// SetupAPI walk. Wine answers every unified-property read with ERROR_NOT_FOUND, so there the
// walk confirms the device counts and the empty answers the rules then give; on Windows the same
// assertions compare real IDs and descriptions.
#include "platform/win32.h"

#include "platform/device_informention.h"

#include <gtest/gtest.h>

#include <setupapi.h>

#include <initguid.h>
#include <devguid.h>
#include <devpkey.h>

#include <optional>
#include <string>
#include <vector>

namespace {

struct Seen {
  std::optional<std::wstring> first_id;     // DEVPKEY_Device_HardwareIds, first string
  std::optional<std::wstring> description;  // DEVPKEY_Device_DeviceDesc
  bool has_class = false;                   // DEVPKEY_Device_Class readable as a GUID
  DWORD class_error = 0;
};

std::optional<std::wstring> ReadText(HDEVINFO set, SP_DEVINFO_DATA& device,
                                     const DEVPROPKEY& key) {
  wchar_t buffer[262] = {};
  DEVPROPTYPE type = 0;
  if (!::SetupDiGetDevicePropertyW(set, &device, &key, &type, reinterpret_cast<BYTE*>(buffer),
                                   520, nullptr, 0)) {
    return std::nullopt;
  }
  return std::wstring(buffer);
}

std::vector<Seen> Walk(const GUID* class_guid, DWORD flags) {
  std::vector<Seen> seen;
  HDEVINFO set = ::SetupDiGetClassDevsW(class_guid, nullptr, nullptr, flags);
  if (set == INVALID_HANDLE_VALUE) return seen;
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  for (DWORD i = 0; ::SetupDiEnumDeviceInfo(set, i, &device); ++i) {
    Seen s;
    s.first_id = ReadText(set, device, DEVPKEY_Device_HardwareIds);
    s.description = ReadText(set, device, DEVPKEY_Device_DeviceDesc);
    GUID guid{};
    DEVPROPTYPE type = 0;
    s.has_class = ::SetupDiGetDevicePropertyW(set, &device, &DEVPKEY_Device_Class, &type,
                                              reinterpret_cast<BYTE*>(&guid), sizeof(guid),
                                              nullptr, 0) &&
                  type == DEVPROP_TYPE_GUID;
    s.class_error = s.has_class ? 0 : ::GetLastError();
    seen.push_back(s);
  }
  ::SetupDiDestroyDeviceInfoList(set);
  return seen;
}

TEST(DeviceDatabaseBackendTest, ClassListsAgreeWithAnIndependentWalk) {
  DeviceInformention devices;
  for (const GUID& cls : {GUID_DEVCLASS_DISPLAY, GUID_DEVCLASS_HIDCLASS, GUID_DEVCLASS_MONITOR,
                          GUID_DEVCLASS_MEDIA, GUID_DEVCLASS_BATTERY}) {
    const std::vector<Seen> seen = Walk(&cls, DIGCF_PRESENT);
    std::vector<std::wstring> ids, descriptions;
    for (const Seen& s : seen) {
      ids.push_back(s.first_id.value_or(L""));
      descriptions.push_back(s.description.value_or(L""));
    }
    EXPECT_EQ(devices.GetDeviceHardwareId(cls), ids);
    EXPECT_EQ(devices.GetDeviceDesc(cls), descriptions);

    std::vector<HardWareIdInfo> internal = devices.GetInternalDeviceHardwareId(cls);
    size_t with_id = 0;
    for (const Seen& s : seen) with_id += s.first_id.has_value();
    EXPECT_LE(internal.size(), with_id);
  }
}

TEST(DeviceDatabaseBackendTest, SystemWideWalksAgreeWithAnIndependentWalk) {
  const std::vector<Seen> all = Walk(nullptr, DIGCF_PRESENT | DIGCF_ALLCLASSES);
  ASSERT_FALSE(all.empty()) << "the system lists no device at all";

  std::vector<std::wstring> expected_ids, expected_unknown;
  for (const Seen& s : all) {
    if (s.first_id) expected_ids.push_back(*s.first_id);
    if (!s.has_class && s.class_error == ERROR_NOT_FOUND) {
      expected_unknown.push_back(s.first_id.value_or(L""));
    }
  }
  // The last device is examined twice.
  if (!all.back().has_class && all.back().class_error == ERROR_NOT_FOUND) {
    expected_unknown.push_back(all.back().first_id.value_or(L""));
  }

  DeviceInformention devices;
  std::vector<std::wstring> ids{L"stale"};
  devices.GetAllDeviceHardwareIdEx(ids, L"");
  EXPECT_EQ(ids, expected_ids);
  EXPECT_EQ(devices.GetUnknownDeviceHardId(), expected_unknown);

  // Property getters find a device by its first ID; where no ID is readable, they find nothing.
  for (const Seen& s : all) {
    if (!s.first_id) continue;
    EXPECT_EQ(devices.GetDeviceStrInfoByHardwareId(*s.first_id, GUID_DEVCLASS_SYSTEM,
                                                   DeviceProperty_DeviceDesc),
              s.description.value_or(L""));
  }
  EXPECT_EQ(devices.GetDeviceStrInfoByHardwareId(L"VELHAL\\NO_SUCH_DEVICE", GUID_DEVCLASS_SYSTEM,
                                                 DeviceProperty_DeviceDesc),
            L"");
  EXPECT_EQ(devices.GetLastIntallTime(L"VELHAL\\NO_SUCH_DEVICE", GUID_DEVCLASS_SYSTEM), 0u);
  EXPECT_EQ(devices.UnstallDeviceByHardwareId(L"VELHAL\\NO_SUCH_DEVICE", GUID_DEVCLASS_SYSTEM),
            0xFFFFFFFFu);
}

}  // namespace
