// Class 4, class 16 and VideoCard through VelHal.dll, against the test's own reads of the same
// sources: SetupAPI, DXGI, WMI and user32. Built twice: api_tests runs it in the session without
// a display (Wine's null driver: no DXGI, so no adapter enters the inventory), and
// graphics_display_tests in the Xvfb session (DXGI's one adapter, with its memory).
#include "platform/win32.h"

#include "components/video_card.h"
#include "hal/hal_api.h"

#include <gtest/gtest.h>

#include <dxgi.h>
#include <setupapi.h>
#include <shlwapi.h>

#include <initguid.h>
#include <devguid.h>
#include <devpkey.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/raw_wmi.h"
#include "tests/support/wine.h"

namespace {

using velhal::testing::RawWmiTexts;
using velhal::testing::RunningOnWine;

constexpr wchar_t kCimV2[] = L"ROOT\\CIMV2";

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};

struct Adapter {
  std::wstring name;
  uint32_t memory = 0;
};

// --- The test's own reads --------------------------------------------------------------------

std::optional<std::wstring> DeviceText(HDEVINFO set, SP_DEVINFO_DATA& device,
                                       const DEVPROPKEY& key) {
  wchar_t text[262] = {};
  DEVPROPTYPE type = 0;
  if (!::SetupDiGetDevicePropertyW(set, &device, &key, &type, reinterpret_cast<BYTE*>(text), 520,
                                   nullptr, 0)) {
    return std::nullopt;
  }
  return std::wstring(text);
}

std::vector<std::wstring> PciDisplayDescriptions() {
  std::vector<std::wstring> names;
  HDEVINFO set = ::SetupDiGetClassDevsW(&GUID_DEVCLASS_DISPLAY, nullptr, nullptr, DIGCF_PRESENT);
  if (set == INVALID_HANDLE_VALUE) return names;
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  for (DWORD i = 0; ::SetupDiEnumDeviceInfo(set, i, &device); ++i) {
    const auto id = DeviceText(set, device, DEVPKEY_Device_HardwareIds);
    if (id && id->rfind(L"PCI", 0) == 0)
      names.push_back(DeviceText(set, device, DEVPKEY_Device_DeviceDesc).value_or(L""));
  }
  ::SetupDiDestroyDeviceInfoList(set);
  return names;
}

std::map<std::wstring, uint32_t> DxgiMemory() {
  std::map<std::wstring, uint32_t> memory;
  wchar_t system[MAX_PATH] = {};
  ::GetSystemDirectoryW(system, MAX_PATH);
  const HMODULE dxgi = ::LoadLibraryW((std::wstring(system) + L"\\dxgi.dll").c_str());
  if (dxgi == nullptr) return memory;
  using CreateFactory = HRESULT(WINAPI*)(REFIID, void**);
  const auto create = reinterpret_cast<CreateFactory>(
      reinterpret_cast<void*>(::GetProcAddress(dxgi, "CreateDXGIFactory1")));
  IDXGIFactory1* factory = nullptr;
  if (create != nullptr &&
      SUCCEEDED(create(__uuidof(IDXGIFactory1), reinterpret_cast<void**>(&factory)))) {
    IDXGIAdapter1* adapter = nullptr;
    for (UINT i = 0; factory->EnumAdapters1(i, &adapter) == S_OK; ++i) {
      DXGI_ADAPTER_DESC1 desc{};
      if (SUCCEEDED(adapter->GetDesc1(&desc)))
        memory.emplace(desc.Description, static_cast<uint32_t>(desc.DedicatedVideoMemory >> 20));
      adapter->Release();
    }
    factory->Release();
  }
  ::FreeLibrary(dxgi);
  return memory;
}

std::vector<Adapter> ExpectedInventory() {
  std::vector<Adapter> adapters;
  std::map<std::wstring, uint32_t> memory = DxgiMemory();
  for (const std::wstring& name : PciDisplayDescriptions()) {
    Adapter adapter{name};
    if (const auto found = memory.find(name); found != memory.end()) {
      adapter.memory = found->second;
      memory.erase(found);
    }
    adapters.push_back(adapter);
  }
  if (adapters.empty() && !memory.empty())
    adapters.push_back({memory.begin()->first, memory.begin()->second});
  return adapters;
}

std::optional<std::wstring> FirstRow(const std::wstring& wql, const wchar_t* property) {
  const auto rows = RawWmiTexts(kCimV2, wql.c_str(), property);
  if (!rows || rows->empty()) return std::nullopt;
  return rows->front();
}

