// Table verification by colour difference: CIE 1976 dE*ab between each entry's input and
// output colour. Everything is single precision and written in the order it is evaluated;
// the order is deliberate (results must agree to the last bit on every CPU).
#define LOG_TAG "PanelCorvane"

#include "base/Algorithm.h"

#include <cmath>

#include "base/De76Report.h"
#include "base/Log.h"

namespace postblend {

namespace {

constexpr float kLabEpsilon = 0.008856f;
constexpr float kCubeRootExponent = 0.33333334f;

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
  const De76Report r = de76Report(lut);
  for (const De76Report::Far& f : r.far) {
    PC_LOGE("[%d] [%d, %d,%d --> %d,%d,%d]    %f\n", static_cast<int>(f.index),
            static_cast<int>(f.in[0]), static_cast<int>(f.in[1]), static_cast<int>(f.in[2]),
            static_cast<int>(f.out[0]), static_cast<int>(f.out[1]), static_cast<int>(f.out[2]),
            static_cast<double>(f.d));
  }
  for (int k = 0; k < De76Report::kBins; ++k) {
    PC_LOGE("[%d] = %d\n", k, static_cast<int>(r.bins[k]));
  }
  // The pass line ends in "%\n", an unfinished conversion that is part of the line; the
  // platform's printf decides what it shows.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
  PC_LOGE("< 50 : %d%\n", static_cast<int>(r.passPercent));
#pragma GCC diagnostic pop
  return r.pass ? 0 : -1;
}

}  // namespace postblend
