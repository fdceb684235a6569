// DMTF DSP0134 structure walk and identity records. The walk and the length tests follow the
// library's established reading of the table (see each parser); where they "trust the firmware"
// (fixed offsets past a short record), bytes beyond the buffer read as absent.
#include "core/smbios.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace velhal::smbios {
namespace {

using enum Field;

constexpr uint8_t kBiosInformation = 0;
constexpr uint8_t kSystemInformation = 1;
constexpr uint8_t kBaseboardInformation = 2;
constexpr uint8_t kSystemEnclosure = 3;
constexpr uint8_t kOemStrings = 11;
constexpr int kMaxOemStrings = 10;
constexpr int kStoredOemNumbers[] = {10, 7, 6, 4, 3, 2, 1};  // 5, 8 and 9 are never kept

// One structure of the table, with bounded access to its bytes and strings.
class Record {
 public:
  Record(const uint8_t* at, const uint8_t* buffer_end) : at_(at), end_(buffer_end) {}

  uint8_t length() const { return at_[1]; }  // the walk guarantees bytes 0 and 1 exist

  std::optional<uint8_t> Byte(size_t offset) const {
    if (offset >= static_cast<size_t>(end_ - at_)) return std::nullopt;
    return at_[offset];
  }

  // The string whose number stands at offset; a missing byte reads as number 0.
  std::string String(size_t offset) const { return Numbered(Byte(offset).value_or(0)); }

  // String number n (1-based) of the set: 0, a number past the set's end or a string that runs
  // off the buffer all give the empty string, never the next record's text.
  std::string Numbered(int number) const {
    if (number <= 0) return {};
    const uint8_t* p = at_ + length();
    if (p >= end_ || *p == 0) return {};  // an empty string set
    for (int skip = number - 1; skip > 0; --skip) {
      while (p < end_ && *p != 0) ++p;
      if (p >= end_) return {};
      ++p;
      if (p >= end_ || *p == 0) return {};  // the set ended before the number
    }
    const void* nul = std::memchr(p, 0, static_cast<size_t>(end_ - p));
    if (nul == nullptr) return {};
    return std::string(reinterpret_cast<const char*>(p), static_cast<const uint8_t*>(nul) - p);
  }

 private:
  const uint8_t* at_;
  const uint8_t* end_;
};

// "%d.%02d" when the minor number is padded, else "%d.%d".
std::string FormatVersion(std::optional<uint8_t> major, std::optional<uint8_t> minor,
                          bool pad_minor) {
  if (!major || !minor) return {};
  char text[16] = {};
  if (pad_minor) {
    std::snprintf(text, sizeof(text), "%d.%02d", int{*major}, int{*minor});
  } else {
    std::snprintf(text, sizeof(text), "%d.%d", int{*major}, int{*minor});
  }
  return text;
}

void ParseBios(const Record& r, Fields& f) {
  f[kBiosVendor] = r.String(0x04);
  f[kBiosVersion] = r.String(0x05);
  f[kBiosReleaseDate] = r.String(0x08);
  // Greater than 0x14, not at least 0x18: a 21-byte record still has 0x14-0x17 read.
  if (r.length() > 0x14) {
    f[kBiosSystemVersion] = FormatVersion(r.Byte(0x14), r.Byte(0x15), true);
    f[kBiosEcVersion] = FormatVersion(r.Byte(0x16), r.Byte(0x17), false);
  }
}

void ParseSystem(const Record& r, Fields& f) {
  f[kSystemManufacturer] = r.String(0x04);
  f[kSystemProductName] = r.String(0x05);
  f[kSystemVersion] = r.String(0x06);
  f[kSystemSerialNumber] = r.String(0x07);
  if (r.length() > 8 && r.Byte(0x08 + 15)) {
    for (size_t i = 0; i < 16; ++i) f.system_uuid[i] = *r.Byte(0x08 + i);
  }
  if (r.length() > 0x19) {
    f[kSystemSku] = r.String(0x19);
    f[kSystemFamily] = r.String(0x1A);
  }
}

void ParseBaseboard(const Record& r, Fields& f) {
  f[kBoardManufacturer] = r.String(0x04);
  f[kBoardProduct] = r.String(0x05);
  f[kBoardVersion] = r.String(0x06);
  f[kBoardSerialNumber] = r.String(0x07);
  f[kBoardAssetTag] = r.String(0x08);
  if (r.length() > 8) f[kBoardLocation] = r.String(0x0A);
}

void ParseChassis(const Record& r, Fields& f) {
  f[kChassisManufacturer] = r.String(0x04);
  f.chassis_type = r.Byte(0x05).value_or(0);
  f[kChassisVersion] = r.String(0x06);
  f[kChassisSerialNumber] = r.String(0x07);
  f[kChassisAssetTag] = r.String(0x08);
  // Always offset 0x15, whatever the contained-element fields before it say and without a
  // length test: identity rules downstream were written against this reading.
  f[kChassisSku] = r.String(0x15);
}

void ParseOemStrings(const Record& r, Fields& f) {
  const uint8_t count = r.Byte(0x04).value_or(0);
  f.oem_string_counts.push_back(count);
  const int stored = count < kMaxOemStrings ? count : kMaxOemStrings;
  for (const int number : kStoredOemNumbers) {
    if (number > stored) continue;
    std::string text = r.Numbered(number);
    if (number == 10 && text == "0000000000000000") text.clear();
    f.oem_strings[number] = std::move(text);
  }
}

}  // namespace

