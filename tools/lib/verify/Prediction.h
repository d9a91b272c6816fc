// What a calibrated panel is predicted to show: the table applied to the plugin's reference
// colours and the grey ramp, the panel modelled from its optical data, and the CIEDE2000 of
// each against what the mode's target asks for.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "postblend/color_records.h"
#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/colour/Ciede2000.h"

namespace pctool {

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

}  // namespace pctool
