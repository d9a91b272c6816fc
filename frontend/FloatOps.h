// Scalar pieces shared by the front end's arithmetic: the sRGB curve, the quantisation tail and
// a guard that keeps the C library's pow/log from being evaluated at compile time.
#pragma once

#include <cmath>

namespace postblend {
namespace fe {

// The compiler would fold pow/log of constant arguments with its own (differently rounded)
// arithmetic; passing one argument through a volatile keeps the call at run time.
inline double opaque(double v) {
  volatile double x = v;
  return x;
}
inline float opaquef(float v) {
  volatile float x = v;
  return x;
}

// sRGB transfer pieces, single precision with the standard's constants.
inline float srgbDecode(float v) {
  if (v > 0.04045f) return powf((v + 0.055f) / 1.055f, opaquef(2.4f));
  return v / 12.92f;
}
inline float srgbEncode(float v) {
  if (v > 0.0031308f) return powf(v, opaquef(0.41666666f)) * 1.055f + (-0.055f);
  return v * 12.92f;
}

// (int)((double)(v * 4095.0f) + 0.5) clamped to 0..4095, with NaN and out-of-range values
// mapped where the clamp would put them instead of converting them (undefined behaviour).
inline int quantize12(float v) {
  const double d = (double)(v * 4095.0f) + 0.5;
  if (!(d >= 0.0)) return 0;  // NaN, and anything that truncates to 0 or below
  if (d >= 4096.0) return 4095;
  return (int)d;
}

// Common tail of every conversion: scale a triple whose largest component exceeds 1 down as a
// whole (hue kept, negatives untouched), then quantise. The comparison form decides which
// component wins when one is NaN and must stay as written.
inline void normaliseAndQuantise(float v[3], int* out) {
  float mx = v[0] > v[1] ? v[0] : v[1];
  mx = mx > v[2] ? mx : v[2];
  if (mx > 1.0f) {
    v[0] = v[0] / mx;
    v[1] = v[1] / mx;
    v[2] = v[2] / mx;
  }
  for (int c = 0; c < 3; ++c) out[c] = quantize12(v[c]);
}

}  // namespace fe
}  // namespace postblend
