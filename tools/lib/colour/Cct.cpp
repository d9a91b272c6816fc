#include "tools/lib/colour/Cct.h"

#include <cmath>

namespace pctool {

namespace {

void planckUv(double t, double* u, double* v) {
  *u = (0.860117757 + 1.54118254e-4 * t + 1.28641212e-7 * t * t) / (1 + 8.42420235e-4 * t + 7.08145163e-7 * t * t);
  *v = (0.317398726 + 4.22806245e-5 * t + 4.20481691e-8 * t * t) / (1 - 2.89741816e-5 * t + 1.61456053e-7 * t * t);
}

double distance2(double t, double u, double v) {
  double pu, pv;
  planckUv(t, &pu, &pv);
  return (u - pu) * (u - pu) + (v - pv) * (v - pv);
}

}  // namespace

Cct cctOf(double x, double y) {
  const double d = -2 * x + 12 * y + 3;
  if (!std::isfinite(x) || !std::isfinite(y) || !(y > 0) || !(d > 0)) return {NAN, NAN};
  const double u = 4 * x / d, v = 6 * y / d;
  // Golden-section search on the reciprocal temperature, where the locus is nearly uniform.
  const double g = (std::sqrt(5.0) - 1) / 2;
  double lo = 1e6 / 15000, hi = 1e6 / 1000;
  double a = hi - g * (hi - lo), b = lo + g * (hi - lo);
  double fa = distance2(1e6 / a, u, v), fb = distance2(1e6 / b, u, v);
  for (int i = 0; i < 80; ++i) {
    if (fa < fb) {
      hi = b, b = a, fb = fa;
      a = hi - g * (hi - lo);
      fa = distance2(1e6 / a, u, v);
    } else {
      lo = a, a = b, fa = fb;
      b = lo + g * (hi - lo);
      fb = distance2(1e6 / b, u, v);
    }
  }
  const double t = 1e6 / ((lo + hi) / 2);
  if (t < 1000.5 || t > 14999.5) return {NAN, NAN};
  double pu, pv;
  planckUv(t, &pu, &pv);
  return {t, std::copysign(std::sqrt(distance2(t, u, v)), v - pv)};
}

}  // namespace pctool
