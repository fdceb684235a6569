// Every flat entry point, called many times over with hostile arguments: null and fabricated
// blocks and entries, null and short buffers framed by guard bytes and filled with a sentinel,
// null size pointers, unknown classes and information classes. Nothing may crash, no byte past
// bufferSize may change, a call that answers 0 may write nothing (save the two documented
// exceptions), and every answer stays within its buffer (text within the 2n + 2 rule).
//   sweep [--calls N]   calls per entry point (the test command runs 10^4; by hand, 10^6)
#include "platform/win32.h"

#include <objbase.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "tests/robustness/flat_host.h"

namespace {

using velhal::robustness::FlatApi;

constexpr uint8_t kSentinel = 0xA5;
constexpr uint8_t kGuard = 0x5A;
constexpr size_t kGuardBytes = 64;
constexpr uint32_t kReturnedSentinel = 0xA5A5A5A5;

struct Tally {
  long calls = 0, overruns = 0, writes_on_failure = 0, oversized_answers = 0;
  void Report(const char* what, const std::string& call) {
    static int shown = 0;
    if (shown++ < 20) std::fprintf(stderr, "%s: %s\n", what, call.c_str());
  }
};

// A caller's buffer: size bytes of sentinel, then guard bytes the library must never touch.
class FramedBuffer {
 public:
  explicit FramedBuffer(uint32_t size) : bytes_(size + kGuardBytes, kSentinel), size_(size) {
    std::memset(bytes_.data() + size, kGuard, kGuardBytes);
  }
  void* data() { return bytes_.data(); }
  bool GuardIntact() const {
    for (size_t i = size_; i < bytes_.size(); ++i) {
      if (bytes_[i] != kGuard) return false;
    }
    return true;
  }
  bool Untouched() const {
    for (size_t i = 0; i < size_; ++i) {
      if (bytes_[i] != kSentinel) return false;
    }
    return true;
  }

 private:
  std::vector<uint8_t> bytes_;
  uint32_t size_;
};

class Sweep {
 public:
  Sweep(const FlatApi& api, long calls) : api_(api), calls_(calls) {}

  // Text classes answer UTF-16 without a NUL yet need room for it: returned + 2 <= size.
  static bool IsUtf16Text(uint32_t device_class, uint32_t info) {
    return device_class == HAL_CLASS_DISK &&
           (info == HAL_DISK_INFO_MEDIA_TYPE_TEXT || info == HAL_DISK_INFO_CAPTION ||
            info == HAL_DISK_INFO_SERIAL_NUMBER || info == HAL_DISK_INFO_FIRMWARE_REVISION);
  }
  // The two documented writes on failure: a short buffer is zeroed.
  static bool MayZeroOnFailure(uint32_t device_class, uint32_t info) {
    return (device_class == HAL_CLASS_DISK && info == HAL_DISK_INFO_FREE_MIB_SECOND_FORM) ||
           (device_class == HAL_CLASS_MEMORY && info == HAL_MEMORY_INFO_COUNT);
  }

  void Run() {
    Boundaries();
    Queries();
    Sets();
    ModuleQueries();
    HandleOperations();
    std::printf(
        "sweep: %ld calls, 0 crashes, %ld overruns, %ld writes on failure, %ld oversized answers\n",
        tally_.calls, tally_.overruns, tally_.writes_on_failure, tally_.oversized_answers);
  }
  bool Clean() const {
    return tally_.overruns == 0 && tally_.writes_on_failure == 0 && tally_.oversized_answers == 0;
  }

