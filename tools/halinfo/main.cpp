// halinfo: this machine's hardware as VelHal sees it, through the library's public interface.
#include "platform/win32.h"

#include <exception>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "tools/halinfo/devices_section.h"
#include "tools/halinfo/disks_section.h"
#include "tools/halinfo/header_section.h"
#include "tools/halinfo/machine_sections.h"
#include "tools/halinfo/output.h"

namespace {

constexpr int kExitLibraryMissing = 3;
constexpr int kExitFailure = 1;

struct Options {
  bool json = false;
  bool devices = false;
};

// VelHal.dll is bound lazily (delay-load), so its absence is reported here in plain words
// instead of by the loader before main runs.
HMODULE LoadVelHal() {
  return ::LoadLibraryExW(L"VelHal.dll", nullptr,
                          LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

int Run(const Options& options) {
  const HMODULE library = LoadVelHal();
  if (library == nullptr) {
    const DWORD error = ::GetLastError();
    halinfo::PrintError("halinfo: cannot load VelHal.dll: " + halinfo::SystemMessage(error) +
                        " (error " + std::to_string(error) + ").\n"
                        "Keep VelHal.dll in the folder of halinfo.exe.\n");
    return kExitLibraryMissing;
  }

  const halinfo::HeaderSection header = halinfo::HeaderSection::Collect(library);
  const halinfo::ProcessorSection processor = halinfo::ProcessorSection::Collect();
  const halinfo::MemorySection memory = halinfo::MemorySection::Collect();
  const halinfo::DisksSection disks = halinfo::DisksSection::Collect();
  const halinfo::BatterySection battery = halinfo::BatterySection::Collect();
  std::optional<halinfo::DevicesSection> devices;
  if (options.devices) devices = halinfo::DevicesSection::Collect();

  if (options.json) {
    nlohmann::ordered_json document = nlohmann::ordered_json::object();
    header.AddTo(document);
    processor.AddTo(document);
    memory.AddTo(document);
    disks.AddTo(document);
    battery.AddTo(document);
    if (devices) devices->AddTo(document);
    halinfo::Print(document.dump(2) + "\n");
  } else {
    halinfo::Print(header.ToText());
    halinfo::Print(processor.ToText());
    halinfo::Print(memory.ToText());
    halinfo::Print(disks.ToText());
    halinfo::Print(battery.ToText());
    if (devices) halinfo::Print(devices->ToText());
  }
  return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  try {
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) arguments.push_back(halinfo::ToUtf8(argv[i]));

    CLI::App app{"halinfo: this machine's hardware as VelHal sees it.", "halinfo"};
    Options options;
    app.add_flag("--json", options.json, "Print the report as one JSON document");
    app.add_flag("--devices", options.devices,
                 "Also list the present devices by setup class (hardware ID, description)");
    try {
      app.parse(arguments);
    } catch (const CLI::ParseError& error) {
      return app.exit(error);
    }
    return Run(options);
  } catch (const std::exception& error) {
    halinfo::PrintError(std::string("halinfo: ") + error.what() + "\n");
    return kExitFailure;
  }
}
