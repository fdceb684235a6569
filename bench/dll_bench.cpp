// What loading VelHal.dll costs a host, and proof that loading does no COM or WMI: the DLL is
// loaded and freed repeatedly, and after the first load the thread must still have no COM
// apartment and WMI's client must not be loaded.
//
//   dll_bench [rounds]     default 200; prints the median load and unload in microseconds
#include "platform/win32.h"

#include <objbase.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

double Microseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::micro>(duration).count();
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 200;
  const bool wmi_before = ::GetModuleHandleW(L"wbemprox.dll") != nullptr;

  std::vector<double> loads, unloads;
  for (int i = 0; i < rounds; ++i) {
    const Clock::time_point start = Clock::now();
    const HMODULE library = ::LoadLibraryW(L"VelHal.dll");
    const Clock::time_point loaded = Clock::now();
    if (library == nullptr) {
      std::fprintf(stderr, "dll_bench: cannot load VelHal.dll (error %lu)\n", ::GetLastError());
      return 1;
    }
    if (i == 0) {
      APTTYPE type{};
      APTTYPEQUALIFIER qualifier{};
      const bool com = SUCCEEDED(::CoGetApartmentType(&type, &qualifier));
      const bool wmi = !wmi_before && ::GetModuleHandleW(L"wbemprox.dll") != nullptr;
      std::printf("dll_bench: after load: COM apartment %s, WMI client %s\n",
                  com ? "ENTERED" : "none", wmi ? "LOADED" : "not loaded");
      if (com || wmi) return 1;
    }
    ::FreeLibrary(library);
    loads.push_back(Microseconds(loaded - start));
    unloads.push_back(Microseconds(Clock::now() - loaded));
  }
  std::printf("dll_bench: %d rounds: load %.0f us, unload %.0f us (medians)\n", rounds,
              Median(loads), Median(unloads));
  return 0;
}
