#include "tools/lib/tables/LutApply.h"

#include <algorithm>
#include <cmath>
#include <vector>

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

size_t applyLutToImage(const lut3d_info& lut, Image& img, ImageConversion& conversion, Interp interp,
                       NodeGrid grid) {
  const double max = img.maxValue();
  const size_t ch = static_cast<size_t>(img.channels);
  std::vector<double> row(size_t(img.width) * 3);
  size_t outside = 0;
  for (uint32_t y = 0; y < img.height; ++y) {
    uint16_t* px = img.samples.data() + size_t(y) * img.width * ch;
    for (size_t x = 0; x < img.width; ++x)
      for (size_t c = 0; c < 3; ++c) row[3 * x + c] = px[ch * x + c] / max;
    outside += conversion.convert(row.data(), img.width);
    for (size_t x = 0; x < img.width; ++x, px += ch) {
      const Rgb o = sampleLut(lut, Rgb{row[3 * x], row[3 * x + 1], row[3 * x + 2]}, interp, grid);
      const double code[3] = {o.r, o.g, o.b};
      for (int c = 0; c < 3; ++c)
        px[c] = img.depth == 16 ? uint16_t(std::lround(std::clamp(std::round(code[c]), 0.0, kFullScale) * 65535 / kFullScale))
                                : codeTo8(code[c]);
    }
  }
  return outside;
}

}  // namespace pctool
