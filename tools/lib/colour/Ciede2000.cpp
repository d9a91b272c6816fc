#include "tools/lib/colour/Ciede2000.h"

#include <cmath>

#include "base/LutGrid.h"

namespace pctool {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDeg = kPi / 180.0;

double labF(double t) {
  constexpr double kEps = 216.0 / 24389.0;  // (6/29)^3
  constexpr double kKappa = 24389.0 / 27.0;
  return t > kEps ? std::cbrt(t) : (kKappa * t + 16.0) / 116.0;
}

// Hue angle in degrees, 0..360; 0 for a neutral colour.
double hueDeg(double b, double a) {
  if (a == 0.0 && b == 0.0) return 0.0;
  double h = std::atan2(b, a) / kDeg;
  return h < 0.0 ? h + 360.0 : h;
}

}  // namespace

Lab xyzToLab(const Xyz& c, const Xyz& white) {
  double fx = labF(c.X / white.X);
  double fy = labF(c.Y / white.Y);
  double fz = labF(c.Z / white.Z);
  return Lab{116.0 * fy - 16.0, 500.0 * (fx - fy), 200.0 * (fy - fz)};
}

Xyz xyYToXyz(double x, double y, double Y) {
  if (!(y > 0.0)) return Xyz{};
  return Xyz{x * Y / y, Y, (1.0 - x - y) * Y / y};
}

double deltaE76(const Lab& p, const Lab& q) {
  double dl = p.L - q.L, da = p.a - q.a, db = p.b - q.b;
  return std::sqrt(dl * dl + da * da + db * db);
}

double ciede2000(const Lab& p, const Lab& q) {
  const double c1 = std::hypot(p.a, p.b);
  const double c2 = std::hypot(q.a, q.b);
  const double cBar = 0.5 * (c1 + c2);
  const double cBar7 = std::pow(cBar, 7.0);
  const double g = 0.5 * (1.0 - std::sqrt(cBar7 / (cBar7 + std::pow(25.0, 7.0))));
  const double a1 = (1.0 + g) * p.a;
  const double a2 = (1.0 + g) * q.a;
  const double c1p = std::hypot(a1, p.b);
  const double c2p = std::hypot(a2, q.b);
  const double h1p = hueDeg(p.b, a1);
  const double h2p = hueDeg(q.b, a2);

  const double dLp = q.L - p.L;
  const double dCp = c2p - c1p;
  const bool neutral = c1p * c2p == 0.0;
  double dhp = 0.0;
  if (!neutral) {
    dhp = h2p - h1p;
    if (dhp > 180.0) dhp -= 360.0;
    else if (dhp < -180.0) dhp += 360.0;
  }
  const double dHp = 2.0 * std::sqrt(c1p * c2p) * std::sin(0.5 * dhp * kDeg);

  const double lBarP = 0.5 * (p.L + q.L);
  const double cBarP = 0.5 * (c1p + c2p);
  double hBarP = h1p + h2p;
  if (!neutral) {
    if (std::fabs(h1p - h2p) <= 180.0) hBarP *= 0.5;
    else if (hBarP < 360.0) hBarP = 0.5 * (hBarP + 360.0);
    else hBarP = 0.5 * (hBarP - 360.0);
  }

  const double t = 1.0 - 0.17 * std::cos((hBarP - 30.0) * kDeg) + 0.24 * std::cos(2.0 * hBarP * kDeg) +
                   0.32 * std::cos((3.0 * hBarP + 6.0) * kDeg) - 0.20 * std::cos((4.0 * hBarP - 63.0) * kDeg);
  const double dTheta = 30.0 * std::exp(-std::pow((hBarP - 275.0) / 25.0, 2.0));
  const double cBarP7 = std::pow(cBarP, 7.0);
  const double rc = 2.0 * std::sqrt(cBarP7 / (cBarP7 + std::pow(25.0, 7.0)));
  const double l50 = (lBarP - 50.0) * (lBarP - 50.0);
  const double sl = 1.0 + 0.015 * l50 / std::sqrt(20.0 + l50);
  const double sc = 1.0 + 0.045 * cBarP;
  const double sh = 1.0 + 0.015 * cBarP * t;
  const double rt = -std::sin(2.0 * dTheta * kDeg) * rc;

  const double tl = dLp / sl, tc = dCp / sc, th = dHp / sh;
  return std::sqrt(tl * tl + tc * tc + th * th + rt * tc * th);
}

Xyz linearSrgbToXyz(double r, double g, double b) {
  return Xyz{0.4124564 * r + 0.3575761 * g + 0.1804375 * b,
             0.2126729 * r + 0.7151522 * g + 0.0721750 * b,
             0.0193339 * r + 0.1191920 * g + 0.9503041 * b};
}

double srgbDecode(double v) {
  return v > 0.04045 ? std::pow((v + 0.055) / 1.055, 2.4) : v / 12.92;
}

Lab srgbCodeLab(const uint32_t (&c)[3]) {
  constexpr double kFull = postblend::kLutMaxCode;
  const Xyz x = linearSrgbToXyz(srgbDecode(c[0] / kFull), srgbDecode(c[1] / kFull), srgbDecode(c[2] / kFull));
  return xyzToLab(x, kD65);
}

}  // namespace pctool
