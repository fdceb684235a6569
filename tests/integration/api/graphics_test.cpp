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

using velhal::testing::RunningOnWine;

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};

struct Adapter {
  std::wstring name;
  uint32_t memory = 0;
};

std::optional<std::wstring> FirstRow(const std::wstring& wql, const wchar_t* property) {
  const auto rows = velhal::testing::RawWmiTexts(L"ROOT\\CIMV2", wql.c_str(), property);
  if (!rows || rows->empty()) return std::nullopt;
  return rows->front();
}

std::optional<std::wstring> ControllerValue(const std::wstring& name, const wchar_t* property) {
  return FirstRow(std::wstring(L"SELECT ") + property +
                      L" FROM Win32_VideoController WHERE Caption ='" + name + L"'",
                  property);
}

// The device database's PCI display adapters and DXGI's memory, joined as the inventory is.
std::vector<Adapter> ExpectedInventory() {
  std::map<std::wstring, uint32_t> memory;
  wchar_t system[MAX_PATH] = {};
  ::GetSystemDirectoryW(system, MAX_PATH);
  const HMODULE dxgi = ::LoadLibraryW((std::wstring(system) + L"\\dxgi.dll").c_str());
  using CreateFactory = HRESULT(WINAPI*)(REFIID, void**);
  const auto create = reinterpret_cast<CreateFactory>(
      reinterpret_cast<void*>(::GetProcAddress(dxgi, "CreateDXGIFactory1")));
  IDXGIFactory1* factory = nullptr;
  if (create && SUCCEEDED(create(__uuidof(IDXGIFactory1), reinterpret_cast<void**>(&factory)))) {
    IDXGIAdapter1* adapter = nullptr;
    for (UINT i = 0; factory->EnumAdapters1(i, &adapter) == S_OK; ++i, adapter->Release()) {
      DXGI_ADAPTER_DESC1 desc{};
      if (SUCCEEDED(adapter->GetDesc1(&desc)))
        memory.emplace(desc.Description, static_cast<uint32_t>(desc.DedicatedVideoMemory >> 20));
    }
    factory->Release();
  }
  ::FreeLibrary(dxgi);

  std::vector<Adapter> adapters;
  HDEVINFO set = ::SetupDiGetClassDevsW(&GUID_DEVCLASS_DISPLAY, nullptr, nullptr, DIGCF_PRESENT);
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  for (DWORD i = 0; ::SetupDiEnumDeviceInfo(set, i, &device); ++i) {
    wchar_t id[262] = {}, name[262] = {};
    DEVPROPTYPE type = 0;
    if (!::SetupDiGetDevicePropertyW(set, &device, &DEVPKEY_Device_HardwareIds, &type,
                                     reinterpret_cast<BYTE*>(id), 520, nullptr, 0) ||
        std::wstring(id).rfind(L"PCI", 0) != 0) {
      continue;  // Wine reads no device property: no PCI adapter there
    }
    ::SetupDiGetDevicePropertyW(set, &device, &DEVPKEY_Device_DeviceDesc, &type,
                                reinterpret_cast<BYTE*>(name), 520, nullptr, 0);
    const auto found = memory.find(name);
    adapters.push_back({name, found == memory.end() ? 0 : found->second});
    if (found != memory.end()) memory.erase(found);
  }
  ::SetupDiDestroyDeviceInfoList(set);
  if (adapters.empty() && !memory.empty())
    adapters.push_back({memory.begin()->first, memory.begin()->second});
  return adapters;
}

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

class GraphicsApiTest : public ::testing::Test {
 protected:
  void SetUp() override {
    GpAdapterList* list = nullptr;
    ASSERT_EQ(GpInit(&list), 1u);
    block_.reset(list);
    expected_ = ExpectedInventory();
  }
  // The screen classes need a block but no adapter: an empty one where GpInit made none.
  GpAdapterList* AnyBlock() { return block_ ? block_.get() : &empty_; }

  std::unique_ptr<GpAdapterList, FreeBlock> block_;
  GpAdapterList empty_{8, 0, {}};
  std::vector<Adapter> expected_;
};

