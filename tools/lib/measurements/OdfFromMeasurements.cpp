#include "tools/lib/measurements/OdfFromMeasurements.h"

#include <cmath>

#include "tools/lib/common/PrintfString.h"
#include "tools/lib/measurements/PatchMatch.h"

namespace pctool {

namespace {

// Black, contrast and the near-black exponents: readings the file has no place for.
void darkEnd(const std::vector<Patch>& set, const std::vector<PatchReading>& r, bool absolute,
             std::vector<std::string>* info) {
  const double white = r[0].xyz.Y;
  const size_t black = 11, lowest = 10;  // odfPatches(): black after the seven grey levels
  if (!(white > 0)) return;
  if (r[black].readings > 0) {
    const double y = r[black].xyz.Y;
    info->push_back(printfString("black: Y %.4g%s, ", y, absolute ? " cd/m2" : "") +
                    (y > 0 ? printfString("contrast %.0f:1", white / y) : std::string("contrast not known (black reads 0)")) +
                    " (the optical data file holds no black)");
  }
  const double e512 = std::log(r[lowest].xyz.Y / white) / std::log(512 / 4095.0);
  std::string levels;
  for (size_t i = black + 1; i < set.size(); ++i) {
    if (r[i].readings == 0) continue;
    const double rel = r[i].xyz.Y / white;
    const double level = kOdfNearBlackLevels[i - black - 1];
    levels += printfString(", %s exponent ", set[i].name.c_str()) +
              (rel > 0 ? printfString("%.3f", std::log(rel) / std::log(level / 4095.0)) : std::string("- (reads 0)"));
  }
  if (!levels.empty())
    info->push_back(printfString("below level 512 the file holds nothing; the panel model carries level 512's exponent "
                                 "(%.3f) down to black; measured",
                                 e512) +
                    levels.substr(1));
}

}  // namespace

bool odfFromMeasurements(const Measurements& m, OdfValues* out, std::vector<std::string>* warnings,
                         std::string* error, std::vector<std::string>* info) {
  const std::vector<Patch> patches = odfPatches();
  std::vector<PatchReading> r;
  if (!matchReadings(m, patches, "the optical data patches", &r, error)) return false;
  // Noise around zero (a red's Z, a blue's X) must not make the data impossible.
  const double floor = -0.002 * r[0].xyz.Y;
  int clamped = 0;
  for (auto& pr : r)
    for (double* v : {&pr.xyz.X, &pr.xyz.Y, &pr.xyz.Z})
      if (*v < 0 && *v >= floor) {
        *v = 0;
        ++clamped;
      }
  if (clamped > 0 && warnings)
    warnings->push_back(std::to_string(clamped) + " XYZ value(s) slightly below zero (instrument noise) taken as 0");
  for (size_t i = 0; i < 11; ++i) {
    const double v[3] = {r[i].xyz.X, r[i].xyz.Y, r[i].xyz.Z};
    for (int k = 0; k < 3; ++k)
      if (!fitsOdfFloat(v[k])) {
        if (error)
          *error = m.source + ":" + std::to_string(r[i].line) + ": " + patches[i].name + " XYZ_" + "XYZ"[k] +
                   printfString(" %g%s", v[k], m.absolute ? " cd/m2" : "") + " does not fit a float of the optical data file";
        return false;
      }
  }

  OdfMeasurements om;
  double* const dest[4] = {om.white, om.red, om.green, om.blue};
  for (int k = 0; k < 4; ++k) dest[k][0] = r[k].xyz.X, dest[k][1] = r[k].xyz.Y, dest[k][2] = r[k].xyz.Z;
  for (int k = 0; k < 7; ++k) om.greyY[k] = r[4 + k].xyz.Y;
  *out = OdfValues{};
  placeMeasurements(om, out);
  if (info == nullptr) return true;
  std::string repeats;
  for (size_t i = 0; i < r.size(); ++i)
    if (r[i].readings > 1) repeats += printfString(", %s %d", patches[i].name.c_str(), r[i].readings);
  if (!repeats.empty()) info->push_back("readings averaged:" + repeats.substr(1));
  darkEnd(patches, r, m.absolute, info);
  return true;
}

}  // namespace pctool
