// Whether measured optical data and mode targets describe something a display can be. The
// plugin processes whatever it is given; the workbench is where impossible data is caught.
//
// Refused (no panel or target can be so): a value that is not a finite number; a negative
// XYZ; a primary or white without luminance; a chromaticity outside the spectral locus;
// primaries that coincide or lie on one line; a white outside the primaries' triangle; a grey
// ramp that does not rise towards white; a target exponent that decodes with a power outside
// 1..4 (the file holds 1/gamma: 0.4545 for gamma 2.2).
// Warned about (possible, but worth a look): white luminance outside 1..10000 cd/m2; red +
// green + blue luminance more than 10 % away from white's; a measured grey exponent outside
// 1.5..3.2; a target gamma outside 1.6..3.0; a gamma-correction offset beyond +-0.5.
#pragma once

#include <string>
#include <vector>

#include "tools/lib/calibration/CalibrationFiles.h"

namespace pctool {

struct Finding {
  bool refused = false;
  std::string field;  // "white Y", "green x y", "exponent parameter (value 9)"
  std::string text;
  // "impossible: white Y = 0: ..." or "warning: ...".
  std::string line() const;
};

std::vector<Finding> checkOpticalData(const float (&values)[127]);
// `count` numbers were read: the gamma-correction values are checked only when present.
std::vector<Finding> checkTarget(const TargetParm& target, int count);

bool anyRefused(const std::vector<Finding>& findings);
// The first refusal's line, for a one-line error.
std::string firstRefusal(const std::vector<Finding>& findings);

// Whether (x, y) lies within `tolerance` of the area bounded by the spectral locus and the
// line of purples.
bool insideSpectralLocus(double x, double y, double tolerance = 0.005);

}  // namespace pctool
