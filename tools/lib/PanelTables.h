// The tables one display of a device tree runs with, got the way the plugin gets them, without
// the plugin object or its shared state: the table cache when the plugin would accept it (length
// equal to FWVersion, checksum, ParamVersion and a source that agrees with the identity check),
// otherwise generated in memory from the targets and optical data the plugin would read - its
// own readers, identity comparison, table plan and generation functions, the local data when
// the identity matches and all four local files pass their CRC, else the golden data.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frontend/TablePlan.h"
#include "postblend/color_records.h"
#include "tools/lib/CalibrationFiles.h"
#include "tools/lib/PropertyFile.h"

namespace pctool {

// The property file's switches as the plugin reads them at Init.
struct DeviceSwitches {
  bool calibration = false;  // PanelCalibration: without it the plugin makes no tables
  bool gammaCorrection = false;
  bool use100nits = false;
  bool cmDebug = false;  // 8 table slots, else 6
  bool verbose = false;  // LogLevel bit 0x02 shortens the protect-white pass
  uint32_t paramVersion = 0, fwVersion = 0;
};
DeviceSwitches deviceSwitches(const PropertyFile& prop);

struct DisplayTables {
  std::string displayName;
  uint32_t panel = 0;
  bool matched = false;  // the identity stamp matches the serial number
  int source = -1;       // the cache trailer's word: 0 local, 1 golden, 2 golden although matched
  bool fromCache = false;
  std::string note;  // why the cache was not taken, or why there are no tables
  OpticalDataFile odf[postblend::fe::kOdfSets] = {};  // the data the tables came from
  // The panel as it is, to judge the tables by: its own measurements of each set when the
  // identity matches and the file passes its CRC, else the golden data (a panel that does not
  // match its factory data is best described by the panel type).
  OpticalDataFile judge[postblend::fe::kOdfSets] = {};
  bool judgeLocal[postblend::fe::kOdfSets] = {};
  TargetParm targets[postblend::fe::kTargetFiles] = {};
  std::vector<postblend::lut3d_info> tables;  // empty when the plugin would have none
  // What table k was made from (odf set, target file).
  postblend::fe::TableInputs inputs(int k) const { return postblend::fe::tableInputs(k, use100nits); }
  bool use100nits = false;
};

// The tables of display `name` (panel index `panel`) of the tree under `dir`.
void loadDisplayTables(const std::string& dir, const DeviceSwitches& sw, const std::string& name, uint32_t panel,
                       DisplayTables& out);

// The identity check of the plugin's backend on the tree's panel_id file and emulated serial.
bool identityMatches(const std::string& dir, uint32_t panel);

}  // namespace pctool
