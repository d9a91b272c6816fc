// The colorimeter side of `verify`: the verification patches as a CGATS .ti1, and the readings
// of them taken on the calibrated panel.
#pragma once

#include <string>

#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/verify/MeasuredVerify.h"

namespace pctool {

// `verify --patches-ti1 OUT`; an exit status.
int writeVerifyPatchesTi1(const std::string& out);
// Reads `ti3` (readings of the verification patches, or of the chart `chart` when not "") and
// compares it with `target`; false after printing the one-line error.
bool readMeasuredCheck(const std::string& ti3, const std::string& chart, const TargetParm& target, MeasuredCheck& out);

}  // namespace pctool
