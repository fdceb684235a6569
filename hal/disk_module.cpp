#include "platform/win32.h"

#include "hal/disk_module.h"

#include <winioctl.h>

#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "hal/query_output.h"
#include "platform/os/device_io.h"
#include "platform/wmi_engine.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace velhal::hal {
namespace {

using os::device_io;

using wmi::kCimV2;
using wmi::kStorage;
constexpr DWORD kQueryOnly = 0;
constexpr DWORD kShareReadWrite = FILE_SHARE_READ | FILE_SHARE_WRITE;
constexpr uint32_t kLastInfoClass = HAL_DISK_INFO_SYSTEM_DISK_INDEX;

std::wstring IndexText(const HalDeviceEntry& entry) { return std::to_wstring(entry.index); }

// The number of rows "SELECT Name FROM Win32_DiskDrive" returns; 0 when the query fails.
uint64_t CountDisks() {
  std::vector<std::wstring> names;
  VelSDK::WmiQuery wmi(kCimV2);
  return wmi.ExcuteQuery(L"SELECT Name FROM Win32_DiskDrive", L"Name", names, false) == 0
             ? names.size()
             : 0;
}

uint32_t Init(void* list) { return MakeDeviceList(list, CountDisks()); }

uint32_t Open(HalDeviceEntry* entry) {
  if (entry == nullptr) return 0;
  const std::wstring path = L"\\\\.\\PHYSICALDRIVE" + std::to_wstring(entry->index);
  // Opening twice overwrites the slot without closing the earlier handle, as hosts expect.
  const HANDLE handle = device_io().CreateFileW(path.c_str(), kQueryOnly, kShareReadWrite, nullptr,
                                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  entry->handle = handle;
  return handle != INVALID_HANDLE_VALUE ? 1 : 0;
}

uint32_t Close(HalDeviceEntry* entry) {
  if (entry == nullptr || entry->handle == nullptr) return 0;
  const BOOL closed = device_io().CloseHandle(entry->handle);
  entry->handle = nullptr;
  return static_cast<uint32_t>(closed);
}

// Moves the file pointer to *offset. The high half of *offset receives the high half of the new
// position, as SetFilePointer reports it; a position whose low half is 0xFFFFFFFF is refused
// along with real failures (callers know this limit).
bool Seek(HANDLE handle, int64_t* offset) {
  uint32_t low = 0;
  LONG high = 0;
  std::memcpy(&low, offset, sizeof(low));
  std::memcpy(&high, reinterpret_cast<const unsigned char*>(offset) + 4, sizeof(high));
  const DWORD result =
      device_io().SetFilePointer(handle, static_cast<LONG>(low), &high, FILE_BEGIN);
  std::memcpy(reinterpret_cast<unsigned char*>(offset) + 4, &high, sizeof(high));
  return result != INVALID_SET_FILE_POINTER;
}

uint32_t Read(HalDeviceEntry* entry, int64_t* offset, void* buffer, uint32_t length,
              uint32_t* bytes_read) {
  if (entry == nullptr || offset == nullptr || buffer == nullptr || bytes_read == nullptr ||
      entry->handle == nullptr) {
    return 0;
  }
  if (!Seek(entry->handle, offset)) return 0;
  DWORD read = 0;
  const BOOL ok = device_io().ReadFile(entry->handle, buffer, length, &read, nullptr);
  *bytes_read = read;
  return static_cast<uint32_t>(ok);
}

uint32_t Write(HalDeviceEntry* entry, int64_t* offset, const void* buffer, uint32_t length,
               uint32_t* bytes_written) {
  if (entry == nullptr || entry->handle == nullptr) return 0;
  // Without an OVERLAPPED, WriteFile stores the count through this pointer: a null one would
  // fault in the host's process.
  if (bytes_written == nullptr) return 0;
  if (offset != nullptr && !Seek(entry->handle, offset)) return 0;
  DWORD written = 0;
  const BOOL ok = device_io().WriteFile(entry->handle, buffer, length, &written, nullptr);
  *bytes_written = written;
  return static_cast<uint32_t>(ok);
}

// Cylinders x tracks x sectors x bytes in signed 64-bit arithmetic; 0 when a factor is below 1
// or a product would reach 2^63 - 1.
int64_t GeometryBytes(const DISK_GEOMETRY& geometry) {
  const int64_t factors[] = {geometry.Cylinders.QuadPart,
                             static_cast<int64_t>(geometry.TracksPerCylinder),
                             static_cast<int64_t>(geometry.SectorsPerTrack),
                             static_cast<int64_t>(geometry.BytesPerSector)};
  int64_t product = 1;
  for (const int64_t factor : factors) {
    if (factor < 1 || product > (INT64_MAX - 1) / factor) return 0;
    product *= factor;
  }
  return product;
}

uint32_t QueryGeometry(HalDeviceEntry* entry, uint32_t info_class, void* buffer,
                       uint32_t buffer_size, uint32_t* returned) {
  if (entry == nullptr || buffer == nullptr || returned == nullptr || buffer_size < 8 ||
      entry->handle == nullptr) {
    return 0;
  }
  DISK_GEOMETRY geometry{};
  DWORD bytes = 0;
  // Only a result of exactly TRUE counts.
  if (device_io().DeviceIoControl(entry->handle, IOCTL_DISK_GET_DRIVE_GEOMETRY, nullptr, 0,
                                  &geometry, sizeof(geometry), &bytes, nullptr) != TRUE) {
    return 0;
  }
  const uint64_t size = static_cast<uint64_t>(GeometryBytes(geometry));
  const uint64_t scaled = info_class == HAL_DISK_INFO_SIZE_MIB         ? size >> 20
                          : info_class == HAL_DISK_INFO_SIZE_DECIMAL_GB ? size / 1000000000
                                                             : size / 1000000;
  return WriteNumber(buffer, buffer_size, returned, scaled);
}

// Free MiB of the volumes whose device number is this disk's, walking the letters A to Z.
uint64_t FreeMiBOfVolumesOn(uint32_t disk) {
  uint64_t free_mib = 0;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    const std::string device = std::string("\\\\.\\") + letter + ":";
    UniqueFileHandle volume(device_io().CreateFileA(device.c_str(), kQueryOnly, kShareReadWrite,
                                                    nullptr, OPEN_EXISTING, 0, nullptr));
    if (!volume.IsValid()) continue;
    STORAGE_DEVICE_NUMBER number{};
    DWORD bytes = 0;
    const BOOL ok =
        device_io().DeviceIoControl(volume.Get(), IOCTL_STORAGE_GET_DEVICE_NUMBER, nullptr, 0,
                                    &number, sizeof(number), &bytes, nullptr);
    volume.Reset();
    if (!ok || number.DeviceType != FILE_DEVICE_DISK || number.DeviceNumber != disk) continue;
    const std::string root = std::string(1, letter) + ":";
    ULARGE_INTEGER available{}, total{}, total_free{};
    if (device_io().GetDiskFreeSpaceExA(root.c_str(), &available, &total, &total_free)) {
      free_mib += total_free.QuadPart >> 20;
    }
  }
  return free_mib;
}

uint32_t QueryFreeSecondForm(HalDeviceEntry* entry, void* buffer, uint32_t buffer_size,
                             uint32_t* returned) {
  if (entry == nullptr) return 0;
  // Walks first and checks the size after, zeroing a short buffer: callers that read the
  // 8 bytes as a floating-point slot rely on it.
  const uint64_t free_mib = FreeMiBOfVolumesOn(entry->index);
  if (buffer == nullptr || returned == nullptr) return 0;
  if (buffer_size < 8) {
    std::memset(buffer, 0, buffer_size);
    return 0;
  }
  return WriteNumber(buffer, buffer_size, returned, free_mib);
}

uint32_t QueryTrim(HalDeviceEntry* entry, void* buffer, uint32_t buffer_size, uint32_t* returned) {
  if (entry == nullptr || buffer == nullptr || returned == nullptr || buffer_size < 4 ||
      entry->handle == nullptr || entry->handle == INVALID_HANDLE_VALUE) {
    return 0;
  }
  STORAGE_PROPERTY_QUERY query{};
  query.PropertyId = StorageDeviceTrimProperty;
  query.QueryType = PropertyStandardQuery;
  static_assert(StorageDeviceTrimProperty == 8 && sizeof(query) == 12);
  DEVICE_TRIM_DESCRIPTOR trim{};
  DWORD bytes = 0;
  if (!device_io().DeviceIoControl(entry->handle, IOCTL_STORAGE_QUERY_PROPERTY, &query,
                                   sizeof(query), &trim, sizeof(trim), &bytes, nullptr) ||
      bytes != sizeof(trim)) {
    return 0;
  }
  return WriteNumber(buffer, buffer_size, returned, uint32_t{trim.TrimEnabled == 1});
}

uint32_t QueryWmiText(HalDeviceEntry* entry, const wchar_t* select, const wchar_t* property,
                      void* buffer, uint32_t buffer_size, uint32_t* returned) {
  if (entry == nullptr) return 0;
  std::wstring value;
  if (!WmiQueryFirstString(kCimV2, select + IndexText(*entry) + L"'", property, value)) return 0;
  return WriteText(buffer, buffer_size, returned, value, TextForm::kUtf16, EmptyText::kIsAnswer);
}

// The number between the first '#' and the first ',' of a partition reference such as
// ...Win32_DiskPartition.DeviceID="Disk #1, Partition #0"; nullopt when there is none.
std::optional<uint32_t> DiskNumberOfPartition(const std::wstring& antecedent) {
  const size_t hash = antecedent.find(L'#');
  const size_t comma = antecedent.find(L',');
  if (hash == std::wstring::npos || comma == std::wstring::npos || comma < hash + 2) {
    return std::nullopt;
  }
  try {
    return static_cast<uint32_t>(std::stoul(antecedent.substr(hash + 1, comma - hash - 1)));
  } catch (const std::invalid_argument&) {
    return std::nullopt;
  } catch (const std::out_of_range&) {
    return std::nullopt;
  }
}

// The disk that holds the volume labelled "Windows". Without such a volume the caption stays
// empty, which every Dependent text contains, so the first partition's disk answers: callers
// rely on it, as most system volumes carry no such label.
std::optional<uint32_t> SystemDiskIndex() {
  const wmi::SessionScope session;  // one connection serves the three queries
  std::wstring caption;
  WmiQueryFirstString(kCimV2, L"SELECT Caption FROM Win32_LogicalDisk WHERE VolumeName = 'Windows'",
                      L"Caption", caption);
  VelSDK::WmiQuery wmi(kCimV2);
  std::vector<std::wstring> dependents, antecedents;
  wmi.ExcuteQuery(L"SELECT Dependent FROM Win32_LogicalDiskToPartition", L"Dependent", dependents,
                  false);
  wmi.ExcuteQuery(L"SELECT Antecedent FROM Win32_LogicalDiskToPartition", L"Antecedent",
                  antecedents, false);
  for (size_t i = 0; i < dependents.size() && i < antecedents.size(); ++i) {
    if (dependents[i].find(caption) != std::wstring::npos) {
      return DiskNumberOfPartition(antecedents[i]);
    }
  }
  return std::nullopt;
}

uint32_t Query(void* raw_entry, uint32_t info_class, void* buffer, uint32_t buffer_size,
               uint32_t* returned) {
  if (info_class > kLastInfoClass) return 0;
  auto* entry = static_cast<HalDeviceEntry*>(raw_entry);
  switch (info_class) {
    // The WQL texts stand as hosts have always seen them queried: spaces around "=" only in
    // the media-type query, and the serial number asked for as "serialNumber" (WMI property
    // names are case-insensitive).
    case HAL_DISK_INFO_MEDIA_TYPE_TEXT:
      return QueryWmiText(entry, L"SELECT MediaType FROM Win32_DiskDrive WHERE Index = '",
                          L"MediaType", buffer, buffer_size, returned);
    case HAL_DISK_INFO_CAPTION:
      return QueryWmiText(entry, L"SELECT Caption FROM Win32_DiskDrive WHERE Index='",
                          L"Caption", buffer, buffer_size, returned);
    case HAL_DISK_INFO_SERIAL_NUMBER:
      return QueryWmiText(entry, L"SELECT SerialNumber FROM Win32_DiskDrive WHERE Index='",
                          L"serialNumber", buffer, buffer_size, returned);
    case HAL_DISK_INFO_FIRMWARE_REVISION:
      return QueryWmiText(entry, L"SELECT FirmwareRevision FROM Win32_DiskDrive WHERE Index='",
                          L"FirmwareRevision", buffer, buffer_size, returned);
    case HAL_DISK_INFO_SIZE_MIB:
    case HAL_DISK_INFO_SIZE_DECIMAL_GB:
    case HAL_DISK_INFO_SIZE_DECIMAL_MB:
      return QueryGeometry(entry, info_class, buffer, buffer_size, returned);
    case HAL_DISK_INFO_FREE_MIB:
      if (entry == nullptr || buffer == nullptr || returned == nullptr || buffer_size < 8) return 0;
      return WriteNumber(buffer, buffer_size, returned, FreeMiBOfVolumesOn(entry->index));
    case HAL_DISK_INFO_FREE_MIB_SECOND_FORM:
      return QueryFreeSecondForm(entry, buffer, buffer_size, returned);
    case HAL_DISK_INFO_COUNT: {
      if (buffer == nullptr || returned == nullptr || buffer_size < 4) return 0;
      const uint64_t count = CountDisks();
      if (count == 0) return 0;
      return WriteNumber(buffer, buffer_size, returned, static_cast<uint32_t>(count));
    }
    case HAL_DISK_INFO_TRIM_ENABLED:
      return QueryTrim(entry, buffer, buffer_size, returned);
    case HAL_DISK_INFO_STORAGE_MEDIA_TYPE: {
      if (entry == nullptr || buffer == nullptr || returned == nullptr || buffer_size < 4) return 0;
      unsigned int media_type = 0;
      if (!WmiQueryFirstUInt(kStorage,
                             L"SELECT * FROM MSFT_PhysicalDisk where DeviceID = '" +
                                 IndexText(*entry) + L"'",
                             L"MediaType", &media_type)) {
        return 0;
      }
      return WriteNumber(buffer, buffer_size, returned, uint32_t{media_type});
    }
    case HAL_DISK_INFO_SYSTEM_DISK_INDEX: {
      if (buffer == nullptr || returned == nullptr || buffer_size < 4) return 0;
      const std::optional<uint32_t> index = SystemDiskIndex();
      return index ? WriteNumber(buffer, buffer_size, returned, *index) : 0;
    }
    default:
      return 0;
  }
}

}  // namespace

const ClassModule& DiskModule() {
  static constexpr ClassModule kModule{.init = Init,
                                       .open = Open,
                                       .close = Close,
                                       .read = Read,
                                       .write = Write,
                                       .query = Query};
  return kModule;
}

}  // namespace velhal::hal
