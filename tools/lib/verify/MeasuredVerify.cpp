#include "tools/lib/verify/MeasuredVerify.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/lib/colour/ReferenceColours.h"
#include "tools/lib/verify/PanelModel.h"

namespace pctool {

namespace {

MeasuredSummary summarise(const std::vector<MeasuredColour>& v) {
  MeasuredSummary s;
  for (const auto& c : v) {
    s.mean += c.de;
    s.max = std::max(s.max, c.de);
  }
  if (!v.empty()) s.mean /= v.size();
  return s;
}

Patch patchOf(const std::string& name, const uint32_t (&rgb)[3]) {
  return {name, {100.0 * rgb[0] / 255.0, 100.0 * rgb[1] / 255.0, 100.0 * rgb[2] / 255.0}};
}

}  // namespace

bool checkMeasured(const Measurements& m, const TargetParm& target, MeasuredCheck* out, std::string* error) {
  *out = MeasuredCheck{};
  out->source = m.source;
  out->absolute = m.absolute;
  TargetModel goal(target);
  if (!goal.valid()) {
    if (error) *error = "target chromaticities or exponent are unusable";
    return false;
  }
  const Xyz white = goal.whiteXyz();
  auto missing = [&](const Patch& p) {
    char buf[200];
    std::snprintf(buf, sizeof buf, "no reading of %s (RGB %.4g %.4g %.4g %%, within %.1f %%)", p.name.c_str(),
                  p.rgb[0], p.rgb[1], p.rgb[2], kPatchMatchPercent);
    if (error) *error = m.source + ":" + std::to_string(m.tableLine) + ": " + buf;
    return false;
  };
  Xyz measuredWhite;
  const Patch whitePatch{"white", {100, 100, 100}};
  if (m.find(whitePatch, &measuredWhite) == 0) return missing(whitePatch);
  if (!(measuredWhite.Y > 0)) {
    if (error) *error = m.source + ":" + std::to_string(m.tableLine) + ": the white reading has no luminance";
    return false;
  }
  out->whiteY = measuredWhite.Y;
  auto one = [&](const std::string& name, const uint32_t (&rgb)[3], std::vector<MeasuredColour>* to) {
    const Patch p = patchOf(name, rgb);
    Xyz x;
    MeasuredColour c;
    c.readings = m.find(p, &x);
    if (c.readings == 0) return missing(p);
    c.name = name;
    std::copy(rgb, rgb + 3, c.rgb);
    const double k = 1.0 / measuredWhite.Y;
    c.measured = xyzToLab({x.X * k, x.Y * k, x.Z * k}, white);
    c.target = xyzToLab(goal.xyz(rgb[0] / 255.0, rgb[1] / 255.0, rgb[2] / 255.0), white);
    c.de = ciede2000(c.target, c.measured);
    c.predictedDe = NAN;
    to->push_back(c);
    return true;
  };
  for (const auto& rc : referenceColours())
    if (!one(rc.name, rc.rgb, &out->reference)) return false;
  for (uint32_t g : greyRampLevels()) {
    const uint32_t rgb[3] = {g, g, g};
    if (!one("grey " + std::to_string(g), rgb, &out->grey)) return false;
  }
  out->referenceSummary = summarise(out->reference);
  out->greySummary = summarise(out->grey);
  return true;
}

void addPredicted(const Prediction& p, MeasuredCheck* out) {
  auto copy = [](const std::vector<ColourPrediction>& from, std::vector<MeasuredColour>& to) {
    for (size_t i = 0; i < to.size() && i < from.size(); ++i) to[i].predictedDe = from[i].de;
  };
  copy(p.reference, out->reference);
  copy(p.grey, out->grey);
}

}  // namespace pctool
