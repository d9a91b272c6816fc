#include "tools/lib/verify/PanelModel.h"

#include <cmath>

namespace pctool {

namespace {

Xyz odfXyz(const OpticalDataFile& odf, int at) {
  return Xyz{odf.values[at], odf.values[at + 1], odf.values[at + 2]};
}

}  // namespace

bool invert(const Mat3& s, Mat3& d) {
  double det = s[0][0] * (s[1][1] * s[2][2] - s[2][1] * s[1][2]) -
               s[0][1] * (s[1][0] * s[2][2] - s[1][2] * s[2][0]) +
               s[0][2] * (s[1][0] * s[2][1] - s[1][1] * s[2][0]);
  if (!std::isfinite(det) || std::fabs(det) < 1e-12) return false;
  double k = 1.0 / det;
  d[0][0] = (s[1][1] * s[2][2] - s[2][1] * s[1][2]) * k;
  d[0][1] = (s[0][2] * s[2][1] - s[0][1] * s[2][2]) * k;
  d[0][2] = (s[0][1] * s[1][2] - s[0][2] * s[1][1]) * k;
  d[1][0] = (s[1][2] * s[2][0] - s[1][0] * s[2][2]) * k;
  d[1][1] = (s[0][0] * s[2][2] - s[0][2] * s[2][0]) * k;
  d[1][2] = (s[1][0] * s[0][2] - s[0][0] * s[1][2]) * k;
  d[2][0] = (s[1][0] * s[2][1] - s[2][0] * s[1][1]) * k;
  d[2][1] = (s[2][0] * s[0][1] - s[0][0] * s[2][1]) * k;
  d[2][2] = (s[0][0] * s[1][1] - s[1][0] * s[0][1]) * k;
  return true;
}

Chroma chromaOf(const Xyz& c) {
  double s = c.X + c.Y + c.Z;
  if (!(std::fabs(s) > 0.0) || !std::isfinite(s)) return Chroma{};
  return Chroma{c.X / s, c.Y / s};
}

bool rgbToXyzMatrix(const Chroma (&p)[4], Mat3& m) {
  for (const auto& c : p)
    if (!(c.y > 0.0) || !std::isfinite(c.x) || !std::isfinite(c.y)) return false;
  Mat3 prim{};
  for (int i = 0; i < 3; ++i) {
    prim[0][i] = p[i].x / p[i].y;
    prim[1][i] = 1.0;
    prim[2][i] = (1.0 - p[i].x - p[i].y) / p[i].y;
  }
  Mat3 inv;
  if (!invert(prim, inv)) return false;
  const double w[3] = {p[3].x / p[3].y, 1.0, (1.0 - p[3].x - p[3].y) / p[3].y};
  for (int i = 0; i < 3; ++i) {
    double s = inv[i][0] * w[0] + inv[i][1] * w[1] + inv[i][2] * w[2];
    for (int r = 0; r < 3; ++r) m[r][i] = prim[r][i] * s;
  }
  return true;
}

Xyz apply(const Mat3& m, double r, double g, double b) {
  return Xyz{m[0][0] * r + m[0][1] * g + m[0][2] * b, m[1][0] * r + m[1][1] * g + m[1][2] * b,
             m[2][0] * r + m[2][1] * g + m[2][2] * b};
}

PanelModel::PanelModel(const OpticalDataFile& odf) {
  mWhite = odfXyz(odf, kOdfWhiteAt);
  mChroma[0] = chromaOf(odfXyz(odf, kOdfRedAt));
  mChroma[1] = chromaOf(odfXyz(odf, kOdfGreenAt));
  mChroma[2] = chromaOf(odfXyz(odf, kOdfBlueAt));
  mChroma[3] = chromaOf(mWhite);
  mValid = rgbToXyzMatrix(mChroma, mMatrix);
  if (!mValid) mNotes.push_back("panel primaries are degenerate: no colour model");

  mRamp.code[0] = 0;
  mRamp.Y[0] = 0;
  for (int k = 0; k < 7; ++k) {
    mRamp.code[k + 1] = 512.0 * (k + 1);
    mRamp.Y[k + 1] = odf.values[odfGreyYAt(6 - k)];  // grey index 6 is level 512
  }
  mRamp.code[8] = 4095;
  mRamp.Y[8] = mWhite.Y;

  // The panel follows (code / 4095) ^ g with g interpolated between the measured levels; this
  // stays faithful in the dark end where interpolating luminance itself would not.
  mUseRamp = mWhite.Y > 0.0 && std::isfinite(mWhite.Y);
  for (int k = 1; k < GreyRamp::kKnots && mUseRamp; ++k) {
    double rel = mRamp.Y[k] / mWhite.Y;
    if (!(mRamp.Y[k] > mRamp.Y[k - 1]) || !std::isfinite(rel) || rel > 1.0) mUseRamp = false;
  }
  if (mUseRamp) {
    for (int k = 1; k < 8; ++k) mExponent[k] = std::log(mRamp.Y[k] / mWhite.Y) / std::log(mRamp.code[k] / 4095.0);
    mExponent[0] = mExponent[1];
    mExponent[8] = mExponent[7];
  } else {
    for (double& e : mExponent) e = 2.2;
    mNotes.push_back("grey ramp is not increasing: a 2.2 power curve stands in for it");
  }
}

double PanelModel::toneCurve(double code) const {
  if (!(code > 0.0)) return 0.0;
  if (code >= 4095.0) return 1.0;
  int k = 0;
  while (k < GreyRamp::kKnots - 2 && code > mRamp.code[k + 1]) ++k;
  double t = (code - mRamp.code[k]) / (mRamp.code[k + 1] - mRamp.code[k]);
  double g = mExponent[k] + (mExponent[k + 1] - mExponent[k]) * t;
  return std::pow(code / 4095.0, g);
}

Xyz PanelModel::xyz(double r, double g, double b) const {
  return apply(mMatrix, toneCurve(r), toneCurve(g), toneCurve(b));
}

TargetModel::TargetModel(const TargetParm& t) {
  for (int i = 0; i < 4; ++i) mChroma[i] = Chroma{t.values[2 * i], t.values[2 * i + 1]};
  mValid = rgbToXyzMatrix(mChroma, mMatrix) && t.values[8] > 0.0f;
  if (t.values[8] > 0.0f) mDecode = 1.0 / static_cast<double>(t.values[8]);
}

Xyz TargetModel::xyz(double r, double g, double b) const {
  auto d = [this](double v) { return v > 0.0 ? std::pow(v > 1.0 ? 1.0 : v, mDecode) : 0.0; };
  return apply(mMatrix, d(r), d(g), d(b));
}

}  // namespace pctool
