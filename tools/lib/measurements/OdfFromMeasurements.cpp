#include "tools/lib/measurements/OdfFromMeasurements.h"

#include <cstdio>

namespace pctool {

bool odfFromMeasurements(const Measurements& m, OdfValues* out, std::vector<std::string>* warnings,
                         std::string* error) {
  const std::vector<Patch> patches = odfPatches();
  std::vector<Xyz> xyz(patches.size());
  for (size_t i = 0; i < patches.size(); ++i) {
    const Patch& p = patches[i];
    if (m.find(p, &xyz[i]) == 0) {
      char buf[200];
      std::snprintf(buf, sizeof buf, "no reading of %s (RGB %.4g %.4g %.4g %%, within %.1f %%)", p.name.c_str(),
                    p.rgb[0], p.rgb[1], p.rgb[2], kPatchMatchPercent);
      if (error) *error = m.source + ":" + std::to_string(m.tableLine) + ": " + buf;
      return false;
    }
  }
  // Noise around zero (a red's Z, a blue's X) must not make the data impossible.
  const double floor = -0.002 * xyz[0].Y;
  int clamped = 0;
  for (auto& c : xyz)
    for (double* v : {&c.X, &c.Y, &c.Z})
      if (*v < 0 && *v >= floor) {
        *v = 0;
        ++clamped;
      }
  if (clamped > 0 && warnings)
    warnings->push_back(std::to_string(clamped) + " XYZ value(s) slightly below zero (instrument noise) taken as 0");

  OdfMeasurements om;
  double* const dest[4] = {om.white, om.red, om.green, om.blue};
  for (int k = 0; k < 4; ++k) dest[k][0] = xyz[k].X, dest[k][1] = xyz[k].Y, dest[k][2] = xyz[k].Z;
  for (int k = 0; k < 7; ++k) om.greyY[k] = xyz[4 + k].Y;
  *out = OdfValues{};
  placeMeasurements(om, out);
  return true;
}

}  // namespace pctool