TEST_F(GraphicsApiTest, TheInventoryAndItsSelectedAdaptersAgreeWithTheSystem) {
  if (expected_.empty()) {
    EXPECT_EQ(block_, nullptr);  // success without a block
    GTEST_SKIP() << "no adapter: no readable PCI hardware ID and (without a display) no DXGI";
  }
  ASSERT_NE(block_, nullptr);
  ASSERT_EQ(block_->count, expected_.size());
  const GpAdapterEntry* selected[2] = {};  // integrated, discrete: the last of each
  for (uint32_t i = 0; i < block_->count; ++i) {
    SCOPED_TRACE(testing::Message() << "record " << i);
    const GpAdapterEntry& record = Record(block_.get(), i);
    const std::wstring name = expected_[i].name;
    EXPECT_EQ(std::wstring(reinterpret_cast<const wchar_t*>(record.name)), name);
    EXPECT_EQ(record.videoMemoryMiB, expected_[i].memory);
    const auto type = ControllerValue(name, L"AdapterDACType");
    EXPECT_EQ(record.discrete,
              static_cast<uint32_t>(type &&
                                    (type->empty() || !::StrStrIW(type->c_str(), L"Integrated"))));
    const uint32_t hz = std::stoul(ControllerValue(name, L"CurrentRefreshRate").value_or(L"0"));
    EXPECT_EQ(record.active, hz != 0 && hz != 0xFFFFFFFF);
    selected[record.discrete != 0] = &record;
  }
  for (const bool discrete : {false, true}) {
    SCOPED_TRACE(discrete ? "discrete" : "integrated");
    const uint32_t base =
        discrete ? HAL_GRAPHICS_INFO_DISCRETE_NAME : HAL_GRAPHICS_INFO_INTEGRATED_NAME;
    const uint32_t memory = discrete ? HAL_GRAPHICS_INFO_DISCRETE_VIDEO_MEMORY
                                     : HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY;
    const GpAdapterEntry* record = selected[discrete];
    if (record == nullptr) {
      EXPECT_EQ(Text(block_.get(), base), std::nullopt);
      EXPECT_EQ(Number(block_.get(), memory), std::nullopt);
      continue;
    }
    const std::wstring name = reinterpret_cast<const wchar_t*>(record->name);
    const auto answer = [](std::optional<std::wstring> v) {
      return v && !v->empty() ? v : std::nullopt;
    };
    const auto date = ControllerValue(name, L"DriverDate");
    EXPECT_EQ(Text(block_.get(), base), answer(name));
    EXPECT_EQ(Text(block_.get(), base + 8), answer(name));
    EXPECT_EQ(Text(block_.get(), base + 1), answer(ControllerValue(name, L"Status")));
    EXPECT_EQ(Text(block_.get(), base + 2), answer(ControllerValue(name, L"DriverVersion")));
    EXPECT_EQ(Text(block_.get(), base + 3),
              answer(date && date->size() >= 8 ? std::optional(date->substr(0, 8)) : std::nullopt));
    EXPECT_EQ(Number(block_.get(), memory), record->videoMemoryMiB);
    // Wine reads no device property, so no device is found by description: problem code 0.
    if (RunningOnWine()) {
      EXPECT_EQ(Number(block_.get(), memory + 1), 0u);
    }
  }
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
  // Wine's paths are external and its WMI rate is 0, so the rate is the current mode's (and none
  // under Xvfb, whose mode reports 0); the panel and WMI steps are the unit tests'.
  if (RunningOnWine()) {
    EXPECT_EQ(Number(block, HAL_GRAPHICS_INFO_REFRESH_RATE),
              mode.dmDisplayFrequency ? std::optional(mode.dmDisplayFrequency) : std::nullopt);
  }
  // The monitor: the model part of WMI's PNP ID, else its caption (Wine answers neither).
  const auto pnp = FirstRow(
      L"SELECT PNPDeviceID FROM Win32_DesktopMonitor WHERE PNPDeviceID IS "
      L"NOT NULL",
      L"PNPDeviceID");
  std::optional<std::wstring> monitor =
      FirstRow(L"SELECT Caption FROM Win32_DesktopMonitor", L"Caption");
  if (pnp && !pnp->empty()) {
    const size_t first = pnp->find(L'\\'), second = pnp->find(L'\\', first + 1);
    monitor = first == std::wstring::npos ? L"" : pnp->substr(first + 1, second - first - 1);
  }
  EXPECT_EQ(Text(block, HAL_GRAPHICS_INFO_MONITOR),
            monitor && !monitor->empty() ? monitor : std::nullopt);
  EXPECT_EQ(Text(block, HAL_GRAPHICS_INFO_NOT_SERVED), std::nullopt);
}

