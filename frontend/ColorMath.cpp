// The order of every operation below is deliberate (results must agree to the last bit on every
// CPU); see ColorMath.h for the rules.
#include "frontend/ColorMath.h"

#include <cmath>

#include "frontend/FloatOps.h"

namespace postblend {
namespace fe {

namespace {
// out_r = m[r][0]*R + m[r][1]*G + m[r][2]*B, summed left to right.
void applyMatrix(const Mat3& mat, const float in[3], float out[3]) {
  const auto& m = mat.m;
  for (int r = 0; r < 3; ++r) out[r] = m[r][0] * in[0] + m[r][1] * in[1] + m[r][2] * in[2];
}
}  // namespace

Mat3 primaryMatrix(const Chromaticities& c) {
  Mat3 p;
  for (int k = 0; k < 3; ++k) {
    const float x = c.xy[k][0];
    const float y = c.xy[k][1];
    p.m[0][k] = x / y;
    p.m[1][k] = 1.0f;
    p.m[2][k] = ((1.0f - x) - y) / y;
  }
  return p;
}

bool invert(const Mat3& src, Mat3& dst) {
  const float* s = &src.m[0][0];
  // Expanded along the first column.
  const float c0 = s[4] * s[8] - s[7] * s[5];
  const float c1 = s[1] * s[8] - s[7] * s[2];
  const float c2 = s[1] * s[5] - s[4] * s[2];
  const float det = s[6] * c2 + (s[0] * c0 - s[3] * c1);
  auto& d = dst.m;
  if (det == 0.0f) {
    d[0][0] = 1.0f;
    d[1][1] = 1.0f;
    d[2][2] = 1.0f;
    return false;
  }
  d[0][0] = c0 / det;
  d[0][1] = -c1 / det;
  d[0][2] = c2 / det;
  d[1][0] = -(s[3] * s[8] - s[6] * s[5]) / det;
  d[1][1] = (s[0] * s[8] - s[6] * s[2]) / det;
  d[1][2] = -(s[0] * s[5] - s[3] * s[2]) / det;
  d[2][0] = (s[3] * s[7] - s[6] * s[4]) / det;
  d[2][1] = -(s[0] * s[7] - s[6] * s[1]) / det;
  d[2][2] = (s[0] * s[4] - s[3] * s[1]) / det;
  return true;
}

Mat3 scaleToWhite(const Chromaticities& c, const Mat3& primaryInverse) {
  const auto& inv = primaryInverse.m;
  const float xw = c.xy[3][0];
  const float yw = c.xy[3][1];
  const float Xw = xw / yw;
  const float Zw = ((1.0f - xw) - yw) / yw;
  float s[3];
  for (int r = 0; r < 3; ++r) s[r] = inv[r][0] * Xw + inv[r][1] + inv[r][2] * Zw;

  const Mat3 p = primaryMatrix(c);
  Mat3 out;
  for (int k = 0; k < 3; ++k) {
    out.m[0][k] = p.m[0][k] * s[k];
    out.m[1][k] = s[k];
    out.m[2][k] = p.m[2][k] * s[k];
  }
  return out;
}

Mat3 rgbToXyz(const Chromaticities& c) {
  Mat3 inv = {};
  invert(primaryMatrix(c), inv);
  return scaleToWhite(c, inv);
}

Mat3 multiply(const Mat3& a, const Mat3& b) {
  Mat3 out;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c)
      out.m[r][c] = a.m[r][0] * b.m[0][c] + a.m[r][1] * b.m[1][c] + a.m[r][2] * b.m[2][c];
  }
  return out;
}

void srgbCodesToPanel(const int rgb[3], const Mat3& m, int out[3]) {
  float in[3], v[3];
  for (int c = 0; c < 3; ++c) in[c] = srgbDecode((float)rgb[c] / 4095.0f);
  applyMatrix(m, in, v);
  for (int c = 0; c < 3; ++c) v[c] = srgbEncode(v[c]);
  normaliseAndQuantise(v, out);
}

void linearToPanel(const float linear[3], const Mat3& m, int out[3]) {
  float v[3];
  applyMatrix(m, linear, v);
  for (int c = 0; c < 3; ++c) v[c] = srgbEncode(v[c]);
  normaliseAndQuantise(v, out);
}

void powerCodesToPanel(const int rgb[3], const Mat3& m, float gamma, int out[3]) {
  const double decodeExp = opaque(2.2);
  float in[3], v[3];
  for (int c = 0; c < 3; ++c) in[c] = (float)pow((double)((float)rgb[c] / 4095.0f), decodeExp);
  applyMatrix(m, in, v);
  for (int c = 0; c < 3; ++c) v[c] = powf(v[c], gamma);
  normaliseAndQuantise(v, out);
}

GridLinear gridLinear(bool powerLaw) {
  const double decodeExp = opaque(2.2);
  GridLinear g;
  for (int i = 0; i < kGridLevels; ++i) {
    const float v = i == kGridLevels - 1 ? 1.0f : (float)(256 * i) / 4095.0f;
    g.v[i] = powerLaw ? (float)pow((double)v, decodeExp) : srgbDecode(v);
  }
  return g;
}

GridProducts gridProducts(const Mat3& m, const GridLinear& grid) {
  GridProducts p;
  for (int e = 0; e < 9; ++e) {
    const float k = m.m[e / 3][e % 3];
    for (int i = 0; i < kGridLevels; ++i) p.t[kGridLevels * e + i] = k * grid.v[i];
  }
  return p;
}

void gridLevelsToPanel(const GridProducts& p, const unsigned level[3], float gamma, bool powerLaw,
                       int out[3]) {
  constexpr unsigned kLast = kGridLevels - 1;
  unsigned i[3];
  for (int c = 0; c < 3; ++c) i[c] = level[c] < kLast ? level[c] : kLast;
  const float* t = p.t;
  float v[3];
  for (int r = 0; r < 3; ++r) {
    const float sum = t[(3 * r) * kGridLevels + i[0]] + t[(3 * r + 1) * kGridLevels + i[1]] +
                      t[(3 * r + 2) * kGridLevels + i[2]];
    v[r] = powerLaw ? powf(sum, gamma) : srgbEncode(sum);
  }
  normaliseAndQuantise(v, out);
}

}  // namespace fe
}  // namespace postblend
