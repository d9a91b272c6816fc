#include "tools/lib/measurements/MeasuredPatches.h"

#include <cmath>
#include <sstream>

#include "tools/lib/measurements/PatchSets.h"

namespace pctool {

bool measurementsFromCgats(const CgatsFile& file, const std::string& source, Measurements* out, std::string* error) {
  *out = Measurements{};
  out->source = source;
  const CgatsTable* t = pickCgatsTable(file, "CTI3");
  auto bad = [&](int line, const std::string& why) {
    if (error) *error = source + ":" + std::to_string(line) + ": " + why;
    return false;
  };
  if (t == nullptr) return bad(0, "no CGATS table");
  if (t->identifier == "CTI1")
    return bad(t->line, "CTI1: the patches' nominal values, not readings; readings are a .ti3 (CTI3)");
  if (t->identifier != "CTI3")
    return bad(t->line, "no CTI3 table of readings (the file's first table is " +
                            (t->identifier.empty() ? std::string("unnamed") : "'" + t->identifier + "'") + ")");
  int kwLine = 0;
  if (const std::string* cls = t->keyword("DEVICE_CLASS", &kwLine)) {
    if (*cls != "DISPLAY")
      return bad(kwLine, "DEVICE_CLASS '" + *cls + "': readings of a display (DISPLAY) are needed");
  }
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
    for (int k = 0; k < 3; ++k) {
      row.rgb[k] = v[k];
      row.halfUnit[k] = halfUnitOf(t->rows[r][static_cast<size_t>(col[k])]);
    }
    row.xyz = {v[3] * scale, v[4] * scale, v[5] * scale};
    if (!std::isfinite(row.xyz.X) || !std::isfinite(row.xyz.Y) || !std::isfinite(row.xyz.Z))
      return bad(row.line, "XYZ scaled to cd/m2 is not a finite number");
    out->rows.push_back(row);
  }
  return true;
}

bool readMeasurements(const std::string& path, Measurements* out, std::string* error) {
  CgatsFile file;
  return readCgatsFile(path, &file, error) && measurementsFromCgats(file, path, out, error);
}

}  // namespace pctool
