// One PNG page per panel for the calibration engineer: the CIE 1931 xy diagram with the
// panel's measured primaries and white and each mode's target triangle; the measured grey ramp
// against the target curves; the 21 reference colours before and after each table; and how one
// node's output follows the brightness between the two tables of each pair.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "snapdragoncolor/sc_color_records.h"
#include "tools/lib/CalibrationFiles.h"

namespace pctool {

struct ReportTarget {
  std::string name;  // e.g. "Vivid"
  TargetParm target{};
};

struct ReportTable {
  std::string name;  // e.g. "1 Vivid"
  std::shared_ptr<const snapdragoncolor::lut3d_info> lut;
};

struct PanelReport {
  std::string panelName;
  bool hasOdf = false;
  OpticalDataFile odf{};
  std::string odfLabel;  // where the optical data came from
  std::vector<ReportTarget> targets;
  // In cache order: table 2k is the 100-nit table of pair k, 2k + 1 its full-brightness one.
  std::vector<ReportTable> tables;
  int node = -1;  // entry shown against brightness; -1 picks the one that moves most
  std::vector<std::string> notes;  // printed at the foot of the page
};

constexpr int kReportWidth = 1800;
constexpr int kReportHeight = 1420;

// False with "built without cairo" when the tool was built without it.
bool reportSupported();
bool writeReportPng(const PanelReport& report, const std::string& path, std::string& error);

// The full-brightness table's output at `brightness` (3500..8191 and above): the plugin's Q12
// rule even + ((delta * w) >> 12), w = (b * 4096 - 14336000) / 4691, unsigned w, signed delta.
int32_t brightnessOutput(uint32_t even, uint32_t odd, uint32_t brightness);

// The entry whose output differs most between the tables of the first pair (0 without pairs).
uint32_t pickBrightnessNode(const PanelReport& report);

}  // namespace pctool
