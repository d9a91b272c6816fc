// Colour-space kernel: primaries to XYZ matrices, 3x3 inversion, RGB triples through a matrix
// into quantised 12-bit panel codes, and the grid tables that make the per-node conversion of a
// 3D table three reads and two additions per channel. All single precision unless noted; the
// order of every operation is deliberate (results must agree to the last bit on every CPU).
#define LOG_TAG "PanelCorvaneFE"

#include <cmath>
#include <cstring>

#include "base/Log.h"
#include "frontend/FloatOps.h"
#include "frontend/PanelCorvaneFE.h"

namespace snapdragoncolor {

namespace {
constexpr int kLevels = PanelCorvaneFE::kGridLevels;

// out_r = m[r][0]*R + m[r][1]*G + m[r][2]*B, summed left to right.
void applyMatrix(float (*m)[3], const float in[3], float out[3]) {
  for (int r = 0; r < 3; ++r) out[r] = m[r][0] * in[0] + m[r][1] * in[1] + m[r][2] * in[2];
}
}  // namespace

void PanelCorvaneFE::RGB2XYZ_Matrix(float (*xy)[2], float (*m)[3]) {
  float a[3], c[3];
  for (int p = 0; p < 3; ++p) {
    const float x = xy[p][0];
    const float y = xy[p][1];
    a[p] = x / y;
    c[p] = ((1.0f - x) - y) / y;
  }
  float prim[3][3] = {{a[0], a[1], a[2]}, {1.0f, 1.0f, 1.0f}, {c[0], c[1], c[2]}};
  float inv[3][3] = {};
  inverseMatrix(prim, inv);

  const float xw = xy[3][0];
  const float yw = xy[3][1];
  const float Xw = xw / yw;
  const float Zw = ((1.0f - xw) - yw) / yw;
  float s[3];
  for (int r = 0; r < 3; ++r) s[r] = inv[r][0] * Xw + inv[r][1] + inv[r][2] * Zw;

  for (int p = 0; p < 3; ++p) {
    m[0][p] = a[p] * s[p];
    m[1][p] = s[p];
    m[2][p] = c[p] * s[p];
  }
  if (dbgOn(kDbgVerbose)) {
    for (int r = 0; r < 3; ++r) PC_LOGD("RGB2XYZ_Matrix %f %f %f\n", m[r][0], m[r][1], m[r][2]);
  }
}

void PanelCorvaneFE::inverseMatrix(float (*src)[3], float (*dst)[3]) {
  const bool verbose = dbgOn(kDbgVerbose);
  float s[9];
  std::memcpy(s, src, sizeof(s));
  if (verbose) {
    PC_LOGD("source matrix is:\n");
    for (int r = 0; r < 3; ++r) PC_LOGD("%f  %f  %f\n", s[3 * r], s[3 * r + 1], s[3 * r + 2]);
  }
  // Adjugate over determinant, expanded along the first column.
  const float c0 = s[4] * s[8] - s[7] * s[5];
  const float c1 = s[1] * s[8] - s[7] * s[2];
  const float c2 = s[1] * s[5] - s[4] * s[2];
  const float det = s[6] * c2 + (s[0] * c0 - s[3] * c1);
  if (det == 0.0f) {
    // Singular: only the diagonal is set, the rest of dst keeps what it held.
    dst[0][0] = 1.0f;
    dst[1][1] = 1.0f;
    dst[2][2] = 1.0f;
    return;
  }
  dst[0][0] = c0 / det;
  dst[0][1] = -c1 / det;
  dst[0][2] = c2 / det;
  dst[1][0] = -(s[3] * s[8] - s[6] * s[5]) / det;
  dst[1][1] = (s[0] * s[8] - s[6] * s[2]) / det;
  dst[1][2] = -(s[0] * s[5] - s[3] * s[2]) / det;
  dst[2][0] = (s[3] * s[7] - s[6] * s[4]) / det;
  dst[2][1] = -(s[0] * s[7] - s[6] * s[1]) / det;
  dst[2][2] = (s[0] * s[4] - s[3] * s[1]) / det;
  if (verbose) {
    PC_LOGD("inverse matrix is:\n");
    for (int r = 0; r < 3; ++r) PC_LOGD(" %f  %f  %f\n", dst[r][0], dst[r][1], dst[r][2]);
  }
}

void PanelCorvaneFE::nonlinearRGB2Panel(int* rgb, float (*m)[3], int* out) {
  float in[3], v[3];
  for (int c = 0; c < 3; ++c) in[c] = fe::srgbDecode((float)rgb[c] / 4095.0f);
  applyMatrix(m, in, v);
  for (int c = 0; c < 3; ++c) v[c] = fe::srgbEncode(v[c]);
  fe::normaliseAndQuantise(v, out);
}

void PanelCorvaneFE::nonlinearRGB2Panel(float* linear, float (*m)[3], int* out) {
  float v[3];
  applyMatrix(m, linear, v);
  for (int c = 0; c < 3; ++c) v[c] = fe::srgbEncode(v[c]);
  fe::normaliseAndQuantise(v, out);
}

void PanelCorvaneFE::nonlinearRGB2Panel(int* rgb, float (*m)[3], float gamma, int* out) {
  const double decodeExp = fe::opaque(2.2);
  float in[3], v[3];
  for (int c = 0; c < 3; ++c) in[c] = (float)pow((double)((float)rgb[c] / 4095.0f), decodeExp);
  applyMatrix(m, in, v);
  for (int c = 0; c < 3; ++c) v[c] = powf(v[c], gamma);
  fe::normaliseAndQuantise(v, out);
}

void PanelCorvaneFE::nonlinearRGB2Panel(unsigned int* level, float (* /*m*/)[3], float gamma,
                                        int* out) {
  unsigned int i[3];
  for (int c = 0; c < 3; ++c) i[c] = level[c] < kLevels ? level[c] : kLevels - 1;
  const float* t = preCalLutRGB;
  const bool powerLaw = sIsGammaCorrectionOn;
  float v[3];
  for (int r = 0; r < 3; ++r) {
    const float sum = t[(3 * r) * kLevels + i[0]] + t[(3 * r + 1) * kLevels + i[1]] +
                      t[(3 * r + 2) * kLevels + i[2]];
    v[r] = powerLaw ? powf(sum, gamma) : fe::srgbEncode(sum);
  }
  fe::normaliseAndQuantise(v, out);
}

void PanelCorvaneFE::initPreCalLut3D() {
  const bool powerLaw = sIsGammaCorrectionOn;
  const double decodeExp = fe::opaque(2.2);
  for (int i = 0; i < kLevels; ++i) {
    const float v = i == kLevels - 1 ? 1.0f : (float)(256 * i) / 4095.0f;
    preCalLut3D[i] = powerLaw ? (float)pow((double)v, decodeExp) : fe::srgbDecode(v);
  }
}

void PanelCorvaneFE::initPreCalLutRGB(float (*m)[3]) {
  for (int e = 0; e < 9; ++e) {
    const float k = m[e / 3][e % 3];
    for (int i = 0; i < kLevels; ++i) preCalLutRGB[kLevels * e + i] = k * preCalLut3D[i];
  }
}

unsigned PanelCorvaneFE::max(unsigned a, unsigned b, unsigned c) {
  unsigned m = a > b ? a : b;
  return m > c ? m : c;
}

}  // namespace snapdragoncolor
