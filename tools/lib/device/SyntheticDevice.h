// A plausible device tree for running the plugin on a development machine: a wide-gamut
// OLED-like panel per display (measurements varied by an integer seed), golden and local
// optical data, the four modes' targets (standard and 100-nit), the panel identity stamps with
// matching emulated serial numbers, and the property file.
//
// Display names (keys of the property file and stems of the golden/target files) default to
// "PanelCorvane_primary" (panel 0, mapped to 0) and "PanelCorvane_secondary" (panel 1, mapped
// to 100); pass the names the colour manager gives to Init.
//
// Written under DIR:
//   /odm/etc/PanelCorvane/panelcorvane                      property file
//   /odm/etc/PanelCorvane/<name>_{1_max,2_max,1_100nit,2_100nit}.odf       golden data
//   /odm/etc/PanelCorvane/<name>_{Vivid,Nature,Cinema,LsRGB}[_100nits].txt targets
//   /mnt/vendor/persist/display/Loading_ON_{1_max,...}[_d1].odf           local data
//   /mnt/vendor/persist/display/panel_id, panel_id_d1                     identity stamps
//   /dev/tarnu_display                                       serial numbers, line k = panel k
// With 6 tables the LsRGB targets are left out and CMDebug is 0.
#pragma once

#include <string>
#include <vector>

#include "tools/lib/calibration/OdfWriter.h"

namespace pctool {

struct SyntheticDeviceOptions {
  unsigned seed = 1;
  int tables = 8;  // 6 or 8
  std::string primaryName = "PanelCorvane_primary";
  std::string secondaryName = "PanelCorvane_secondary";
  unsigned paramVersion = 1;
  bool gammaCorrection = true;
  bool in100nits = true;
  bool localData = true;  // write the persist partition's optical data
  bool matched = true;    // identity stamps equal the serial numbers' stamps
  bool secondary = true;  // false: one display only (a lot's panel on its own)
  unsigned typeSeed = 0;  // the panel type (golden data, targets); 0: the same as seed
};

// Measurements of one file: `set` 1 or 2 ("_1_"/"_2_" files), `low` the 100-nit file, `golden`
// the panel type's default (no per-unit deviation).
OdfMeasurements syntheticMeasurements(unsigned seed, int panel, int set, bool low, bool golden);
// The same with the panel type and the unit drawn from separate seeds (a lot of one type).
OdfMeasurements syntheticMeasurements(unsigned typeSeed, unsigned unitSeed, int panel, int set, bool low,
                                      bool golden);
// 20 numbers of a mode target; mode 0 Vivid, 1 Nature, 2 Cinema, 3 LsRGB.
std::string syntheticTargetText(unsigned seed, int mode, bool nits100);
// 40-character serial number and the identity stamp it encodes.
std::string syntheticSerial(unsigned seed, int panel);
std::string stampOfSerial(const std::string& serial);

bool writeSyntheticDevice(const std::string& dir, const SyntheticDeviceOptions& options,
                          std::string* error);

// What a device tree under `dir` consists of, the plugin's table cache and dumps included
// (relative paths): a new tree replaces all of them, or the plugin would load the old
// panel's tables from the old cache.
extern const char* const kDeviceTreeParts[4];

// Removes each part of an earlier tree under `dir` and says what went, one line per part
// ("odm/etc/PanelCorvane: 22 files"). False with a reason when a part cannot be removed.
bool clearDeviceTree(const std::string& dir, std::vector<std::string>* removed, std::string* error);

}  // namespace pctool
