// What kind of machine the maker's firmware says this is: codes at fixed positions of OEM
// string 1 and the chassis type byte. Portable pure rules over the cached identity values;
// the texts are UTF-16 code units (wchar_t holds one per character of the ANSI code pages).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velhal::identity {

constexpr uint8_t kChassisDesktop = 3;
constexpr uint8_t kChassisNotebook = 10;
constexpr uint8_t kChassisDetachable = 0x20;

enum Brand : uint32_t { kCorvane = 0, kTalmer = 1, kSmart = 2, kUnknownBrand = 3 };

// The code unit at index 9 of OEM string 1; 0 when the string is shorter.
uint16_t DeviceValue(std::wstring_view oem1);
Brand BrandOf(uint16_t device_value);
bool IsCorvane(uint16_t device_value);  // '1', or no value at all
bool IsTalmer(uint16_t device_value);   // '2', '3' or '4'
bool IsSmart(uint16_t device_value);    // '5'
bool IsBrakkon(uint16_t device_value);  // '4'
bool IsOndrel(uint16_t device_value, uint8_t chassis);
bool IsVastrel(uint16_t device_value, uint8_t chassis);
bool IsCorvaneStation(uint16_t device_value, uint8_t chassis);

// Consumer channel from index 10 of OEM string 1: 1 to 5, 0 when not a digit '1'-'5'. False
// (type 0) when the string has 10 characters or fewer.
bool ConsumerType(std::wstring_view oem1, uint32_t& type);
bool IsConsumerTypeToB(std::wstring_view oem1);  // channels 2 to 5

// Whether Wi-Fi and Bluetooth are to be hidden. First match wins: OEM string 7 "perrow" (any
// letter case) never hides; the flag '1' at index 16 of OEM string 1 hides; a chassis SKU on
// the unsupported list (exact, case-sensitive) hides.
bool IsUnsupportWifiAndBt(std::wstring_view oem7, std::wstring_view oem1,
                          const std::string& chassis_sku,
                          const std::vector<std::string>& unsupported_skus);

// ";"-separated lists of the product-adapter files. Empty pieces (from ";;" or a trailing ";")
// are dropped: an empty SKU would match every machine that reports no chassis SKU, and an empty
// vendor identifier matches no vendor.
std::vector<std::string> SplitList(std::string_view text);
// The vendor list text: every newline removed, spaces (only) trimmed at both ends of the whole
// text, then split; spaces around one identifier inside the text are kept.
std::vector<std::string> ParseVendorList(std::string text);

}  // namespace velhal::identity
