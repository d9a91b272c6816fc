// The tables one display of a device tree runs with, got the way the plugin gets them, without
// the plugin object or its shared state: the plugin's own rules decide (PanelSwitches.h for the
// property file, CacheAcceptance.h for taking the cache, TablePlan.h for the optical data and
// the tables made from it, the backend's identity comparison), and its own readers and
// generation functions do the work; only the files are opened here, under the tree.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "config/PanelSwitches.h"
#include "frontend/TablePlan.h"
#include "postblend/color_records.h"
#include "tools/lib/calibration/CalibrationFiles.h"

namespace pctool {

struct DisplayTables {
  std::string displayName;
  uint32_t panel = 0;
  bool matched = false;  // the identity stamp matches the serial number
  int source = -1;       // the cache trailer's word: 0 local, 1 golden, 2 golden although matched
  bool fromCache = false;
  std::string note;  // why the cache was not taken, or why there are no tables
  // With the identity matched: the first local file the plugin cannot use, and why ("" when
  // all four read).
  std::string localFault;
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

  // Why the tables are made from the data they are made from: the identity check and the first
  // local file that failed.
  std::string sourceWhy() const;
};

// The tables of display `name` (panel index `panel`) of the tree under `dir`. Given
// `assumedMatch` (what the identity check gave, as a cache's source word records it), the
// identity is not checked again and the cache not taken: the tables are generated.
void loadDisplayTables(const std::string& dir, const postblend::PanelSwitches& sw, const std::string& name,
                       uint32_t panel, DisplayTables& out, const bool* assumedMatch = nullptr);

// The backend's identity check on the tree's stamp file and the serial number its emulated
// driver hands over.
bool identityMatches(const std::string& dir, uint32_t panel);

}  // namespace pctool
