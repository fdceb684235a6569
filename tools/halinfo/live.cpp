#include "platform/win32.h"

#include "tools/halinfo/live.h"

#include <objbase.h>

#include <atomic>
#include <exception>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "hal/hal_batch.h"
#include "tools/halinfo/exit_codes.h"
#include "tools/halinfo/node.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

enum class Shown { kAlways, kWithDevicesOption };


enum class Source { kWmi, kOther };

struct Section {
  Node (*build)();
  Source source = Source::kOther;
  Shown shown = Shown::kAlways;
};

// The report, in order: a new section is one row. The sections that ask WMI are built on one
// thread, in one batch: one connection per namespace, each query asked once.
constexpr Section kSections[] = {
    {LibrarySection},
    {OperatingSystemSection},
    {ProcessorSection, Source::kWmi},
    {MemorySection, Source::kWmi},
    {DisksSection, Source::kWmi},
    {BatterySection},
    {GraphicsSection, Source::kWmi},
    {MonitorsSection, Source::kWmi},
    {DisplaySection},
    {FirmwareSection, Source::kWmi},
    {SensorsSection, Source::kWmi},
    {TouchScreenSection},
    {NetworkSection},
    {AudioDevicesSection},
    {BluetoothSection},
    {BiometricSection},
    {KeyboardSection},
    {UsbSection},
    {DevicesSection, Source::kOther, Shown::kWithDevicesOption},  // long: printed on request
    {DriversSection, Source::kOther, Shown::kWithDevicesOption},
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

namespace {

// The report's sections built on three threads: this one builds the sections that ask WMI, in
// order, then helps with the rest; two more threads take the rest, each the next not yet taken.
// The other sections wait on the system (device walks, DXGI, the network list) and overlap;
// on two cores the report takes about two thirds of its time on one thread. Each thread works
// in a batch of its own. Where a thread cannot start, the others report without it.
class ReportBuilder {
 public:
  explicit ReportBuilder(bool with_devices) {
    for (const Section& section : kSections) {
      if (section.shown == Shown::kWithDevicesOption && !with_devices) continue;
      (section.source == Source::kWmi ? asking_wmi_ : others_).push_back(sections_.size());
      sections_.push_back(section.build);
    }
    built_.resize(sections_.size());
    failures_.resize(sections_.size());
  }

  void Build() {
    std::vector<std::thread> helpers;
    try {
      for (int helper = 0; helper < kHelperThreads; ++helper) {
        helpers.emplace_back([this] {
          const ReportApartment apartment;
          const HalBatch batch;
          BuildOthers();
        });
      }
    } catch (const std::system_error&) {
    }
    {
      const HalBatch batch;
      for (const size_t index : asking_wmi_) BuildOne(index);
      BuildOthers();
    }
    for (std::thread& helper : helpers) helper.join();
  }

  // The sections in report order; a section that cannot be made is left out and said.
  std::vector<Node> Take(int& failed) {
    std::vector<Node> sections;
    for (size_t index = 0; index < sections_.size(); ++index) {
      if (built_[index]) {
        sections.push_back(std::move(*built_[index]));
        continue;
      }
      PrintError("halinfo: section " + std::to_string(index + 1) + " of the report failed: " +
                 failures_[index] + "\n");
      ++failed;
    }
    return sections;
  }

 private:
  static constexpr int kHelperThreads = 2;

  void BuildOthers() {
    for (size_t taken = next_other_++; taken < others_.size(); taken = next_other_++) {
      BuildOne(others_[taken]);
    }
  }

  void BuildOne(size_t index) {
    try {
      built_[index] = sections_[index]();
    } catch (const std::exception& error) {
      failures_[index] = error.what();
    }
  }

  std::vector<SectionBuilder> sections_;
  std::vector<size_t> asking_wmi_, others_;
  std::atomic<size_t> next_other_{0};
  std::vector<std::optional<Node>> built_;
  std::vector<std::string> failures_;
};

}  // namespace

int ReportRunningMachine(const Options& options) {
  if (LoadVelHal() == nullptr) {
    const DWORD error = ::GetLastError();
    PrintError("halinfo: cannot load VelHal.dll: " + SystemMessage(error) + " (error " +
               std::to_string(error) + ").\nKeep VelHal.dll in the folder of halinfo.exe.\n");
    return kExitLibraryMissing;
  }
  // This thread enters its apartment before the helpers start: under Wine that makes the
  // desktop, which two threads must not make at once (one inside the loader's lock hangs both).
  const ReportApartment apartment;
  ReportBuilder report(options.devices);
  report.Build();
  int failed = 0;
  const std::vector<Node> sections = report.Take(failed);
  Print(options.json ? JsonDocument(sections) : PlainText(sections));
  return failed == 0 ? kExitSuccess : kExitSectionFailed;
}

}  // namespace halinfo
