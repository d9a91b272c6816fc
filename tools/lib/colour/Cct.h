// Correlated colour temperature and Duv of a white: the nearest point of the Planckian locus in
// the CIE 1960 uv plane (Krystek's approximation of the locus, 1000..15000 K, within 1e-4 of
// the integrated one), and the signed distance to it, positive above the locus (greener).
#pragma once

namespace pctool {

struct Cct {
  double kelvin = 0, duv = 0;  // both NaN outside 1000..15000 K or for x, y that are no colour
};

Cct cctOf(double x, double y);

}  // namespace pctool
