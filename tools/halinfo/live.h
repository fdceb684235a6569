// The running machine's report (Windows only): VelHal.dll loaded, then section by section.
#pragma once

#include <string>

namespace halinfo {

struct Options {
  bool json = false;
  bool devices = false;
  std::string smbios_file;
  std::string edid_file;
};

int ReportRunningMachine(const Options& options);

}  // namespace halinfo
