// The flat entry points through VelHal.dll: routing by class, and refusal without side effects
// for every class that no module answers.
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
      HalQueryInformation(device_class, &s.entry, 0, s.buffer.data(), 64, &s.returned),
      HalSetInformation(device_class, &s.entry, 0, s.buffer.data(), 64, &s.returned),
      HalSetCallback(device_class, 1, reinterpret_cast<IAudioEndpointVolumeCallback*>(s.buffer.data()),
                     nullptr),
  };
}

TEST(FlatApiTest, ClassesWithoutAModuleFailWithoutWritingAnything) {
  // Unknown numbers, and the classes whose modules are not part of this build yet.
  for (HalDeviceClass device_class : {1u, 2u, 7u, 12u, 15u, 17u, 255u, 0xFFFFFFFFu,  //
                                      4u, 16u}) {
    SCOPED_TRACE(testing::Message() << "class " << device_class);
    Sentinels s;
    EXPECT_EQ(CallAll(device_class, s), (std::array<uint32_t, 8>{}));
    EXPECT_TRUE(s.Untouched());
  }
}

TEST(FlatApiTest, ProcessorAndBatteryInitialiseWithoutAList) {
  EXPECT_EQ(HalInit(HAL_CLASS_PROCESSOR, nullptr), 1u);
  EXPECT_EQ(HalInit(HAL_CLASS_BATTERY, nullptr), 1u);
  // They make no block, so a given list pointer stays as it was.
  Sentinels s;
  EXPECT_EQ(HalInit(HAL_CLASS_PROCESSOR, &s.list), 1u);
  EXPECT_EQ(HalInit(HAL_CLASS_BATTERY, &s.list), 1u);
  EXPECT_TRUE(s.Untouched());
  // Neither class has open/close/read/write or callbacks.
  EXPECT_EQ(HalOpenDevice(HAL_CLASS_BATTERY, &s.entry), 0u);
  EXPECT_EQ(HalCloseDevice(HAL_CLASS_PROCESSOR, &s.entry), 0u);
  EXPECT_EQ(HalSetCallback(HAL_CLASS_BATTERY, 1, nullptr, nullptr), 0u);
  EXPECT_TRUE(s.Untouched());
}

TEST(FlatApiTest, NullArgumentsNeverCrash) {
  for (HalDeviceClass device_class : {0u, 3u, 4u, 5u, 6u, 11u, 16u, 17u}) {
    SCOPED_TRACE(testing::Message() << "class " << device_class);
    EXPECT_EQ(HalOpenDevice(device_class, nullptr), 0u);
    EXPECT_EQ(HalRead(device_class, nullptr, nullptr, nullptr, 0, nullptr), 0u);
    EXPECT_EQ(HalWrite(device_class, nullptr, nullptr, nullptr, 0, nullptr), 0u);
    EXPECT_EQ(HalQueryInformation(device_class, nullptr, 0, nullptr, 0, nullptr), 0u);
    EXPECT_EQ(HalSetInformation(device_class, nullptr, 0, nullptr, 0, nullptr), 0u);
  }
  EXPECT_EQ(HalInit(5, nullptr), 0u);
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
