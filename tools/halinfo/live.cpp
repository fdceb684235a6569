#include "platform/win32.h"

#include "tools/halinfo/live.h"

#include <objbase.h>

#include <exception>
#include <string>
#include <vector>

#include "hal/hal_batch.h"
#include "tools/halinfo/exit_codes.h"
#include "tools/halinfo/node.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

enum class Shown { kAlways, kWithDevicesOption };

struct Section {
  Node (*build)();
  Shown shown = Shown::kAlways;
};

// The report, in order: a new section is one row.
constexpr Section kSections[] = {
    {LibrarySection},
    {OperatingSystemSection},
    {ProcessorSection},
    {MemorySection},
    {DisksSection},
    {BatterySection},
    {GraphicsSection},
    {MonitorsSection},
    {DisplaySection},
    {FirmwareSection},
    {SensorsSection},
    {TouchScreenSection},
    {NetworkSection},
    {AudioDevicesSection},
    {BluetoothSection},
    {BiometricSection},
    {KeyboardSection},
    {UsbSection},
    {DevicesSection, Shown::kWithDevicesOption},  // long: printed on request
    {DriversSection, Shown::kWithDevicesOption},
};

}  // namespace

// VelHal.dll is bound lazily (delay-load), so its absence is reported here in plain words
// instead of by the loader before main runs.
HMODULE LoadVelHal() {
  return ::LoadLibraryExW(L"VelHal.dll", nullptr,
                          LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

ReportApartment::ReportApartment()
    : initialised_(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}

ReportApartment::~ReportApartment() {
  if (initialised_) ::CoUninitialize();
}

std::vector<SectionBuilder> ReportSections(bool with_devices) {
  std::vector<SectionBuilder> builders;
  for (const Section& section : kSections) {
    if (section.shown == Shown::kAlways || with_devices) builders.push_back(section.build);
  }
  return builders;
}

int ReportRunningMachine(const Options& options) {
  if (LoadVelHal() == nullptr) {
    const DWORD error = ::GetLastError();
    PrintError("halinfo: cannot load VelHal.dll: " + SystemMessage(error) + " (error " +
               std::to_string(error) + ").\nKeep VelHal.dll in the folder of halinfo.exe.\n");
    return kExitLibraryMissing;
  }
  // One batch for the whole inventory: one WMI connection per namespace, each query asked once.
  const ReportApartment apartment;
  const HalBatch batch;
  std::vector<Node> sections;
  int failed = 0;
  for (const SectionBuilder build : ReportSections(options.devices)) {
    // A section that cannot be made is left out and said; the rest of the report still prints.
    try {
      sections.push_back(build());
    } catch (const std::exception& error) {
      PrintError(std::string("halinfo: section ") + std::to_string(sections.size() + failed + 1) +
                 " of the report failed: " + error.what() + "\n");
      ++failed;
    }
  }
  Print(options.json ? JsonDocument(sections) : PlainText(sections));
  return failed == 0 ? kExitSuccess : kExitSectionFailed;
}

}  // namespace halinfo
