#include "tools/lib/tables/CubeResample.h"

#include <algorithm>
#include <cmath>

#include "tools/lib/tables/DeviceGrid.h"

namespace pctool {

namespace {

// Cell (0..n-2) and position inside it of device level `level` on a uniform grid of n nodes.
void locate(uint32_t level, uint32_t n, uint32_t& cell, double& frac) {
  const double x = gridCode(level) / kFullScale * (n - 1);
  cell = std::min<uint32_t>(static_cast<uint32_t>(x), n - 2);
  frac = x - cell;
}

uint32_t toCode(double v) {
  return static_cast<uint32_t>(std::lround(std::clamp(v, 0.0, 1.0) * kFullScale));
}

}  // namespace

void resampleCube(const CubeTable& cube, Interp interp, postblend::lut3d_info& lut) {
  const uint32_t n = cube.size;
  uint32_t cell[kGrid];
  double frac[kGrid];
  for (uint32_t i = 0; i < kGrid; ++i) locate(i, n, cell[i], frac[i]);

  if (cube.dims == 1) {
    // Per channel: the output of channel c depends on the input of channel c only.
    uint32_t curve[3][kGrid];
    for (uint32_t i = 0; i < kGrid; ++i)
      for (int c = 0; c < 3; ++c) {
        const double lo = cube.values[3 * cell[i] + c], hi = cube.values[3 * (cell[i] + 1) + c];
        curve[c][i] = toCode(lo + (hi - lo) * frac[i]);
      }
    for (uint32_t b = 0; b < kGrid; ++b)
      for (uint32_t g = 0; g < kGrid; ++g)
        for (uint32_t r = 0; r < kGrid; ++r) {
          auto& e = lut.entries[entryIndex(r, g, b)];
          e.out[0] = curve[0][r], e.out[1] = curve[1][g], e.out[2] = curve[2][b];
        }
    return;
  }

  auto row = [&](uint32_t r, uint32_t g, uint32_t b) {
    return &cube.values[3 * ((size_t(b) * n + g) * n + r)];
  };
  for (uint32_t b = 0; b < kGrid; ++b)
    for (uint32_t g = 0; g < kGrid; ++g)
      for (uint32_t r = 0; r < kGrid; ++r) {
        double corner[8][3];
        for (uint32_t i = 0; i < 8; ++i) {
          const double* v = row(cell[r] + (i & 1), cell[g] + ((i >> 1) & 1), cell[b] + (i >> 2));
          for (int k = 0; k < 3; ++k) corner[i][k] = v[k];
        }
        double out[3];
        interpolateCell(corner, frac[r], frac[g], frac[b], interp, out);
        auto& e = lut.entries[entryIndex(r, g, b)];
        for (int k = 0; k < 3; ++k) e.out[k] = toCode(out[k]);
      }
}

std::string resampleNote(uint32_t dims, uint32_t size, Interp interp) {
  if (dims == 1) return "resampled from a 1D table of " + std::to_string(size) + " entries (linear)";
  return "resampled from " + std::to_string(size) + " nodes (" + interpName(interp) + ")";
}

}  // namespace pctool
