#include "platform/win32.h"

#include "tools/halinfo/live.h"

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "tools/halinfo/devices_section.h"
#include "tools/halinfo/disks_section.h"
#include "tools/halinfo/header_section.h"
#include "tools/halinfo/machine_sections.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/smbios_report.h"

namespace halinfo {
namespace {

constexpr int kExitLibraryMissing = 3;

// VelHal.dll is bound lazily (delay-load), so its absence is reported here in plain words
// instead of by the loader before main runs.
HMODULE LoadVelHal() {
  return ::LoadLibraryExW(L"VelHal.dll", nullptr,
                          LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

}  // namespace

int ReportRunningMachine(const Options& options) {
  const HMODULE library = LoadVelHal();
  if (library == nullptr) {
    const DWORD error = ::GetLastError();
    PrintError("halinfo: cannot load VelHal.dll: " + SystemMessage(error) + " (error " +
               std::to_string(error) + ").\nKeep VelHal.dll in the folder of halinfo.exe.\n");
    return kExitLibraryMissing;
  }

  const HeaderSection header = HeaderSection::Collect(library);
  const ProcessorSection processor = ProcessorSection::Collect();
  const MemorySection memory = MemorySection::Collect();
  const DisksSection disks = DisksSection::Collect();
  const BatterySection battery = BatterySection::Collect();
  const SmbiosReport firmware = SmbiosReport::FromRunningMachine();
  std::optional<DevicesSection> devices;
  if (options.devices) devices = DevicesSection::Collect();

  if (options.json) {
    nlohmann::ordered_json document = nlohmann::ordered_json::object();
    header.AddTo(document);
    processor.AddTo(document);
    memory.AddTo(document);
    disks.AddTo(document);
    battery.AddTo(document);
    firmware.AddTo(document);
    if (devices) devices->AddTo(document);
    Print(document.dump(2) + "\n");
  } else {
    Print(header.ToText());
    Print(processor.ToText());
    Print(memory.ToText());
    Print(disks.ToText());
    Print(battery.ToText());
    Print(firmware.ToText());
    if (devices) Print(devices->ToText());
  }
  return 0;
}

}  // namespace halinfo
