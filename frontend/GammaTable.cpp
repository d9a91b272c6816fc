// See GammaTable.h for the rules; the order of every operation is deliberate.
#include "frontend/GammaTable.h"

#include <cmath>

#include "frontend/FloatOps.h"
#include "frontend/OdfLayout.h"

namespace postblend {
namespace fe {

namespace {
constexpr int kLast = kGammaSize - 1;  // 4095
constexpr double kStep512 = 0.001953125;
constexpr double kStep256 = 0.00390625;

float interpolate(float base, float next, int step, double reciprocal) {
  const float product = (next - base) * (float)step;
  return (float)((double)product * reciprocal + (double)base);
}

float interpolate255(float base, float next, int step) {
  const float product = (next - base) * (float)step;
  return (float)((double)product / 255.0 + (double)base);
}

// Target indices of the two passes' parameters.
struct GammaParamIndex {
  int off3328, off3584, off3840, off4095, exponent;
};
constexpr GammaParamIndex kIntermediate = {11, 12, 13, 14, 8};
constexpr GammaParamIndex kFinal = {16, 17, 18, 19, 15};
constexpr int kOffset0 = 9;
constexpr int kOffset256 = 10;
constexpr int kWhiteY = odf::greyLuminanceAt(0);
// Luminance of grey code 512k (k = 1..7): grey step 8 - k of the ramp.
constexpr int knotIndex(int k) { return odf::greyLuminanceAt(8 - k); }

using Curve = float[kGammaSize];

// Exponents at the measured knots 512..3584: ratio and its logarithm in float, denominator and
// quotient in double.
void measuredKnots(const PanelCorvaneBase::OpticalDataFile& odf, Curve gamma, GammaKnots& k) {
  k.white = odf.values[kWhiteY];
  for (int j = 1; j <= 7; ++j) {
    const int c = 512 * j;
    const float b = odf.values[knotIndex(j)];
    k.brightness[j - 1] = b;
    const double denom = log(opaque((double)c / 4095.0));
    gamma[c] = (float)((double)logf(b / k.white) / denom);
    k.knotGamma[j - 1] = gamma[c];
  }
}

// Codes 0..3072: two 256-code ramps through the dark-end offsets, then 512-code intervals
// between the measured knots.
void darkAndMiddle(const float* tv, Curve gamma, GammaKnots& k) {
  const float G = gamma[512];
  gamma[0] = G + tv[kOffset0];
  gamma[256] = G + tv[kOffset256];
  k.gamma0 = gamma[0];
  k.gamma256 = gamma[256];
  for (int i = 1; i <= 255; ++i) {
    gamma[i] = interpolate(gamma[0], gamma[256], i, kStep256);
    gamma[256 + i] = interpolate(gamma[256], gamma[512], i, kStep256);
  }
  for (int b = 512; b < 3072; b += 512) {
    for (int s = 1; s < 512; ++s) gamma[b + s] = interpolate(gamma[b], gamma[b + 512], s, kStep512);
  }
}

// Codes 3073..4094: the tail knots, all relative to the measured exponent at 3584 before its own
// offset, then 256-code intervals up to 3840 and one 255-code interval to 4095.
void tail(const float* tv, const GammaParamIndex& pi, Curve gamma) {
  const float H = gamma[3584];
  {
    const float product = (H - gamma[3072]) * 256.0f;
    gamma[3328] =
        (float)((double)tv[pi.off3328] + (double)product * (1.0 / 512) + (double)gamma[3072]);
  }
  gamma[3584] = H + tv[pi.off3584];
  gamma[3840] = H + tv[pi.off3840];
  gamma[kLast] = H + tv[pi.off4095];
  for (int b = 3072; b < 3840; b += 256) {
    for (int s = 1; s < 256; ++s) gamma[b + s] = interpolate(gamma[b], gamma[b + 256], s, kStep256);
  }
  for (int i = 1; i <= 254; ++i) gamma[3840 + i] = interpolate255(gamma[3840], gamma[kLast], i);
}

// One forward sweep; the cursor steps back by one after each hit.
void invert(const Curve gamma, double e, GammaTable& out) {
  unsigned int* table = out.code;
  table[0] = 0;
  table[kLast] = kLast;
  int k = 0;
  for (int i = 1; i < kLast; ++i) {
    const double t = (float)pow(i / 4095.0, e);
    // A NaN value or target stops the search as a larger value would.
    while (k <= kLast && pow(k / 4095.0, (double)gamma[k]) <= t) ++k;
    if (k > kLast) {
      table[i] = kLast;  // nothing larger up to full scale
    } else {
      k = k > 0 ? k - 1 : 0;  // a hit at code 0 (non-positive exponent there) stays at 0
      table[i] = (unsigned int)k;
    }
  }
}
}  // namespace

void buildGammaTable(const PanelCorvaneBase::OpticalDataFile& odf,
                     const PanelCorvaneBase::TargetParm& target, GammaPass pass, GammaTable& out,
                     GammaKnots* knots) {
  const GammaParamIndex& pi = pass == GammaPass::Final ? kFinal : kIntermediate;
  GammaKnots k;
  float gamma[kGammaSize];
  measuredKnots(odf, gamma, k);
  darkAndMiddle(target.values, gamma, k);
  tail(target.values, pi, gamma);
  k.targetGamma = (double)(1.0f / target.values[pi.exponent]);
  invert(gamma, k.targetGamma, out);
  if (knots != nullptr) *knots = k;
}

}  // namespace fe
}  // namespace postblend
