// halinfo: this machine's hardware as VelHal sees it, through the library's public interface;
// and, offline and on any system, a saved SMBIOS table or EDID decoded by the library's own
// parsers.
#ifdef _WIN32
#include "platform/win32.h"
#endif

#include <exception>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "velhal_version.h"

#include "tools/halinfo/edid_report.h"
#include "tools/halinfo/exit_codes.h"
#include "tools/halinfo/live.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/smbios_report.h"

namespace {

using halinfo::kExitSectionFailed;
using halinfo::kExitUsage;

int Run(const halinfo::Options& options) {
  if (!options.smbios_file.empty()) return halinfo::ReportSmbiosFile(options.smbios_file, options.json);
  if (!options.edid_file.empty()) return halinfo::ReportEdidFile(options.edid_file, options.json);
#ifdef _WIN32
  return halinfo::ReportRunningMachine(options);
#else
  halinfo::PrintError(
      "halinfo: this build reads saved files only (--smbios-file, --edid-file); the running "
      "machine's report needs Windows.\n");
  return kExitUsage;
#endif
}

// Arguments arrive as UTF-8, last first, as CLI11 takes them.
int Main(std::vector<std::string> arguments) {
  try {
    CLI::App app{"halinfo: this machine's hardware as VelHal sees it.", "halinfo"};
    halinfo::Options options;
    app.add_flag("--json", options.json, "Print the report as one JSON document");
    app.add_flag("--devices", options.devices,
                 "Also list the present devices by setup class (hardware ID, description)");
    app.add_option("--smbios-file", options.smbios_file,
                   "Decode a saved SMBIOS table instead (raw firmware table, dmidecode "
                   "--dump-bin file or a copy of /sys/firmware/dmi/tables/DMI)");
    app.add_option("--edid-file", options.edid_file,
                   "Decode a saved EDID instead (a copy of /sys/class/drm/*/edid, or a "
                   "monitor's EDID registry value saved to a file)");
    app.set_version_flag("--version", "halinfo " VELHAL_VERSION_STRING);
    app.footer(
        "Exit codes: 0 success, 1 a section of the report failed, 2 usage, 3 VelHal.dll "
        "missing, 4 an input file unreadable or not decodable whole.");
    try {
      app.parse(arguments);
    } catch (const CLI::Success& success) {  // --help, --version
      return app.exit(success) == 0 ? halinfo::kExitSuccess : kExitUsage;
    } catch (const CLI::ParseError& error) {
      // CLI11's own codes (109, 114, ...) are its business; ours say "usage".
      app.exit(error);
      return kExitUsage;
    }
    return Run(options);
  } catch (const std::exception& error) {
    halinfo::PrintError(std::string("halinfo: ") + error.what() + "\n");
    return kExitSectionFailed;
  }
}

}  // namespace

#ifdef _WIN32
int wmain(int argc, wchar_t** argv) {
  std::vector<std::string> arguments;
  for (int i = argc - 1; i > 0; --i) arguments.push_back(halinfo::ToUtf8(argv[i]));
  return Main(std::move(arguments));
}
#else
int main(int argc, char** argv) {
  std::vector<std::string> arguments;
  for (int i = argc - 1; i > 0; --i) arguments.emplace_back(argv[i]);
  return Main(std::move(arguments));
}
#endif
