#include "tools/lib/measurements/PatchSets.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/colour/Ciede2000.h"
#include "tools/lib/colour/ReferenceColours.h"

namespace pctool {

const int kOdfNearBlackLevels[3] = {256, 128, 64};
const int kVerifyNearBlackLevels[3] = {4, 8, 12};

namespace {

std::string g6(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.6g", v);
  return buf;
}

// Adds `p` unless a patch already drives its values.
void addOnce(std::vector<Patch>& v, const Patch& p) {
  if (patchIndex(v, p.rgb) < 0) v.push_back(p);
}

Patch optionalGrey(const std::string& name, double percent) {
  Patch p = writtenPatch(name, percent, percent, percent);
  p.optional = true;
  return p;
}

}  // namespace

double halfUnitOf(const std::string& token) {
  const size_t e = token.find_first_of("eE");
  const std::string mantissa = token.substr(0, e);
  const size_t dot = mantissa.find('.');
  const int decimals = dot == std::string::npos ? 0 : static_cast<int>(mantissa.size() - dot - 1);
  const long exponent = e == std::string::npos ? 0 : std::strtol(token.c_str() + e + 1, nullptr, 10);
  if (exponent < -300 || exponent > 300) return 0.5;
  return 0.5 * std::pow(10.0, static_cast<double>(exponent - decimals));
}

Patch writtenPatch(const std::string& name, double r, double g, double b) {
  Patch p{name, {0, 0, 0}};
  const double v[3] = {r, g, b};
  for (int k = 0; k < 3; ++k) {
    const std::string text = g6(v[k]);
    p.rgb[k] = std::strtod(text.c_str(), nullptr);
    p.halfUnit[k] = halfUnitOf(text);
  }
  return p;
}

int patchIndex(const std::vector<Patch>& set, const double (&rgb)[3]) {
  for (size_t i = 0; i < set.size(); ++i)
    if (set[i].rgb[0] == rgb[0] && set[i].rgb[1] == rgb[1] && set[i].rgb[2] == rgb[2]) return static_cast<int>(i);
  return -1;
}

std::vector<Patch> odfPatches() {
  std::vector<Patch> v = {writtenPatch("white", 100, 100, 100), writtenPatch("red", 100, 0, 0),
                          writtenPatch("green", 0, 100, 0), writtenPatch("blue", 0, 0, 100)};
  for (int level : kOdfGreyLevels) {
    const double p = 100.0 * level / 4095.0;
    v.push_back(writtenPatch("grey " + std::to_string(level), p, p, p));
  }
  v.push_back(optionalGrey("black", 0));
  for (int level : kOdfNearBlackLevels) v.push_back(optionalGrey("grey " + std::to_string(level), 100.0 * level / 4095.0));
  return v;
}

std::vector<Patch> verifyPatches() {
  std::vector<Patch> v;
  auto add = [&v](const std::string& name, uint32_t r, uint32_t g, uint32_t b) {
    addOnce(v, writtenPatch(name, 100.0 * r / 255.0, 100.0 * g / 255.0, 100.0 * b / 255.0));
  };
  for (const auto& rc : referenceColours()) add(rc.name, rc.rgb[0], rc.rgb[1], rc.rgb[2]);
  for (uint32_t g : greyRampLevels()) add("grey " + std::to_string(g), g, g, g);
  for (int level : kVerifyNearBlackLevels) v.push_back(optionalGrey("grey " + std::to_string(level), 100.0 * level / 255.0));
  return v;
}

bool chartPatches(const CgatsFile& file, const std::string& source, std::vector<Patch>* out, std::string* error) {
  out->clear();
  auto bad = [&](int line, const std::string& why) {
    if (error) *error = source + ":" + std::to_string(line) + ": " + why;
    return false;
  };
  const CgatsTable* t = pickCgatsTable(file, "CTI1");
  if (t == nullptr || t->identifier != "CTI1")
    return bad(t ? t->line : 0, "no CTI1 table: a chart is a .ti1 of patches (CTI1), this file starts " +
                                    (t && !t->identifier.empty() ? t->identifier : std::string("without one")));
  static const char* const kFields[3] = {"RGB_R", "RGB_G", "RGB_B"};
  int col[3];
  for (int k = 0; k < 3; ++k)
    if ((col[k] = t->field(kFields[k])) < 0) return bad(t->line, std::string("no ") + kFields[k] + " field: not a chart of RGB patches");
  const int id = t->field("SAMPLE_ID");
  for (size_t r = 0; r < t->rows.size(); ++r) {
    Patch p{"", {0, 0, 0}};
    for (int k = 0; k < 3; ++k) {
      const std::string& tok = t->rows[r][static_cast<size_t>(col[k])];
      if (!cgatsNumber(tok, &p.rgb[k]) || p.rgb[k] < 0 || p.rgb[k] > 100)
        return bad(t->rowLines[r], std::string(kFields[k]) + " '" + tok + "' is not a drive value of 0..100 %");
      p.halfUnit[k] = halfUnitOf(tok);
    }
    p.name = id >= 0 ? t->rows[r][static_cast<size_t>(id)] : std::to_string(r + 1);
    addOnce(*out, p);
  }
  if (out->empty()) return bad(t->line, "the chart holds no patch");
  const double white[3] = {100, 100, 100};
  if (patchIndex(*out, white) < 0) return bad(t->line, "the chart has no white patch (100 100 100): readings are taken relative to it");
  return true;
}

bool readChart(const std::string& path, std::vector<Patch>* out, std::string* error) {
  CgatsFile file;
  return readCgatsFile(path, &file, error) && chartPatches(file, path, out, error);
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
