// The hardware's 17-level grid: level i is code 256*i for i < 16 and 4095 for i = 16, so the
// last interval is 255 codes wide. Entry n = 289*b + 17*g + r.
#pragma once

#include <cstdint>
#include <string>

#include "base/LutGrid.h"
#include "postblend/color_records.h"

namespace pctool {

constexpr uint32_t kGrid = postblend::kLut3dGridSize;
constexpr uint32_t kEntries = postblend::kLut3dEntries;
constexpr double kFullScale = 4095.0;

inline uint32_t gridCode(uint32_t level) { return postblend::lutGridCode(level); }

inline uint32_t entryIndex(uint32_t r, uint32_t g, uint32_t b) {
  return postblend::lutEntryIndex(r, g, b);
}

// "(r,g,b)": the grid levels of table entry `index`.
inline std::string gridLevels(uint32_t index) {
  return "(" + std::to_string(index % kGrid) + "," + std::to_string(index / kGrid % kGrid) + "," +
         std::to_string(index / (kGrid * kGrid)) + ")";
}

// Header of a table as the plugin fills it, and the grid inputs of every entry; outputs untouched.
inline void setDeviceGrid(postblend::lut3d_info& lut, uint32_t lutId) {
  lut.flags = 0;
  lut.lut3d_id = lutId;
  lut.uniform = 1;
  lut.num_entries = kEntries;
  for (uint32_t b = 0; b < kGrid; ++b)
    for (uint32_t g = 0; g < kGrid; ++g)
      for (uint32_t r = 0; r < kGrid; ++r) {
        auto& e = lut.entries[entryIndex(r, g, b)];
        e.in[0] = gridCode(r);
        e.in[1] = gridCode(g);
        e.in[2] = gridCode(b);
      }
}

// A table whose outputs equal its inputs.
inline void setIdentity(postblend::lut3d_info& lut, uint32_t lutId) {
  setDeviceGrid(lut, lutId);
  for (auto& e : lut.entries)
    for (int c = 0; c < 3; ++c) e.out[c] = e.in[c];
}

}  // namespace pctool