std::optional<std::wstring> ControllerValue(const std::wstring& name, const wchar_t* property) {
  return FirstRow(std::wstring(L"SELECT ") + property +
                      L" FROM Win32_VideoController WHERE Caption ='" + name + L"'",
                  property);
}

std::optional<std::wstring> ExpectedMonitorText() {
  if (const auto pnp =
          FirstRow(L"SELECT PNPDeviceID FROM Win32_DesktopMonitor WHERE PNPDeviceID IS NOT NULL",
                   L"PNPDeviceID");
      pnp && !pnp->empty()) {
    const size_t first = pnp->find(L'\\');
    if (first == std::wstring::npos) return std::nullopt;
    const size_t second = pnp->find(L'\\', first + 1);
    const std::wstring model =
        pnp->substr(first + 1, second == std::wstring::npos ? second : second - first - 1);
    return model.empty() ? std::nullopt : std::optional(model);
  }
  const auto caption = FirstRow(L"SELECT Caption FROM Win32_DesktopMonitor", L"Caption");
  return caption && !caption->empty() ? caption : std::nullopt;
}

std::optional<uint32_t> ExpectedRefreshRate() {
  UINT32 paths = 0, modes = 0;
  if (::GetDisplayConfigBufferSizes(QDC_ONLY_ACTIVE_PATHS, &paths, &modes) == ERROR_SUCCESS &&
      paths > 0 && modes > 0) {
    std::vector<DISPLAYCONFIG_PATH_INFO> path(paths);
    std::vector<DISPLAYCONFIG_MODE_INFO> mode(modes);
    if (::QueryDisplayConfig(QDC_ONLY_ACTIVE_PATHS, &paths, path.data(), &modes, mode.data(),
                             nullptr) == ERROR_SUCCESS) {
      for (UINT32 i = 0; i < paths; ++i) {
        if (path[i].targetInfo.outputTechnology != DISPLAYCONFIG_OUTPUT_TECHNOLOGY_INTERNAL)
          continue;
        const auto rate = path[i].targetInfo.refreshRate;
        if (rate.Denominator != 0 && (rate.Numerator + rate.Denominator / 2) / rate.Denominator)
          return (rate.Numerator + rate.Denominator / 2) / rate.Denominator;
        break;
      }
    }
  }
  if (const auto wmi = FirstRow(L"SELECT CurrentRefreshRate FROM Win32_VideoController WHERE "
                                L"CurrentRefreshRate IS NOT NULL",
                                L"CurrentRefreshRate")) {
    const uint32_t rate = static_cast<uint32_t>(std::stoul(*wmi));
    if (rate != 0 && rate != 0xFFFFFFFF) return rate;
  }
  DEVMODEW mode{};
  mode.dmSize = sizeof(mode);
  if (::EnumDisplaySettingsW(nullptr, ENUM_CURRENT_SETTINGS, &mode) && mode.dmDisplayFrequency)
    return mode.dmDisplayFrequency;
  return std::nullopt;
}

// The first active monitor of the primary adapter, as the instance ID its interface name holds.
std::wstring ActiveMonitorInstance() {
  for (DWORD a = 0;; ++a) {
    DISPLAY_DEVICEW adapter{};
    adapter.cb = sizeof(adapter);
    if (!::EnumDisplayDevicesW(nullptr, a, &adapter, 0)) return {};
    if (!(adapter.StateFlags & DISPLAY_DEVICE_PRIMARY_DEVICE)) continue;
    DISPLAY_DEVICEW monitor{};
    monitor.cb = sizeof(monitor);
    for (DWORD m = 0;
         ::EnumDisplayDevicesW(adapter.DeviceName, m, &monitor, EDD_GET_DEVICE_INTERFACE_NAME);
         ++m) {
      if (!(monitor.StateFlags & DISPLAY_DEVICE_ACTIVE)) continue;
      std::wstring name = monitor.DeviceID;  // \\?\DISPLAY#MODEL#INSTANCE#{class}
      std::vector<std::wstring> parts;
      for (size_t start = 0, end; (end = name.find(L'#', start)) != std::wstring::npos;
           start = end + 1) {
        parts.push_back(name.substr(start, end - start));
      }
      if (parts.size() < 3) continue;
      std::wstring id = L"DISPLAY\\" + parts[1] + L"\\" + parts[2];
      std::transform(id.begin(), id.end(), id.begin(), ::towupper);
      return id;
    }
    return {};
  }
}

// --- Helpers over the library ----------------------------------------------------------------

