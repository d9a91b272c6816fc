// What a calibrated panel is predicted to show: the table applied to the plugin's reference
// colours and the grey ramp, the panel modelled from its optical data, and the CIEDE2000 of
// each against what the mode's target asks for; and what becomes of the panel's white.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "postblend/color_records.h"
#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/colour/Ciede2000.h"
#include "tools/lib/verify/PanelModel.h"

namespace pctool {

// Predicted appearance of one colour on the calibrated panel.
struct ColourPrediction {
  std::string name;
  uint32_t rgb[3];     // 8-bit (rounded for a drive value between codes)
  double signal[3];    // the drive value, 0..1
  double outCodes[3];  // the table's output (trilinear on the device grid)
  Lab target, predicted;
  Xyz predictedXyz;       // relative to the panel's white (Y = 1)
  double de;              // CIEDE2000, calibrated panel against target
  double deUncalibrated;  // the same panel without the table
};
struct PredictionSummary {
  double mean = 0, max = 0, meanUncalibrated = 0, maxUncalibrated = 0;
};

// A white's luminance (cd/m2 when the panel's white is), chromaticity and temperature.
struct WhitePoint {
  double Y = 0, x = 0, y = 0, cct = 0, duv = 0;
};
WhitePoint whitePoint(const Xyz& c);

// The panel's white without and through the table, and the target's (Y NaN: a target has no
// luminance).
struct WhiteFigures {
  WhitePoint panel, calibrated, target;
  double costPercent = 0;  // luminance the white correction costs
};

struct Prediction {
  std::vector<ColourPrediction> reference, grey;
  std::vector<ColourPrediction> nearBlack;  // below the grey ramp's first step
  PredictionSummary referenceSummary, greySummary;
  WhiteFigures white;
  std::vector<std::string> notes;
  double targetDecodeExponent = 0;
  double lowestLevelExponent = 0;  // the model's exponent at the optical data's lowest grey level
};

// The table on the panel model against the target, one colour at a time.
class Predictor {
 public:
  Predictor(const postblend::lut3d_info& lut, const OpticalDataFile& odf, const TargetParm& target);
  // False with a reason when the panel's primaries or the target are unusable.
  bool valid(std::string& error) const;
  ColourPrediction colour(const std::string& name, double r, double g, double b) const;  // 0..1
  const PanelModel& panel() const { return mPanel; }
  const TargetModel& target() const { return mGoal; }

 private:
  const postblend::lut3d_info& mLut;
  PanelModel mPanel;
  TargetModel mGoal;
};

// False with a reason when the panel's primaries or the target are unusable.
bool predict(const postblend::lut3d_info& lut, const OpticalDataFile& odf,
             const TargetParm& target, Prediction& out, std::string& error);

}  // namespace pctool
