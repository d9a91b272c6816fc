// An optical data file's values from colorimeter readings (`odf write OUT --ti3 FILE`): each
// patch of odfPatches() is found by its drive values; the grey levels keep their luminance.
#pragma once

#include <string>
#include <vector>

#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/measurements/MeasuredPatches.h"

namespace pctool {

// False with "SOURCE:LINE: no reading of PATCH ..." when a patch is missing. A component
// slightly below zero (instrument noise: within 0.2 % of white's Y) becomes 0 with a warning;
// anything else is left for the plausibility checks to judge.
bool odfFromMeasurements(const Measurements& m, OdfValues* out, std::vector<std::string>* warnings,
                         std::string* error);

}  // namespace pctool
