#include "tests/support/fake_system.h"

#include <gtest/gtest.h>

#include "platform/process_state.h"

namespace velhal::testing {

FakeSystem::FakeSystem() { ResetProcessStateForTesting(); }

FakeSystem::~FakeSystem() {
  ResetProcessStateForTesting();  // while the fakes that state points into are installed
  EXPECT_EQ(registry.open_handles(), 0u) << "a registry key was left open";
  EXPECT_EQ(registry.bad_closes(), 0u);
  EXPECT_EQ(devices.open_sets, 0) << "a device set was left open";
  EXPECT_EQ(devices.bad_destroys, 0);
  EXPECT_EQ(io.open_handles(), 0u) << "a file handle was left open";
  EXPECT_EQ(io.bad_closes, 0);
  EXPECT_EQ(services.open_handles(), 0u) << "a service handle was left open";
  EXPECT_EQ(services.bad_closes, 0);
  EXPECT_EQ(module.loaded(), 0u) << "a library was left loaded";
  EXPECT_EQ(module.bad_frees, 0);
  EXPECT_EQ(com.live_objects, 0) << "a COM object leaked";
  EXPECT_TRUE(com.violations.empty()) << com.violations.front();
  EXPECT_FALSE(audio.render.over_released || audio.capture.over_released);
  EXPECT_TRUE(console.other_streams.empty()) << "printed to a stream other than stdout";
  EXPECT_EQ(com.RegisteredReferencesHeld(), 0u) << "a reference to a COM class object leaked";
  EXPECT_EQ(wlan.open_handles(), 0u) << "a WLAN handle was left open";
  EXPECT_EQ(wlan.unfreed(), 0u) << "WLAN memory was not freed";
  EXPECT_EQ(wlan.bad_closes + wlan.bad_frees, 0);
  EXPECT_EQ(power.schemes_held(), 0u) << "a power scheme GUID was not freed";
  EXPECT_EQ(power.bad_frees, 0);
  EXPECT_EQ(intel_driver.control.references, 1u) << "the driver object leaked";
  EXPECT_FALSE(intel_driver.control.over_released);
  EXPECT_EQ(display.open_dcs, 0) << "a screen device context was not released";
  EXPECT_EQ(security.open_tokens, 0) << "a token was left open";
  EXPECT_EQ(security.bad_closes, 0);
  EXPECT_EQ(bluetooth.open_finds + bluetooth.open_radios, 0) << "a radio handle was left open";
  EXPECT_EQ(bluetooth.bad_closes, 0);
  EXPECT_EQ(biometric.unfreed(), 0u) << "biometric units were not freed";
  EXPECT_EQ(biometric.bad_frees, 0);
}

}  // namespace velhal::testing
