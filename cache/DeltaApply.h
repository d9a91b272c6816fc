// The inner loop of brightness interpolation: target.out = base.out + ((delta * w) >> 12) for
// every entry and channel, deltas planar (all red, then green, then blue). Input words and
// headers of `target` are left alone.
#pragma once

#include <cstdint>

#include "postblend/color_records.h"

namespace postblend {

void applyDeltaQ12(const lut3d_info& base, lut3d_info& target, const int32_t* deltas, uint32_t w);

}  // namespace postblend
