// Grey-level remapping tables. From the panel's measured grey ramp (white and seven knots at
// codes 512k) an exponent g(k) is interpolated per code so that the panel's relative luminance
// at code k is (k/4095)^g(k); the target's offsets bend g at the dark end (0, 256) and near
// white (3328..4095). The table then gives, for each target code i, the last panel code whose
// luminance does not exceed the target curve (i/4095)^(1/p); entry 0 is 0 and entry 4095 is 4095.
//
// Two passes read different target parameters: the intermediate table (offsets 11..14, exponent
// 8) and the final one of the protect-white pass (offsets 16..19, exponent 15); both use the
// dark-end offsets 9 and 10.
//
// Rules: interpolation forms (knot difference * step) in float, widens it, multiplies by the
// double step reciprocal (or divides by 255.0), adds the widened base, narrows once; the order of
// every operation is deliberate (results must agree to the last bit on every CPU). The search
// never reads past code 4095, whatever the data. Nothing here logs or keeps state.
#pragma once

#include "base/PanelCorvaneBase.h"

namespace postblend {
namespace fe {

constexpr int kGammaSize = 4096;

enum class GammaPass { Intermediate, Final };

struct GammaTable {
  unsigned int code[kGammaSize];
};

// The measured knots and derived exponents, as the intermediate pass logs them.
struct GammaKnots {
  float white;          // luminance at 4095
  float brightness[7];  // luminance at 512 (k + 1)
  float knotGamma[7];   // exponent at 512 (k + 1), before any offset
  float gamma0, gamma256;
  double targetGamma;  // 1/p, the exponent of the target curve
};

// Fills `out`; `knots`, when given, receives the values the intermediate pass logs.
void buildGammaTable(const PanelCorvaneBase::OpticalDataFile& odf,
                     const PanelCorvaneBase::TargetParm& target, GammaPass pass, GammaTable& out,
                     GammaKnots* knots = nullptr);

}  // namespace fe
}  // namespace postblend
