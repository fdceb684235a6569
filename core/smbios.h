// SMBIOS structure walk and the identity records of types 0, 1, 2, 3 and 11 (DMTF DSP0134,
// the SMBIOS reference, sections 6.1 and 7.1-7.4, 7.12).
//
// Portable: no Windows header. The parsers take a pointer and a length and yield the 8-bit
// strings as they stand in the table; converting them to text is the caller's business.
// Every read is bounded by the buffer: a length byte, a string number or a fixed offset that
// points outside it reads as absent, never past the end.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/smbios_fields.h"

namespace velhal::smbios {

struct Fields {
  std::array<std::string, kTextFieldCount> text;  // by Field, 8-bit as stored
  std::array<uint8_t, 16> system_uuid{};  // as stored, no field reordering
  uint8_t chassis_type = 0;  // the whole byte, lock bit included
  std::map<int, std::string> oem_strings;  // only numbers 1, 2, 3, 4, 6, 7 and 10
  std::vector<uint8_t> oem_string_counts;  // the count byte of every type-11 record seen

  // Text fields only (IsText).
  std::string& operator[](Field field) { return text[static_cast<size_t>(field)]; }
  const std::string& operator[](Field field) const { return text[static_cast<size_t>(field)]; }
};

// Walks the structures of [start, start + length) and parses the identity records into fields.
// A record type met twice is parsed twice: the later values win.
void Walk(const uint8_t* start, size_t length, Fields& fields);

// The 8-byte header Windows puts before the structures in a raw firmware table.
struct RawHeader {
  uint8_t major = 0, minor = 0, dmi_revision = 0;
  uint32_t length = 0;  // of the structure data that follows
};
std::optional<RawHeader> ReadRawHeader(const uint8_t* data, size_t size);

// A table saved to a file: where its structures are and which version it declares.
enum class SavedFormat { kRawFirmwareTable, kDmidecodeDump, kBareTable };
struct SavedTable {
  SavedFormat format = SavedFormat::kBareTable;
  uint8_t major = 0, minor = 0, dmi_revision = 0;
  size_t offset = 0, length = 0;  // of the structures within the file
  bool truncated = false;         // the table's header promises more bytes than the file holds
};
// Recognises a Windows raw firmware table (its 8-byte header), a "dmidecode --dump-bin" file
// (an _SM_ or _SM3_ entry point with the table behind it) or a bare structure table such as a
// copy of /sys/firmware/dmi/tables/DMI (versions then 0). Nullopt for an empty file.
std::optional<SavedTable> DetectSavedTable(const uint8_t* data, size_t size);

// What a strict walk finds in [start, start + length): how many whole structures (a header of
// at least 4 bytes within the buffer and a string set closed by two NULs within it) come before
// the first that is not whole, or before the end-of-table record (type 127, counted).
struct TableCheck {
  size_t structures = 0;
  bool damaged = false;       // a structure is cut short or malformed
  bool end_of_table = false;  // the walk met type 127
};
TableCheck CheckTable(const uint8_t* start, size_t length);

// The chassis type's name (DSP0134 7.4.1), of the byte without its lock bit; nullptr for a
// value the standard does not name.
const char* ChassisTypeName(uint8_t type);

// The system UUID as text, the way dmidecode prints it: "Not Present" when every byte is 0xFF,
// "Not Settable" when every byte is 0, else 8-4-4-4-12 hexadecimal digits, the first three
// fields little-endian from SMBIOS 2.6 on (and when the version is unknown, 0.0), big-endian
// before.
std::string UuidText(const std::array<uint8_t, 16>& bytes, uint8_t major, uint8_t minor);

}  // namespace velhal::smbios
