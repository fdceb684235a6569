// Typed access to a flat query's numeric answer for tests: the value, or nullopt when the query
// fails. The answer must have exactly the width asked for.
#pragma once

#include <gtest/gtest.h>

#include <optional>

#include "hal/hal_api.h"

namespace velhal::testing {

template <class T>
std::optional<T> QueryNumber(HalDeviceClass device_class, void* entry, uint32_t info_class) {
  T value{};
  uint32_t returned = 0;
  if (!HalQueryInformation(device_class, entry, info_class, &value, sizeof(T), &returned)) {
    return std::nullopt;
  }
  EXPECT_EQ(returned, sizeof(T));
  return value;
}

}  // namespace velhal::testing
