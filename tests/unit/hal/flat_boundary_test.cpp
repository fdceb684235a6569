// Every entry point, for every class, given a null pointer, a short buffer, an unknown class or
// an unknown information class: 0 and nothing written. The classes are live (their fakes hold
// disks, endpoints and WMI rows), so a refusal is the boundary's doing, not an empty machine's.
#include "hal/hal_api.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "hal/audio_endpoints.h"
#include "hal/class_dispatch.h"
#include "platform/device_classes.h"
#include "platform/wmi_namespaces.h"
#include "tests/support/fake_system.h"

namespace {

using namespace velhal::testing;
using velhal::wmi::kCimV2;

constexpr uint8_t kFill = 0xA5;

struct Known {
  HalDeviceClass device_class;
  uint32_t info_class;
  uint32_t needed;  // the smallest buffer that succeeds
};

// Information classes that answer on the fakes below, with the size each needs.
const Known kKnown[] = {
    {HAL_CLASS_AUDIO_ENDPOINTS, HAL_AUDIO_INFO_SPEAKER_VOLUME, 4},
    {HAL_CLASS_DISK, HAL_DISK_INFO_MEDIA_TYPE_TEXT, 2 * 21 + 2},  // "Fixed hard disk media"
    {HAL_CLASS_DISK, HAL_DISK_INFO_CAPTION, 2 * 7 + 2},           // "Example"
    {HAL_CLASS_DISK, HAL_DISK_INFO_SIZE_MIB, 8},
    {HAL_CLASS_DISK, HAL_DISK_INFO_FREE_MIB, 8},
    {HAL_CLASS_DISK, HAL_DISK_INFO_SIZE_DECIMAL_GB, 8},
    {HAL_CLASS_DISK, HAL_DISK_INFO_SIZE_DECIMAL_MB, 8},
    {HAL_CLASS_DISK, HAL_DISK_INFO_COUNT, 4},
    {HAL_CLASS_DISK, HAL_DISK_INFO_TRIM_ENABLED, 4},
    {HAL_CLASS_DISK, HAL_DISK_INFO_STORAGE_MEDIA_TYPE, 4},
};

// Every class with a module, and classes without one.
std::vector<HalDeviceClass> EveryClass() {
  std::vector<HalDeviceClass> classes = {1u, 2u, 17u, 0xFFFFFFFFu};
  for (const auto& route : velhal::hal::ClassRoutes()) classes.push_back(route.device_class);
  return classes;
}

class FlatBoundaryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    os_.wmi.Script(kCimV2, L"SELECT Name FROM Win32_DiskDrive", L"Name", {FakeValue::Text(L"d0")});
    os_.wmi.Script(kCimV2, L"SELECT MediaType FROM Win32_DiskDrive WHERE Index = '0'", L"MediaType",
                   {FakeValue::Text(L"Fixed hard disk media")});
    os_.wmi.Script(kCimV2, L"SELECT Caption FROM Win32_DiskDrive WHERE Index='0'", L"Caption",
                   {FakeValue::Text(L"Example")});
    os_.wmi.Script(velhal::wmi::kStorage, L"SELECT * FROM MSFT_PhysicalDisk where DeviceID = '0'",
                   L"MediaType", {FakeValue::UInt32(4)});
    os_.io.Disk(0).ioctls[IOCTL_DISK_GET_DRIVE_GEOMETRY] =
        FakeDeviceIo::Geometry(1000, 255, 63, 512);
    os_.io.Disk(0).ioctls[IOCTL_STORAGE_QUERY_PROPERTY] = FakeDeviceIo::Trim(true);
    os_.io.Volume('C', FILE_DEVICE_DISK, 0, 1ull << 32);
    os_.devices.Add(velhal::device_class::kMedia)
        .HardwareIds({L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257"});
    ASSERT_EQ(velhal::hal::OpenAudioEndpoint(eRender), S_OK);
    ASSERT_EQ(velhal::hal::OpenAudioEndpoint(eCapture), S_OK);
    entry_.index = 0;
    ASSERT_EQ(HalOpenDevice(HAL_CLASS_DISK, &entry_), 1u);
  }
  void TearDown() override { HalCloseDevice(HAL_CLASS_DISK, &entry_); }

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

  FakeSystem os_;
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
  EXPECT_EQ(Query(HAL_CLASS_AUDIO_ENDPOINTS, HAL_AUDIO_INFO_SPEAKER_MUTE, 0, touched), 1u);
  EXPECT_EQ(Query(HAL_CLASS_DISK, HAL_DISK_INFO_FREE_MIB_SECOND_FORM, 7, touched), 0u);
  EXPECT_TRUE(touched);
}

TEST_F(FlatBoundaryTest, UnknownClassesAndInformationClassesWriteNothing) {
  for (HalDeviceClass device_class : EveryClass()) {
    for (uint32_t info_class : {99u, 0xFFFFFFFFu}) {
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
  for (HalDeviceClass device_class : EveryClass()) {
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
    EXPECT_EQ(HalSetCallback(device_class, HAL_AUDIO_ENDPOINT_SPEAKER, nullptr, nullptr), 0u);
    if (device_class != HAL_CLASS_AUDIO_ENDPOINTS) {
      EXPECT_EQ(HalSetCallback(device_class, HAL_AUDIO_ENDPOINT_SPEAKER, &callback, nullptr), 0u);
    }
  }
  HalDeviceEntry never_opened{nullptr, 0, 0};
  EXPECT_EQ(HalCloseDevice(HAL_CLASS_DISK, &never_opened), 0u);
  EXPECT_EQ(HalCloseDevice(HAL_CLASS_AUDIO_ENDPOINTS, nullptr), 1u);
  EXPECT_EQ(callback.references, 1u);
}

}  // namespace
