#include "tools/lib/tables/CellInterp.h"

namespace pctool {

const char* interpName(Interp interp) {
  return interp == Interp::Trilinear ? "trilinear" : "tetrahedral";
}

void interpolateCell(const double (&c)[8][3], double fr, double fg, double fb, Interp interp,
                     double (&out)[3]) {
  if (interp == Interp::Trilinear) {
    for (int k = 0; k < 3; ++k) {
      double x00 = c[0][k] + (c[1][k] - c[0][k]) * fr;
      double x10 = c[2][k] + (c[3][k] - c[2][k]) * fr;
      double x01 = c[4][k] + (c[5][k] - c[4][k]) * fr;
      double x11 = c[6][k] + (c[7][k] - c[6][k]) * fr;
      double y0 = x00 + (x10 - x00) * fg;
      double y1 = x01 + (x11 - x01) * fg;
      out[k] = y0 + (y1 - y0) * fb;
    }
    return;
  }
  // The cube splits into six tetrahedra along its grey diagonal; the order of the three
  // fractions picks the one that holds the point. Ties go the way grading tools send them.
  int a, b;
  double w0, w1, w2, w3;
  if (fr > fg) {
    if (fg > fb) {
      a = 1, b = 3, w0 = 1 - fr, w1 = fr - fg, w2 = fg - fb, w3 = fb;
    } else if (fr > fb) {
      a = 1, b = 5, w0 = 1 - fr, w1 = fr - fb, w2 = fb - fg, w3 = fg;
    } else {
      a = 4, b = 5, w0 = 1 - fb, w1 = fb - fr, w2 = fr - fg, w3 = fg;
    }
  } else {
    if (fb > fg) {
      a = 4, b = 6, w0 = 1 - fb, w1 = fb - fg, w2 = fg - fr, w3 = fr;
    } else if (fb > fr) {
      a = 2, b = 6, w0 = 1 - fg, w1 = fg - fb, w2 = fb - fr, w3 = fr;
    } else {
      a = 2, b = 3, w0 = 1 - fg, w1 = fg - fr, w2 = fr - fb, w3 = fb;
    }
  }
  for (int k = 0; k < 3; ++k) out[k] = w0 * c[0][k] + w1 * c[a][k] + w2 * c[b][k] + w3 * c[7][k];
}

}  // namespace pctool
