#include "hal/processor_module.h"

#include <atomic>
#include <cctype>
#include <cstring>
#include <optional>
#include <string>

#include "hal/hal_api.h"
#include "hal/query_output.h"
#include "platform/boundary.h"
#include "platform/os/system_info.h"
#include "platform/read_reg.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace velhal::hal {
namespace {

using wmi::kCimV2;
const wchar_t kProcessorKey[] = L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";

enum CpuType : uint32_t { kUnknown = 0, kIntel = 1, kAmd = 2, kSnapdragon = 3 };

// The last detected type, process-wide. Atomic so that detections on two threads do not race;
// the value itself is whichever detection finished last.
std::atomic<uint32_t> g_cpu_type{kUnknown};

// Registry first; the WMI fallback's property name is passed as the system has always passed
// it, so for the vendor it finds nothing unless the engine answers that name.
std::wstring RegistryOrWmi(const wchar_t* value_name, const wchar_t* wql, const wchar_t* property) {
  std::wstring text;
  if (ReadReg::ReadLocalMachineRegRZ(kProcessorKey, value_name, text) && !text.empty()) {
    return text;
  }
  text.clear();
  WmiQueryFirstString(kCimV2, wql, property, text);
  return text;
}

std::wstring VendorText() {
  return RegistryOrWmi(L"VendorIdentifier", L"SELECT Manufacturer FROM Win32_Processor",
                       L"REG_NAME_CPU_VENDOR");
}

std::wstring NameText() {
  return RegistryOrWmi(L"ProcessorNameString", L"SELECT Name FROM Win32_Processor", L"Name");
}

// WMI's cache levels: 3 primary, 4 secondary, 5 tertiary.
std::wstring CacheQuery(const wchar_t* property, uint32_t info_class, uint32_t first_class) {
  const wchar_t level = static_cast<wchar_t>(L'3' + (info_class - first_class));
  return std::wstring(L"SELECT ") + property + L" FROM Win32_CacheMemory WHERE Level='" + level +
         L"'";
}

// The texts keep their trailing blanks: callers compare them as they stand.
std::wstring AssociativityText(uint32_t info_class) {
  unsigned int value = 0;  // stays 0 when the read fails
  WmiQueryFirstUInt(kCimV2, CacheQuery(L"Associativity", info_class, HAL_CPU_INFO_L1_ASSOCIATIVITY),
                    L"Associativity", &value);
  switch (value) {
    case 3: return L"Direct Mapped ";
    case 4: return L"2-way";
    case 5: return L"Fully Associative ";
    case 6: return L"4-way";
    case 7: return L"8-way";
    case 8: return L"16-way";
    default: return L"Unknown ";
  }
}

std::wstring Text(int32_t info_class) {
  switch (info_class) {
    case HAL_CPU_INFO_VENDOR: return VendorText();
    case HAL_CPU_INFO_NAME: return NameText();
    case HAL_CPU_INFO_L1_ASSOCIATIVITY:
    case HAL_CPU_INFO_L2_ASSOCIATIVITY:
    case HAL_CPU_INFO_L3_ASSOCIATIVITY: return AssociativityText(static_cast<uint32_t>(info_class));
    default: return {};
  }
}

// A reading of 0 or 0xFFFFFFFF is no reading (so an idle processor's load of 0 fails).
std::optional<uint32_t> WmiNumber(const std::wstring& wql, const wchar_t* property) {
  unsigned int value = 0;
  WmiQueryFirstUInt(kCimV2, wql, property, &value);
  if (value == 0 || value == 0xFFFFFFFF) return std::nullopt;
  return value;
}

std::optional<uint32_t> ProcessorNumber(const wchar_t* property) {
  return WmiNumber(std::wstring(L"SELECT ") + property + L" FROM Win32_Processor", property);
}

// Succeeds with 0 on an Intel or AMD processor that reports extended leaf 0x80000008. The
// highest leaf is compared as a signed number, as it always has been.
std::optional<uint32_t> ExtendedProbe() {
  const uint32_t type = g_cpu_type.load();
  if (type != kIntel && type != kAmd) return std::nullopt;
  int registers[4] = {};
  os::system_info().Cpuid(registers, static_cast<int>(0x80000000));
  if (registers[0] < static_cast<int>(0x80000008)) return std::nullopt;
  os::system_info().Cpuid(registers, static_cast<int>(0x80000008));
  return 0;
}

std::optional<uint32_t> Number(uint32_t info_class) {
  switch (info_class) {
    case HAL_CPU_INFO_EXTENDED_LEAF_PROBE: return ExtendedProbe();
    case HAL_CPU_INFO_CURRENT_CLOCK: return ProcessorNumber(L"CurrentClockSpeed");
    case HAL_CPU_INFO_EXTERNAL_CLOCK: return ProcessorNumber(L"ExtClock");
    case HAL_CPU_INFO_MAX_CLOCK: return ProcessorNumber(L"MaxClockSpeed");
    case HAL_CPU_INFO_CORES: return ProcessorNumber(L"NumberOfCores");
    case HAL_CPU_INFO_LOGICAL_PROCESSORS: return ProcessorNumber(L"NumberOfLogicalProcessors");
    case HAL_CPU_INFO_L1_CACHE_SIZE:
    case HAL_CPU_INFO_L2_CACHE_SIZE:
    case HAL_CPU_INFO_L3_CACHE_SIZE:
      return WmiNumber(CacheQuery(L"InstalledSize", info_class, HAL_CPU_INFO_L1_CACHE_SIZE),
                       L"InstalledSize");
    case HAL_CPU_INFO_LOAD_PERCENTAGE: return ProcessorNumber(L"LoadPercentage");
    case HAL_CPU_INFO_TYPE: return DetectCpuType();
    default: return std::nullopt;
  }
}

bool StartsWith(const std::wstring& text, const wchar_t* prefix) {
  return text.rfind(prefix, 0) == 0;
}

uint32_t InitType(void* /*list*/) { return CpuInit(); }

uint32_t QueryDroppingEntry(void* /*entry*/, uint32_t info_class, void* buffer,
                            uint32_t buffer_size, uint32_t* returned) {
  return CpuQueryInformation(info_class, buffer, buffer_size, returned);
}

}  // namespace

