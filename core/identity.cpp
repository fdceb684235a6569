#include "core/identity.h"

#include <algorithm>

namespace velhal::identity {
namespace {

constexpr size_t kDeviceValueIndex = 9;
constexpr size_t kConsumerIndex = 10;
constexpr size_t kWifiBtFlagIndex = 16;

bool IsDigitBetween(uint16_t value, wchar_t low, wchar_t high) {
  return value >= static_cast<uint16_t>(low) && value <= static_cast<uint16_t>(high);
}

std::wstring AsciiLower(std::wstring_view text) {
  std::wstring lowered(text);
  for (wchar_t& c : lowered) {
    if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c - L'A' + L'a');
  }
  return lowered;
}

}  // namespace

uint16_t DeviceValue(std::wstring_view oem1) {
  return oem1.size() > kDeviceValueIndex ? static_cast<uint16_t>(oem1[kDeviceValueIndex]) : 0;
}

Brand BrandOf(uint16_t device_value) {
  if (IsCorvane(device_value)) return kCorvane;
  if (IsTalmer(device_value)) return kTalmer;
  if (IsSmart(device_value)) return kSmart;
  return kUnknownBrand;
}

// A machine with no device value counts as the first brand; callers rely on it.
bool IsCorvane(uint16_t v) { return v == L'1' || v == 0; }
bool IsTalmer(uint16_t v) { return IsDigitBetween(v, L'2', L'4'); }
bool IsSmart(uint16_t v) { return v == L'5'; }
bool IsBrakkon(uint16_t v) { return v == L'4'; }
// The chassis byte is compared whole: a lock bit set makes the type another.
bool IsOndrel(uint16_t v, uint8_t chassis) {
  return (v == L'2' || v == L'3') && chassis == kChassisNotebook;
}
bool IsVastrel(uint16_t v, uint8_t chassis) {
  return (v == L'2' || v == L'3') && chassis == kChassisDesktop;
}
bool IsCorvaneStation(uint16_t v, uint8_t chassis) {
  return v == L'1' && chassis == kChassisDesktop;
}

bool ConsumerType(std::wstring_view oem1, uint32_t& type) {
  type = 0;
  if (oem1.size() <= kConsumerIndex) return false;
  const uint16_t code = static_cast<uint16_t>(oem1[kConsumerIndex]);
  if (IsDigitBetween(code, L'1', L'5')) type = code - L'0';
  return true;
}

bool IsConsumerTypeToB(std::wstring_view oem1) {
  uint32_t type = 0;
  ConsumerType(oem1, type);
  return type - 2 < 4;  // unsigned: 2, 3, 4 or 5
}

bool IsUnsupportWifiAndBt(std::wstring_view oem7, std::wstring_view oem1,
                          const std::string& chassis_sku,
                          const std::vector<std::string>& unsupported_skus) {
  if (oem7.size() == 6 && AsciiLower(oem7) == L"perrow") return false;
  if (oem1.size() > kWifiBtFlagIndex && oem1[kWifiBtFlagIndex] == L'1') return true;
  for (const std::string& sku : unsupported_skus) {
    if (sku == chassis_sku) return true;
  }
  return false;
}

std::vector<std::string> SplitList(std::string_view text) {
  std::vector<std::string> pieces;
  size_t start = 0;
  while (start <= text.size()) {
    const size_t end = std::min(text.find(';', start), text.size());
    if (end > start) pieces.emplace_back(text.substr(start, end - start));
    start = end + 1;
  }
  return pieces;
}

std::vector<std::string> ParseVendorList(std::string text) {
  std::erase(text, '\n');
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  text = text.substr(first, text.find_last_not_of(' ') - first + 1);
  return SplitList(text);
}

}  // namespace velhal::identity