 private:
  uint32_t DeviceClass() {
    static constexpr uint32_t kClasses[] = {0, 1,  2,  3,  4,  5,   6,
                                            7, 11, 12, 16, 17, 255, 0xFFFFFFFF};
    return kClasses[random_() % std::size(kClasses)];
  }
  uint32_t InfoClass() {
    const uint32_t pick = random_() % 50;
    return pick < 40 ? pick : pick == 40 ? 0xFFFFFFFF : static_cast<uint32_t>(random_());
  }
  uint32_t BufferSize() {
    static constexpr uint32_t kSizes[] = {0,  1,  2,  3,  4,  5,  7,   8,   9,   15,  16,  19,
                                          20, 21, 35, 36, 37, 64, 259, 260, 519, 520, 521, 1024};
    return random_() % 2 ? kSizes[random_() % std::size(kSizes)] : random_() % 600;
  }
  // An entry argument: null, a zeroed entry, an entry of a real list, or a block of garbage
  // (what a confused host would pass as a class-4 or class-16 block).
  void* Entry(std::vector<uint8_t>& garbage, HalDeviceEntry& entry) {
    switch (random_() % 4) {
      case 0: return nullptr;
      case 1:
        entry = HalDeviceEntry{nullptr, static_cast<uint32_t>(random_() % 4), 0};
        return &entry;
      case 2: {
        garbage.assign(8 + 552 * 2 + random_() % 64, 0);
        for (uint8_t& b : garbage) b = static_cast<uint8_t>(random_());
        return garbage.data();
      }
      default: {
        // A header that claims more records than the block holds.
        garbage.assign(16, 0);
        const uint32_t header[2] = {8 + 552 * 1000, 1000};
        std::memcpy(garbage.data(), header, sizeof(header));
        return garbage.data();
      }
    }
  }

  void Check(uint32_t result, const FramedBuffer& buffer, bool buffer_given, uint32_t size,
             uint32_t returned, bool returned_given, uint32_t device_class, uint32_t info,
             const char* entry_point) {
    ++tally_.calls;
    const std::string call = std::string(entry_point) + "(class " + std::to_string(device_class) +
                             ", info " + std::to_string(info) + ", size " + std::to_string(size) +
                             ") = " + std::to_string(result);
    if (buffer_given && !buffer.GuardIntact()) {
      ++tally_.overruns;
      tally_.Report("wrote past bufferSize", call);
    }
    if (result == 0) {
      const bool buffer_changed =
          buffer_given && !buffer.Untouched() && !MayZeroOnFailure(device_class, info);
      if (buffer_changed || (returned_given && returned != kReturnedSentinel)) {
        ++tally_.writes_on_failure;
        tally_.Report("wrote on failure", call);
      }
      return;
    }
    if (!returned_given || returned == kReturnedSentinel) return;  // numbers of class 0 leave it
    const bool oversized =
        returned > size ||
        (IsUtf16Text(device_class, info) && (returned % 2 != 0 || uint64_t{returned} + 2 > size));
    if (oversized) {
      ++tally_.oversized_answers;
      tally_.Report("answer larger than allowed", call);
    }
  }

  template <class Call>
  void Framed(uint32_t device_class, uint32_t info, const char* entry_point, Call&& call) {
    Framed(device_class, info, entry_point, BufferSize(), call);
  }
  template <class Call>
  void Framed(uint32_t device_class, uint32_t info, const char* entry_point, uint32_t size,
              Call&& call) {
    FramedBuffer buffer(size);
    const bool buffer_given = random_() % 8 != 0;
    const bool returned_given = random_() % 8 != 0;
    uint32_t returned = kReturnedSentinel;
    const uint32_t result =
        call(buffer_given ? buffer.data() : nullptr, size, returned_given ? &returned : nullptr);
    Check(result, buffer, buffer_given, size, returned, returned_given, device_class, info,
          entry_point);
  }

  // Every answering class at the sizes around its answer: where random sizes rarely land, and
  // where an off-by-one in a size rule shows.
  void Boundaries() {
    static constexpr uint32_t kClasses[] = {
        HAL_CLASS_PROCESSOR, HAL_CLASS_AUDIO_ENDPOINTS, HAL_CLASS_GRAPHICS, HAL_CLASS_DISK,
        HAL_CLASS_BATTERY,   HAL_CLASS_MEMORY,          HAL_CLASS_DISPLAY};
    for (const uint32_t device_class : kClasses) {
      for (uint32_t info = 0; info < 40; ++info) {
        HalDeviceEntry entry{nullptr, 0, 0};
        std::vector<uint8_t> big(1024);
        uint32_t length = 0;
        if (!api_.HalQueryInformation(device_class, &entry, info, big.data(), 1024, &length)) {
          continue;
        }
        for (uint32_t size = length > 3 ? length - 3 : 0; size <= length + 3; ++size) {
          Framed(device_class, info, "HalQueryInformation", size,
                 [&](void* buffer, uint32_t, uint32_t* r) {
                   return api_.HalQueryInformation(device_class, &entry, info, buffer, size, r);
                 });
        }
      }
    }
  }

