// What each section of halinfo's report costs: the report's sections built in order inside one
// batch, as halinfo builds them, round after round in this one process. The first round is what
// `halinfo` pays (WMI's start falls on the first section that queries it); later rounds show
// each section's own work once the process is warm. Each round ends its batch, so every round
// asks WMI afresh.
//
//   section_bench [--devices] [rounds]     default 5 rounds; prints milliseconds per section
#include "platform/win32.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "hal/hal_batch.h"
#include "tools/halinfo/live.h"
#include "tools/halinfo/node.h"

namespace {

using Clock = std::chrono::steady_clock;

double MillisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double Median(std::vector<double> values) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const size_t middle = values.size() / 2;
  return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

}  // namespace

int main(int argc, char** argv) {
  bool devices = false;
  int rounds = 5;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--devices") == 0) {
      devices = true;
    } else {
      rounds = std::max(1, std::atoi(argv[i]));
    }
  }
  if (halinfo::LoadVelHal() == nullptr) {
    std::fprintf(stderr, "section_bench: cannot load VelHal.dll\n");
    return 1;
  }
  const halinfo::ReportApartment apartment;
  const std::vector<halinfo::SectionBuilder> builders = halinfo::ReportSections(devices);
  std::vector<std::string> names(builders.size());
  // times[section][round]; the last row is the JSON document's output, the row after it the
  // whole round.
  std::vector<std::vector<double>> times(builders.size() + 2);
  for (int round = 0; round < rounds; ++round) {
    const Clock::time_point round_start = Clock::now();
    std::vector<halinfo::Node> sections;
    {
      const HalBatch batch;
      for (size_t i = 0; i < builders.size(); ++i) {
        const Clock::time_point start = Clock::now();
        sections.push_back(builders[i]());
        times[i].push_back(MillisecondsSince(start));
        names[i] = sections.back().key;
      }
    }
    const Clock::time_point start = Clock::now();
    const std::string document = halinfo::JsonDocument(sections);
    times[builders.size()].push_back(MillisecondsSince(start));
    times[builders.size() + 1].push_back(MillisecondsSince(round_start));
    if (document.empty()) return 1;
  }
  names.push_back("(JSON text)");
  names.push_back("(whole round)");

  std::printf("%-18s %12s %14s\n", "section", "first ms", "later median");
  for (size_t i = 0; i < names.size(); ++i) {
    const std::vector<double> later(times[i].begin() + 1, times[i].end());
    std::printf("%-18s %12.2f %14.2f\n", names[i].c_str(), times[i].front(),
                later.empty() ? 0.0 : Median(later));
  }
  return 0;
}
