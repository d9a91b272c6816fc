#include "tools/lib/LutApply.h"

#include <algorithm>
#include <cmath>

#include "tools/lib/DeviceGrid.h"

namespace pctool {

using snapdragoncolor::lut3d_info;

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

struct Node {
  double c[3];
};

Node node(const lut3d_info& lut, uint32_t r, uint32_t g, uint32_t b) {
  const auto& e = lut.entries[entryIndex(r, g, b)];
  return Node{{double(e.out[0]), double(e.out[1]), double(e.out[2])}};
}

}  // namespace

Rgb sampleLut(const lut3d_info& lut, const Rgb& in, Interp interp, NodeGrid grid) {
  uint32_t ir, ig, ib;
  double fr, fg, fb;
  locate(in.r, grid, ir, fr);
  locate(in.g, grid, ig, fg);
  locate(in.b, grid, ib, fb);
  const Node c000 = node(lut, ir, ig, ib), c111 = node(lut, ir + 1, ig + 1, ib + 1);
  double out[3];
  if (interp == Interp::Trilinear) {
    const Node c100 = node(lut, ir + 1, ig, ib), c010 = node(lut, ir, ig + 1, ib);
    const Node c001 = node(lut, ir, ig, ib + 1), c110 = node(lut, ir + 1, ig + 1, ib);
    const Node c101 = node(lut, ir + 1, ig, ib + 1), c011 = node(lut, ir, ig + 1, ib + 1);
    for (int k = 0; k < 3; ++k) {
      double x00 = c000.c[k] + (c100.c[k] - c000.c[k]) * fr;
      double x10 = c010.c[k] + (c110.c[k] - c010.c[k]) * fr;
      double x01 = c001.c[k] + (c101.c[k] - c001.c[k]) * fr;
      double x11 = c011.c[k] + (c111.c[k] - c011.c[k]) * fr;
      double y0 = x00 + (x10 - x00) * fg;
      double y1 = x01 + (x11 - x01) * fg;
      out[k] = y0 + (y1 - y0) * fb;
    }
  } else {
    // The cube splits into six tetrahedra along its grey diagonal; the order of the three
    // fractions picks the one that holds the point.
    Node a, b;
    double w0, w1, w2, w3;
    if (fr > fg) {
      if (fg > fb) {
        a = node(lut, ir + 1, ig, ib), b = node(lut, ir + 1, ig + 1, ib);
        w0 = 1 - fr, w1 = fr - fg, w2 = fg - fb, w3 = fb;
      } else if (fr > fb) {
        a = node(lut, ir + 1, ig, ib), b = node(lut, ir + 1, ig, ib + 1);
        w0 = 1 - fr, w1 = fr - fb, w2 = fb - fg, w3 = fg;
      } else {
        a = node(lut, ir, ig, ib + 1), b = node(lut, ir + 1, ig, ib + 1);
        w0 = 1 - fb, w1 = fb - fr, w2 = fr - fg, w3 = fg;
      }
    } else {
      if (fb > fg) {
        a = node(lut, ir, ig, ib + 1), b = node(lut, ir, ig + 1, ib + 1);
        w0 = 1 - fb, w1 = fb - fg, w2 = fg - fr, w3 = fr;
      } else if (fb > fr) {
        a = node(lut, ir, ig + 1, ib), b = node(lut, ir, ig + 1, ib + 1);
        w0 = 1 - fg, w1 = fg - fb, w2 = fb - fr, w3 = fr;
      } else {
        a = node(lut, ir, ig + 1, ib), b = node(lut, ir + 1, ig + 1, ib);
        w0 = 1 - fg, w1 = fg - fr, w2 = fr - fb, w3 = fb;
      }
    }
    for (int k = 0; k < 3; ++k) out[k] = w0 * c000.c[k] + w1 * a.c[k] + w2 * b.c[k] + w3 * c111.c[k];
  }
  return Rgb{out[0], out[1], out[2]};
}

void applyLut8(const lut3d_info& lut, const uint8_t* in, uint8_t* out, size_t pixels, Interp interp,
               NodeGrid grid) {
  auto to8 = [](double code) {
    double v = std::round(code / kFullScale * 255.0);
    return static_cast<uint8_t>(std::clamp(v, 0.0, 255.0));
  };
  for (size_t i = 0; i < pixels; ++i, in += 3, out += 3) {
    Rgb o = sampleLut(lut, Rgb{in[0] / 255.0, in[1] / 255.0, in[2] / 255.0}, interp, grid);
    out[0] = to8(o.r);
    out[1] = to8(o.g);
    out[2] = to8(o.b);
  }
}

}  // namespace pctool
