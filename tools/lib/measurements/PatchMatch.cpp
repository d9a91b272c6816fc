#include "tools/lib/measurements/PatchMatch.h"

#include <cmath>

#include "tools/lib/common/PrintfString.h"

namespace pctool {

namespace {

bool reads(const MeasuredRow& r, const Patch& p) {
  for (int k = 0; k < 3; ++k) {
    const double tolerance = std::fmax(r.halfUnit[k], p.halfUnit[k]) * (1 + 1e-9) + 1e-12;
    if (!(std::fabs(r.rgb[k] - p.rgb[k]) <= tolerance)) return false;
  }
  return true;
}

std::string xyzText(const Xyz& c) { return printfString("XYZ %.4g %.4g %.4g", c.X, c.Y, c.Z); }
std::string rgbText(const double (&rgb)[3]) { return printfString("(RGB %.6g %.6g %.6g %%)", rgb[0], rgb[1], rgb[2]); }

}  // namespace

std::string describePatch(const std::string& name, const double (&rgb)[3]) {
  return name + " " + rgbText(rgb);
}

bool matchReadings(const Measurements& m, const std::vector<Patch>& set, const std::string& setName,
                   std::vector<PatchReading>* out, std::string* error) {
  auto bad = [&](int line, const std::string& why) {
    if (error) *error = m.source + ":" + std::to_string(line) + ": " + why;
    return false;
  };
  std::vector<std::vector<const MeasuredRow*>> rows(set.size());
  const MeasuredRow* stray = nullptr;
  for (const auto& r : m.rows) {
    int found = -1;
    for (size_t i = 0; i < set.size(); ++i) {
      if (!reads(r, set[i])) continue;
      if (found >= 0)
        return bad(r.line, "the row " + rgbText(r.rgb) + " reads both " + set[found].name +
                               " and " + set[i].name + " at the precision written");
      found = static_cast<int>(i);
    }
    if (found >= 0) {
      rows[static_cast<size_t>(found)].push_back(&r);
    } else if (stray == nullptr) {
      stray = &r;
    }
  }
  const Patch* missing = nullptr;
  for (size_t i = 0; i < set.size() && missing == nullptr; ++i)
    if (rows[i].empty() && !set[i].optional) missing = &set[i];
  const std::string strayText =
      stray ? "line " + std::to_string(stray->line) + " " + rgbText(stray->rgb) + " reads none of " + setName : "";
  if (missing != nullptr) {
    const std::string noReading = "no reading of " + describePatch(missing->name, missing->rgb);
    return stray ? bad(stray->line, "not the readings of " + setName + ": " + noReading + ", and " + strayText)
                 : bad(m.tableLine, noReading);
  }
  if (stray != nullptr) return bad(stray->line, strayText);

  // Repeats are compared in CIEDE2000 against the white patch's first reading, or else the
  // brightest row taken as a D65 white.
  Xyz white;
  const double whiteRgb[3] = {100, 100, 100};
  const int w = patchIndex(set, whiteRgb);
  if (w >= 0 && !rows[static_cast<size_t>(w)].empty()) {
    white = rows[static_cast<size_t>(w)][0]->xyz;
  } else {
    for (const auto& r : m.rows) white.Y = std::fmax(white.Y, r.xyz.Y);
    white = {kD65.X * white.Y, white.Y, kD65.Z * white.Y};
  }
  if (!(white.Y > 0)) white = kD65;
  out->assign(set.size(), PatchReading{});
  for (size_t i = 0; i < set.size(); ++i) {
    PatchReading& pr = (*out)[i];
    for (const MeasuredRow* r : rows[i]) {
      const MeasuredRow& first = *rows[i][0];
      const double de = ciede2000(xyzToLab(first.xyz, white), xyzToLab(r->xyz, white));
      if (!(de <= kRepeatToleranceDe00))
        return bad(r->line, set[i].name + " read twice differently: " + xyzText(first.xyz) + " (line " +
                                std::to_string(first.line) + ") and " + xyzText(r->xyz) + " (line " +
                                std::to_string(r->line) + ") are " + printfString("%.2f", de) +
                                " dE00 apart; repeats are averaged only within " +
                                printfString("%.1f", kRepeatToleranceDe00));
      pr.xyz.X += r->xyz.X, pr.xyz.Y += r->xyz.Y, pr.xyz.Z += r->xyz.Z;
      ++pr.readings;
    }
    if (pr.readings > 0) {
      pr.line = rows[i][0]->line;
      pr.xyz = {pr.xyz.X / pr.readings, pr.xyz.Y / pr.readings, pr.xyz.Z / pr.readings};
    }
  }
  return true;
}

}  // namespace pctool
