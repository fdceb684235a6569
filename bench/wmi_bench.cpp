// What a WMI query costs when each query connects for itself, against queries that share one
// connection inside a SessionScope (what a public call issuing several queries gets).
//
//   wmi_bench [queries]     default 300 per mode and query; medians in milliseconds per query
//
// Two queries: Win32_BIOS.SerialNumber, whose provider is cheap, so the figure is mostly the
// connection, and Win32_Processor.Name, whose provider (under Wine) rebuilds its table on every
// query, a cost no connection policy removes. The last line is the first query's.
#include "platform/win32.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/wmi_engine.h"
#include "platform/wmi_query.h"

namespace {

using Clock = std::chrono::steady_clock;

const std::wstring kNamespace = L"ROOT\\CIMV2";

struct Query {
  const wchar_t* wql;
  const wchar_t* property;
};

double QueryMilliseconds(const Query& query) {
  VelSDK::WmiQuery wmi(kNamespace);
  std::vector<std::wstring> names;
  const Clock::time_point start = Clock::now();
  const int result = wmi.ExcuteQuery(query.wql, query.property, names, false);
  const Clock::time_point end = Clock::now();
  if (result != 0) {
    std::fprintf(stderr, "wmi_bench: query failed with 0x%08X\n", static_cast<unsigned>(result));
    std::exit(1);
  }
  return std::chrono::duration<double, std::milli>(end - start).count();
}

struct Summary {
  double median, p10, p90;
};

Summary Summarise(std::vector<double> samples) {
  std::sort(samples.begin(), samples.end());
  const auto at = [&](double q) { return samples[static_cast<size_t>(q * (samples.size() - 1))]; };
  return {at(0.5), at(0.1), at(0.9)};
}

void Report(const char* mode, const Summary& s, size_t count) {
  std::printf("  %-9s %zu queries: median %.3f ms, p10 %.3f ms, p90 %.3f ms\n", mode, count,
              s.median, s.p10, s.p90);
}

// Returns {reconnect, reuse} medians.
std::pair<double, double> Measure(const Query& query, long count) {
  std::vector<double> reconnect, reuse;
  for (long i = 0; i < count; ++i) reconnect.push_back(QueryMilliseconds(query));
  {
    const velhal::wmi::SessionScope session;
    for (long i = 0; i < count; ++i) reuse.push_back(QueryMilliseconds(query));
  }
  const Summary a = Summarise(reconnect);
  const Summary b = Summarise(reuse);
  std::printf("%ls (%ls):\n", query.wql, query.property);
  Report("reconnect", a, reconnect.size());
  Report("reuse", b, reuse.size());
  std::printf("  ratio %.2f\n", b.median / a.median);
  return {a.median, b.median};
}

}  // namespace

int main(int argc, char** argv) {
  const long count = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 300;
  if (count < 1) {
    std::fprintf(stderr, "usage: wmi_bench [queries]\n");
    return 2;
  }
  // The host's thread is in an apartment; COM start-up is not what is measured.
  ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  const Query bios{L"SELECT SerialNumber FROM Win32_BIOS", L"SerialNumber"};
  const Query processor{L"SELECT Name FROM Win32_Processor", L"Name"};
  const double first = QueryMilliseconds(bios);  // loads the provider: paid once per process
  std::printf("first query in the process: %.1f ms\n", first);

  Measure(processor, count);
  const auto [reconnect, reuse] = Measure(bios, count);
  ::CoUninitialize();
  std::printf("wmi query cost: reconnect=%.3f reuse=%.3f ratio=%.2f\n", reconnect, reuse,
              reuse / reconnect);
  return 0;
}
