// Colour models used to predict what a calibrated panel shows: the panel as measured in its
// optical data, and a mode's target. Double precision; relative colorimetry with white Y = 1.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/colour/Ciede2000.h"

namespace pctool {

using Mat3 = std::array<std::array<double, 3>, 3>;

struct Chroma {
  double x = 0, y = 0;
};

// RGB-to-XYZ matrix of primaries red, green, blue and a white (white maps to Y = 1).
// False when the primaries are degenerate.
bool rgbToXyzMatrix(const Chroma (&rgbw)[4], Mat3& m);
Xyz apply(const Mat3& m, double r, double g, double b);
// False for a singular matrix.
bool invert(const Mat3& s, Mat3& d);

// The measured grey ramp: luminance at codes 0, 512, ..., 3584 and 4095.
struct GreyRamp {
  static constexpr int kKnots = 9;
  double code[kKnots];
  double Y[kKnots];
};

class PanelModel {
 public:
  // Primaries and white from the odf XYZ triples, tone curve from the grey ramp. When the ramp
  // is unusable (non-positive or non-monotonic luminance) a 2.2 power curve stands in and a
  // note says so; `valid` is false only when the primaries are degenerate.
  explicit PanelModel(const OpticalDataFile& odf);

  bool valid() const { return mValid; }
  const std::vector<std::string>& notes() const { return mNotes; }
  const Chroma (&chroma() const)[4] { return mChroma; }
  const GreyRamp& ramp() const { return mRamp; }
  const Xyz& whiteXyz() const { return mWhite; }

  // Relative luminance of one channel driven at a 12-bit code (0..4095, fractional allowed).
  double toneCurve(double code) const;
  // Relative XYZ of drive codes.
  Xyz xyz(double r, double g, double b) const;

 private:
  bool mValid = false;
  bool mUseRamp = false;
  std::vector<std::string> mNotes;
  Chroma mChroma[4];
  Xyz mWhite;
  GreyRamp mRamp;
  double mExponent[GreyRamp::kKnots];  // per knot: luminance = (code / 4095) ^ exponent
  Mat3 mMatrix{};
};

class TargetModel {
 public:
  // Chromaticities from values 0-7; input v (0..1) decodes to v ^ (1 / values[8]).
  explicit TargetModel(const TargetParm& target);
  bool valid() const { return mValid; }
  double decodeExponent() const { return mDecode; }
  const Chroma (&chroma() const)[4] { return mChroma; }
  Xyz xyz(double r01, double g01, double b01) const;
  Xyz whiteXyz() const { return apply(mMatrix, 1, 1, 1); }

 private:
  bool mValid = false;
  Chroma mChroma[4];
  double mDecode = 2.2;
  Mat3 mMatrix{};
};

Chroma chromaOf(const Xyz& c);

}  // namespace pctool
