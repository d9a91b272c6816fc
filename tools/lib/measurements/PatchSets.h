// The colour patches the workbench asks a colorimeter to measure, and their `.ti1` patch sets
// for ArgyllCMS's dispread or fakeread. Patch values are percent of full drive (0..100), as
// CGATS RGB_R RGB_G RGB_B fields hold them.
#pragma once

#include <string>
#include <vector>

#include "tools/lib/measurements/Cgats.h"

namespace pctool {

struct Patch {
  std::string name;
  double rgb[3];  // percent
};

// What an optical data file holds: white, red, green, blue and the seven grey levels
// (12-bit level L drives 100 * L / 4095 %).
std::vector<Patch> odfPatches();

// What `verify --measured` compares with the target: the 21 reference colours and the grey
// ramp (8-bit code C drives 100 * C / 255 %), each drive value once.
std::vector<Patch> verifyPatches();

// A CTI1 table of `patches` with the XYZ an sRGB display would show (white Y = 100), laid out
// as ArgyllCMS's targen writes one.
CgatsTable ti1Table(const std::vector<Patch>& patches, const std::string& descriptor);

}  // namespace pctool
