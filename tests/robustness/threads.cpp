// Eight threads, half in the multithreaded apartment and half in single-threaded ones, half of
// each inside a batch per round, call every read path at once: each must give the answer one
// thread alone gets, nothing may crash, and a watchdog ends the program if the calls do not
// finish in time (a hang at the threads' or the process's exit meets the test's time limit).
//   threads [--rounds N]   (the test command runs a small count; by hand, more)
#include "platform/win32.h"

#include <objbase.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "tests/robustness/flat_host.h"

namespace {

using velhal::robustness::FlatApi;
using velhal::robustness::Probe;

constexpr int kThreads = 8;
constexpr auto kWatchdog = std::chrono::seconds(120);

}  // namespace

int main(int argc, char** argv) {
  int rounds = 25;
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "--rounds") == 0) rounds = std::atoi(argv[i + 1]);
  }
  const FlatApi api = FlatApi::Load();
  const std::vector<Probe> probes = ReadProbes(api);

  // What one thread alone sees.
  ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  std::vector<std::vector<uint8_t>> expected;
  for (const Probe& probe : probes) expected.push_back(probe.read());

  std::atomic<int> mismatches{0}, calls{0}, finished{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      const DWORD model = t % 2 == 0 ? COINIT_MULTITHREADED : COINIT_APARTMENTTHREADED;
      const bool batched = t % 4 >= 2;
      ::CoInitializeEx(nullptr, model);
      for (int round = 0; round < rounds; ++round) {
        if (batched) api.HalBeginBatch();
        for (size_t p = 0; p < probes.size(); ++p) {
          const std::vector<uint8_t> got = probes[p].read();
          ++calls;
          const bool same = probes[p].is_volatile ? got[0] == expected[p][0] : got == expected[p];
          if (!same && mismatches++ < 10) {
            std::fprintf(stderr, "thread %d: %s differs from one thread's answer\n", t,
                         probes[p].name.c_str());
          }
        }
        if (batched) api.HalEndBatch();
      }
      ::CoUninitialize();
      ++finished;
    });
  }
  const auto deadline = std::chrono::steady_clock::now() + kWatchdog;
  while (finished < kThreads) {
    if (std::chrono::steady_clock::now() > deadline) {
      std::fprintf(stderr, "threads: deadlock or stall: %d of %d threads finished\n",
                   finished.load(), kThreads);
      std::fflush(stderr);
      ::ExitProcess(2);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  for (std::thread& thread : threads) thread.join();
  std::printf("threads: %d threads x %d rounds, %d calls, %d mismatches\n", kThreads, rounds,
              calls.load(), mismatches.load());
  ::CoUninitialize();
  return mismatches == 0 ? 0 : 1;
}
