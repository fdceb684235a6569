// The host's COM state is its own: on a thread without COM, in the multithreaded apartment and
// in a single-threaded one, every public call leaves the apartment exactly as it found it.
#include "platform/win32.h"

#include <objbase.h>

#include <cstdio>
#include <thread>

#include "tests/robustness/class_exercise.h"

namespace {

// The thread's apartment type, or the HRESULT that says it has none.
long Apartment() {
  APTTYPE type{};
  APTTYPEQUALIFIER qualifier{};
  const HRESULT hr = ::CoGetApartmentType(&type, &qualifier);
  return SUCCEEDED(hr) ? static_cast<long>(type) : static_cast<long>(hr);
}

int CheckThread(const char* kind, int model) {
  int changed = 0;
  std::thread([&] {
    if (model >= 0) ::CoInitializeEx(nullptr, static_cast<DWORD>(model));
    const long before = Apartment();
    int step = 0;
    velhal::robustness::ExerciseLibrary([&] {
      ++step;
      if (Apartment() != before) {
        if (changed++ < 5) {
          std::fprintf(stderr, "%s thread: step %d left the apartment %ld (was %ld)\n", kind, step,
                       Apartment(), before);
        }
      }
    });
    std::printf("com_state: %s thread: %d calls, %d changed the apartment\n", kind, step, changed);
    if (model >= 0) ::CoUninitialize();
  }).join();
  return changed;
}

}  // namespace

int main() {
  int changed = CheckThread("no-COM", -1);
  changed += CheckThread("MTA", COINIT_MULTITHREADED);
  changed += CheckThread("STA", COINIT_APARTMENTTHREADED);
  return changed == 0 ? 0 : 1;
}
