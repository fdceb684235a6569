#include "platform/process_state.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace velhal {
namespace {

struct Resets {
  std::mutex mutex;
  std::vector<void (*)()> functions;
};

Resets& Registered() {
  static Resets resets;
  return resets;
}

}  // namespace

void RegisterProcessStateReset(void (*reset)()) {
  Resets& resets = Registered();
  const std::lock_guard<std::mutex> lock(resets.mutex);
  if (std::find(resets.functions.begin(), resets.functions.end(), reset) ==
      resets.functions.end()) {
    resets.functions.push_back(reset);
  }
}

void ResetProcessStateForTesting() {
  Resets& resets = Registered();
  std::vector<void (*)()> functions;
  {
    const std::lock_guard<std::mutex> lock(resets.mutex);
    functions = resets.functions;
  }
  for (void (*reset)() : functions) reset();
}

}  // namespace velhal
