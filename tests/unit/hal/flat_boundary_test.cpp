// Every entry point, for every class, given a null pointer, a short buffer, an unknown class or
// an unknown information class: 0 and nothing written. The classes are live (their fakes hold
// disks, endpoints and WMI rows), so a refusal is the boundary's doing, not an empty machine's.
#include "hal/hal_api.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

#include "hal/audio_endpoints.h"
#include "tests/fakes/fake_audio.h"
#include "tests/fakes/fake_com.h"
#include "tests/fakes/fake_device_database.h"
#include "tests/fakes/fake_device_io.h"
#include "tests/fakes/fake_wmi.h"

namespace {

using namespace velhal::testing;

constexpr uint8_t kFill = 0xA5;
constexpr GUID kMedia{0x4d36e96c, 0xe325, 0x11ce, {0xbf, 0xc1, 0x08, 0x00, 0x2b, 0xe1, 0x03, 0x18}};

struct Known {
  HalDeviceClass device_class;
  uint32_t info_class;
  uint32_t needed;  // the smallest buffer that succeeds
};

// Information classes that answer on the fakes below, with the size each needs.
const Known kKnown[] = {
    {3, 0, 4},
    {5, 0, 2 * 21 + 2},  // "Fixed hard disk media"
    {5, 1, 2 * 7 + 2},   // "Example"
    {5, 3, 8}, {5, 4, 8}, {5, 5, 8}, {5, 6, 8}, {5, 7, 4}, {5, 10, 4}, {5, 11, 4},
};

class FlatBoundaryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::wstring cimv2 = L"ROOT\\CIMV2";
    wmi_.Script(cimv2, L"SELECT Name FROM Win32_DiskDrive", L"Name", {FakeValue::Text(L"d0")});
    wmi_.Script(cimv2, L"SELECT MediaType FROM Win32_DiskDrive WHERE Index = '0'", L"MediaType",
                {FakeValue::Text(L"Fixed hard disk media")});
    wmi_.Script(cimv2, L"SELECT Caption FROM Win32_DiskDrive WHERE Index='0'", L"Caption",
                {FakeValue::Text(L"Example")});
    wmi_.Script(L"ROOT\\Microsoft\\Windows\\Storage",
                L"SELECT * FROM MSFT_PhysicalDisk where DeviceID = '0'", L"MediaType",
                {FakeValue::UInt32(4)});
    io_.Disk(0).ioctls[IOCTL_DISK_GET_DRIVE_GEOMETRY] = FakeDeviceIo::Geometry(1000, 255, 63, 512);
    io_.Disk(0).ioctls[IOCTL_STORAGE_QUERY_PROPERTY] = FakeDeviceIo::Trim(true);
    io_.Volume('C', FILE_DEVICE_DISK, 0, 1ull << 32);
    db_.Add(kMedia).HardwareIds({L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257"});
    ASSERT_EQ(velhal::hal::OpenAudioEndpoint(eRender), S_OK);
    ASSERT_EQ(velhal::hal::OpenAudioEndpoint(eCapture), S_OK);
    entry_.index = 0;
    ASSERT_EQ(HalOpenDevice(HAL_CLASS_DISK, &entry_), 1u);
  }
  void TearDown() override {
    HalCloseDevice(HAL_CLASS_DISK, &entry_);
    HalCloseDevice(HAL_CLASS_AUDIO_ENDPOINTS, nullptr);
    EXPECT_EQ(io_.open_handles(), 0u);
  }

  // Queries into a marked buffer; reports whether anything outside the answer changed.
  uint32_t Query(HalDeviceClass device_class, uint32_t info_class, uint32_t size, bool& touched,
                 bool null_buffer = false, bool null_returned = false) {
    std::array<uint8_t, 128> buffer;
    buffer.fill(kFill);
    uint32_t returned = 0xA5A5A5A5;
    const uint32_t result = HalQueryInformation(device_class, &entry_, info_class,
                                                null_buffer ? nullptr : buffer.data(), size,
                                                null_returned ? nullptr : &returned);
    touched = returned != 0xA5A5A5A5 ||
              std::any_of(buffer.begin(), buffer.end(), [](uint8_t b) { return b != kFill; });
    return result;
  }

  FakeWmi wmi_;
  FakeDeviceIo io_;
  FakeDeviceDatabase db_;
  FakeAudio audio_;
  FakeCom com_{FakeCom::Apartment::kMta};
  velhal::os::ScopedBackend<velhal::os::Wmi> b1_{wmi_};
  velhal::os::ScopedBackend<velhal::os::DeviceIo> b2_{io_};
  velhal::os::ScopedBackend<velhal::os::DeviceDatabase> b3_{db_};
  velhal::os::ScopedBackend<velhal::os::Audio> b4_{audio_};
  velhal::os::ScopedBackend<velhal::os::Com> b5_{com_};
  HalDeviceEntry entry_{};
};

TEST_F(FlatBoundaryTest, KnownClassesSucceedWithTheirSizeAndRefuseLessWithoutWriting) {
  for (const Known& k : kKnown) {
    SCOPED_TRACE(testing::Message() << "class " << k.device_class << " info " << k.info_class);
    bool touched = false;
    EXPECT_EQ(Query(k.device_class, k.info_class, k.needed, touched), 1u);
    EXPECT_TRUE(touched);
    EXPECT_EQ(Query(k.device_class, k.info_class, k.needed - 1, touched), 0u);
    EXPECT_FALSE(touched);
    EXPECT_EQ(Query(k.device_class, k.info_class, 64, touched, true), 0u);
    EXPECT_FALSE(touched);
    EXPECT_EQ(Query(k.device_class, k.info_class, 64, touched, false, true), 0u);
    EXPECT_FALSE(touched);
  }
  // Documented exceptions: the mute queries ignore the size, and the second free-space form
  // zeroes a short buffer before failing.
  bool touched = false;
  EXPECT_EQ(Query(HAL_CLASS_AUDIO_ENDPOINTS, 1, 0, touched), 1u);
  EXPECT_EQ(Query(HAL_CLASS_DISK, 8, 7, touched), 0u);
  EXPECT_TRUE(touched);
}

TEST_F(FlatBoundaryTest, UnknownClassesAndInformationClassesWriteNothing) {
  for (HalDeviceClass device_class : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 11u, 16u, 17u, 0xFFFFFFFFu}) {
    for (uint32_t info_class : {13u, 99u, 0xFFFFFFFFu}) {
      SCOPED_TRACE(testing::Message() << "class " << device_class << " info " << info_class);
      bool touched = false;
      EXPECT_EQ(Query(device_class, info_class, 64, touched), 0u);
      EXPECT_FALSE(touched);
      std::array<uint8_t, 16> buffer;
      buffer.fill(kFill);
      uint32_t returned = 0xA5A5A5A5;
      EXPECT_EQ(HalSetInformation(device_class, &entry_, info_class, buffer.data(), 16, &returned),
                0u);
      EXPECT_EQ(returned, 0xA5A5A5A5u);
    }
  }
}

