// What a table does to colours: the plugin's own dE76 check, CIEDE2000 statistics between each
// entry's input and output, and - given the panel's optical data and the mode's target - the
// predicted error of the calibrated panel (Prediction.h) and, from readings, the measured one
// (MeasuredVerify.h); their text and JSON.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/De76Report.h"
#include "postblend/color_records.h"
#include "tools/lib/verify/MeasuredVerify.h"
#include "tools/lib/verify/Prediction.h"
#include "tools/lib/verify/VerifySubject.h"

namespace pctool {

// The figures check3DLut logs, from the plugin's own binning.
using De76Report = postblend::De76Report;
using postblend::de76Report;

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

struct VerifyResult {
  std::string label;
  VerifySubject subject;  // with a prediction: what the figures are of
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