uint32_t DetectCpuType() {
  std::wstring name = NameText();
  for (wchar_t& c : name) {
    if (c < 0x80) c = static_cast<wchar_t>(std::tolower(static_cast<int>(c)));  // ASCII only
  }
  // Only "intel(r)" may stand anywhere; the other names count at the start only, so a maker
  // word before "snapdragon" gives no type. Callers rely on these exact position rules.
  uint32_t type = kUnknown;
  if (StartsWith(name, L"intel") || name.find(L"intel(r)") != std::wstring::npos) {
    type = kIntel;
  } else if (StartsWith(name, L"amd")) {
    type = kAmd;
  } else if (StartsWith(name, L"snapdragon")) {
    type = kSnapdragon;
  }
  g_cpu_type.store(type);
  return type;
}

const ClassModule& ProcessorModule() {
  static constexpr ClassModule kModule{
      .init_makes_list = false, .init = InitType, .query = QueryDroppingEntry};
  return kModule;
}

}  // namespace velhal::hal

uint32_t CpuInit() {
  return velhal::CallGuarded(1u, [] {
    velhal::hal::DetectCpuType();
    return 1u;
  });
}

uint32_t CpuQueryInformation(uint32_t infoClass, void* buffer, uint32_t bufferSize,
                             uint32_t* returnedSize) {
  using namespace velhal::hal;
  return velhal::CallGuarded(0u, [&]() -> uint32_t {
    if (buffer == nullptr || returnedSize == nullptr) return 0;
    // Classes below 5, compared as signed numbers, are texts.
    if (static_cast<int32_t>(infoClass) < 5) {
      return WriteText(buffer, bufferSize, returnedSize, Text(static_cast<int32_t>(infoClass)),
                       TextForm::kAnsiWithNul, EmptyText::kFails);
    }
    const std::optional<uint32_t> value = Number(infoClass);
    if (!value || bufferSize < 4) return 0;
    std::memcpy(buffer, &*value, sizeof(uint32_t));  // returnedSize is not written for numbers
    return 1;
  });
}
