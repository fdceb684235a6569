#include "hal/audio_endpoints.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "hal/hal_api.h"
#include "tests/fakes/fake_audio.h"
#include "tests/fakes/fake_com.h"
#include "tests/fakes/fake_device_database.h"

namespace {

using velhal::testing::FakeAudio;
using velhal::testing::FakeCom;
using velhal::testing::FakeDeviceDatabase;
using velhal::testing::FakeVolumeCallback;

constexpr GUID kMedia{0x4d36e96c, 0xe325, 0x11ce, {0xbf, 0xc1, 0x08, 0x00, 0x2b, 0xe1, 0x03, 0x18}};

class AudioEndpointsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    db_.Add(kMedia).HardwareIds({L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257&SUBSYS_17AA"});
    db_.Add(kMedia).HardwareIds({L"HDAUDIO\\FUNC_01&VEN_8086&DEV_2812"});
    db_.Add(kMedia).HardwareIds({L"USB\\VID_0BDA&PID_4014&VEN_10EC"});
  }
  void TearDown() override {
    HalCloseDevice(HAL_CLASS_AUDIO_ENDPOINTS, nullptr);  // leave no endpoint for the next test
    EXPECT_FALSE(audio_.render.over_released);
    EXPECT_FALSE(audio_.capture.over_released);
  }
  void OpenBoth() {
    ASSERT_EQ(velhal::hal::OpenAudioEndpoint(eRender), S_OK);
    ASSERT_EQ(velhal::hal::OpenAudioEndpoint(eCapture), S_OK);
  }
  uint32_t SetVolume(int32_t level, uint8_t relative, uint32_t size = 8) {
    unsigned char buffer[8] = {};
    std::memcpy(buffer, &level, 4);
    buffer[4] = relative;
    HalDeviceEntry entry{};
    return HalSetInformation(HAL_CLASS_AUDIO_ENDPOINTS, &entry, 0, buffer, size, nullptr);
  }
  int32_t Volume() {
    int32_t percent = -1;
    uint32_t returned = 0;
    EXPECT_EQ(HalQueryInformation(HAL_CLASS_AUDIO_ENDPOINTS, nullptr, 0, &percent, 4, &returned), 1u);
    EXPECT_EQ(returned, 4u);
    return percent;
  }

  FakeDeviceDatabase db_;
  FakeAudio audio_;
  FakeCom com_{FakeCom::Apartment::kMta};
  velhal::os::ScopedBackend<velhal::os::DeviceDatabase> db_backend_{db_};
  velhal::os::ScopedBackend<velhal::os::Audio> audio_backend_{audio_};
  velhal::os::ScopedBackend<velhal::os::Com> com_backend_{com_};
};

TEST_F(AudioEndpointsTest, InitListsTheMatchingControllersAndOpensNoEndpoint) {
  HalDeviceList* list = nullptr;
  ASSERT_EQ(HalInit(HAL_CLASS_AUDIO_ENDPOINTS, &list), 1u);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->totalSize, 8u + 16u * 2u);  // case-sensitive substring "VEN_10EC"
  EXPECT_EQ(list->count, 2u);
  std::free(list);
  EXPECT_EQ(audio_.activations, 0);
  int32_t percent = 0;
  uint32_t returned = 0;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_AUDIO_ENDPOINTS, nullptr, 0, &percent, 4, &returned), 0u);

  // An endpoint already held stays held: init never opens or re-opens one.
  OpenBoth();
  ASSERT_EQ(HalInit(HAL_CLASS_AUDIO_ENDPOINTS, &list), 1u);
  std::free(list);
  EXPECT_EQ(audio_.activations, 2);

  db_.devices.clear();
  db_.Add(kMedia).HardwareIds({L"HDAUDIO\\FUNC_01&ven_10ec"});
  list = reinterpret_cast<HalDeviceList*>(0x1);
  EXPECT_EQ(HalInit(HAL_CLASS_AUDIO_ENDPOINTS, &list), 0u);
  EXPECT_EQ(list, reinterpret_cast<HalDeviceList*>(0x1));
  EXPECT_EQ(HalInit(HAL_CLASS_AUDIO_ENDPOINTS, nullptr), 0u);
}

TEST_F(AudioEndpointsTest, VolumeIsRoundedClampedAndMarkedWithTheLibrarysContext) {
  OpenBoth();
  audio_.render.scalar = 0.285f;  // 28.5 rounds half away from zero
  EXPECT_EQ(Volume(), 29);
  audio_.render.scalar = 0.45f;
  EXPECT_EQ(SetVolume(-10, 1), 1u);
  EXPECT_FLOAT_EQ(audio_.render.scalar, 0.35f);
  EXPECT_EQ(SetVolume(150, 0), 1u);
  EXPECT_FLOAT_EQ(audio_.render.scalar, 1.0f);
  EXPECT_EQ(SetVolume(-5, 0), 1u);
  EXPECT_FLOAT_EQ(audio_.render.scalar, 0.0f);
  EXPECT_EQ(SetVolume(40, 2), 1u);  // only a flag of exactly 1 is relative
  EXPECT_FLOAT_EQ(audio_.render.scalar, 0.40f);
  EXPECT_EQ(SetVolume(0x7FFFFFFF, 1), 1u);  // no overflow on the way to the clamp
  EXPECT_FLOAT_EQ(audio_.render.scalar, 1.0f);
  EXPECT_NE(std::memcmp(&audio_.render.last_context, &GUID_NULL, sizeof(GUID)), 0);

  const int sets = audio_.render.sets;
  EXPECT_EQ(SetVolume(50, 0, 4), 0u);  // the buffer holds level and flag: 8 bytes
  audio_.render.get_result = E_FAIL;
  EXPECT_EQ(SetVolume(10, 1), 0u);
  EXPECT_EQ(audio_.render.sets, sets);
  audio_.render.get_result = S_OK;
  audio_.render.set_result = E_ACCESSDENIED;
  EXPECT_EQ(SetVolume(10, 0), 0u);
}

