// Readings matched to the patches they read. A row reads a patch when its drive values are the
// patch's at the precision either side wrote them (half a unit of the last digit), so readings
// of another patch set never stand in for the one asked for: every row must read a patch of the
// set, and every patch that is not optional must have a reading. Repeated readings of a patch
// are averaged only when they agree within kRepeatToleranceDe00.
#pragma once

#include <string>
#include <vector>

#include "tools/lib/colour/Ciede2000.h"
#include "tools/lib/measurements/MeasuredPatches.h"
#include "tools/lib/measurements/PatchSets.h"

namespace pctool {

// How far (CIEDE2000, against the white patch's first reading) repeated readings of one patch
// may lie from its first reading.
constexpr double kRepeatToleranceDe00 = 1.0;

struct PatchReading {
  Xyz xyz;           // mean of the readings
  int readings = 0;  // rows averaged; 0 for an optional patch not read
  int line = 0;      // the first of them
};

// One reading per patch of `set`, in its order. False with "SOURCE:LINE: fault" naming the
// first patch without a reading and the first row that reads none of `setName`, a row that
// reads two patches, or a patch whose repeats disagree (both readings and their lines).
bool matchReadings(const Measurements& m, const std::vector<Patch>& set, const std::string& setName,
                   std::vector<PatchReading>* out, std::string* error);

// "grey 512 (RGB 12.5031 12.5031 12.5031 %)".
std::string describePatch(const std::string& name, const double (&rgb)[3]);

}  // namespace pctool
