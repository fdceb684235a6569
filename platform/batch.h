// A host's batch on its thread (HalBeginBatch/HalEndBatch, nesting counted): inside it the WMI
// engine keeps one connection per namespace and the rows of each query (wmi_engine.h), and the
// inventories several calls read (the graphics adapters, the IP adapters, the device information
// sets) are taken once and kept until the outermost end. Outside a batch every call takes them
// afresh.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace velhal::batch {

void Begin();
bool End();  // false without a batch; the outermost end releases everything the batch kept

bool Active();  // on this thread

namespace internal {

// A kept value's key: the bytes of the function that takes it, then of what it was asked for.
template <class... Parts>
std::string KeyOf(const Parts&... parts) {
  static_assert((std::has_unique_object_representations_v<Parts> && ...),
                "a key's bytes must be its value");
  std::string key;
  (key.append(reinterpret_cast<const char*>(&parts), sizeof(Parts)), ...);
  return key;
}

std::shared_ptr<const void> Find(std::string_view key);
void Keep(std::string key, std::shared_ptr<const void> value);
void ForgetStartingWith(std::string_view prefix);

}  // namespace internal

// What take() answers, taken once per batch on this thread and handed out as a copy until the
// batch ends; outside a batch, take() itself. A failure (an exception) keeps nothing.
template <class T>
T Kept(T (*take)()) {
  if (!Active()) return take();
  const std::string key = internal::KeyOf(take);
  if (std::shared_ptr<const void> found = internal::Find(key)) {
    return *static_cast<const T*>(found.get());
  }
  auto value = std::make_shared<const T>(take());
  internal::Keep(key, value);
  return *value;
}

// What take(asked) answers, shared: inside a batch, taken once per value of asked on this
// thread, unless keep() says no to it; outside a batch, taken for this caller alone.
template <class T, class Asked>
std::shared_ptr<const T> KeptFor(std::shared_ptr<const T> (*take)(const Asked&), const Asked& asked,
                                 bool (*keep)(const T&)) {
  if (!Active()) return take(asked);
  std::string key = internal::KeyOf(take, asked);
  if (std::shared_ptr<const void> found = internal::Find(key)) {
    return std::static_pointer_cast<const T>(found);
  }
  std::shared_ptr<const T> value = take(asked);
  if (value && keep(*value)) internal::Keep(std::move(key), value);
  return value;
}

// Drops what take kept in this thread's batch, for every value asked: the next call takes
// afresh. Without a batch, nothing to do.
template <class T, class Asked>
void Forget(std::shared_ptr<const T> (*take)(const Asked&)) {
  internal::ForgetStartingWith(internal::KeyOf(take));
}

}  // namespace velhal::batch
