// An optical data file's values from colorimeter readings (`odf write OUT --ti3 FILE`): the rows
// matched to odfPatches() (PatchMatch.h); the grey levels keep their luminance. Black and the
// near-black levels, which the file cannot hold, are told to the engineer beside it.
#pragma once

#include <string>
#include <vector>

#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/measurements/MeasuredPatches.h"

namespace pctool {

// False with "SOURCE:LINE: ..." when the rows are not the patch set (matchReadings), or a reading
// does not fit the file's floats. A component slightly below zero (instrument noise: within
// 0.2 % of white's Y) becomes 0 with a warning; anything else is left for the plausibility
// checks to judge. `info` gets what the readings say beyond the file: repeats averaged, black
// and contrast, the exponent of each near-black level beside the model's.
bool odfFromMeasurements(const Measurements& m, OdfValues* out, std::vector<std::string>* warnings,
                         std::string* error, std::vector<std::string>* info = nullptr);

}  // namespace pctool
