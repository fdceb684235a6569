#include "firmware/system_info.h"

#include <cstring>
#include <mutex>
#include <string_view>
#include <vector>

#include "firmware/smbios_helper.h"
#include "platform/boundary.h"
#include "platform/process_state.h"
#include "platform/string_conversion.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace {

constexpr std::string_view kPlaceholder = "21111111111111111111";

// Filled once from a non-empty answer; an empty one is asked again next time.
std::mutex g_source_mutex;
std::wstring g_source_serial;
std::mutex g_result_mutex;
std::string g_result_serial;

void ForgetSerials() {
  {
    const std::lock_guard<std::mutex> lock(g_source_mutex);
    g_source_serial.clear();
  }
  const std::lock_guard<std::mutex> lock(g_result_mutex);
  g_result_serial.clear();
}

std::wstring SerialSource() {
  static const bool registered = (velhal::RegisterProcessStateReset(&ForgetSerials), true);
  (void)registered;
  {
    const std::lock_guard<std::mutex> lock(g_source_mutex);
    if (!g_source_serial.empty()) return g_source_serial;
  }
  std::wstring serial = SmBiosHelper::GetInstance()->GetSysSerialNumber();
  if (serial.empty()) {
    VelSDK::WmiQuery wmi(velhal::wmi::kCimV2);
    std::vector<std::wstring> values;
    if (wmi.ExcuteQuery(L"SELECT SerialNumber FROM Win32_BIOS", L"SerialNumber", values, false) == 0) {
      serial = values.front();
    }
  }
  const std::lock_guard<std::mutex> lock(g_source_mutex);
  if (g_source_serial.empty()) g_source_serial = serial;
  return g_source_serial;
}

// Clears a temporary copy of the serial before its memory goes back to the heap.
void Scrub(std::string& text) {
  volatile char* p = text.data();
  for (size_t i = 0; i < text.size(); ++i) p[i] = 0;
}

}  // namespace

std::string SystemInfo::GetDeviceSerialNumber() {
  return velhal::CallGuarded(std::string(kPlaceholder), [&] {
    {
      const std::lock_guard<std::mutex> lock(g_result_mutex);
      if (!g_result_serial.empty()) return g_result_serial;
    }
    std::string serial = WideToAnsi(SerialSource());
    if (serial.empty()) return std::string(kPlaceholder);
    const std::lock_guard<std::mutex> lock(g_result_mutex);
    g_result_serial = serial;
    return serial;
  });
}

SNErrorCode SystemInfo::GetDeviceSerialNumberEx(char* buffer, size_t size) {
  if (buffer == nullptr || size == 0) return SN_NO_BUFFER_OR_TOO_SMALL;
  std::memset(buffer, 0, size);
  SNErrorCode status = SN_NO_BUFFER_OR_TOO_SMALL;
  std::string narrow;
  const bool copied = velhal::CallGuarded(false, [&] {
    const std::wstring serial = SerialSource();
    if (serial.empty()) {
      status = SN_UNKNOWN;
      return false;
    }
    narrow = WideToAnsi(serial);
    if (narrow.empty()) {
      status = SN_CONVERSION_FAILED;
      return false;
    }
    if (size <= narrow.size()) return false;  // does not fit: the placeholder instead
    std::memcpy(buffer, narrow.data(), narrow.size());
    status = SN_SUCCESS;
    return true;
  });
  if (!copied) {
    if (status == SN_SUCCESS) status = SN_COPY_FAILED;
    // Without a terminator: a 20-byte buffer takes exactly the placeholder.
    if (size < kPlaceholder.size()) {
      status = SN_PLACEHOLDER_TOO_LONG;
    } else {
      std::memcpy(buffer, kPlaceholder.data(), kPlaceholder.size());
    }
  }
  Scrub(narrow);
  return status;
}
