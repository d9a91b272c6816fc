#include "tools/lib/verify/Prediction.h"

#include <algorithm>

#include "tools/lib/colour/ReferenceColours.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/tables/LutApply.h"
#include "tools/lib/verify/PanelModel.h"

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

bool predict(const lut3d_info& lut, const OpticalDataFile& odf, const TargetParm& target,
             Prediction& out, std::string& error) {
  out = Prediction{};
  PanelModel panel(odf);
  TargetModel goal(target);
  if (!panel.valid()) {
    error = "panel primaries in the optical data are degenerate";
    return false;
  }
  if (!goal.valid()) {
    error = "target chromaticities or exponent are unusable";
    return false;
  }
  out.notes = panel.notes();
  out.targetDecodeExponent = goal.decodeExponent();
  // Both sides are judged against the target's white, so a white-point error counts.
  const Xyz white = goal.whiteXyz();
  auto one = [&](const std::string& name, uint32_t r, uint32_t g, uint32_t b) {
    ColourPrediction c;
    c.name = name;
    c.rgb[0] = r, c.rgb[1] = g, c.rgb[2] = b;
    Rgb in{r / 255.0, g / 255.0, b / 255.0};
    Rgb o = sampleLut(lut, in, Interp::Trilinear, NodeGrid::Device);
    c.outCodes[0] = o.r, c.outCodes[1] = o.g, c.outCodes[2] = o.b;
    c.target = xyzToLab(goal.xyz(in.r, in.g, in.b), white);
    c.predicted = xyzToLab(panel.xyz(o.r, o.g, o.b), white);
    Lab raw = xyzToLab(panel.xyz(in.r * kFullScale, in.g * kFullScale, in.b * kFullScale), white);
    c.de = ciede2000(c.target, c.predicted);
    c.deUncalibrated = ciede2000(c.target, raw);
    return c;
  };
  for (const auto& rc : referenceColours())
    out.reference.push_back(one(rc.name, rc.rgb[0], rc.rgb[1], rc.rgb[2]));
  for (uint32_t g : greyRampLevels()) out.grey.push_back(one("grey " + std::to_string(g), g, g, g));
  out.referenceSummary = summarise(out.reference);
  out.greySummary = summarise(out.grey);
  return true;
}

}  // namespace pctool