TEST_F(AudioEndpointsTest, MuteChangesOnlyWhatDiffers) {
  OpenBoth();
  HalDeviceEntry entry{};
  uint32_t value = 1;
  EXPECT_EQ(HalSetInformation(HAL_CLASS_AUDIO_ENDPOINTS, &entry, 2, &value, 4, nullptr), 1u);
  EXPECT_TRUE(audio_.capture.muted);
  const int sets = audio_.capture.sets;
  EXPECT_EQ(HalSetInformation(HAL_CLASS_AUDIO_ENDPOINTS, &entry, 2, &value, 4, nullptr), 1u);
  EXPECT_EQ(HalSetInformation(HAL_CLASS_AUDIO_ENDPOINTS, &entry, 2, nullptr, 4, nullptr), 1u);
  EXPECT_EQ(audio_.capture.sets, sets);  // equal state or no buffer: nothing called
  EXPECT_EQ(HalSetInformation(HAL_CLASS_AUDIO_ENDPOINTS, &entry, 2, &value, 3, nullptr), 0u);
  EXPECT_EQ(HalSetInformation(HAL_CLASS_AUDIO_ENDPOINTS, nullptr, 2, &value, 4, nullptr), 0u);

  // The mute queries take any buffer size (callers pass 0); 1 is the speaker, 2 the microphone.
  uint32_t muted = 7, returned = 0;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_AUDIO_ENDPOINTS, nullptr, 2, &muted, 0, &returned), 1u);
  EXPECT_EQ(muted, 1u);
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_AUDIO_ENDPOINTS, nullptr, 1, &muted, 0, &returned), 1u);
  EXPECT_EQ(muted, 0u);
  EXPECT_EQ(returned, 4u);
}

TEST_F(AudioEndpointsTest, CallbacksAreTakenOverAndReleasedOnceInOrder) {
  FakeVolumeCallback speaker, microphone, ignored;
  EXPECT_EQ(HalSetCallback(HAL_CLASS_AUDIO_ENDPOINTS, 7, &ignored, nullptr), 1u);
  EXPECT_EQ(HalSetCallback(HAL_CLASS_AUDIO_ENDPOINTS, 0, nullptr, nullptr), 0u);

  ASSERT_EQ(velhal::hal::OpenAudioEndpoint(eRender), S_OK);
  EXPECT_EQ(HalSetCallback(HAL_CLASS_AUDIO_ENDPOINTS, 1, &speaker, nullptr), 1u);
  EXPECT_EQ(audio_.render.registered.size(), 1u);
  // The microphone is not held: stored all the same, and the call fails.
  EXPECT_EQ(HalSetCallback(HAL_CLASS_AUDIO_ENDPOINTS, 0, &microphone, nullptr), 0u);

  EXPECT_EQ(HalCloseDevice(HAL_CLASS_AUDIO_ENDPOINTS, nullptr), 1u);
  // The library took over the host's reference and gave it back once; Core Audio's is gone.
  EXPECT_EQ(speaker.references, 0u);
  EXPECT_EQ(microphone.references, 0u);
  EXPECT_EQ(ignored.references, 1u);
  EXPECT_TRUE(audio_.render.registered.empty());
  EXPECT_EQ(audio_.render.references, 1u);  // only the fake's own is left
  EXPECT_FALSE(speaker.over_released || microphone.over_released);

  EXPECT_EQ(HalCloseDevice(HAL_CLASS_AUDIO_ENDPOINTS, nullptr), 1u);  // nothing held: still 1
  EXPECT_FALSE(speaker.over_released || microphone.over_released);
  uint32_t muted = 0, returned = 0;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_AUDIO_ENDPOINTS, nullptr, 1, &muted, 4, &returned), 0u);
}

TEST_F(AudioEndpointsTest, OpeningReportsTheFirstFailure) {
  audio_.activate_result = static_cast<HRESULT>(0x80070490);  // E_NOTFOUND: no default device
  EXPECT_EQ(velhal::hal::OpenAudioEndpoint(eRender), static_cast<HRESULT>(0x80070490));
  EXPECT_EQ(com_.guids_created, 1);
  audio_.activate_result = S_OK;
  EXPECT_EQ(velhal::hal::OpenAudioEndpoint(eRender), S_OK);
  EXPECT_EQ(velhal::hal::OpenAudioEndpoint(eRender), S_FALSE);  // already held
  EXPECT_EQ(audio_.activations, 2);
}

}  // namespace
