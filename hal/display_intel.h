// Class 16 through the Intel graphics driver: colour temperature and gains as gamma ramps on
// the driver's control object, the panel's colour parameters from it, and brightness as the
// active power scheme's video setting.
//
// Decisions the driver leaves to us:
// - Ramps: entry i of a channel is i x 257 x factor x scale rounded to nearest, kept within
//   0-65535, so factor 1 and scale 1 give the identity ramp 0, 257, ... 65535.
// - The display: the primary display adapter's name (EnumDisplayDevicesW) handed to the
//   driver's EnumActiveDevices, whose first active display is the one the ramp goes to.
// - The class-2 answer: the panel's colour-space matrix for BT.601 sources, three rows of three
//   32-bit floats as the driver stores them, from its CSC parameter block (offset 8, 36 bytes).
#pragma once

#include <array>
#include <cstdint>

namespace velhal::hal::intel {

// Set once the driver object is held; never cleared.
bool Ready();
// The ready check: a ready back-end still holds its driver object.
bool ControlPresent();

// HalInit's Intel path: creates the driver object unless already held. No block is made.
uint32_t Init();

uint32_t Query(uint32_t info_class, void* buffer, uint32_t buffer_size, uint32_t* returned);
uint32_t Set(uint32_t info_class, const void* buffer, uint32_t buffer_size);

using GammaRamp = std::array<uint16_t, 3 * 256>;  // red, green, blue
GammaRamp BuildGammaRamp(const std::array<float, 3>& factors, float scale);
// Warmth 0-255: below 128 the blue factor drops by up to 0.15, from 128 up red and green drop
// by up to 0.06.
std::array<float, 3> WarmthFactors(uint32_t warmth);

}  // namespace velhal::hal::intel