TEST_F(GraphicsApiTest, VideoCardAnswersWhatTheFlatClassesAnswer) {
  VideoCard card;
  const auto text = [&](uint32_t info_class) {
    return block_ ? Text(block_.get(), info_class).value_or(L"") : L"";
  };
  const auto number = [&](uint32_t info_class) {
    return block_ ? Number(block_.get(), info_class).value_or(0) : 0;
  };
  // Without a block every getter is empty, the screen's too: that is the contract.
  EXPECT_EQ(card.GetVideoCardNumber(), number(HAL_GRAPHICS_INFO_COUNT));
  EXPECT_EQ(card.GetUsedVideoCardName(), text(HAL_GRAPHICS_INFO_DISCRETE_NAME));
  EXPECT_EQ(card.GetIndependentVideoCardName(), text(HAL_GRAPHICS_INFO_INTEGRATED_NAME));
  EXPECT_EQ(card.GetUnUsedVideoCardStatus(), text(HAL_GRAPHICS_INFO_INTEGRATED_STATUS));
  EXPECT_EQ(card.GetUnUsedVedioCardMemorySize(), number(HAL_GRAPHICS_INFO_INTEGRATED_VIDEO_MEMORY));
  EXPECT_EQ(card.GetHorizontalResolution(), number(HAL_GRAPHICS_INFO_SCREEN_WIDTH));
  EXPECT_EQ(card.GetDisplayResolution(), text(HAL_GRAPHICS_INFO_RESOLUTION));
}

// Wine keeps the monitor's Device Parameters key but no EDID value: the test stores a real
// monitor's EDID there for its length and finds its name through the active display's ID.
TEST(VideoCardMonitorTest, TheCaptionIsTheEdidNameUnderTheActiveMonitorsKey) {
  if (!RunningOnWine()) GTEST_SKIP() << "the monitor's own EDID: its scan is the unit tests'";
  DISPLAY_DEVICEW monitor{};
  monitor.cb = sizeof(monitor);
  ASSERT_TRUE(
      ::EnumDisplayDevicesW(L"\\\\.\\DISPLAY1", 0, &monitor, EDD_GET_DEVICE_INTERFACE_NAME));
  std::wstring id = monitor.DeviceID;  // \\?\DISPLAY#Default_Monitor#0000&0000#{class}
  id = L"DISPLAY\\" + id.substr(12, id.find(L'#', 12) - 12) + L"\\" +
       id.substr(id.find(L'#', 12) + 1, id.rfind(L'#') - id.find(L'#', 12) - 1);
  HKEY key = nullptr;
  ASSERT_EQ(
      ::RegOpenKeyExW(HKEY_LOCAL_MACHINE,
                      (L"SYSTEM\\CurrentControlSet\\Enum\\" + id + L"\\Device Parameters").c_str(),
                      0, KEY_SET_VALUE, &key),
      ERROR_SUCCESS);
  std::ifstream file(VELHAL_TEST_DATA_DIR "/edid/dell-d3218hn.bin", std::ios::binary);
  const std::vector<BYTE> edid((std::istreambuf_iterator<char>(file)), {});
  ASSERT_EQ(::RegSetValueExW(key, L"EDID", 0, REG_BINARY, edid.data(), 256), ERROR_SUCCESS);
  const std::wstring caption = VideoCard().GetMonitorCaption();
  ::RegDeleteValueW(key, L"EDID");
  ::RegCloseKey(key);
  EXPECT_EQ(caption, L"D3218HN");  // its name descriptor, by edid-decode
}

TEST(DisplayClassTest, WithoutAnAmdOrIntelAdapterInitSucceedsWithoutABlock) {
  for (const Adapter& adapter : ExpectedInventory()) {
    if (adapter.name.find(L"AMD") != std::wstring::npos ||
        adapter.name.find(L"Intel") != std::wstring::npos) {
      GTEST_SKIP() << "this machine has an AMD or Intel adapter";
    }
  }
  DpDisplayList* list = reinterpret_cast<DpDisplayList*>(0x5A5A);
  EXPECT_EQ(HalInit(HAL_CLASS_DISPLAY, &list), 1u);
  EXPECT_EQ(list, reinterpret_cast<DpDisplayList*>(0x5A5A));
  uint32_t data[9] = {50, 0}, returned = 0;
  for (uint32_t info_class = 0; info_class < 7; ++info_class) {
    EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISPLAY, data, info_class, data, 36, &returned), 0u);
    EXPECT_EQ(HalSetInformation(HAL_CLASS_DISPLAY, data, info_class, data, 36, &returned), 0u);
  }
}

}  // namespace
