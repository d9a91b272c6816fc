// Colorimeter readings from a CGATS `.ti3` (ArgyllCMS's dispread, spotread, fakeread): the
// drive values of each patch with the XYZ measured for it, found again by drive value.
//
// Scaling: ArgyllCMS writes LUMINANCE_XYZ_CDM2 "X Y Z" (white in cd/m2) for absolute
// measurements and then normalises the XYZ to Y = 100 for white; such values are scaled by
// Y / 100 to cd/m2. Without the keyword the values are taken as they are, and a warning says so.
#pragma once

#include <string>
#include <vector>

#include "tools/lib/colour/Ciede2000.h"
#include "tools/lib/measurements/Cgats.h"
#include "tools/lib/measurements/PatchSets.h"

namespace pctool {

// How far (percent of full drive, per channel) a row's RGB may be from a patch's.
constexpr double kPatchMatchPercent = 0.5;

struct MeasuredRow {
  double rgb[3];  // percent
  Xyz xyz;        // cd/m2 when `absolute`, else as in the file
  int line;
};

struct Measurements {
  std::string source;
  int tableLine = 0;
  std::vector<MeasuredRow> rows;
  bool absolute = false;
  std::vector<std::string> warnings;

  // The mean XYZ of every row within kPatchMatchPercent of `p` (a repeated patch is
  // averaged); the number of rows found, 0 when none.
  int find(const Patch& p, Xyz* out) const;
};

// The CTI3 table of `file` (else its first): needs RGB_R RGB_G RGB_B and XYZ_X XYZ_Y XYZ_Z.
// False with "SOURCE:LINE: fault" for a missing column, a value that is not a number or a
// malformed LUMINANCE_XYZ_CDM2.
bool measurementsFromCgats(const CgatsFile& file, const std::string& source, Measurements* out, std::string* error);
bool readMeasurements(const std::string& path, Measurements* out, std::string* error);

}  // namespace pctool