TEST_F(FlatBoundaryTest, NullArgumentsFailEveryEntryPoint) {
  FakeVolumeCallback callback;
  uint32_t count = 0;
  int64_t offset = 0;
  uint8_t buffer[8] = {};
  for (HalDeviceClass device_class : {0u, 1u, 3u, 4u, 5u, 6u, 11u, 16u, 17u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(testing::Message() << "class " << device_class);
    const bool list_free = device_class == HAL_CLASS_PROCESSOR || device_class == HAL_CLASS_BATTERY;
    EXPECT_EQ(HalInit(device_class, nullptr), list_free ? 1u : 0u);
    EXPECT_EQ(HalOpenDevice(device_class, nullptr), 0u);
    // Class 3's close releases the endpoints and succeeds whatever entry it is given.
    if (device_class != HAL_CLASS_AUDIO_ENDPOINTS) {
      EXPECT_EQ(HalCloseDevice(device_class, nullptr), 0u);
    }
    EXPECT_EQ(HalRead(device_class, nullptr, &offset, buffer, 8, &count), 0u);
    EXPECT_EQ(HalRead(device_class, &entry_, nullptr, buffer, 8, &count), 0u);
    EXPECT_EQ(HalRead(device_class, &entry_, &offset, nullptr, 8, &count), 0u);
    EXPECT_EQ(HalRead(device_class, &entry_, &offset, buffer, 8, nullptr), 0u);
    EXPECT_EQ(HalWrite(device_class, nullptr, &offset, buffer, 8, &count), 0u);
    EXPECT_EQ(HalSetInformation(device_class, nullptr, 0, buffer, 8, &count), 0u);
    EXPECT_EQ(HalSetCallback(device_class, 1, nullptr, nullptr), 0u);
    if (device_class != HAL_CLASS_AUDIO_ENDPOINTS) {
      EXPECT_EQ(HalSetCallback(device_class, 1, &callback, nullptr), 0u);
    }
  }
  HalDeviceEntry never_opened{nullptr, 0, 0};
  EXPECT_EQ(HalCloseDevice(HAL_CLASS_DISK, &never_opened), 0u);
  EXPECT_EQ(HalCloseDevice(HAL_CLASS_AUDIO_ENDPOINTS, nullptr), 1u);
  EXPECT_EQ(callback.references, 1u);
}

}  // namespace
