// The inner loop of brightness interpolation: target.out = base.out + ((delta * w) >> 12) for
// every entry and channel, deltas planar (all red, then green, then blue). Input words and
// headers of `target` are left alone.
#pragma once

#include <cstdint>

#include "postblend/color_records.h"

namespace postblend {

// Brightness levels from here on interpolate between the two tables of a pair.
constexpr uint32_t kMinBrightness = 3500;

// Q12 weight of a brightness level of kMinBrightness or more: 0 at 3500, 4096 at 8191. Unsigned
// throughout, so levels above 8191 extrapolate.
inline uint32_t brightnessWeightQ12(uint32_t brightness) {
  return (brightness * 4096u - kMinBrightness * 4096u) / (8191u - kMinBrightness);
}

// What one delta adds at weight w: the product wraps as a signed 32-bit value, then shifts
// arithmetically (toward minus infinity for negative deltas).
inline uint32_t scaledDeltaQ12(int32_t delta, uint32_t w) {
  return static_cast<uint32_t>(static_cast<int32_t>(static_cast<uint32_t>(delta) * w) >> 12);
}

void applyDeltaQ12(const lut3d_info& base, lut3d_info& target, const int32_t* deltas, uint32_t w);

}  // namespace postblend