std::optional<std::wstring> Text(GpAdapterList* block, uint32_t info_class) {
  wchar_t buffer[261] = {};
  uint32_t returned = 0;
  if (!GpQueryInforamtion(block, info_class, buffer, 520, &returned)) return std::nullopt;
  return std::wstring(buffer, returned / 2);
}

std::optional<uint32_t> Number(GpAdapterList* block, uint32_t info_class) {
  uint32_t value = 0, returned = 0;
  if (!GpQueryInforamtion(block, info_class, &value, 4, &returned)) return std::nullopt;
  return value;
}

const GpAdapterEntry& Record(GpAdapterList* block, uint32_t i) {
  return *reinterpret_cast<const GpAdapterEntry*>(reinterpret_cast<BYTE*>(block) + 8 + 552 * i);
}

std::wstring NameOf(const GpAdapterEntry& record) {
  return std::wstring(reinterpret_cast<const wchar_t*>(record.name));
}

class GraphicsApiTest : public ::testing::Test {
 protected:
  void SetUp() override {
    GpAdapterList* list = nullptr;
    ASSERT_EQ(GpInit(&list), 1u);
    block_.reset(list);
    expected_ = ExpectedInventory();
    if (!block_) empty_.reset(static_cast<GpAdapterList*>(std::calloc(1, 8)));
    if (empty_) empty_->totalSize = 8;
  }
  // The block for the screen classes: GpInit's, or an empty one when it made none.
  GpAdapterList* AnyBlock() { return block_ ? block_.get() : empty_.get(); }

  std::unique_ptr<GpAdapterList, FreeBlock> block_, empty_;
  std::vector<Adapter> expected_;
};

TEST_F(GraphicsApiTest, TheInventoryIsTheDeviceDatabaseJoinedWithDxgi) {
  if (expected_.empty()) {
    EXPECT_EQ(block_, nullptr);  // success without a block
    if (RunningOnWine())
      GTEST_SKIP() << "no adapter: Wine reads no PCI hardware IDs and, without a display, has no "
                      "DXGI";
    return;
  }
  ASSERT_NE(block_, nullptr);
  ASSERT_EQ(block_->count, expected_.size());
  EXPECT_EQ(block_->totalSize, 8 + 552 * expected_.size());
  for (uint32_t i = 0; i < block_->count; ++i) {
    const GpAdapterEntry& record = Record(block_.get(), i);
    SCOPED_TRACE(testing::Message() << "record " << i);
    EXPECT_EQ(NameOf(record), expected_[i].name);
    EXPECT_EQ(record.videoMemoryMiB, expected_[i].memory);
    EXPECT_EQ(record.index, i);
    const auto type = ControllerValue(expected_[i].name, L"AdapterDACType");
    EXPECT_EQ(
        record.discrete,
        type && (type->empty() || ::StrStrIW(type->c_str(), L"Integrated") == nullptr) ? 1u : 0u);
    const auto rate = ControllerValue(expected_[i].name, L"CurrentRefreshRate");
    const uint32_t hz = rate ? static_cast<uint32_t>(std::stoul(*rate)) : 0;
    EXPECT_EQ(record.active, hz != 0 && hz != 0xFFFFFFFF ? 1 : 0);
  }
}

TEST_F(GraphicsApiTest, AdapterClassesAgreeWithWmiForTheSelectedAdapters) {
  if (!block_) GTEST_SKIP() << "no adapter in the inventory to select";
  for (const bool discrete : {true, false}) {
    SCOPED_TRACE(discrete ? "discrete" : "integrated");
    const GpAdapterEntry* chosen = nullptr;
    for (uint32_t i = 0; i < block_->count; ++i) {
      if ((Record(block_.get(), i).discrete != 0) == discrete) chosen = &Record(block_.get(), i);
    }
    const uint32_t base =
        discrete ? HAL_GRAPHICS_INFO_DISCRETE_NAME : HAL_GRAPHICS_INFO_INTEGRATED_NAME;
    const uint32_t memory = discrete ? HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY
                                     : HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY;
    if (chosen == nullptr) {
      for (uint32_t k = 0; k < 4; ++k) EXPECT_EQ(Text(block_.get(), base + k), std::nullopt);
      EXPECT_EQ(Number(block_.get(), memory), std::nullopt);
      continue;
    }
    const std::wstring name = NameOf(*chosen);
    const auto nonempty = [](std::optional<std::wstring> v) {
      return v && !v->empty() ? v : std::nullopt;
    };
    std::optional<std::wstring> date = ControllerValue(name, L"DriverDate");
    date = date && date->size() >= 8 ? std::optional(date->substr(0, 8)) : std::nullopt;
    EXPECT_EQ(Text(block_.get(), base), nonempty(name));
    EXPECT_EQ(Text(block_.get(), base + 8), nonempty(name));
    EXPECT_EQ(Text(block_.get(), base + 1), nonempty(ControllerValue(name, L"Status")));
    EXPECT_EQ(Text(block_.get(), base + 2), nonempty(ControllerValue(name, L"DriverVersion")));
    EXPECT_EQ(Text(block_.get(), base + 3), date);
    EXPECT_EQ(Number(block_.get(), memory), chosen->videoMemoryMiB);
    // Wine reads no device property, so no device is found by description: problem code 0.
    if (RunningOnWine()) {
      EXPECT_EQ(Number(block_.get(), memory + 1), 0u);
    }
  }
  EXPECT_EQ(Number(block_.get(), HAL_GRAPHICS_INFO_COUNT), block_->count);
}

