// The real error of a calibrated panel: readings of the verification patches taken with the
// table applied (a .ti3), against what the mode's target asks for, in CIEDE2000. Measured XYZ
// are made relative to the measured white (Y = 1) and, like the prediction, judged against the
// target's white, so a white-point error counts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/colour/Ciede2000.h"
#include "tools/lib/measurements/MeasuredPatches.h"
#include "tools/lib/verify/Prediction.h"

namespace pctool {

struct MeasuredColour {
  std::string name;
  uint32_t rgb[3];
  Lab target, measured;
  double de;                // CIEDE2000, measured against target
  double predictedDe;       // the prediction's for the same colour, NaN without one
  int readings;             // rows averaged
};
struct MeasuredSummary {
  double mean = 0, max = 0;
};
struct MeasuredCheck {
  std::string source;
  double whiteY = 0;  // the measured white's Y (cd/m2 when absolute)
  bool absolute = false;
  std::vector<MeasuredColour> reference, grey;
  MeasuredSummary referenceSummary, greySummary;
};

// False with "SOURCE:LINE: no reading of ..." when a verification patch is missing, or when
// the white has no luminance.
bool checkMeasured(const Measurements& m, const TargetParm& target, MeasuredCheck* out, std::string* error);
// Copies the predicted CIEDE2000 of each colour beside its measured one.
void addPredicted(const Prediction& p, MeasuredCheck* out);

std::string measuredText(const MeasuredCheck& c);
std::string measuredJson(const MeasuredCheck& c);

}  // namespace pctool
