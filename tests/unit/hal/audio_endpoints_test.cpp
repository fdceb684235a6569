#include "hal/audio_endpoints.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "hal/hal_api.h"
#include "platform/device_classes.h"
#include "tests/support/fake_system.h"

namespace {

using velhal::device_class::kMedia;
using velhal::testing::FakeVolumeCallback;

class AudioEndpointsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    os_.devices.Add(kMedia).HardwareIds({L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257&SUBSYS_17AA"});
    os_.devices.Add(kMedia).HardwareIds({L"HDAUDIO\\FUNC_01&VEN_8086&DEV_2812"});
    os_.devices.Add(kMedia).HardwareIds({L"USB\\VID_0BDA&PID_4014&VEN_10EC"});
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
    return HalSetInformation(HAL_CLASS_AUDIO_ENDPOINTS, &entry, HAL_AUDIO_INFO_SPEAKER_VOLUME,
                             buffer, size, nullptr);
  }
  int32_t Volume() {
    int32_t percent = -1;
    uint32_t returned = 0;
    EXPECT_EQ(HalQueryInformation(HAL_CLASS_AUDIO_ENDPOINTS, nullptr, HAL_AUDIO_INFO_SPEAKER_VOLUME,
                                  &percent, 4, &returned),
              1u);
    EXPECT_EQ(returned, 4u);
    return percent;
  }

  velhal::testing::FakeSystem os_;
};

TEST_F(AudioEndpointsTest, InitListsTheMatchingControllersAndOpensNoEndpoint) {
  HalDeviceList* list = nullptr;
  ASSERT_EQ(HalInit(HAL_CLASS_AUDIO_ENDPOINTS, &list), 1u);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->count, 2u);  // case-sensitive substring "VEN_10EC"
  std::free(list);
  EXPECT_EQ(os_.audio.activations, 0);
  int32_t percent = 0;
  uint32_t returned = 0;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_AUDIO_ENDPOINTS, nullptr, HAL_AUDIO_INFO_SPEAKER_VOLUME,
                                &percent, 4, &returned),
            0u);

  // An endpoint already held stays held: init never opens or re-opens one.
  OpenBoth();
  ASSERT_EQ(HalInit(HAL_CLASS_AUDIO_ENDPOINTS, &list), 1u);
  std::free(list);
  EXPECT_EQ(os_.audio.activations, 2);

  os_.devices.devices.clear();
  os_.devices.Add(kMedia).HardwareIds({L"HDAUDIO\\FUNC_01&ven_10ec"});
  list = reinterpret_cast<HalDeviceList*>(0x1);
  EXPECT_EQ(HalInit(HAL_CLASS_AUDIO_ENDPOINTS, &list), 0u);
  EXPECT_EQ(list, reinterpret_cast<HalDeviceList*>(0x1));
  EXPECT_EQ(HalInit(HAL_CLASS_AUDIO_ENDPOINTS, nullptr), 0u);
}

TEST_F(AudioEndpointsTest, VolumeIsRoundedClampedAndMarkedWithTheLibrarysContext) {
  OpenBoth();
  os_.audio.render.scalar = 0.285f;  // 28.5 rounds half away from zero
  EXPECT_EQ(Volume(), 29);
  os_.audio.render.scalar = 0.45f;
  EXPECT_EQ(SetVolume(-10, 1), 1u);
  EXPECT_FLOAT_EQ(os_.audio.render.scalar, 0.35f);
  EXPECT_EQ(SetVolume(150, 0), 1u);
  EXPECT_FLOAT_EQ(os_.audio.render.scalar, 1.0f);
  EXPECT_EQ(SetVolume(-5, 0), 1u);
  EXPECT_FLOAT_EQ(os_.audio.render.scalar, 0.0f);
  EXPECT_EQ(SetVolume(40, 2), 1u);  // only a flag of exactly 1 is relative
  EXPECT_FLOAT_EQ(os_.audio.render.scalar, 0.40f);
  EXPECT_EQ(SetVolume(0x7FFFFFFF, 1), 1u);  // no overflow on the way to the clamp
  EXPECT_FLOAT_EQ(os_.audio.render.scalar, 1.0f);
  EXPECT_NE(std::memcmp(&os_.audio.render.last_context, &GUID_NULL, sizeof(GUID)), 0);

  const int sets = os_.audio.render.sets;
  EXPECT_EQ(SetVolume(50, 0, 4), 0u);  // the buffer holds level and flag: 8 bytes
  os_.audio.render.get_result = E_FAIL;
  EXPECT_EQ(SetVolume(10, 1), 0u);
  EXPECT_EQ(os_.audio.render.sets, sets);
  os_.audio.render.get_result = S_OK;
  os_.audio.render.set_result = E_ACCESSDENIED;
  EXPECT_EQ(SetVolume(10, 0), 0u);
}

