#include "tools/lib/verify/MeasuredVerify.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "tools/lib/colour/ReferenceColours.h"
#include "tools/lib/measurements/PatchMatch.h"
#include "tools/lib/verify/PanelModel.h"

namespace pctool {

namespace {

MeasuredSummary summarise(const std::vector<MeasuredColour>& v) {
  MeasuredSummary s;
  if (v.empty()) return s;
  std::vector<size_t> order(v.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return v[a].de > v[b].de; });
  for (const auto& c : v) s.mean += c.de;
  s.mean /= v.size();
  s.max = v[order.front()].de;
  // Nearest-rank 95th percentile, as the table statistics.
  const size_t rank = static_cast<size_t>(std::ceil(0.95 * v.size()));
  s.p95 = v[order[v.size() - rank]].de;
  order.resize(std::min<size_t>(order.size(), 10));
  s.worst = order;
  return s;
}

}  // namespace

double greyGamma(double level, double relY) {
  if (!(level > 0 && level < 255) || !(relY > 0)) return NAN;
  return std::log(relY) / std::log(level / 255.0);
}

bool checkMeasured(const Measurements& m, const TargetParm& target, MeasuredCheck* out, std::string* error,
                   const std::vector<Patch>* chart, const std::string& chartName) {
  *out = MeasuredCheck{};
  out->source = m.source;
  out->chart = chart ? chartName : "";
  out->absolute = m.absolute;
  TargetModel goal(target);
  if (!goal.valid()) {
    if (error) *error = "target chromaticities or exponent are unusable";
    return false;
  }
  const std::vector<Patch> set = chart ? *chart : verifyPatches();
  std::vector<PatchReading> r;
  if (!matchReadings(m, set, chart ? "the chart " + chartName : "the verification patches", &r, error)) return false;
  const double whiteRgb[3] = {100, 100, 100}, blackRgb[3] = {0, 0, 0};
  const Xyz white = r[static_cast<size_t>(patchIndex(set, whiteRgb))].xyz;
  if (!(white.Y > 0)) {
    if (error) *error = m.source + ":" + std::to_string(m.tableLine) + ": the white reading has no luminance";
    return false;
  }
  out->white = whitePoint(white);
  const int black = patchIndex(set, blackRgb);
  if (black >= 0 && r[static_cast<size_t>(black)].readings > 0) {
    out->hasBlack = true;
    out->blackY = r[static_cast<size_t>(black)].xyz.Y;
  }
  const Xyz targetWhite = goal.whiteXyz();
  // Colour `i` of the set, driven at `signal` (0..1).
  auto colour = [&](size_t i, const std::string& name, const double (&signal)[3]) {
    MeasuredColour c;
    c.name = name;
    const Xyz& x = r[i].xyz;
    const double k = 1.0 / white.Y;
    for (int ch = 0; ch < 3; ++ch) {
      c.percent[ch] = set[i].rgb[ch];
      c.rgb[ch] = static_cast<uint32_t>(std::lround(std::clamp(signal[ch], 0.0, 1.0) * 255));
    }
    c.measured = xyzToLab({x.X * k, x.Y * k, x.Z * k}, targetWhite);
    c.relY = x.Y * k;
    c.target = xyzToLab(goal.xyz(signal[0], signal[1], signal[2]), targetWhite);
    c.de = ciede2000(c.target, c.measured);
    c.predictedDe = c.predictedY = NAN;
    c.readings = r[i].readings;
    return c;
  };
  if (chart) {
    for (size_t i = 0; i < set.size(); ++i) {
      const double signal[3] = {set[i].rgb[0] / 100, set[i].rgb[1] / 100, set[i].rgb[2] / 100};
      out->chartPatches.push_back(colour(i, set[i].name, signal));
    }
    out->chartSummary = summarise(out->chartPatches);
    return true;
  }
  // An 8-bit colour of the verification patches; false when it is optional and was not read.
  auto eight = [&](const std::string& name, uint32_t rr, uint32_t gg, uint32_t bb, std::vector<MeasuredColour>* to) {
    const Patch p = writtenPatch(name, 100.0 * rr / 255, 100.0 * gg / 255, 100.0 * bb / 255);
    const size_t i = static_cast<size_t>(patchIndex(set, p.rgb));
    const double signal[3] = {rr / 255.0, gg / 255.0, bb / 255.0};
    if (r[i].readings > 0) to->push_back(colour(i, name, signal));
  };
  for (const auto& rc : referenceColours()) eight(rc.name, rc.rgb[0], rc.rgb[1], rc.rgb[2], &out->reference);
  for (uint32_t g : greyRampLevels()) eight("grey " + std::to_string(g), g, g, g, &out->grey);
  for (int g : kVerifyNearBlackLevels) eight("grey " + std::to_string(g), g, g, g, &out->nearBlack);
  out->referenceSummary = summarise(out->reference);
  out->greySummary = summarise(out->grey);
  return true;
}

void addPredicted(const Prediction& p, MeasuredCheck* out, const Predictor* predictor) {
  auto copy = [](const std::vector<ColourPrediction>& from, std::vector<MeasuredColour>& to) {
    for (auto& c : to)
      for (const auto& f : from)
        if (f.name == c.name) c.predictedDe = f.de, c.predictedY = f.predictedXyz.Y;
  };
  copy(p.reference, out->reference);
  copy(p.grey, out->grey);
  copy(p.nearBlack, out->nearBlack);
  if (predictor == nullptr) return;
  for (auto& c : out->chartPatches) {
    const ColourPrediction f = predictor->colour(c.name, c.percent[0] / 100, c.percent[1] / 100, c.percent[2] / 100);
    c.predictedDe = f.de, c.predictedY = f.predictedXyz.Y;
  }
}

}  // namespace pctool
