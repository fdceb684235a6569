// The graphics block in tests: GpInit's blocks freed at the end, hand-made blocks, and typed
// answers of GpQueryInforamtion (nullopt for a failed query).
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hal/hal_api.h"

namespace velhal::testing {

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};
using GpBlock = std::unique_ptr<GpAdapterList, FreeBlock>;

// A block of count records as GpInit lays it out, every byte first set to fill.
inline GpBlock MakeGpBlock(uint32_t count, uint8_t fill = 0) {
  const size_t size = 8 + 552 * size_t{count};
  auto* block = static_cast<GpAdapterList*>(std::malloc(size));
  std::memset(block, fill, size);
  block->totalSize = static_cast<uint32_t>(size);
  block->count = count;
  return GpBlock(block);
}

inline GpAdapterEntry& RecordOf(GpAdapterList* block, uint32_t index) {
  return *reinterpret_cast<GpAdapterEntry*>(reinterpret_cast<unsigned char*>(block) + 8 +
                                            552 * size_t{index});
}

inline std::wstring NameOf(const GpAdapterEntry& record) {
  std::wstring name;
  for (size_t i = 0; i < 260 && record.name[i] != 0; ++i)
    name += static_cast<wchar_t>(record.name[i]);
  return name;
}

inline std::optional<std::wstring> GpText(GpAdapterList* block, uint32_t info_class) {
  std::vector<wchar_t> buffer(300, L'\0');
  uint32_t returned = 0;
  if (!GpQueryInforamtion(block, info_class, buffer.data(), 520, &returned)) return std::nullopt;
  EXPECT_EQ(returned % 2, 0u);
  return std::wstring(buffer.data(), returned / 2);
}

inline std::optional<uint32_t> GpNumber(GpAdapterList* block, uint32_t info_class) {
  uint32_t value = 0, returned = 0;
  if (!GpQueryInforamtion(block, info_class, &value, 4, &returned)) return std::nullopt;
  EXPECT_EQ(returned, 4u);
  return value;
}

}  // namespace velhal::testing
