// ICC display profiles (version 2.4, matrix and tone curves, written by Little CMS): the panel as
// one measurement set shows it - its primaries, white, luminance and grey ramp as the panel
// model reads them - and the calibrated panel of a mode, the same built from what the table is
// predicted to make of the panel (its primaries, white and grey ramp through the table).
#pragma once

#include <string>
#include <vector>

#include "tools/lib/verify/Prediction.h"

namespace pctool {

struct ProfileSource {
  Chroma rgbw[4];              // red, green, blue, white
  double whiteY = 0;           // cd/m2, the luminance tag
  std::vector<double> curve;   // relative luminance at signals 0..1, equally spaced
  std::string description;
};

ProfileSource panelProfile(const PanelModel& panel, const std::string& description);
ProfileSource calibratedProfile(const Predictor& p, const std::string& description);

// False when built without Little CMS.
bool iccSupported();
// Writes the profile whole, or nothing with a reason.
bool writeIccProfile(const std::string& path, const ProfileSource& source, std::string& error);

}  // namespace pctool
