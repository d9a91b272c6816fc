#include "tools/lib/calibration/Plausibility.h"

#include <cmath>
#include <cstdio>

#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/colour/CieLocus.h"
#include "tools/lib/common/PrintfString.h"

namespace pctool {

namespace {

struct Point {
  double x, y;
};

double cross(const Point& o, const Point& a, const Point& b) {
  return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

double segmentDistance(const Point& p, const Point& a, const Point& b) {
  const double dx = b.x - a.x, dy = b.y - a.y, len2 = dx * dx + dy * dy;
  double t = len2 > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / len2 : 0;
  t = t < 0 ? 0 : t > 1 ? 1 : t;
  return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

bool insideTriangle(const Point& p, const Point (&t)[3]) {
  const double d0 = cross(t[0], t[1], p), d1 = cross(t[1], t[2], p), d2 = cross(t[2], t[0], p);
  return (d0 >= 0 && d1 >= 0 && d2 >= 0) || (d0 <= 0 && d1 <= 0 && d2 <= 0);
}

const char* const kPrimary[4] = {"red", "green", "blue", "white"};

// The checks shared by measured and target chromaticities: locus, triangle, white inside.
void checkChromaticities(const Point (&c)[4], const bool (&known)[4], std::vector<Finding>& out) {
  for (int i = 0; i < 4; ++i) {
    if (!known[i] || insideSpectralLocus(c[i].x, c[i].y)) continue;
    out.push_back({true, std::string(kPrimary[i]) + " x y",
                   printfString("x %.4f y %.4f lies outside the spectral locus: no light has this colour", c[i].x, c[i].y)});
  }
  if (!known[0] || !known[1] || !known[2]) return;
  for (int i = 0; i < 3; ++i)
    for (int j = i + 1; j < 3; ++j)
      if (std::hypot(c[i].x - c[j].x, c[i].y - c[j].y) < 0.005) {
        out.push_back({true, std::string(kPrimary[i]) + " and " + kPrimary[j],
                       printfString("coincide (x %.4f y %.4f): the primaries span no gamut", c[i].x, c[i].y)});
        return;
      }
  const Point tri[3] = {c[0], c[1], c[2]};
  if (std::fabs(cross(tri[0], tri[1], tri[2])) < 1e-4) {
    out.push_back({true, "red, green and blue", "lie on one line: the primaries span no gamut"});
    return;
  }
  if (known[3] && !insideTriangle(c[3], tri))
    out.push_back({true, "white x y",
                   printfString("x %.4f y %.4f lies outside the primaries' triangle: red + green + blue cannot make it",
                       c[3].x, c[3].y)});
}

}  // namespace

std::string Finding::line() const { return std::string(refused ? "impossible: " : "warning: ") + field + ": " + text; }

bool insideSpectralLocus(double x, double y, double tolerance) {
  const size_t n = sizeof kSpectralLocus / sizeof kSpectralLocus[0];
  const Point p{x, y};
  bool inside = false;
  double nearest = 1e9;
  for (size_t i = 0, j = n - 1; i < n; j = i++) {  // the closing edge is the line of purples
    const Point a{kSpectralLocus[i].x, kSpectralLocus[i].y}, b{kSpectralLocus[j].x, kSpectralLocus[j].y};
    if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x) inside = !inside;
    nearest = std::fmin(nearest, segmentDistance(p, a, b));
  }
  return inside || nearest <= tolerance;
}

std::vector<Finding> checkOpticalData(const float (&v)[127]) {
  std::vector<Finding> out;
  // The plugin carries the other floats unread; one that is not finite still says the file was
  // not written by a careful tool.
  std::string unread;
  for (int i = 0; i < kOdfFloats; ++i) {
    const bool measured = (i >= kOdfWhiteAt && i < kOdfWhiteAt + 3) || (i >= kOdfRedAt && i < kOdfRedAt + 3) ||
                          (i >= kOdfGreenAt && i < kOdfGreenAt + 3) || (i >= kOdfBlueAt && i < kOdfBlueAt + 3) ||
                          (i > kOdfWhiteAt + 1 && i <= odfGreyYAt(6) && (i - kOdfWhiteAt - 1) % 6 == 0);
    if (!measured && !std::isfinite(v[i])) unread += printfString(", %d (%g)", i, v[i]);
  }
  if (!unread.empty())
    out.push_back({false, "floats outside the measured fields", "not finite at" + unread.substr(1) + "; the plugin does not read them"});
  static const int kAt[4] = {kOdfRedAt, kOdfGreenAt, kOdfBlueAt, kOdfWhiteAt};
  Point c[4] = {};
  bool known[4] = {};
  for (int i = 0; i < 4; ++i) {
    const float* xyz = v + kAt[i];
    const std::string name = kPrimary[i];
    if (!std::isfinite(xyz[0]) || !std::isfinite(xyz[1]) || !std::isfinite(xyz[2])) {
      out.push_back({true, name + " XYZ", "not a finite number"});
      continue;
    }
    if (xyz[0] < 0 || xyz[1] < 0 || xyz[2] < 0) {
      out.push_back({true, name + " XYZ", printfString("negative (X %g, Y %g, ...): light cannot be negative", xyz[0], xyz[1])});
      continue;
    }
    if (!(xyz[1] > 0)) {
      out.push_back({true, name + " Y", "luminance 0: nothing was measured"});
      continue;
    }
    const double sum = static_cast<double>(xyz[0]) + xyz[1] + xyz[2];
    c[i] = {xyz[0] / sum, xyz[1] / sum};
    known[i] = true;
  }
  checkChromaticities(c, known, out);

  const double white = v[kOdfWhiteAt + 1];
  if (known[3]) {
    if (white < 1 || white > 10000)
      out.push_back({false, "white Y", printfString("%.4g cd/m2 is outside the 1..10000 of a display", white)});
    if (known[0] && known[1] && known[2]) {
      const double rgb = static_cast<double>(v[kOdfRedAt + 1]) + v[kOdfGreenAt + 1] + v[kOdfBlueAt + 1];
      if (std::fabs(rgb - white) > 0.1 * white)
        out.push_back({false, "red + green + blue Y",
                       printfString("%.4g cd/m2 against white %.4g: more than 10 %% apart", rgb, white)});
    }
  }
  // Grey levels from dark to bright: each above the one below, all below white.
  double below = 0;
  std::string belowName = "black";
  for (int k = 6; k >= 0; --k) {
    const double y = v[odfGreyYAt(k)];
    const std::string name = "grey " + std::to_string(kOdfGreyLevels[k]) + " Y";
    if (!std::isfinite(y)) {
      out.push_back({true, name, "not a finite number"});
      return out;
    }
    if (!(y > below)) {
      out.push_back({true, name, printfString("%.4g cd/m2 is not above ", y) + belowName + printfString(" (%.4g): more drive gave no more light", below)});
      return out;
    }
    if (known[3] && !(y < white)) {
      out.push_back({true, name, printfString("%.4g cd/m2 is not below white (%.4g)", y, white)});
      return out;
    }
    if (known[3]) {
      const double e = std::log(y / white) / std::log(kOdfGreyLevels[k] / 4095.0);
      if (e < 1.5 || e > 3.2) out.push_back({false, name, printfString("exponent %.3f is outside 1.5..3.2", e)});
    }
    below = y;
    belowName = name;
  }
  return out;
}

std::vector<Finding> checkTarget(const TargetParm& t, int count) {
  std::vector<Finding> out;
  for (int i = 0; i < count && i < 20; ++i)
    if (!std::isfinite(t.values[i]))
      out.push_back({true, "value " + std::to_string(i + 1), "not a finite number"});
  if (!out.empty()) return out;
  Point c[4];
  const bool known[4] = {true, true, true, true};
  for (int i = 0; i < 4; ++i) c[i] = {t.values[2 * i], t.values[2 * i + 1]};
  checkChromaticities(c, known, out);
  if (std::hypot(c[3].x - 0.3127, c[3].y - 0.3290) > 0.03)
    out.push_back({false, "white x y", printfString("x %.4f y %.4f is far from D65 (0.3127 0.3290)", c[3].x, c[3].y)});

  auto exponent = [&](int at, const char* what) {
    const double p = t.values[at];
    const std::string field = std::string(what) + " (value " + std::to_string(at + 1) + ")";
    const double decode = 1.0 / p;
    if (!(p > 0) || decode < 1.0 || decode > 4.0) {
      out.push_back({true, field, printfString("%g decodes with power %.4g, outside 1..4; the file holds 1/gamma (0.4545 for gamma 2.2)", p, decode)});
    } else if (decode < 1.6 || decode > 3.0) {
      out.push_back({false, field, printfString("%g is gamma %.3f, outside 1.6..3.0", p, decode)});
    }
  };
  exponent(8, "exponent parameter");
  if (count >= 20) {
    exponent(15, "final exponent parameter");
    for (int i = 9; i < 20; ++i) {
      if (i == 15) continue;
      if (std::fabs(t.values[i]) > 0.5)
        out.push_back({false, "gamma-correction offset (value " + std::to_string(i + 1) + ")",
                       printfString("%g moves the panel's exponent by more than 0.5", t.values[i])});
    }
  }
  return out;
}

bool anyRefused(const std::vector<Finding>& findings) {
  for (const auto& f : findings)
    if (f.refused) return true;
  return false;
}

std::string firstRefusal(const std::vector<Finding>& findings) {
  for (const auto& f : findings)
    if (f.refused) return f.line();
  return "";
}

}  // namespace pctool
