// The real error of a calibrated panel: readings taken with the table applied (a .ti3), of the
// verification patches or of the engineer's own chart, against what the mode's target asks for,
// in CIEDE2000. Measured XYZ are made relative to the measured white (Y = 1) and, like the
// prediction, judged against the target's white, so a white-point error counts. Beside them:
// the white's luminance and temperature, black, contrast and the gamma of each grey level.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/colour/Ciede2000.h"
#include "tools/lib/measurements/MeasuredPatches.h"
#include "tools/lib/measurements/PatchSets.h"
#include "tools/lib/verify/Prediction.h"

namespace pctool {

// Where prediction and measurement are said to part, in CIEDE2000.
constexpr double kPartDe00 = 0.5;

struct MeasuredColour {
  std::string name;
  uint32_t rgb[3];    // 8-bit (rounded for a chart's drive value between codes)
  double percent[3];  // the drive value as the patch set writes it
  Lab target, measured;
  double relY;         // luminance relative to the measured white
  double de;           // CIEDE2000, measured against target
  double predictedDe;  // the prediction's for the same colour, NaN without one
  double predictedY;   // the prediction's relative luminance, NaN without one
  int readings;        // rows averaged
};
struct MeasuredSummary {
  double mean = 0, p95 = 0, max = 0;
  std::vector<size_t> worst;  // up to ten, largest first
};
struct MeasuredCheck {
  std::string source;
  std::string chart;  // the user's chart, "" for the verification patches
  WhitePoint white;   // Y in cd/m2 when absolute
  bool absolute = false;
  std::vector<MeasuredColour> reference, grey, nearBlack;  // the verification patches
  std::vector<MeasuredColour> chartPatches;                // or the chart's
  MeasuredSummary referenceSummary, greySummary, chartSummary;
  bool hasBlack = false;
  double blackY = 0;  // as white's Y
};

// The readings of `patches` (verifyPatches(), or a chart's when `chart` names it) against the
// target. False with "SOURCE:LINE: ..." when the rows are not that patch set (matchReadings) or
// the white has no luminance.
bool checkMeasured(const Measurements& m, const TargetParm& target, MeasuredCheck* out, std::string* error,
                   const std::vector<Patch>* chart = nullptr, const std::string& chartName = "");
// Copies the prediction of each colour beside its measured one (a chart's from `predictor`).
void addPredicted(const Prediction& p, MeasuredCheck* out, const Predictor* predictor = nullptr);

// The gamma of a grey of 8-bit level `level` showing `relY` of white; NaN where undefined.
double greyGamma(double level, double relY);

// `p`, when given, adds the target's and the model's gamma beside the measured one.
std::string measuredText(const MeasuredCheck& c, const Prediction* p);
std::string measuredJson(const MeasuredCheck& c);

}  // namespace pctool
