// What a panel's report page is drawn from: the measurement sets the tables use, each mode's
// target, and the tables with what each was made from.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "postblend/color_records.h"
#include "tools/lib/calibration/CalibrationFiles.h"

namespace pctool {

struct ReportTarget {
  std::string mode;      // "Vivid"
  bool nits100 = false;  // the mode's 100-nit target
  TargetParm target{};
  int count = 0;     // numbers in the file: 20 with gamma correction
  std::string path;  // as shown on the page
};

struct ReportOdf {
  std::string set;   // "1_max", or the file name when given alone
  int setIndex = -1;  // the plugin's set (frontend/TablePlan.h); -1 for a file given alone
  std::string path;  // as shown on the page
  OpticalDataFile odf{};
};

struct ReportTable {
  std::string name;  // "1 Vivid"
  std::shared_ptr<const postblend::lut3d_info> lut;
  int odf = -1;     // index into odfs of the data the table was made from; -1 unknown
  int target = -1;  // index into targets of its target; -1 unknown
};

struct PanelReport {
  std::string displayName;  // also names the page's file
  std::string panelName;    // "PanelCorvane_primary (panel 0)"
  std::string sourceText;   // "optical data: golden (identity not matched: ...)"
  std::string tablesText;   // "tables: from the cache /data/vendor/display/cofc.fw, 8 tables"
  std::vector<ReportOdf> odfs;
  std::vector<ReportTarget> targets;
  // In cache order: table 2k is the 100-nit table of pair k, 2k + 1 its full-brightness one.
  std::vector<ReportTable> tables;
  int node = -1;  // entry shown against brightness; -1 picks the one that moves most
  std::vector<std::string> notes;  // printed at the foot of the page
};

}  // namespace pctool