void Walk(const uint8_t* start, size_t length, Fields& fields) {
  if (start == nullptr || length == 0) return;
  const uint8_t* const buffer_end = start + length;
  const uint8_t* const end_mark = start + length - 1;
  const uint8_t* at = start;
  // The walk runs to the end of the buffer: an end-of-table record (type 127) does not stop it.
  while (at < end_mark) {
    const Record record(at, buffer_end);
    switch (at[0]) {
      case kBiosInformation: ParseBios(record, fields); break;
      case kSystemInformation: ParseSystem(record, fields); break;
      case kBaseboardInformation: ParseBaseboard(record, fields); break;
      case kSystemEnclosure: ParseChassis(record, fields); break;
      case kOemStrings: ParseOemStrings(record, fields); break;
      default: break;
    }
    const uint8_t* strings = at + record.length();
    if (strings < end_mark) {
      const uint8_t* p = strings;
      while (p < end_mark && !(p[0] == 0 && p[1] == 0)) ++p;
      at = p + 2;
    } else {
      at = strings + 2;
    }
  }
}

std::optional<RawHeader> ReadRawHeader(const uint8_t* data, size_t size) {
  if (data == nullptr || size < 8) return std::nullopt;
  RawHeader header;
  header.major = data[1];
  header.minor = data[2];
  header.dmi_revision = data[3];
  header.length = static_cast<uint32_t>(data[4]) | static_cast<uint32_t>(data[5]) << 8 |
                  static_cast<uint32_t>(data[6]) << 16 | static_cast<uint32_t>(data[7]) << 24;
  return header;
}