  void Queries() {
    for (long i = 0; i < calls_; ++i) {
      const uint32_t device_class = DeviceClass(), info = InfoClass();
      std::vector<uint8_t> garbage;
      HalDeviceEntry entry{};
      void* target = Entry(garbage, entry);
      Framed(device_class, info, "HalQueryInformation",
             [&](void* buffer, uint32_t size, uint32_t* r) {
               return api_.HalQueryInformation(device_class, target, info, buffer, size, r);
             });
    }
  }

  void Sets() {
    for (long i = 0; i < calls_; ++i) {
      uint32_t device_class = DeviceClass();
      // Class 3's sets change the volume and mute of the machine's real endpoints: a sweep
      // must not touch them, so it asks only for information classes none of them answers.
      uint32_t info = InfoClass();
      if (device_class == HAL_CLASS_AUDIO_ENDPOINTS && info <= HAL_AUDIO_INFO_MICROPHONE_MUTE)
        info += 10;
      std::vector<uint8_t> garbage;
      HalDeviceEntry entry{};
      void* target = Entry(garbage, entry);
      Framed(device_class, info, "HalSetInformation",
             [&](void* buffer, uint32_t size, uint32_t* r) {
               return api_.HalSetInformation(device_class, target, info, buffer, size, r);
             });
    }
  }

  void ModuleQueries() {
    for (long i = 0; i < calls_; ++i) {
      const uint32_t info = InfoClass();
      Framed(HAL_CLASS_PROCESSOR, info, "CpuQueryInformation",
             [&](void* buffer, uint32_t size, uint32_t* r) {
               return api_.CpuQueryInformation(info, buffer, size, r);
             });
      Framed(HAL_CLASS_BATTERY, info, "BtQueryInformation",
             [&](void* buffer, uint32_t size, uint32_t* r) {
               return api_.BtQueryInformation(info, buffer, size, r);
             });
      HalDeviceEntry entry{nullptr, static_cast<uint32_t>(random_() % 4), 0};
      HalDeviceEntry* target = random_() % 4 == 0 ? nullptr : &entry;
      Framed(HAL_CLASS_MEMORY, info, "MmQueryInformation",
             [&](void* buffer, uint32_t size, uint32_t* r) {
               return api_.MmQueryInformation(target, info, buffer, size, r);
             });
    }
  }

  // Init, open, read, write, close and callbacks: every block made is freed and every handle
  // opened is closed, so a long sweep holds nothing.
  void HandleOperations() {
    for (long i = 0; i < calls_; ++i) {
      const uint32_t device_class = DeviceClass();
      void* block = nullptr;
      if (api_.HalInit(device_class, random_() % 4 == 0 ? nullptr : &block) && block != nullptr) {
        std::free(block);
      }
      HalDeviceEntry entry{nullptr, static_cast<uint32_t>(random_() % 3), 0};
      api_.HalOpenDevice(device_class, random_() % 4 == 0 ? nullptr : &entry);
      // Reads and writes through what was opened (a query-only handle: the system refuses
      // them) or through an entry that never was, with null arguments now and then.
      FramedBuffer buffer(16);
      int64_t offset = static_cast<int64_t>(random_() % 4096);
      uint32_t count = kReturnedSentinel;
      const bool null_offset = random_() % 4 == 0;
      const uint32_t read = api_.HalRead(device_class, &entry, null_offset ? nullptr : &offset,
                                         buffer.data(), 16, &count);
      const uint32_t written =
          api_.HalWrite(device_class, &entry, null_offset ? nullptr : &offset, buffer.data(), 0,
                        random_() % 4 == 0 ? nullptr : &count);
      if (!buffer.GuardIntact()) ++tally_.overruns;
      if (!read && !written && !buffer.Untouched()) ++tally_.writes_on_failure;
      api_.HalCloseDevice(device_class, &entry);
      api_.HalSetCallback(device_class, static_cast<uint32_t>(random_() % 4), nullptr, nullptr);
      tally_.calls += 6;
    }
  }

  const FlatApi& api_;
  long calls_;
  std::mt19937 random_{20261122};
  Tally tally_;
};

}  // namespace

int main(int argc, char** argv) {
  long calls = 10000;
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "--calls") == 0) calls = std::atol(argv[i + 1]);
  }
  const FlatApi api = FlatApi::Load();
  ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  // One batch, so that repeated WMI questions cost nothing and the sweep stays fast.
  api.HalBeginBatch();
  Sweep sweep(api, calls);
  sweep.Run();
  api.HalEndBatch();
  ::CoUninitialize();
  return sweep.Clean() ? 0 : 1;
}