TEST_F(GraphicsApiTest, ScreenClassesAgreeWithUser32AndWmi) {
  GpAdapterList* block = AnyBlock();
  const int width = ::GetSystemMetrics(SM_CXSCREEN), height = ::GetSystemMetrics(SM_CYSCREEN);
  EXPECT_EQ(Number(block, HAL_GRAPHICS_INFO_SCREEN_WIDTH), static_cast<uint32_t>(width));
  EXPECT_EQ(Number(block, HAL_GRAPHICS_INFO_SCREEN_HEIGHT), static_cast<uint32_t>(height));
  EXPECT_EQ(Text(block, HAL_GRAPHICS_INFO_RESOLUTION),
            std::to_wstring(width) + L"x" + std::to_wstring(height));
  DEVMODEW mode{};
  mode.dmSize = sizeof(mode);
  ASSERT_TRUE(::EnumDisplaySettingsW(nullptr, ENUM_CURRENT_SETTINGS, &mode));
  EXPECT_EQ(Number(block, HAL_GRAPHICS_INFO_BITS_PER_PIXEL), mode.dmBitsPerPel);
  EXPECT_EQ(Number(block, HAL_GRAPHICS_INFO_REFRESH_RATE), ExpectedRefreshRate());
  EXPECT_EQ(Text(block, HAL_GRAPHICS_INFO_MONITOR), ExpectedMonitorText());
  EXPECT_EQ(Text(block, HAL_GRAPHICS_INFO_NOT_SERVED), std::nullopt);
  uint32_t value = 0, returned = 0;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_GRAPHICS, block, HAL_GRAPHICS_INFO_SCREEN_WIDTH, &value,
                                4, &returned),
            1u);
  EXPECT_EQ(GpSetInformation(block, HAL_GRAPHICS_INFO_SCREEN_WIDTH, &value, 4, &returned), 0u);
}

TEST_F(GraphicsApiTest, VideoCardAnswersWhatTheFlatClassesAnswer) {
  VideoCard card;
  const auto text = [&](uint32_t info_class) {
    return block_ ? Text(block_.get(), info_class).value_or(L"") : L"";
  };
  const auto number = [&](uint32_t info_class) {
    return block_ ? Number(block_.get(), info_class).value_or(0) : 0;
  };
  EXPECT_EQ(card.GetVideoCardNumber(), number(HAL_GRAPHICS_INFO_COUNT));
  EXPECT_EQ(card.GetInternalVideoCardName(), text(HAL_GRAPHICS_INFO_DISCRETE_NAME));
  EXPECT_EQ(card.GetUsedVideoCardName(), text(HAL_GRAPHICS_INFO_DISCRETE_NAME));
  EXPECT_EQ(card.GetIndependentVideoCardName(), text(HAL_GRAPHICS_INFO_INTEGRATED_NAME));
  EXPECT_EQ(card.GetUnUsedVideoCardStatus(), text(HAL_GRAPHICS_INFO_INTEGRATED_STATUS));
  EXPECT_EQ(card.GetIndependentVideoCardDriverDate(),
            text(HAL_GRAPHICS_INFO_INTEGRATED_DRIVER_DATE));
  EXPECT_EQ(card.GetUnUsedVedioCardMemorySize(), number(HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY));
  // Without a block every getter is empty, the screen's too: that is the contract.
  EXPECT_EQ(card.GetHorizontalResolution(), number(HAL_GRAPHICS_INFO_SCREEN_WIDTH));
  EXPECT_EQ(card.GetBitPerPixel(), number(HAL_GRAPHICS_INFO_BITS_PER_PIXEL));
  EXPECT_EQ(card.GetDisplayResolution(), text(HAL_GRAPHICS_INFO_RESOLUTION));
  const auto wmi_id =
      FirstRow(L"SELECT PNPDeviceID FROM Win32_DesktopMonitor WHERE PNPDeviceID IS NOT NULL",
               L"PNPDeviceID");
  EXPECT_EQ(card.IsMainDeviceActive(), ActiveMonitorInstance() == wmi_id.value_or(L""));
}

