// Colour-difference helpers for the workbench: CIE XYZ to L*a*b* for a chosen white, and the
// CIEDE2000 difference (parametric factors kL = kC = kH = 1), all in double precision.
#pragma once

#include <cstdint>

namespace pctool {

struct Xyz {
  double X = 0, Y = 0, Z = 0;
};

struct Lab {
  double L = 0, a = 0, b = 0;
};

// D65 white of the sRGB standard, Y = 1.
constexpr Xyz kD65{0.95047, 1.0, 1.08883};

// XYZ (same scale as `white`) to CIE 1976 L*a*b*.
Lab xyzToLab(const Xyz& c, const Xyz& white);

// CIE xy chromaticity (x, y) at luminance Y to XYZ; y <= 0 gives black.
Xyz xyYToXyz(double x, double y, double Y);

// CIE 1976 distance.
double deltaE76(const Lab& p, const Lab& q);

// CIEDE2000, following the implementation notes of Sharma, Wu and Dalal (2005).
double ciede2000(const Lab& p, const Lab& q);

// Linear-light sRGB (D65, Y of white = 1) to XYZ; sRGB transfer curve decode of a 0..1 signal.
Xyz linearSrgbToXyz(double r, double g, double b);
double srgbDecode(double v);

// 12-bit table codes read as an sRGB-encoded signal (code / 4095), to L*a*b* for D65.
Lab srgbCodeLab(const uint32_t (&codes)[3]);

}  // namespace pctool