TEST_F(AudioEndpointsTest, MuteChangesOnlyWhatDiffers) {
  OpenBoth();
  HalDeviceEntry entry{};
  uint32_t value = 1;
  EXPECT_EQ(HalSetInformation(HAL_CLASS_AUDIO_ENDPOINTS, &entry, HAL_AUDIO_INFO_MICROPHONE_MUTE,
                              &value, 4, nullptr),
            1u);
  EXPECT_TRUE(os_.audio.capture.muted);
  const int sets = os_.audio.capture.sets;
  EXPECT_EQ(HalSetInformation(HAL_CLASS_AUDIO_ENDPOINTS, &entry, HAL_AUDIO_INFO_MICROPHONE_MUTE,
                              &value, 4, nullptr),
            1u);
  EXPECT_EQ(HalSetInformation(HAL_CLASS_AUDIO_ENDPOINTS, &entry, HAL_AUDIO_INFO_MICROPHONE_MUTE,
                              nullptr, 4, nullptr),
            1u);
  EXPECT_EQ(os_.audio.capture.sets, sets);  // equal state or no buffer: nothing called
  EXPECT_EQ(HalSetInformation(HAL_CLASS_AUDIO_ENDPOINTS, &entry, HAL_AUDIO_INFO_MICROPHONE_MUTE,
                              &value, 3, nullptr),
            0u);
  EXPECT_EQ(HalSetInformation(HAL_CLASS_AUDIO_ENDPOINTS, nullptr, HAL_AUDIO_INFO_MICROPHONE_MUTE,
                              &value, 4, nullptr),
            0u);

  // The mute queries take any buffer size (callers pass 0).
  uint32_t muted = 7, returned = 0;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_AUDIO_ENDPOINTS, nullptr, HAL_AUDIO_INFO_MICROPHONE_MUTE,
                                &muted, 0, &returned),
            1u);
  EXPECT_EQ(muted, 1u);
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_AUDIO_ENDPOINTS, nullptr, HAL_AUDIO_INFO_SPEAKER_MUTE,
                                &muted, 0, &returned),
            1u);
  EXPECT_EQ(muted, 0u);
  EXPECT_EQ(returned, 4u);
}

TEST_F(AudioEndpointsTest, CallbacksAreTakenOverAndReleasedOnceInOrder) {
  FakeVolumeCallback speaker, microphone, ignored;
  EXPECT_EQ(HalSetCallback(HAL_CLASS_AUDIO_ENDPOINTS, 7, &ignored, nullptr), 1u);
  EXPECT_EQ(
      HalSetCallback(HAL_CLASS_AUDIO_ENDPOINTS, HAL_AUDIO_ENDPOINT_MICROPHONE, nullptr, nullptr),
      0u);

  ASSERT_EQ(velhal::hal::OpenAudioEndpoint(eRender), S_OK);
  EXPECT_EQ(
      HalSetCallback(HAL_CLASS_AUDIO_ENDPOINTS, HAL_AUDIO_ENDPOINT_SPEAKER, &speaker, nullptr), 1u);
  EXPECT_EQ(os_.audio.render.registered.size(), 1u);
  // The microphone is not held: stored all the same, and the call fails.
  EXPECT_EQ(HalSetCallback(HAL_CLASS_AUDIO_ENDPOINTS, HAL_AUDIO_ENDPOINT_MICROPHONE, &microphone,
                           nullptr),
            0u);

  EXPECT_EQ(HalCloseDevice(HAL_CLASS_AUDIO_ENDPOINTS, nullptr), 1u);
  // The library took over the host's reference and gave it back once; Core Audio's is gone.
  EXPECT_EQ(speaker.references, 0u);
  EXPECT_EQ(microphone.references, 0u);
  EXPECT_EQ(ignored.references, 1u);
  EXPECT_TRUE(os_.audio.render.registered.empty());
  EXPECT_EQ(os_.audio.render.references, 1u);  // only the fake's own is left
  EXPECT_FALSE(speaker.over_released || microphone.over_released);

  EXPECT_EQ(HalCloseDevice(HAL_CLASS_AUDIO_ENDPOINTS, nullptr), 1u);  // nothing held: still 1
  EXPECT_FALSE(speaker.over_released || microphone.over_released);
  uint32_t muted = 0, returned = 0;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_AUDIO_ENDPOINTS, nullptr, HAL_AUDIO_INFO_SPEAKER_MUTE,
                                &muted, 4, &returned),
            0u);
}

TEST_F(AudioEndpointsTest, OpeningReportsTheFirstFailure) {
  os_.audio.activate_result = static_cast<HRESULT>(0x80070490);  // E_NOTFOUND: no default device
  EXPECT_EQ(velhal::hal::OpenAudioEndpoint(eRender), static_cast<HRESULT>(0x80070490));
  EXPECT_EQ(os_.com.guids_created, 1);
  os_.audio.activate_result = S_OK;
  EXPECT_EQ(velhal::hal::OpenAudioEndpoint(eRender), S_OK);
  EXPECT_EQ(velhal::hal::OpenAudioEndpoint(eRender), S_FALSE);  // already held
  EXPECT_EQ(os_.audio.activations, 2);
}

}  // namespace
