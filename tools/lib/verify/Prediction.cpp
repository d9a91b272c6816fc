#include "tools/lib/verify/Prediction.h"

#include <algorithm>
#include <cmath>

#include "tools/lib/colour/Cct.h"
#include "tools/lib/colour/ReferenceColours.h"
#include "tools/lib/measurements/PatchSets.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/tables/LutApply.h"

namespace pctool {

using postblend::lut3d_info;

namespace {

PredictionSummary summarise(const std::vector<ColourPrediction>& v) {
  PredictionSummary s;
  if (v.empty()) return s;
  for (const auto& c : v) {
    s.mean += c.de;
    s.meanUncalibrated += c.deUncalibrated;
    s.max = std::max(s.max, c.de);
    s.maxUncalibrated = std::max(s.maxUncalibrated, c.deUncalibrated);
  }
  s.mean /= v.size();
  s.meanUncalibrated /= v.size();
  return s;
}

}  // namespace

WhitePoint whitePoint(const Xyz& c) {
  const Chroma ch = chromaOf(c);
  const Cct t = cctOf(ch.x, ch.y);
  return {c.Y, ch.x, ch.y, t.kelvin, t.duv};
}

Predictor::Predictor(const lut3d_info& lut, const OpticalDataFile& odf, const TargetParm& target)
    : mLut(lut), mPanel(odf), mGoal(target) {}

bool Predictor::valid(std::string& error) const {
  if (!mPanel.valid()) {
    error = "panel primaries in the optical data are degenerate";
    return false;
  }
  if (!mGoal.valid()) {
    error = "target chromaticities or exponent are unusable";
    return false;
  }
  return true;
}

ColourPrediction Predictor::colour(const std::string& name, double r, double g, double b) const {
  ColourPrediction c;
  c.name = name;
  const double in[3] = {r, g, b};
  for (int k = 0; k < 3; ++k) {
    c.signal[k] = in[k];
    c.rgb[k] = static_cast<uint32_t>(std::lround(std::clamp(in[k], 0.0, 1.0) * 255));
  }
  const Rgb o = sampleLut(mLut, Rgb{r, g, b}, Interp::Trilinear, NodeGrid::Device);
  c.outCodes[0] = o.r, c.outCodes[1] = o.g, c.outCodes[2] = o.b;
  // Both sides are judged against the target's white, so a white-point error counts.
  const Xyz white = mGoal.whiteXyz();
  c.target = xyzToLab(mGoal.xyz(r, g, b), white);
  c.predictedXyz = mPanel.xyz(o.r, o.g, o.b);
  c.predicted = xyzToLab(c.predictedXyz, white);
  const Lab raw = xyzToLab(mPanel.xyz(r * kFullScale, g * kFullScale, b * kFullScale), white);
  c.de = ciede2000(c.target, c.predicted);
  c.deUncalibrated = ciede2000(c.target, raw);
  return c;
}

bool predict(const lut3d_info& lut, const OpticalDataFile& odf, const TargetParm& target,
             Prediction& out, std::string& error) {
  out = Prediction{};
  const Predictor p(lut, odf, target);
  if (!p.valid(error)) return false;
  out.notes = p.panel().notes();
  out.targetDecodeExponent = p.target().decodeExponent();
  out.lowestLevelExponent = std::log(p.panel().toneCurve(512)) / std::log(512 / 4095.0);
  for (const auto& rc : referenceColours())
    out.reference.push_back(p.colour(rc.name, rc.rgb[0] / 255.0, rc.rgb[1] / 255.0, rc.rgb[2] / 255.0));
  for (uint32_t g : greyRampLevels()) out.grey.push_back(p.colour("grey " + std::to_string(g), g / 255.0, g / 255.0, g / 255.0));
  for (int g : kVerifyNearBlackLevels)
    out.nearBlack.push_back(p.colour("grey " + std::to_string(g), g / 255.0, g / 255.0, g / 255.0));
  out.referenceSummary = summarise(out.reference);
  out.greySummary = summarise(out.grey);

  const Xyz& w = p.panel().whiteXyz();
  const Xyz through = p.colour("white", 1, 1, 1).predictedXyz;
  out.white.panel = whitePoint(w);
  out.white.calibrated = whitePoint({through.X * w.Y, through.Y * w.Y, through.Z * w.Y});
  out.white.target = whitePoint(p.target().whiteXyz());
  out.white.target.Y = NAN;
  out.white.costPercent = std::fabs(through.Y - 1) < 5e-4 ? 0 : 100 * (1 - through.Y);  // never "-0.0 %"
  return true;
}

}  // namespace pctool
