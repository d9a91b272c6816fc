// Grey-level remapping: from the panel's measured grey ramp (eight knots) a per-code exponent
// g(k) is interpolated so that the panel's relative luminance at code k is (k/4095)^g(k); the
// table then gives, for each target code i, the panel code whose luminance follows the target
// curve (i/4095)^(1/p). Interpolation rule: (knot difference * step) in float, widened, times the
// double step reciprocal (or / 255.0), plus the widened base, narrowed once. The order of every
// operation is deliberate (results must agree to the last bit on every CPU).
#define LOG_TAG "PanelCorvaneFE"

#include <cmath>
#include <fstream>

#include "base/DeviceIo.h"
#include "base/Log.h"
#include "frontend/FloatOps.h"
#include "frontend/OdfLayout.h"
#include "frontend/PanelCorvaneFE.h"

namespace snapdragoncolor {

namespace {
constexpr int kSize = PanelCorvaneFE::kGammaSize;
constexpr int kLast = kSize - 1;  // 4095
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
// Luminance of grey level 512k (k = 1..7): grey step 8 - k of the ramp.
constexpr int knotIndex(int k) { return odf::greyLuminanceAt(8 - k); }
}  // namespace

void PanelCorvaneFE::GammaCorrection(OpticalDataFile odf, TargetParm target, unsigned int* table) {
  buildGammaTable(odf, target, false, table);
}

void PanelCorvaneFE::GammaCorrectionFinal(OpticalDataFile odf, TargetParm target,
                                          unsigned int* table) {
  buildGammaTable(odf, target, true, table);
}

void PanelCorvaneFE::buildGammaTable(const OpticalDataFile& odf, const TargetParm& target,
                                     bool final, unsigned int* table) {
  static const char* const kFn = "GammaCorrection";
  const GammaParamIndex& pi = final ? kFinal : kIntermediate;
  const float* tv = target.values;
  const bool verbose = !final && dbgOn(kDbgVerbose);

  float brightness[kSize] = {};
  float gamma[kSize];

  for (int k = 1; k <= 7; ++k) brightness[512 * k] = odf.values[knotIndex(k)];
  brightness[kLast] = odf.values[kWhiteY];
  const float W = brightness[kLast];
  if (verbose) {
    PC_LOGD_AS(kFn, "brightness[0] = %f\n\n", 0.0);
    for (int c = 512; c <= 3584; c += 512)
      PC_LOGD_AS(kFn, "brgihtness[%d] = %f\n\n", c, brightness[c]);
    PC_LOGD_AS(kFn, "brightness[4095] = %f\n\n", W);
  }

  // Knot exponents: ratio and its logarithm in float, denominator and quotient in double.
  for (int c = 512; c <= 3584; c += 512) {
    const double denom = log(fe::opaque((double)c / 4095.0));
    gamma[c] = (float)((double)logf(brightness[c] / W) / denom);
    if (verbose) PC_LOGD_AS(kFn, "gamma[%d] = %f\n\n", c, gamma[c]);
  }

  const float G = gamma[512];
  const float H = gamma[3584];
  gamma[0] = G + tv[kOffset0];
  gamma[256] = G + tv[kOffset256];
  if (verbose) {
    PC_LOGD_AS(kFn, "gamma[0] = %f\n\n", gamma[0]);
    PC_LOGD_AS(kFn, "gamma[256] = %f\n\n", gamma[256]);
  }

  // Dark end: two 256-code ramps through the offset exponents.
  for (int i = 1; i <= 255; ++i) {
    gamma[i] = interpolate(gamma[0], gamma[256], i, kStep256);
    gamma[256 + i] = interpolate(gamma[256], gamma[512], i, kStep256);
  }
  // 512-code intervals between measured knots up to 3072.
  for (int b = 512; b < 3072; b += 512) {
    for (int s = 1; s < 512; ++s) gamma[b + s] = interpolate(gamma[b], gamma[b + 512], s, kStep512);
  }
  // Tail knots, all relative to the measured exponent at 3584 before its own offset.
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

  // Inversion: one forward sweep; the cursor steps back by one after each hit.
  const double e = (double)(1.0f / tv[pi.exponent]);
  if (verbose) PC_LOGD_AS(kFn, "targetGamma is %f\n\n", e);
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

  if (!final && dbgOn(kDbgDump)) {
    std::ofstream out(devio::path("/data/vendor/display/gamma-4096.txt"),
                      std::ios::out | std::ios::trunc);
    for (int i = 0; i < kSize; ++i) out << i << ' ' << table[i] << std::endl;
  }
}

}  // namespace snapdragoncolor
