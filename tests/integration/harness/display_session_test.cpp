// The display session of the test harness: tests labelled "display" run under a private Xvfb,
// where Wine's X11 driver gives DXGI and the screen the harness asked for. Graphics and display
// tests rely on both.
#include "platform/win32.h"

#include <dxgi.h>
#include <gtest/gtest.h>

#include "tests/support/wine.h"

namespace {

TEST(DisplaySessionTest, DxgiAndTheScreenAreThere) {
  EXPECT_GT(::GetSystemMetrics(SM_CXSCREEN), 0);
  if (velhal::testing::RunningOnWine()) {
    EXPECT_EQ(::GetSystemMetrics(SM_CXSCREEN), 1920);  // Xvfb -screen 0 1920x1080x24
    EXPECT_EQ(::GetSystemMetrics(SM_CYSCREEN), 1080);
  }
  wchar_t system[MAX_PATH] = {};
  ::GetSystemDirectoryW(system, MAX_PATH);
  const HMODULE dxgi = ::LoadLibraryW((std::wstring(system) + L"\\dxgi.dll").c_str());
  ASSERT_NE(dxgi, nullptr);
  using CreateFactory = HRESULT(WINAPI*)(REFIID, void**);
  const auto create = reinterpret_cast<CreateFactory>(
      reinterpret_cast<void*>(::GetProcAddress(dxgi, "CreateDXGIFactory1")));
  ASSERT_NE(create, nullptr);
  IDXGIFactory1* factory = nullptr;
  EXPECT_EQ(create(__uuidof(IDXGIFactory1), reinterpret_cast<void**>(&factory)), S_OK);
  if (factory != nullptr) {
    IDXGIAdapter1* adapter = nullptr;
    EXPECT_EQ(factory->EnumAdapters1(0, &adapter), S_OK);
    if (adapter != nullptr) adapter->Release();
    EXPECT_EQ(factory->Release(), 0u);
  }
  ::FreeLibrary(dxgi);
}

}  // namespace
