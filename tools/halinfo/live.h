// The running machine's report (Windows only): VelHal.dll loaded, then section by section.
#pragma once

#ifdef _WIN32
#include "platform/win32.h"
#endif

#include <string>
#include <vector>

#include "tools/halinfo/node.h"

namespace halinfo {

struct Options {
  bool json = false;
  bool devices = false;
  std::string smbios_file;
  std::string edid_file;
};

int ReportRunningMachine(const Options& options);

#ifdef _WIN32
// What ReportRunningMachine uses, for programs that time the report (bench/section_bench.cpp).
HMODULE LoadVelHal();
using SectionBuilder = Node (*)();
std::vector<SectionBuilder> ReportSections(bool with_devices);

// The report's thread in a single-threaded apartment, as a host's UI thread is, for the
// report's length.
class ReportApartment {
 public:
  ReportApartment();
  ~ReportApartment();
  ReportApartment(const ReportApartment&) = delete;
  ReportApartment& operator=(const ReportApartment&) = delete;

 private:
  bool initialised_;
};
#endif

}  // namespace halinfo
