// What a table does to colours: the plugin's own dE76 check, CIEDE2000 statistics between each
// entry's input and output, and - given the panel's optical data and the mode's target - the
// predicted error of the calibrated panel against the target on the 21 reference colours and
// the grey ramp.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/De76Report.h"
#include "postblend/color_records.h"
#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/colour/Ciede2000.h"
#include "tools/lib/verify/MeasuredVerify.h"

namespace pctool {

// The figures check3DLut logs, from the plugin's own binning.
using De76Report = postblend::De76Report;
using postblend::de76Report;

// 12-bit codes read as an sRGB-encoded signal (code / 4095), to L*a*b* for D65.
Lab srgbCodeLab(const uint32_t (&codes)[3]);

// CIEDE2000 between input and output of every entry, both read as sRGB-encoded signals
// (code / 4095), D65 white.
struct NodeDe {
  uint32_t index;
  uint32_t in[3], out[3];
  double de;
};
struct De2000Stats {
  double mean = 0, p95 = 0, max = 0;
  std::vector<NodeDe> worst;  // the ten largest, largest first
};
De2000Stats de2000Stats(const postblend::lut3d_info& lut);

// Predicted appearance of one 8-bit colour on the calibrated panel.
struct ColourPrediction {
  std::string name;
  uint32_t rgb[3];
  double outCodes[3];  // the table's output (trilinear on the device grid)
  Lab target, predicted;
  double de;              // CIEDE2000, calibrated panel against target
  double deUncalibrated;  // the same panel without the table
};
struct PredictionSummary {
  double mean = 0, max = 0, meanUncalibrated = 0, maxUncalibrated = 0;
};
struct Prediction {
  std::vector<ColourPrediction> reference, grey;
  PredictionSummary referenceSummary, greySummary;
  std::vector<std::string> notes;
  double targetDecodeExponent = 0;
};
// False with a reason when the panel's primaries or the target are unusable.
bool predict(const postblend::lut3d_info& lut, const OpticalDataFile& odf,
             const TargetParm& target, Prediction& out, std::string& error);

// The 21 reference colours of the plugin and their names.
struct ReferenceColour {
  std::string name;
  uint32_t rgb[3];
};
std::vector<ReferenceColour> referenceColours();
// 8-bit grey levels of the ramp: 0, 16, ..., 240, 255.
std::vector<uint32_t> greyRampLevels();

struct VerifyResult {
  std::string label;
  De76Report de76;
  De2000Stats de2000;
  bool hasPrediction = false;
  Prediction prediction;
  bool hasMeasured = false;
  MeasuredCheck measured;
  std::vector<std::string> notes;
};
std::string toText(const VerifyResult& r);
std::string toJson(const std::vector<VerifyResult>& results);

}  // namespace pctool
