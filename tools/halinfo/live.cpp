#include "platform/win32.h"

#include "tools/halinfo/live.h"

#include <objbase.h>

#include <atomic>
#include <exception>
#include <latch>
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


// How a section is scheduled. A thread builds its tasks in one batch, so what the sections of
// one task share is taken once.
enum class Task {
  kOwn,       // a task of its own, taken in report order
  kOwnLong,   // a task of its own, taken before the others as it takes longest
  kWmi,       // with the others that ask WMI most, on the report's own thread
  kGraphics,  // one task (the first) with the others reading the graphics adapters' inventory
};

struct Section {
  Node (*build)();
  Task task = Task::kOwn;
  Shown shown = Shown::kAlways;
};

// The report, in order: a new section is one row.
constexpr Section kSections[] = {
    {LibrarySection},
    {OperatingSystemSection},
    {ProcessorSection, Task::kWmi},
    {MemorySection, Task::kWmi},
    {DisksSection, Task::kWmi},
    {BatterySection},
    {GraphicsSection, Task::kGraphics},
    {MonitorsSection, Task::kGraphics},
    {DisplaySection, Task::kGraphics},
    {FirmwareSection, Task::kWmi},
    {SensorsSection, Task::kWmi},
    {TouchScreenSection},
    {NetworkSection, Task::kOwnLong},
    {AudioDevicesSection},
    {BluetoothSection},
    {BiometricSection},
    {KeyboardSection},
    {UsbSection},
    {DevicesSection, Task::kOwn, Shown::kWithDevicesOption},  // long: printed on request
    {DriversSection, Task::kOwn, Shown::kWithDevicesOption},
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

// The report's sections built on four threads, each in a batch of its own. This thread builds
// the sections that ask WMI most, in order, then helps with what is left; three helpers take the
// rest, each the next task not yet taken: the sections sharing the graphics inventory, the long
// sections, then each other section in report order. Most sections wait on the system (WMI,
// device walks, DXGI, the network list) and overlap: on two cores under Wine the report takes
// about half its time on one thread. Where a helper cannot start, the others report without
// it. (WMI's questions stay on one thread: spread over two, the report took a tenth longer.)
//
// Under Wine the process's first window (a single-threaded apartment's) makes the desktop, and
// that must not overlap another thread's first WMI or graphics call: both threads hang, one
// inside the loader's lock. So the first helper enters its apartment while this thread only
// loads VelHal.dll, and the rest starts once that apartment is made.
class ReportBuilder {
 public:
  explicit ReportBuilder(bool with_devices) {
    std::vector<size_t> graphics;
    std::vector<std::vector<size_t>> others;
    for (const Section& section : kSections) {
      if (section.shown == Shown::kWithDevicesOption && !with_devices) continue;
      const size_t index = sections_.size();
      sections_.push_back(section.build);
      switch (section.task) {
        case Task::kOwn: others.push_back({index}); break;
        case Task::kOwnLong: tasks_.push_back({index}); break;
        case Task::kWmi: asking_wmi_.push_back(index); break;
        case Task::kGraphics: graphics.push_back(index); break;
      }
    }
    tasks_.insert(tasks_.begin(), std::move(graphics));
    tasks_.insert(tasks_.end(), others.begin(), others.end());
    built_.resize(sections_.size());
    failures_.resize(sections_.size());
  }

  // Loads VelHal.dll and builds every section; the load's error when it failed, else 0.
  DWORD Build() {
    std::vector<std::thread> helpers;
    StartHelper(helpers);  // the first enters its apartment now
    loaded_ = LoadVelHal() != nullptr;
    const DWORD last_error = ::GetLastError();
    const DWORD load_error = loaded_ ? 0 : last_error != 0 ? last_error : ERROR_MOD_NOT_FOUND;
    velhal_tried_.count_down();
    apartment_made_.wait();
    if (loaded_) {
      for (int more = 1; more < kHelpers; ++more) StartHelper(helpers);
      {
        // Without an apartment of its own: the library joins the multithreaded one for the
        // batch's length, as for a host's worker thread.
        const HalBatch batch;
        for (const size_t index : asking_wmi_) BuildOne(index);
      }
      if (next_task_ < tasks_.size()) {  // helpers that could not start, or are still busy
        const ReportApartment apartment;
        const HalBatch batch;
        BuildTasks();
      }
    }
    for (std::thread& helper : helpers) helper.join();
    return load_error;
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
  static constexpr int kHelpers = 3;

  void StartHelper(std::vector<std::thread>& helpers) {
    const bool first = helpers.empty();
    try {
      helpers.emplace_back([this, first] {
        const ReportApartment apartment;
        if (first) apartment_made_.count_down();
        velhal_tried_.wait();
        if (!loaded_) return;
        const HalBatch batch;
        BuildTasks();
      });
    } catch (const std::system_error&) {
      if (first) apartment_made_.count_down();
    }
  }

  void BuildTasks() {
    for (size_t taken = next_task_++; taken < tasks_.size(); taken = next_task_++) {
      for (const size_t index : tasks_[taken]) BuildOne(index);
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
  std::vector<size_t> asking_wmi_;
  std::vector<std::vector<size_t>> tasks_;  // each a list of sections, built in turn
  std::atomic<size_t> next_task_{0};
  std::latch apartment_made_{1};  // by the first helper (or at once, when it could not start)
  std::latch velhal_tried_{1};
  bool loaded_ = false;  // written before velhal_tried_ opens
  std::vector<std::optional<Node>> built_;
  std::vector<std::string> failures_;
};

}  // namespace

int ReportRunningMachine(const Options& options) {
  ReportBuilder report(options.devices);
  if (const DWORD error = report.Build(); error != 0) {
    PrintError("halinfo: cannot load VelHal.dll: " + SystemMessage(error) + " (error " +
               std::to_string(error) + ").\nKeep VelHal.dll in the folder of halinfo.exe.\n");
    return kExitLibraryMissing;
  }
  int failed = 0;
  const std::vector<Node> sections = report.Take(failed);
  Print(options.json ? JsonDocument(sections) : PlainText(sections));
  return failed == 0 ? kExitSuccess : kExitSectionFailed;
}

}  // namespace halinfo
