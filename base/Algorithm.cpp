// Table verification by colour difference: CIE 1976 dE*ab between each entry's input and
// output colour. Everything is single precision and written in the order it is evaluated;
// the order is deliberate (results must agree to the last bit on every CPU).
#define LOG_TAG "PanelCorvane"

#include "base/Algorithm.h"

#include <cmath>

#include "base/Log.h"

namespace snapdragoncolor {

namespace {

constexpr float kLabEpsilon = 0.008856f;
constexpr float kCubeRootExponent = 0.33333334f;
constexpr double kReportAbove = 50.0;
constexpr int kBins = 10;
constexpr int kPassBins = 5;            // bins 0-4 hold the distances below 50
constexpr int kPassThreshold = 393040;  // 80 % of 4913 entries, times 100

struct Lab {
  float L;
  float a;
  float b;
};

float labF(float t) {
  return t > kLabEpsilon ? powf(t, kCubeRootExponent) : 7.787f * t + 0.13793103f;
}

// Linear sRGB (D65) to L*a*b*; no transfer function, Y is not normalised.
Lab toLab(float r, float g, float b) {
  const float X = 0.4124564f * r + 0.3575761f * g + 0.1804375f * b;
  const float Y = 0.2126729f * r + 0.7151522f * g + 0.072175f * b;
  const float Z = 0.0193339f * r + 0.119192f * g + 0.9503041f * b;
  const float fx = labF(X / 0.950456f);
  const float fy = labF(Y);
  const float fz = labF(Z / 1.088754f);
  float L = 116.0f * fy - 16.0f;
  if (!(L > 0.0f)) L = 0.0f;  // negative results and negative zero alike
  return {L, 500.0f * (fx - fy), 200.0f * (fy - fz)};
}

float unit(uint32_t code) { return static_cast<float>(code / 4095.0); }

}  // namespace

float Algorithm::DeltaE76(float r1, float g1, float b1, float r2, float g2, float b2) {
  const Lab c1 = toLab(r1, g1, b1);
  const Lab c2 = toLab(r2, g2, b2);
  const float dL = c1.L - c2.L;
  const float da = c1.a - c2.a;
  const float db = c1.b - c2.b;
  return sqrtf(dL * dL + da * da + db * db);
}

int Algorithm::check3DLut(lut3d_info& lut) {
  int bins[kBins] = {};
  for (uint32_t i = 0; i < kLut3dEntries; ++i) {
    const lut3d_entry& e = lut.entries[i];
    const float d = DeltaE76(unit(e.in[0]), unit(e.in[1]), unit(e.in[2]), unit(e.out[0]),
                             unit(e.out[1]), unit(e.out[2]));
    if (d > kReportAbove) {
      PC_LOGE("[%d] [%d, %d,%d --> %d,%d,%d]    %f\n", static_cast<int>(i),
              static_cast<int>(e.in[0]), static_cast<int>(e.in[1]), static_cast<int>(e.in[2]),
              static_cast<int>(e.out[0]), static_cast<int>(e.out[1]), static_cast<int>(e.out[2]),
              static_cast<double>(d));
    }
    const double tens = d / 10.0;
    const int bin = tens < kBins - 1 ? static_cast<int>(tens) : kBins - 1;  // NaN lands in 9
    ++bins[bin < 0 ? 0 : bin];
  }
  for (int k = 0; k < kBins; ++k) PC_LOGE("[%d] = %d\n", k, bins[k]);
  int pass = 0;
  for (int k = 0; k < kPassBins; ++k) pass += bins[k];
  pass *= 100;
  // The pass line ends in "%\n" as it always has; the platform's printf decides what it shows.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
  PC_LOGE("< 50 : %d%\n", pass / static_cast<int>(kLut3dEntries));
#pragma GCC diagnostic pop
  return pass < kPassThreshold ? -1 : 0;
}

}  // namespace snapdragoncolor
