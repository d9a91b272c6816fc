#include "tools/lib/verify/Verify.h"

#include <algorithm>
#include <cmath>

#include "base/PanelCorvaneBase.h"
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

Lab srgbCodeLab(const uint32_t (&c)[3]) {
  Xyz x = linearSrgbToXyz(srgbDecode(c[0] / kFullScale), srgbDecode(c[1] / kFullScale),
                          srgbDecode(c[2] / kFullScale));
  return xyzToLab(x, kD65);
}

De2000Stats de2000Stats(const lut3d_info& lut) {
  De2000Stats s;
  std::vector<NodeDe> all;
  all.reserve(kEntries);
  for (uint32_t i = 0; i < kEntries; ++i) {
    const auto& e = lut.entries[i];
    double de = ciede2000(srgbCodeLab(e.in), srgbCodeLab(e.out));
    all.push_back({i, {e.in[0], e.in[1], e.in[2]}, {e.out[0], e.out[1], e.out[2]}, de});
    s.mean += de;
  }
  s.mean /= kEntries;
  std::vector<double> sorted;
  sorted.reserve(kEntries);
  for (const auto& n : all) sorted.push_back(n.de);
  std::sort(sorted.begin(), sorted.end());
  // Nearest-rank 95th percentile.
  s.p95 = sorted[static_cast<size_t>(std::ceil(0.95 * kEntries)) - 1];
  s.max = sorted.back();
  std::stable_sort(all.begin(), all.end(),
                   [](const NodeDe& a, const NodeDe& b) { return a.de > b.de; });
  all.resize(10);
  s.worst = std::move(all);
  return s;
}

std::vector<ReferenceColour> referenceColours() {
  static const char* const kNames[21] = {
      "white",     "grey 224", "grey 192",   "grey 160", "grey 128",     "grey 96",
      "grey 64",   "grey 32",  "black",      "yellow",   "dark yellow",  "cyan",
      "dark cyan", "green",    "dark green", "magenta",  "dark magenta", "red",
      "dark red",  "blue",     "dark blue"};
  postblend::PanelCorvaneBase base;  // owns the plugin's reference colour table
  std::vector<ReferenceColour> out;
  for (int i = 0; i < postblend::PanelCorvaneBase::kNumRefColors; ++i)
    out.push_back(
        {kNames[i], {base.mRefColors[i][0], base.mRefColors[i][1], base.mRefColors[i][2]}});
  return out;
}

std::vector<uint32_t> greyRampLevels() {
  std::vector<uint32_t> v;
  for (uint32_t g = 0; g < 256; g += 16) v.push_back(g);
  v.push_back(255);
  return v;
}

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
