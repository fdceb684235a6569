#include "hal/query_output.h"

#include <cstddef>
#include <cstdlib>

#include "hal/hal_api.h"
#include "platform/string_conversion.h"

namespace velhal::hal {

uint32_t WriteText(void* buffer, uint32_t buffer_size, uint32_t* returned,
                   const std::wstring& text, TextForm form, EmptyText empty) {
  if (buffer == nullptr || returned == nullptr) return 0;
  if (text.empty() && empty == EmptyText::kFails) return 0;
  if (form == TextForm::kUtf16) {
    const uint64_t bytes = uint64_t{text.size()} * sizeof(wchar_t);
    if (uint64_t{buffer_size} < bytes + sizeof(wchar_t)) return 0;
    std::memcpy(buffer, text.data(), static_cast<size_t>(bytes));
    *returned = static_cast<uint32_t>(bytes);
    return 1;
  }
  const std::string narrow = WideToAnsi(text);
  // A text that converts to nothing is empty too.
  if (narrow.empty() && empty == EmptyText::kFails) return 0;
  // A copy that would overflow is refused, never truncated.
  if (uint64_t{buffer_size} <= narrow.size()) return 0;
  const size_t copied = form == TextForm::kAnsiWithNul ? narrow.size() + 1 : narrow.size();
  std::memcpy(buffer, narrow.c_str(), copied);
  *returned = static_cast<uint32_t>(narrow.size());
  return 1;
}

HalDeviceEntry* EntryAt(HalDeviceList* list, uint32_t index) {
  return reinterpret_cast<HalDeviceEntry*>(reinterpret_cast<unsigned char*>(list) +
                                           offsetof(HalDeviceList, entries)) +
         index;
}

uint32_t MakeDeviceList(void* list, uint64_t count) {
  const uint64_t size = 8 + 16 * count;
  if (list == nullptr || count == 0 || size > 0xFFFFFFFFull) return 0;
  auto* block = static_cast<HalDeviceList*>(std::malloc(static_cast<size_t>(size)));
  *static_cast<HalDeviceList**>(list) = block;
  if (block == nullptr) return 0;
  block->totalSize = static_cast<uint32_t>(size);
  block->count = static_cast<uint32_t>(count);
  for (uint32_t i = 0; i < count; ++i) {
    EntryAt(block, i)->handle = nullptr;
    EntryAt(block, i)->index = i;
  }
  return 1;
}

}  // namespace velhal::hal
