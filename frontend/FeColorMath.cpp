// PanelCorvaneFE's colour-space operations: the arithmetic of ColorMath.h behind the front end's
// interface; the log mask and the gamma-correction switch are read here, not in the arithmetic.
#define LOG_TAG "PanelCorvaneFE"

#include <cstring>

#include "base/Log.h"
#include "frontend/ColorMath.h"
#include "frontend/NumericLog.h"
#include "frontend/PanelCorvaneFE.h"

namespace postblend {

namespace {
fe::Mat3 toMat3(const float (*m)[3]) {
  fe::Mat3 out;
  std::memcpy(out.m, m, sizeof(out.m));
  return out;
}

void fromMat3(const fe::Mat3& in, float (*m)[3]) { std::memcpy(m, in.m, sizeof(in.m)); }

fe::Chromaticities toChromaticities(const float (*xy)[2]) {
  fe::Chromaticities c;
  std::memcpy(c.xy, xy, sizeof(c.xy));
  return c;
}
}  // namespace

void PanelCorvaneFE::RGB2XYZ_Matrix(float (*xy)[2], float (*m)[3]) {
  const fe::Chromaticities c = toChromaticities(xy);
  fe::Mat3 prim = fe::primaryMatrix(c);
  float inv[3][3] = {};
  inverseMatrix(prim.m, inv);
  const fe::Mat3 result = fe::scaleToWhite(c, toMat3(inv));
  fromMat3(result, m);
  if (dbgOn(kDbgVerbose)) felog::rgbToXyz(result);
}

void PanelCorvaneFE::inverseMatrix(float (*src)[3], float (*dst)[3]) {
  const bool verbose = dbgOn(kDbgVerbose);
  const fe::Mat3 s = toMat3(src);
  fe::Mat3 d = toMat3(dst);  // a singular source keeps dst's off-diagonal elements
  const bool regular = fe::invert(s, d);
  fromMat3(d, dst);
  if (verbose) felog::inversion(s, regular ? &d : nullptr);
}

void PanelCorvaneFE::nonlinearRGB2Panel(int* rgb, float (*m)[3], int* out) {
  fe::srgbCodesToPanel(rgb, toMat3(m), out);
}

void PanelCorvaneFE::nonlinearRGB2Panel(float* linear, float (*m)[3], int* out) {
  fe::linearToPanel(linear, toMat3(m), out);
}

void PanelCorvaneFE::nonlinearRGB2Panel(int* rgb, float (*m)[3], float gamma, int* out) {
  fe::powerCodesToPanel(rgb, toMat3(m), gamma, out);
}

void PanelCorvaneFE::nonlinearRGB2Panel(unsigned int* level, float (* /*m*/)[3], float gamma,
                                        int* out) {
  fe::GridProducts p;
  std::memcpy(p.t, preCalLutRGB, sizeof(p.t));
  fe::gridLevelsToPanel(p, level, gamma, sIsGammaCorrectionOn, out);
}

void PanelCorvaneFE::initPreCalLut3D() {
  const fe::GridLinear g = fe::gridLinear(sIsGammaCorrectionOn);
  std::memcpy(preCalLut3D, g.v, sizeof(preCalLut3D));
}

void PanelCorvaneFE::initPreCalLutRGB(float (*m)[3]) {
  fe::GridLinear g;
  std::memcpy(g.v, preCalLut3D, sizeof(g.v));
  const fe::GridProducts p = fe::gridProducts(toMat3(m), g);
  std::memcpy(preCalLutRGB, p.t, sizeof(preCalLutRGB));
}

unsigned PanelCorvaneFE::max(unsigned a, unsigned b, unsigned c) { return fe::max3(a, b, c); }

}  // namespace postblend
