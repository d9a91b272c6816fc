// One PNG page per panel for the calibration engineer: the CIE 1931 xy diagram with every
// measurement set the tables use and each mode's target (with a zoom on the whites); the grey
// ramp as effective gamma per level and as predicted CIEDE2000 after each table; the 21
// reference colours as the target asks and as the panel shows them through each table; and
// how one node's output follows the brightness between the two tables of each pair.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "postblend/color_records.h"
#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/device/DataSource.h"

namespace pctool {

struct ReportTarget {
  std::string mode;      // "Vivid"
  bool nits100 = false;  // the mode's 100-nit target
  TargetParm target{};
  int count = 0;  // numbers in the file: 20 with gamma correction
};

struct ReportOdf {
  std::string set;   // "1_max", or the file name when given alone
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
  std::string tablesText;   // "tables: /data/vendor/display/cofc.fw, 8 tables"
  std::vector<ReportOdf> odfs;
  std::vector<ReportTarget> targets;
  // In cache order: table 2k is the 100-nit table of pair k, 2k + 1 its full-brightness one.
  std::vector<ReportTable> tables;
  int node = -1;  // entry shown against brightness; -1 picks the one that moves most
  std::vector<std::string> notes;  // printed at the foot of the page
};

constexpr int kReportWidth = 1800;
constexpr int kReportHeight = 2420;

// "report-<display name>.png", characters other than letters, digits, '-' and '_' as '_'.
std::string reportFileName(const PanelReport& report);

// False with "built without cairo" when the tool was built without it.
bool reportSupported();
// Draws the page and writes it through the checked writer: a failed write names the reason.
bool writeReportPng(const PanelReport& report, const std::string& path, std::string& error);

// The full-brightness table's output at `brightness` (3500..8191 and above): the plugin's Q12
// rule even + ((delta * w) >> 12), w = (b * 4096 - 14336000) / 4691, unsigned w, signed delta.
int32_t brightnessOutput(uint32_t even, uint32_t odd, uint32_t brightness);

// The entry whose output differs most between the tables of a pair, over all pairs; -1 when
// there is no pair or no entry differs.
int pickBrightnessNode(const PanelReport& report);

}  // namespace pctool
