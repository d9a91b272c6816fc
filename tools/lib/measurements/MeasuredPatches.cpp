#include "tools/lib/measurements/MeasuredPatches.h"

#include <cmath>
#include <sstream>

namespace pctool {

int Measurements::find(const Patch& p, Xyz* out) const {
  int n = 0;
  Xyz sum;
  for (const auto& r : rows) {
    if (std::fabs(r.rgb[0] - p.rgb[0]) > kPatchMatchPercent || std::fabs(r.rgb[1] - p.rgb[1]) > kPatchMatchPercent ||
        std::fabs(r.rgb[2] - p.rgb[2]) > kPatchMatchPercent)
      continue;
    sum.X += r.xyz.X, sum.Y += r.xyz.Y, sum.Z += r.xyz.Z;
    ++n;
  }
  if (n > 0) *out = {sum.X / n, sum.Y / n, sum.Z / n};
  return n;
}

bool measurementsFromCgats(const CgatsFile& file, const std::string& source, Measurements* out, std::string* error) {
  *out = Measurements{};
  out->source = source;
  const CgatsTable* t = pickCgatsTable(file, "CTI3");
  auto bad = [&](int line, const std::string& why) {
    if (error) *error = source + ":" + std::to_string(line) + ": " + why;
    return false;
  };
  if (t == nullptr) return bad(0, "no CGATS table");
  out->tableLine = t->line;
  static const char* const kFields[6] = {"RGB_R", "RGB_G", "RGB_B", "XYZ_X", "XYZ_Y", "XYZ_Z"};
  int col[6];
  for (int k = 0; k < 6; ++k) {
    col[k] = t->field(kFields[k]);
    if (col[k] < 0)
      return bad(t->line, std::string("no ") + kFields[k] + " field: " +
                              (k < 3 ? "not a measurement of RGB patches" : "the readings must be XYZ"));
  }
  double scale = 1;
  int kwLine = 0;
  if (const std::string* lum = t->keyword("LUMINANCE_XYZ_CDM2", &kwLine)) {
    std::istringstream ls(*lum);
    std::string x, y, z, extra;
    double v[3];
    if (!(ls >> x >> y >> z) || (ls >> extra) || !cgatsNumber(x, &v[0]) || !cgatsNumber(y, &v[1]) ||
        !cgatsNumber(z, &v[2]) || !(v[1] > 0))
      return bad(kwLine, "LUMINANCE_XYZ_CDM2 needs three numbers X Y Z with Y above 0");
    scale = v[1] / 100.0;
    out->absolute = true;
  } else {
    out->warnings.push_back(
        "no LUMINANCE_XYZ_CDM2 in the header: the XYZ values are taken as they are, not scaled to cd/m2");
  }
  for (size_t r = 0; r < t->rows.size(); ++r) {
    MeasuredRow row;
    row.line = t->rowLines[r];
    double v[6];
    for (int k = 0; k < 6; ++k) {
      const std::string& tok = t->rows[r][static_cast<size_t>(col[k])];
      if (!cgatsNumber(tok, &v[k])) return bad(row.line, std::string(kFields[k]) + " '" + tok + "' is not a number");
    }
    for (int k = 0; k < 3; ++k) row.rgb[k] = v[k];
    row.xyz = {v[3] * scale, v[4] * scale, v[5] * scale};
    out->rows.push_back(row);
  }
  return true;
}

bool readMeasurements(const std::string& path, Measurements* out, std::string* error) {
  CgatsFile file;
  return readCgatsFile(path, &file, error) && measurementsFromCgats(file, path, out, error);
}

}  // namespace pctool
