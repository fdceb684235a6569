#include "platform/win32.h"

#include "firmware/smbios_reader.h"

#include <memory>
#include <new>

#include "core/identity.h"
#include "firmware/config_files.h"
#include "platform/diagnostics.h"
#include "platform/os/firmware_table.h"
#include "platform/string_conversion.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace velhal::firmware {
namespace {

constexpr DWORD kRawSmbiosProvider = 0x52534D42;  // 'RSMB'
constexpr uint64_t kMaxWmiBytes = 0xFFFFFFFF;

void NoteOemCounts(const smbios::Fields& fields) {
  for (const uint8_t count : fields.oem_string_counts) {
    WriteDiagnostic("biosType11 stringCount ", static_cast<int>(count),
                    "SmBiosHelper::ProcOemString");
  }
}

// Only where the firmware-table function does not exist: no header, so no versions.
void ReadFromWmi(SmBiosSnapshot& snapshot) {
  VelSDK::WmiQuery wmi(wmi::kRootWmi);
  std::vector<unsigned char> bytes;
  if (wmi.ExcuteQuery(L"SELECT SMBiosData FROM MSSmBios_RawSMBiosTables", L"SMBiosData", bytes,
                      false) != 0 ||
      bytes.empty() || bytes.size() >= kMaxWmiBytes) {
    return;
  }
  smbios::Walk(bytes.data(), bytes.size(), snapshot.fields);
}

}  // namespace

SmBiosSnapshot ReadSmBios() {
  SmBiosSnapshot snapshot;
  os::FirmwareTable& firmware = os::firmware_table();
  if (!firmware.IsAvailable()) {
    ReadFromWmi(snapshot);
    NoteOemCounts(snapshot.fields);
    return snapshot;
  }
  const UINT size = firmware.GetSystemFirmwareTable(kRawSmbiosProvider, 0, nullptr, 0);
  if (size == 0) return snapshot;
  const std::unique_ptr<uint8_t[]> table(new (std::nothrow) uint8_t[size]);
  if (!table) return snapshot;
  if (firmware.GetSystemFirmwareTable(kRawSmbiosProvider, 0, table.get(), size) != size) {
    // No WMI fallback here: that serves only systems without the function.
    WriteDiagnostic("getSystemFirmwareTable error", "SmBiosHelper::Init");
    return snapshot;
  }
  const std::optional<smbios::RawHeader> header = smbios::ReadRawHeader(table.get(), size);
  if (!header) return snapshot;
  snapshot.major = header->major;
  snapshot.minor = header->minor;
  snapshot.dmi_revision = header->dmi_revision;
  // The declared length is trusted only as far as the bytes really returned.
  const size_t length = header->length < size - 8 ? header->length : size - 8;
  smbios::Walk(table.get() + 8, length, snapshot.fields);
  NoteOemCounts(snapshot.fields);
  return snapshot;
}

std::vector<std::string> ReadUnsupportedSkus() {
  const std::optional<std::wstring> path = ProductAdapterPath(L"WifiBTConfig.xml");
  if (!path || !FileExists(*path)) return {};
  const ChildText unsupport = ReadFirstChildText(*path, L"unsupport");
  if (unsupport.code != kConfigLoaded || !unsupport.text) return {};
  return identity::SplitList(WideToAnsi(*unsupport.text));
}

}  // namespace velhal::firmware
