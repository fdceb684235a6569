#include "platform/win32.h"

#include "hal/display_intel.h"

#include <oleauto.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <cwchar>
#include <string>

#include "hal/hal_api.h"
#include "platform/diagnostics.h"
#include "platform/os/com.h"
#include "platform/os/display.h"
#include "platform/os/intel_driver.h"
#include "platform/os/power.h"
#include "platform/process_state.h"

namespace velhal::hal::intel {
namespace {

// GUID_VIDEO_SUBGROUP and GUID_DEVICE_POWER_POLICY_VIDEO_BRIGHTNESS, 0-100.
constexpr GUID kVideoSubgroup{
    0x7516b95f, 0xf776, 0x4464, {0x8c, 0x53, 0x06, 0x16, 0x7f, 0x40, 0xcc, 0x99}};
constexpr GUID kVideoBrightness{
    0xaded5e82, 0xb909, 0x4619, {0x99, 0x49, 0xf5, 0xd7, 0x1d, 0xac, 0x0b, 0xcb}};
// The driver's colour-space conversion block of the local flat panel (92 bytes: enable flag,
// reserved word, the BT.601 and BT.709 matrices with a flag byte, support and flag words).
constexpr GUID kPanelColorSpace{
    0xf64a0177, 0x1cbc, 0x46d8, {0x99, 0x82, 0x85, 0xfd, 0x1d, 0x59, 0xb9, 0xb1}};
constexpr DWORD kColorSpaceBlockSize = 92;
constexpr size_t kMatrixOffset = 8;
constexpr uint32_t kMatrixBytes = 36;

// Tools that watch the debugger output match these tags as the library has always written them.
constexpr char kQueryTag[] = "`anonymous-namespace'::QueryLight";
constexpr char kSetTag[] = "`anonymous-namespace'::SetLight";

struct Driver {
  bool ready = false;  // never cleared: the object is kept for the process
  ICUIExternal8* control = nullptr;
  bool com_initialised = false;
};
Driver g_driver;

// For the test reset only: the library keeps the object, and the apartment it joined for it,
// until the process ends.
void Forget() {
  if (g_driver.control != nullptr) g_driver.control->Release();
  if (g_driver.com_initialised) os::com().CoUninitialize();
  g_driver = Driver{};
}

class Bstr {
 public:
  explicit Bstr(const std::wstring& text)
      : text_(::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  ~Bstr() { ::SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  BSTR get() const { return text_; }

 private:
  BSTR text_;
};

std::wstring PrimaryDisplayAdapter() {
  for (DWORD index = 0;; ++index) {
    DISPLAY_DEVICEW device{};
    device.cb = sizeof(device);
    if (!os::display().EnumDisplayDevicesW(nullptr, index, &device, 0)) return {};
    if ((device.StateFlags & DISPLAY_DEVICE_PRIMARY_DEVICE) != 0)
      return std::wstring(device.DeviceName,
                          wcsnlen(device.DeviceName, std::size(device.DeviceName)));
  }
}

bool WriteRamp(const GammaRamp& ramp) {
  const std::wstring adapter = PrimaryDisplayAdapter();
  if (adapter.empty()) return false;
  const Bstr name(adapter);
  DWORD display = 0, type = 0;
  if (name.get() == nullptr ||
      FAILED(g_driver.control->EnumActiveDevices(name.get(), 0, &display, &type))) {
    return false;
  }
  GammaRamp copy = ramp;  // the driver's signature takes a writable buffer
  DWORD status = 0;
  const HRESULT hr = g_driver.control->SetGammaRamp(display, static_cast<UINT>(sizeof(copy)),
                                                    reinterpret_cast<BYTE*>(copy.data()), &status);
  return SUCCEEDED(hr) && status == 0;
}

uint32_t QueryColorMatrix(void* buffer, uint32_t buffer_size, uint32_t* returned) {
  if (buffer == nullptr || returned == nullptr || buffer_size < kMatrixBytes) return 0;
  BYTE block[kColorSpaceBlockSize] = {};
  DWORD status = 0;
  const HRESULT hr =
      g_driver.control->GetDeviceData(kPanelColorSpace, kColorSpaceBlockSize, block, &status);
  if (FAILED(hr) || status != 0) return 0;
  std::memcpy(buffer, block + kMatrixOffset, kMatrixBytes);
  *returned = kMatrixBytes;
  return 1;
}

// Brightness from the active scheme's value for the current power source.
uint32_t QueryBrightness(void* buffer, uint32_t buffer_size, uint32_t* returned) {
  if (buffer == nullptr || returned == nullptr || buffer_size < sizeof(DpColorRange)) return 0;
  UniquePowerScheme scheme;
  os::power().PowerGetActiveScheme(nullptr, scheme.Put());
  SYSTEM_POWER_STATUS status{};
  if (!os::power().GetSystemPowerStatus(&status)) {
    WriteDiagnostic(L"[DpQueryInformation] GetSystemPowerStatus Result:",
                    static_cast<unsigned long>(::GetLastError()), kQueryTag);
  }
  // On line, and 255 (unknown), read the AC value.
  const bool on_line = status.ACLineStatus != 0;
  DWORD value = 0;
  const DWORD result = on_line
                           ? os::power().PowerReadACValueIndex(
                                 nullptr, scheme.Get(), &kVideoSubgroup, &kVideoBrightness, &value)
                           : os::power().PowerReadDCValueIndex(
                                 nullptr, scheme.Get(), &kVideoSubgroup, &kVideoBrightness, &value);
  if (result != ERROR_SUCCESS) {
    WriteDiagnostic(on_line ? L"[DpQueryInformation] PowerReadACValueIndex Result:"
                            : L"[DpQueryInformation] PowerReadDCValueIndex Result:",
                    static_cast<unsigned long>(result), kQueryTag);
    return 0;
  }
  const DpColorRange range{value, 0, 0, 100, 0};
  std::memcpy(buffer, &range, sizeof(range));
  *returned = sizeof(range);
  return 1;
}

// Only a buffer shorter than 4 bytes is held to 0-100; a full u32 goes to the scheme as it
// stands. Callers rely on both. A short buffer is read as the little-endian bytes it has.
uint32_t SetBrightness(const void* buffer, uint32_t buffer_size) {
  if (buffer == nullptr) return 0;
  DWORD value = 0;
  std::memcpy(&value, buffer, std::min<uint32_t>(buffer_size, sizeof(value)));
  if (buffer_size < sizeof(value) && value > 100) return 0;
  UniquePowerScheme scheme;
  if (const DWORD result = os::power().PowerGetActiveScheme(nullptr, scheme.Put());
      result != ERROR_SUCCESS) {
    // Without a scheme there is nothing to write into.
    WriteDiagnostic(L"[DpSetInformation] PowerGetActiveScheme Result:",
                    static_cast<unsigned long>(result), kSetTag);
    return 0;
  }
  SYSTEM_POWER_STATUS status{};
  if (!os::power().GetSystemPowerStatus(&status)) {
    WriteDiagnostic(L"[DpSetInformation] GetSystemPowerStatus Result:",
                    static_cast<unsigned long>(::GetLastError()), kSetTag);
  }
  const bool on_line = status.ACLineStatus != 0;
  const DWORD written = on_line
                            ? os::power().PowerWriteACValueIndex(
                                  nullptr, scheme.Get(), &kVideoSubgroup, &kVideoBrightness, value)
                            : os::power().PowerWriteDCValueIndex(
                                  nullptr, scheme.Get(), &kVideoSubgroup, &kVideoBrightness, value);
  if (written != ERROR_SUCCESS) {
    WriteDiagnostic(on_line ? L"[DpSetInformation] PowerWriteACValueIndex Result:"
                            : L"[DpSetInformation] PowerWriteDCValueIndex Result:",
                    static_cast<unsigned long>(written), kSetTag);
  }
  const DWORD applied = os::power().PowerSetActiveScheme(nullptr, scheme.Get());
  if (applied != ERROR_SUCCESS) {
    WriteDiagnostic(L"[DpSetInformation] PowerSetActiveScheme Result:",
                    static_cast<unsigned long>(applied), kSetTag);
  }
  return written == ERROR_SUCCESS && applied == ERROR_SUCCESS ? 1 : 0;
}

float Float(const void* buffer, size_t index) {
  float value = 0;
  std::memcpy(&value, static_cast<const unsigned char*>(buffer) + index * sizeof(float),
              sizeof(value));
  return value;
}

// Five floats: three channel gains, a level (at most 255) and a floor factor f; the level
// dims the whole ramp by (level / 255) x (1 - f).
uint32_t SetColorGains(const void* buffer, uint32_t buffer_size) {
  if (buffer == nullptr || buffer_size < 5 * sizeof(float)) return 0;
  const float level = std::min(Float(buffer, 3), 255.0f);
  const float scale = 1.0f - (level / 255.0f) * (1.0f - Float(buffer, 4));
  return WriteRamp(BuildGammaRamp({Float(buffer, 0), Float(buffer, 1), Float(buffer, 2)}, scale))
             ? 1
             : 0;
}

// The warmth (first u32, at most 255) drives the ramp; the second level is taken and unused.
// Class 2 reads the warmth whatever the stated size: callers rely on it.
uint32_t SetColorTemperature(const void* buffer) {
  if (buffer == nullptr) return 0;
  uint32_t warmth = 0;
  std::memcpy(&warmth, buffer, sizeof(warmth));
  return WriteRamp(BuildGammaRamp(WarmthFactors(std::min<uint32_t>(warmth, 255)), 1.0f)) ? 1 : 0;
}

}  // namespace

bool Ready() { return g_driver.ready; }

bool ControlPresent() { return g_driver.control != nullptr; }

uint32_t Init() {
  if (g_driver.ready) return 1;
  static const bool registered = (RegisterProcessStateReset(&Forget), true);
  (void)registered;
  if (g_driver.control != nullptr) {
    g_driver.control->Release();
    g_driver.control = nullptr;
  }
  // A thread already in the multithreaded apartment is left as it was. One without COM, which
  // the flat interface's contract excludes, keeps the apartment joined here for as long as the
  // object lives: releasing it would leave the object without an apartment.
  const HRESULT joined = os::com().CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  ICUIExternal8* control = nullptr;
  const HRESULT created = os::intel_driver().CreateControl(&control);
  const bool keep_apartment = joined == S_OK && SUCCEEDED(created) && control != nullptr;
  if (SUCCEEDED(joined) && !keep_apartment) os::com().CoUninitialize();
  if (FAILED(created) || control == nullptr) return 0;
  g_driver.control = control;
  g_driver.com_initialised = g_driver.com_initialised || keep_apartment;
  g_driver.ready = true;
  return 1;
}

uint32_t Query(uint32_t info_class, void* buffer, uint32_t buffer_size, uint32_t* returned) {
  switch (info_class) {
    case HAL_DISPLAY_INFO_COLOR_TEMPERATURE: return QueryColorMatrix(buffer, buffer_size, returned);
    case HAL_DISPLAY_INFO_BRIGHTNESS: return QueryBrightness(buffer, buffer_size, returned);
    default: return 0;
  }
}

uint32_t Set(uint32_t info_class, const void* buffer, uint32_t buffer_size) {
  switch (info_class) {
    case HAL_DISPLAY_SET_COLOR_TEMPERATURE: return SetColorTemperature(buffer);
    case HAL_DISPLAY_SET_COLOR_TEMPERATURE_ALIAS:
      return buffer_size >= 8 ? SetColorTemperature(buffer) : 0;
    case HAL_DISPLAY_SET_BRIGHTNESS: return SetBrightness(buffer, buffer_size);
    case HAL_DISPLAY_SET_COLOR_GAINS: return SetColorGains(buffer, buffer_size);
    default: return 0;
  }
}

GammaRamp BuildGammaRamp(const std::array<float, 3>& factors, float scale) {
  GammaRamp ramp{};
  for (size_t channel = 0; channel < 3; ++channel) {
    double factor = static_cast<double>(factors[channel]) * scale;
    if (!(factor > 0)) factor = 0;  // negative and NaN alike
    for (size_t i = 0; i < 256; ++i) {
      const double level = std::floor(static_cast<double>(i) * 257.0 * factor + 0.5);
      ramp[channel * 256 + i] = static_cast<uint16_t>(std::min(level, 65535.0));
    }
  }
  return ramp;
}

std::array<float, 3> WarmthFactors(uint32_t warmth) {
  std::array<float, 3> factors = {1.0f, 1.0f, 1.0f};
  if (warmth < 128) {
    factors[2] -= static_cast<float>(128 - warmth) / 128.0f * 0.15f;
  } else {
    const float drop = static_cast<float>(warmth - 128) / 128.0f * 0.06f;
    factors[0] -= drop;
    factors[1] -= drop;
  }
  return factors;
}

}  // namespace velhal::hal::intel
