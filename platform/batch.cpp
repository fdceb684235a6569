#include "platform/batch.h"

#include <utility>
#include <vector>

#include "platform/wmi_engine.h"

namespace velhal::batch {
namespace {

struct Entry {
  std::string key;
  std::shared_ptr<const void> value;
};

// Plain thread_local values only: a thread_local with a destructor makes the runtime run it at
// thread exit, inside the loader's lock, which under Wine hangs or corrupts the heap at process
// exit. The batch owns its list and frees it at its outermost end.
thread_local int t_depth = 0;
thread_local std::vector<Entry>* t_kept = nullptr;  // a handful of inventories: a list beats a map

}  // namespace

void Begin() {
  wmi::BeginBatch();
  ++t_depth;
}

bool End() {
  if (t_depth == 0) return false;
  if (--t_depth == 0) delete std::exchange(t_kept, nullptr);
  return wmi::EndBatch();
}

bool Active() { return t_depth > 0; }

namespace internal {

std::shared_ptr<const void> Find(std::string_view key) {
  if (t_kept == nullptr) return nullptr;
  for (const Entry& kept : *t_kept) {
    if (kept.key == key) return kept.value;
  }
  return nullptr;
}

void Keep(std::string key, std::shared_ptr<const void> value) {
  if (t_kept == nullptr) t_kept = new std::vector<Entry>();
  t_kept->push_back({std::move(key), std::move(value)});
}

void ForgetStartingWith(std::string_view prefix) {
  if (t_kept == nullptr) return;
  std::erase_if(*t_kept, [&](const Entry& kept) { return kept.key.starts_with(prefix); });
}

}  // namespace internal
}  // namespace velhal::batch
