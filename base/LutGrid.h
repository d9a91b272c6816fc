// The 17-level grid of a lut3d_info: level i is code 256 * i for i below 16 and 4095 for i = 16
// (the last interval is 255 codes wide); entry n = 289 * b + 17 * g + r, red fastest.
#pragma once

#include <cstdint>

#include "postblend/color_records.h"

namespace postblend {

constexpr uint32_t kLutMaxCode = 4095;

constexpr uint32_t lutGridCode(uint32_t level) {
  return level >= kLut3dGridSize - 1 ? kLutMaxCode : 256u * level;
}

constexpr uint32_t lutEntryIndex(uint32_t r, uint32_t g, uint32_t b) {
  return (b * kLut3dGridSize + g) * kLut3dGridSize + r;
}

static_assert(lutEntryIndex(16, 16, 16) + 1 == kLut3dEntries, "entries fill the table");

}  // namespace postblend
