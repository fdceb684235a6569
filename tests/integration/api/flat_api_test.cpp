// The flat entry points through VelHal.dll as a host binds them, from C++ and from C; the
// boundary rules of each class are the unit tests' (flat_boundary_test).
#include "hal/hal_api.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace {

constexpr uint8_t kFill = 0xA5;

// Everything an entry point could write, preset to a marker so a stray write shows.
struct Sentinels {
  Sentinels() {
    std::memset(&entry, kFill, sizeof(entry));
    std::memset(buffer.data(), kFill, buffer.size());
    std::memset(&list, kFill, sizeof(list));
  }
  bool Untouched() const {
    Sentinels fresh;
    return std::memcmp(&entry, &fresh.entry, sizeof(entry)) == 0 && buffer == fresh.buffer &&
           list == fresh.list && returned == fresh.returned && offset == fresh.offset;
  }

  HalDeviceEntry entry;
  std::array<uint8_t, 64> buffer;
  HalDeviceList* list;
  uint32_t returned = 0xA5A5A5A5;
  int64_t offset = 0x1234;
};

// Runs every entry point once for a class and reports the results in a fixed order.
std::array<uint32_t, 8> CallAll(HalDeviceClass device_class, Sentinels& s) {
  return {
      HalInit(device_class, &s.list),
      HalOpenDevice(device_class, &s.entry),
      HalCloseDevice(device_class, &s.entry),
      HalRead(device_class, &s.entry, &s.offset, s.buffer.data(), 16, &s.returned),
      HalWrite(device_class, &s.entry, &s.offset, s.buffer.data(), 16, &s.returned),
      HalQueryInformation(device_class, &s.entry, HAL_CPU_INFO_VENDOR, s.buffer.data(), 64,
                          &s.returned),
      HalSetInformation(device_class, &s.entry, HAL_CPU_INFO_VENDOR, s.buffer.data(), 64,
                        &s.returned),
      HalSetCallback(device_class, HAL_AUDIO_ENDPOINT_SPEAKER,
                     reinterpret_cast<IAudioEndpointVolumeCallback*>(s.buffer.data()), nullptr),
  };
}

TEST(FlatApiTest, ClassesWithoutAModuleFailWithoutWritingAnything) {
  for (HalDeviceClass device_class : {1u, 2u, 7u, 12u, 15u, 17u, 255u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(testing::Message() << "class " << device_class);
    Sentinels s;
    EXPECT_EQ(CallAll(device_class, s), (std::array<uint32_t, 8>{}));
    EXPECT_TRUE(s.Untouched());
  }
}

}  // namespace

extern "C" uint32_t CHostInitProcessorAndBattery(void);
extern "C" uint32_t CHostIsTypeDetachablePC(void);

namespace {

TEST(FlatApiTest, CallableFromC) {
  EXPECT_EQ(CHostInitProcessorAndBattery(), 2u);
  EXPECT_EQ(CHostIsTypeDetachablePC(), IsTypeDetachablePC() ? 1u : 0u);
}

}  // namespace
