// The colour patches the workbench asks a colorimeter to measure, and their `.ti1` patch sets
// for ArgyllCMS's dispread or fakeread. Patch values are percent of full drive (0..100), as
// CGATS RGB_R RGB_G RGB_B fields hold them, and a patch is what its `.ti1` says: the values as
// written there, each good to half a unit of its last digit.
#pragma once

#include <string>
#include <vector>

#include "tools/lib/measurements/Cgats.h"

namespace pctool {

struct Patch {
  std::string name;
  double rgb[3];                   // percent
  double halfUnit[3] = {0, 0, 0};  // half a unit of the last digit each value was written with
  bool optional = false;           // a set without its reading is still the set (added later)
};

// Half a unit of the last digit of a number as written: "87.5214" 0.00005, "100" 0.5, "1e2" 50.
double halfUnitOf(const std::string& token);

// What an optical data file holds - white, red, green, blue and the seven grey levels (12-bit
// level L drives 100 * L / 4095 %) - then, optional, black and the near-black levels below the
// file's lowest one, which the file cannot hold but the engineer is told of.
std::vector<Patch> odfPatches();
// 12-bit near-black levels of odfPatches(), below the optical data's lowest level (512).
extern const int kOdfNearBlackLevels[3];

// What `verify --measured` compares with the target: the 21 reference colours and the grey
// ramp (8-bit code C drives 100 * C / 255 %), each drive value once, then, optional, the
// near-black levels below the ramp's first step.
std::vector<Patch> verifyPatches();
// 8-bit near-black levels of verifyPatches(): between black and the ramp's 16.
extern const int kVerifyNearBlackLevels[3];

// A user's own chart: the patches of the CTI1 table of a `.ti1` (RGB_R RGB_G RGB_B, named by
// SAMPLE_ID when there is one), a repeated drive value once. False with "SOURCE:LINE: fault"
// for another table, a missing column, a value that is not a number in 0..100, no white patch
// (readings are taken relative to it) or no patch at all.
bool chartPatches(const CgatsFile& file, const std::string& source, std::vector<Patch>* out, std::string* error);
bool readChart(const std::string& path, std::vector<Patch>* out, std::string* error);

// A patch driving `r g b` percent as a `.ti1` writes it: six significant digits.
Patch writtenPatch(const std::string& name, double r, double g, double b);
// The index of the patch that drives exactly `rgb` percent, or -1.
int patchIndex(const std::vector<Patch>& set, const double (&rgb)[3]);

// A CTI1 table of `patches` with the XYZ an sRGB display would show (white Y = 100), laid out
// as ArgyllCMS's targen writes one.
CgatsTable ti1Table(const std::vector<Patch>& patches, const std::string& descriptor);

}  // namespace pctool
