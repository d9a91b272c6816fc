#include "tools/lib/measurements/PatchSets.h"

#include <cmath>
#include <cstdio>

#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/colour/Ciede2000.h"
#include "tools/lib/colour/ReferenceColours.h"

namespace pctool {

namespace {

std::string g6(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.6g", v);
  return buf;
}

Patch patchOf(const std::string& name, double r, double g, double b) { return {name, {r, g, b}}; }

}  // namespace

std::vector<Patch> odfPatches() {
  std::vector<Patch> v = {patchOf("white", 100, 100, 100), patchOf("red", 100, 0, 0),
                          patchOf("green", 0, 100, 0), patchOf("blue", 0, 0, 100)};
  for (int level : kOdfGreyLevels) {
    const double p = 100.0 * level / 4095.0;
    v.push_back(patchOf("grey " + std::to_string(level), p, p, p));
  }
  return v;
}

std::vector<Patch> verifyPatches() {
  std::vector<Patch> v;
  auto add = [&v](const std::string& name, uint32_t r, uint32_t g, uint32_t b) {
    const Patch p = patchOf(name, 100.0 * r / 255.0, 100.0 * g / 255.0, 100.0 * b / 255.0);
    for (const auto& q : v)
      if (q.rgb[0] == p.rgb[0] && q.rgb[1] == p.rgb[1] && q.rgb[2] == p.rgb[2]) return;
    v.push_back(p);
  };
  for (const auto& rc : referenceColours()) add(rc.name, rc.rgb[0], rc.rgb[1], rc.rgb[2]);
  for (uint32_t g : greyRampLevels()) add("grey " + std::to_string(g), g, g, g);
  return v;
}

CgatsTable ti1Table(const std::vector<Patch>& patches, const std::string& descriptor) {
  CgatsTable t;
  t.identifier = "CTI1";
  const Xyz white = linearSrgbToXyz(1, 1, 1);
  t.keywords = {{"DESCRIPTOR", descriptor},
                {"ORIGINATOR", "panelcorvane"},
                {"APPROX_WHITE_POINT", g6(100 * white.X) + " " + g6(100 * white.Y) + " " + g6(100 * white.Z)},
                {"COLOR_REP", "RGB"}};
  t.fields = {"SAMPLE_ID", "RGB_R", "RGB_G", "RGB_B", "XYZ_X", "XYZ_Y", "XYZ_Z"};
  int id = 0;
  for (const auto& p : patches) {
    const Xyz x = linearSrgbToXyz(srgbDecode(p.rgb[0] / 100), srgbDecode(p.rgb[1] / 100), srgbDecode(p.rgb[2] / 100));
    t.rows.push_back({std::to_string(++id), g6(p.rgb[0]), g6(p.rgb[1]), g6(p.rgb[2]), g6(100 * x.X), g6(100 * x.Y),
                      g6(100 * x.Z)});
  }
  return t;
}

}  // namespace pctool
