// Colorimeter readings from a CGATS `.ti3` (ArgyllCMS's dispread, spotread, fakeread): the
// drive values of each row, as precise as the file wrote them, with the XYZ measured for it.
// Rows are matched to the patches they read in PatchMatch.h.
//
// Only readings of a display are taken: the CTI3 table (a CTI1 holds the patches' nominal
// values, nothing measured) whose DEVICE_CLASS, when given, is DISPLAY.
//
// Scaling: ArgyllCMS writes LUMINANCE_XYZ_CDM2 "X Y Z" (white in cd/m2) for absolute
// measurements and then normalises the XYZ to Y = 100 for white; such values are scaled by
// Y / 100 to cd/m2. Without the keyword the values are taken as they are, and a warning says so.
#pragma once

#include <string>
#include <vector>

#include "tools/lib/colour/Ciede2000.h"
#include "tools/lib/measurements/Cgats.h"

namespace pctool {

struct MeasuredRow {
  double rgb[3];       // percent
  double halfUnit[3];  // half a unit of the last digit each RGB value was written with
  Xyz xyz;             // cd/m2 when `absolute`, else as in the file
  int line;
};

struct Measurements {
  std::string source;
  int tableLine = 0;
  std::vector<MeasuredRow> rows;
  bool absolute = false;
  std::vector<std::string> warnings;
};

// The CTI3 table of `file`: needs RGB_R RGB_G RGB_B and XYZ_X XYZ_Y XYZ_Z. False with
// "SOURCE:LINE: fault" for a file without a CTI3 table (a CTI1 of patches named as such), a
// DEVICE_CLASS other than DISPLAY, a missing column, a value that is not a number or a
// malformed LUMINANCE_XYZ_CDM2.
bool measurementsFromCgats(const CgatsFile& file, const std::string& source, Measurements* out, std::string* error);
bool readMeasurements(const std::string& path, Measurements* out, std::string* error);

}  // namespace pctool
