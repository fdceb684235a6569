// A host's batch on its thread (HalBeginBatch/HalEndBatch, nesting counted): inside it the WMI
// engine keeps one connection per namespace and the rows of each query (wmi_engine.h), and the
// inventories several calls read (the graphics adapters, the IP adapters) are taken once and
// kept until the outermost end. Outside a batch every call takes them afresh.
#pragma once

#include <memory>
#include <utility>

namespace velhal::batch {

void Begin();
bool End();  // false without a batch; the outermost end releases everything the batch kept

bool Active();  // on this thread

namespace internal {
std::shared_ptr<const void> Find(const void* key);
void Keep(const void* key, std::shared_ptr<const void> value);
}  // namespace internal

// What take() answers, taken once per batch on this thread and handed out as a copy until the
// batch ends; outside a batch, take() itself. A failure (an exception) keeps nothing.
template <class T>
T Kept(T (*take)()) {
  if (!Active()) return take();
  const void* key = reinterpret_cast<const void*>(take);
  if (std::shared_ptr<const void> found = internal::Find(key)) {
    return *static_cast<const T*>(found.get());
  }
  auto value = std::make_shared<const T>(take());
  internal::Keep(key, value);
  return *value;
}

}  // namespace velhal::batch
