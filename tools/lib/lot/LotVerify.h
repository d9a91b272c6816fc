// A production lot checked panel by panel: every display's tables (PanelTables.h), each paired
// with its mode's target and the panel's measurements of the set it was made from (100-nit or
// full; DisplayTables::judge), and the predicted CIEDE2000 of the calibrated panel (Verify.h) on
// the 21 reference colours and the grey ramp.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace pctool {

// A mode passes when the 95th percentile of its predicted errors is within the limit: the one
// or two worst colours of a wide-gamut mode lie outside any panel's gamut and say nothing of
// the calibration.
constexpr double kDefaultMaxDe = 2.0;

struct LotMode {
  std::string display;
  int table = -1;    // cache index; -1 for a display without tables
  std::string mode;  // "Vivid 100-nit", "Nature", ...
  std::string judgedBy;  // "local" or "golden": the panel data the prediction used
  double mean = 0, p95 = 0, max = 0;
  bool pass = false;
  std::string note;  // why there is no figure
};

struct LotDisplay {
  std::string name;
  std::string source;  // "local", "golden", "golden although the identity matched", "none"
  bool fromCache = false;
  std::string note;
  double primaries[4][2] = {};  // xy of red, green, blue, white of the full-brightness "_1_" data
  bool hasPrimaries = false;
};

struct LotPanelResult {
  std::string name;  // the tree's folder name
  std::string path;
  std::string error;  // the tree could not be read at all
  std::vector<LotDisplay> displays;
  std::vector<LotMode> modes;
  bool pass() const;     // readable, tables for every display, every mode passing
  double worst() const;  // largest 95th percentile of any mode
};

struct LotSummary {
  double maxDe = kDefaultMaxDe;
  size_t panels = 0, passed = 0, unreadable = 0;
  double yield = 0;  // passed / panels
  double binWidth = 0;
  std::vector<size_t> bins;  // the modes' 95th percentiles; the last bin is open-ended
  std::vector<std::string> outliers;  // "panel-0007: ..." in panel order
  std::map<std::string, size_t> sources;  // displays by the data source of their tables
  // "panel-0007 PanelCorvane_primary: golden" for every display whose tables do not come from
  // its own optical data: on the line, such a panel left calibration without it.
  std::vector<std::string> offOwnData;
};

// Device trees named by `dirs`: a tree itself (it has odm/etc/PanelCorvane/panelcorvane), or the
// trees among its sub-folders, sorted by name. False with "DIR: reason" when a DIR is neither.
bool findLotTrees(const std::vector<std::string>& dirs, std::vector<std::string>& trees, std::string& error);

// One tree. Thread-safe: nothing shared is touched.
LotPanelResult verifyPanel(const std::string& tree, double maxDe);

// Every tree, `threads` at a time (0: one per hardware thread), results in the trees' order.
std::vector<LotPanelResult> verifyLot(const std::vector<std::string>& trees, double maxDe, unsigned threads,
                                      const std::function<void()>& done = {});

LotSummary summariseLot(const std::vector<LotPanelResult>& results, double maxDe);

// One row per panel and mode; a display without tables and an unreadable tree get one row each.
std::string lotCsvText(const std::vector<LotPanelResult>& results);
std::string lotJsonText(const std::vector<LotPanelResult>& results, const LotSummary& summary);
std::string lotSummaryText(const LotSummary& summary);

// The summary page: the error distribution and the lot's primaries on the xy diagram.
bool lotPageSupported();
bool drawLotPage(const std::string& path, const std::vector<LotPanelResult>& results, const LotSummary& summary,
                 std::string& error);

}  // namespace pctool