std::optional<SavedTable> DetectSavedTable(const uint8_t* data, size_t size) {
  if (data == nullptr || size == 0) return std::nullopt;
  const auto u16 = [&](size_t at) { return static_cast<uint32_t>(data[at] | data[at + 1] << 8); };
  const auto u32 = [&](size_t at) { return u16(at) | u16(at + 2) << 16; };
  SavedTable table;
  // dmidecode --dump-bin: the entry point at 0, its table address rewritten to where the
  // structures now stand in the file.
  if (size >= 24 && std::memcmp(data, "_SM3_", 5) == 0) {
    const uint64_t address = u32(0x10) | static_cast<uint64_t>(u32(0x14)) << 32;
    if (address < size) {
      table = {SavedFormat::kDmidecodeDump, data[7], data[8], data[9],
               static_cast<size_t>(address), size - static_cast<size_t>(address)};
      const uint64_t maximum = u32(0x0C);
      if (maximum < table.length) table.length = static_cast<size_t>(maximum);
      return table;  // a maximum, not a length: a shorter table is not cut
    }
  }
  if (size >= 31 && std::memcmp(data, "_SM_", 4) == 0 && std::memcmp(data + 0x10, "_DMI_", 5) == 0) {
    const uint32_t address = u32(0x18);
    if (address < size) {
      const size_t length = std::min<size_t>(u16(0x16), size - address);
      return SavedTable{SavedFormat::kDmidecodeDump, data[6], data[7], 0, address, length,
                        length < u16(0x16)};
    }
  }
  // A raw firmware table: calling-method flag 0 or 1, then the length of exactly what follows,
  // or of more when the file was cut short (a version of 2 or 3 tells such a file from bytes
  // that only happen to start like one).
  if (const auto header = ReadRawHeader(data, size)) {
    if (data[0] <= 1 && header->length == size - 8) {
      return SavedTable{SavedFormat::kRawFirmwareTable, header->major, header->minor,
                        header->dmi_revision, 8, header->length};
    }
    if (data[0] <= 1 && header->length > size - 8 && (header->major == 2 || header->major == 3)) {
      return SavedTable{SavedFormat::kRawFirmwareTable, header->major, header->minor,
                        header->dmi_revision, 8, size - 8, true};
    }
  }
  return SavedTable{SavedFormat::kBareTable, 0, 0, 0, 0, size};
}

TableCheck CheckTable(const uint8_t* start, size_t length) {
  TableCheck check;
  if (start == nullptr) return check;
  const uint8_t* const end = start + length;
  for (const uint8_t* at = start; at < end;) {
    const size_t left = static_cast<size_t>(end - at);
    if (left < 4 || at[1] < 4 || at[1] > left) {
      check.damaged = true;
      break;
    }
    const uint8_t* p = at + at[1];
    while (p + 1 < end && !(p[0] == 0 && p[1] == 0)) ++p;
    if (p + 1 >= end) {
      check.damaged = true;
      break;
    }
    ++check.structures;
    if (at[0] == 127) {
      check.end_of_table = true;
      break;
    }
    at = p + 2;
  }
  return check;
}

const char* ChassisTypeName(uint8_t type) {
  static constexpr const char* kNames[] = {
      nullptr, "Other", "Unknown", "Desktop", "Low Profile Desktop", "Pizza Box", "Mini Tower",
      "Tower", "Portable", "Laptop", "Notebook", "Hand Held", "Docking Station", "All In One",
      "Sub Notebook", "Space-saving", "Lunch Box", "Main Server Chassis", "Expansion Chassis",
      "Sub Chassis", "Bus Expansion Chassis", "Peripheral Chassis", "RAID Chassis",
      "Rack Mount Chassis", "Sealed-case PC", "Multi-system", "CompactPCI", "AdvancedTCA",
      "Blade", "Blade Enclosing", "Tablet", "Convertible", "Detachable", "IoT Gateway",
      "Embedded PC", "Mini PC", "Stick PC"};
  const uint8_t value = type & 0x7F;
  return value < std::size(kNames) ? kNames[value] : nullptr;
}

std::string UuidText(const std::array<uint8_t, 16>& bytes, uint8_t major, uint8_t minor) {
  if (std::all_of(bytes.begin(), bytes.end(), [](uint8_t b) { return b == 0xFF; })) {
    return "Not Present";
  }
  if (std::all_of(bytes.begin(), bytes.end(), [](uint8_t b) { return b == 0; })) {
    return "Not Settable";
  }
  const bool little_endian = major == 0 || major > 2 || (major == 2 && minor >= 6);
  static constexpr int kLittleOrder[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (int i = 0; i < 16; ++i) {
    const uint8_t b = bytes[little_endian ? kLittleOrder[i] : i];
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += kDigits[b >> 4];
    text += kDigits[b & 0xF];
  }
  return text;
}

}  // namespace velhal::smbios
