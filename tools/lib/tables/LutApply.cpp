#include "tools/lib/tables/LutApply.h"

#include <algorithm>
#include <cmath>

#include "tools/lib/tables/DeviceGrid.h"

namespace pctool {

using postblend::lut3d_info;

namespace {

// Cell index (0..15) and the position inside the cell (0..1) of an input in 0..1.
void locate(double v, NodeGrid grid, uint32_t& cell, double& frac) {
  v = std::clamp(v, 0.0, 1.0);
  if (grid == NodeGrid::Uniform) {
    double x = v * (kGrid - 1);
    cell = std::min<uint32_t>(static_cast<uint32_t>(x), kGrid - 2);
    frac = x - cell;
    return;
  }
  double code = v * kFullScale;
  cell = std::min<uint32_t>(static_cast<uint32_t>(code / 256.0), kGrid - 2);
  double lo = gridCode(cell), hi = gridCode(cell + 1);
  frac = (code - lo) / (hi - lo);
}

}  // namespace

Rgb sampleLut(const lut3d_info& lut, const Rgb& in, Interp interp, NodeGrid grid) {
  uint32_t ir, ig, ib;
  double fr, fg, fb;
  locate(in.r, grid, ir, fr);
  locate(in.g, grid, ig, fg);
  locate(in.b, grid, ib, fb);
  double corner[8][3];
  for (uint32_t i = 0; i < 8; ++i) {
    const auto& e = lut.entries[entryIndex(ir + (i & 1), ig + ((i >> 1) & 1), ib + (i >> 2))];
    for (int k = 0; k < 3; ++k) corner[i][k] = e.out[k];
  }
  double out[3];
  interpolateCell(corner, fr, fg, fb, interp, out);
  return Rgb{out[0], out[1], out[2]};
}

uint8_t codeTo8(double code) {
  double v = std::round(code / kFullScale * 255.0);
  return static_cast<uint8_t>(std::clamp(v, 0.0, 255.0));
}

void applyLut8(const lut3d_info& lut, const uint8_t* in, uint8_t* out, size_t pixels, Interp interp,
               NodeGrid grid) {
  for (size_t i = 0; i < pixels; ++i, in += 3, out += 3) {
    Rgb o = sampleLut(lut, Rgb{in[0] / 255.0, in[1] / 255.0, in[2] / 255.0}, interp, grid);
    out[0] = codeTo8(o.r);
    out[1] = codeTo8(o.g);
    out[2] = codeTo8(o.b);
  }
}

void applyLutInPlace(const lut3d_info& lut, uint8_t* px, size_t pixels, int channels, Interp interp,
                     NodeGrid grid) {
  for (size_t i = 0; i < pixels; ++i, px += channels) applyLut8(lut, px, px, 1, interp, grid);
}

}  // namespace pctool
