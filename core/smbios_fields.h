// The firmware identity fields, named once. The parser fills them by Field, SmBiosHelper keeps
// its wide copies by Field, and halinfo prints them by walking kFieldNames: a new field is a
// Field, a row here, a line in its record's parser and its getter.
//
// Portable: no Windows header.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velhal::smbios {

// The text fields come first and index Fields::text; the last two are held apart.
enum class Field : uint8_t {
  kBiosVendor,
  kBiosVersion,
  kBiosReleaseDate,
  kBiosSystemVersion,  // "%d.%02d"
  kBiosEcVersion,      // "%d.%d"
  kSystemManufacturer,
  kSystemProductName,
  kSystemVersion,
  kSystemSerialNumber,
  kSystemSku,
  kSystemFamily,
  kBoardManufacturer,
  kBoardProduct,
  kBoardVersion,
  kBoardSerialNumber,
  kBoardAssetTag,
  kBoardLocation,
  kChassisManufacturer,
  kChassisVersion,
  kChassisSerialNumber,
  kChassisAssetTag,
  kChassisSku,
  kSystemUuid,   // 16 bytes
  kChassisType,  // a number
};
inline constexpr size_t kTextFieldCount = static_cast<size_t>(Field::kSystemUuid);
inline constexpr size_t kFieldCount = static_cast<size_t>(Field::kChassisType) + 1;

constexpr bool IsText(Field field) { return static_cast<size_t>(field) < kTextFieldCount; }

// The record a field is read from, as reports group them.
struct Group {
  const char* key;    // JSON
  const char* label;  // plain text
};
inline constexpr Group kBios{"bios", "BIOS"};
inline constexpr Group kSystem{"system", "System"};
inline constexpr Group kBaseboard{"baseboard", "Baseboard"};
inline constexpr Group kChassis{"chassis", "Chassis"};

struct FieldName {
  Field field;
  const Group* group;
  const char* key;    // JSON
  const char* label;  // plain text
};

// In report order: a group's rows stand together, in the order of its JSON object.
inline constexpr FieldName kFieldNames[] = {
    {Field::kBiosVendor, &kBios, "vendor", "vendor"},
    {Field::kBiosVersion, &kBios, "version", "version"},
    {Field::kBiosReleaseDate, &kBios, "releaseDate", "release date"},
    {Field::kBiosSystemVersion, &kBios, "systemVersion", "system version"},
    {Field::kBiosEcVersion, &kBios, "ecVersion", "EC version"},
    {Field::kSystemManufacturer, &kSystem, "manufacturer", "manufacturer"},
    {Field::kSystemProductName, &kSystem, "productName", "product name"},
    {Field::kSystemVersion, &kSystem, "version", "version"},
    {Field::kSystemSerialNumber, &kSystem, "serialNumber", "serial number"},
    {Field::kSystemUuid, &kSystem, "uuid", "UUID"},
    {Field::kSystemSku, &kSystem, "sku", "SKU"},
    {Field::kSystemFamily, &kSystem, "family", "family"},
    {Field::kBoardManufacturer, &kBaseboard, "manufacturer", "manufacturer"},
    {Field::kBoardProduct, &kBaseboard, "product", "product"},
    {Field::kBoardVersion, &kBaseboard, "version", "version"},
    {Field::kBoardSerialNumber, &kBaseboard, "serialNumber", "serial number"},
    {Field::kBoardAssetTag, &kBaseboard, "assetTag", "asset tag"},
    {Field::kBoardLocation, &kBaseboard, "location", "location"},
    {Field::kChassisManufacturer, &kChassis, "manufacturer", "manufacturer"},
    {Field::kChassisType, &kChassis, "type", "type"},
    {Field::kChassisVersion, &kChassis, "version", "version"},
    {Field::kChassisSerialNumber, &kChassis, "serialNumber", "serial number"},
    {Field::kChassisAssetTag, &kChassis, "assetTag", "asset tag"},
    {Field::kChassisSku, &kChassis, "sku", "SKU"},
};

constexpr bool NamesEveryFieldOnce() {
  bool named[kFieldCount] = {};
  for (const FieldName& row : kFieldNames) {
    const size_t index = static_cast<size_t>(row.field);
    if (named[index]) return false;
    named[index] = true;
  }
  for (const bool is_named : named) {
    if (!is_named) return false;
  }
  return true;
}
static_assert(NamesEveryFieldOnce(), "every Field needs exactly one row in kFieldNames");

}  // namespace velhal::smbios
