// Colour-space arithmetic over plain values: chromaticities to RGB-to-XYZ matrices, 3x3
// inversion, RGB triples through a matrix into 12-bit panel codes, and the grid tables that make
// the per-node conversion of a 3D table three reads and two additions per channel.
//
// Rules: single precision unless a step says double; every expression keeps the order it is
// written in (results must agree to the last bit on every CPU); every conversion ends in the
// same tail (a triple above 1 scaled down as a whole, then quantised to 0..4095). Nothing here
// logs, touches a file or keeps state between calls.
#pragma once

#include "postblend/color_records.h"

namespace postblend {
namespace fe {

constexpr int kGridLevels = (int)kLut3dGridSize;

// Row-major: m[r][c]; row r of a conversion matrix gives output channel r.
struct Mat3 {
  float m[3][3];
};

// (x, y) of red, green, blue and white: the layout of a target's first eight values.
struct Chromaticities {
  float xy[4][2];
};

// Rows (X/Y of R, G, B), (1, 1, 1), (Z/Y of R, G, B): the primaries at unit luminance.
Mat3 primaryMatrix(const Chromaticities& c);

// Adjugate over determinant. A determinant of exactly 0 sets only dst's diagonal to 1, leaves
// the rest of dst as it was and returns false: callers rely on that partial identity.
bool invert(const Mat3& src, Mat3& dst);

// The RGB-to-XYZ matrix from the inverse of primaryMatrix(c): each primary's column scaled so
// that RGB (1, 1, 1) is the white of c at Y = 1.
Mat3 scaleToWhite(const Chromaticities& c, const Mat3& primaryInverse);

// primaryMatrix, invert (into a zeroed matrix) and scaleToWhite in one.
Mat3 rgbToXyz(const Chromaticities& c);

// a * b, each element summed (k0 + k1) + k2.
Mat3 multiply(const Mat3& a, const Mat3& b);

// 12-bit sRGB codes in, 12-bit sRGB codes out.
void srgbCodesToPanel(const int rgb[3], const Mat3& m, int out[3]);
// Linear values in, 12-bit sRGB codes out.
void linearToPanel(const float linear[3], const Mat3& m, int out[3]);
// 12-bit codes decoded with the 2.2 power law, encoded with the power `gamma`.
void powerCodesToPanel(const int rgb[3], const Mat3& m, float gamma, int out[3]);

// Linear light of each grid level: the 2.2 power law, or the sRGB decode.
struct GridLinear {
  float v[kGridLevels];
};
GridLinear gridLinear(bool powerLaw);

// Each matrix element times each level's linear light, at kGridLevels * element + level.
struct GridProducts {
  float t[9 * kGridLevels];
};
GridProducts gridProducts(const Mat3& m, const GridLinear& grid);

// Grid levels (clamped to 0..16) in, 12-bit codes out; the output curve is the power `gamma`
// when `powerLaw`, else the sRGB encode.
void gridLevelsToPanel(const GridProducts& p, const unsigned level[3], float gamma, bool powerLaw,
                       int out[3]);

// Largest of three, unsigned comparison.
inline unsigned max3(unsigned a, unsigned b, unsigned c) {
  const unsigned m = a > b ? a : b;
  return m > c ? m : c;
}

}  // namespace fe
}  // namespace postblend