// The monitor's EDID under its device's registry key. Wine keeps the key but no EDID value, so
// there the test stores a real monitor's EDID for the length of the test.
TEST(VideoCardMonitorTest, TheCaptionIsTheEdidNameUnderTheActiveMonitorsKey) {
  const auto wmi_id =
      FirstRow(L"SELECT PNPDeviceID FROM Win32_DesktopMonitor WHERE PNPDeviceID IS NOT NULL",
               L"PNPDeviceID");
  const std::wstring id = wmi_id.value_or(ActiveMonitorInstance());
  if (id.empty()) GTEST_SKIP() << "no active monitor";
  const std::wstring key = L"SYSTEM\\CurrentControlSet\\Enum\\" + id + L"\\Device Parameters";
  HKEY opened = nullptr;
  if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_READ | KEY_SET_VALUE, &opened) !=
      ERROR_SUCCESS) {
    GTEST_SKIP() << "no Device Parameters key for "
                 << testing::internal::String::ShowWideCString(id.c_str());
  }
  std::vector<BYTE> edid(1024);
  DWORD size = static_cast<DWORD>(edid.size());
  const bool stored =
      ::RegQueryValueExW(opened, L"EDID", nullptr, nullptr, edid.data(), &size) == ERROR_SUCCESS;
  std::wstring expected;
  if (stored) {
    edid.resize(size);
    for (size_t i = 54; i + 18 <= std::min<size_t>(size, 126); ++i) {
      if (edid[i] == 0 && edid[i + 1] == 0 && edid[i + 2] == 0 && edid[i + 3] == 0xFC) {
        expected.clear();
        for (size_t k = i + 5; k < i + 18 && edid[k] != 0x0A && edid[k] != 0; ++k)
          expected += static_cast<wchar_t>(edid[k]);
      }
    }
  } else if (RunningOnWine()) {
    std::ifstream file(VELHAL_TEST_DATA_DIR "/edid/dell-d3218hn.bin", std::ios::binary);
    const std::vector<BYTE> blob((std::istreambuf_iterator<char>(file)), {});
    ASSERT_EQ(blob.size(), 256u);
    ASSERT_EQ(::RegSetValueExW(opened, L"EDID", 0, REG_BINARY, blob.data(),
                               static_cast<DWORD>(blob.size())),
              ERROR_SUCCESS);
    expected = L"D3218HN";  // its name descriptor, by edid-decode
  }
  const std::wstring caption = VideoCard().GetMonitorCaption();
  if (!stored && RunningOnWine()) ::RegDeleteValueW(opened, L"EDID");
  ::RegCloseKey(opened);
  if (expected.empty()) GTEST_SKIP() << "the monitor's EDID holds no product name";
  EXPECT_EQ(caption, expected);
}

TEST(DisplayClassTest, WithoutAnAmdOrIntelAdapterInitSucceedsWithoutABlock) {
  for (const Adapter& adapter : ExpectedInventory()) {
    if (adapter.name.find(L"AMD") != std::wstring::npos ||
        adapter.name.find(L"Intel") != std::wstring::npos) {
      GTEST_SKIP() << "this machine has an AMD or Intel adapter";
    }
  }
  DpDisplayList* const untouched = reinterpret_cast<DpDisplayList*>(0x5A5A);
  DpDisplayList* list = untouched;
  EXPECT_EQ(HalInit(HAL_CLASS_DISPLAY, &list), 1u);
  EXPECT_EQ(list, untouched);
  uint32_t data[9] = {50, 0}, returned = 0;
  for (uint32_t info_class = 0; info_class < 7; ++info_class) {
    SCOPED_TRACE(info_class);
    EXPECT_EQ(
        HalQueryInformation(HAL_CLASS_DISPLAY, data, info_class, data, sizeof(data), &returned),
        0u);
    EXPECT_EQ(HalSetInformation(HAL_CLASS_DISPLAY, data, info_class, data, sizeof(data), &returned),
              0u);
  }
}

}  // namespace
