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
// How far (xy distance) a panel's primaries and white may lie from the golden data's on the page.
constexpr double kDefaultXyTolerance = 0.005;

// The classes of a lot, each panel in one: only Pass counts toward the yield. A panel whose
// tables do not come from its own optical data says nothing of its calibration, whatever its
// figures; one that cannot be judged (its tree unreadable, a display without tables or figures)
// says nothing at all.
enum class LotVerdict { Pass, Fail, OffOwnData, Unjudged };
constexpr int kLotVerdicts = 4;
const char* verdictWord(LotVerdict v);  // "pass", "fail", "off-own-data", "unjudged"

struct LotMode {
  std::string display;
  int table = -1;        // cache index; -1 for a display without tables
  std::string mode;      // "Vivid 100-nit", "Nature", ...
  std::string target;    // the target's file name
  std::string dataSet;   // the optical data set the table was made from: "1_max", "2_100nit", ...
  std::string judgedBy;  // "local" or "golden": the panel data the prediction used
  double mean = 0, p95 = 0, max = 0;
  bool figures = false;  // the prediction was made
  bool pass = false;     // figures within the limit
  std::string note;      // why there is no figure
};

struct LotTarget {
  std::string mode, file;
  double xy[4][2] = {};  // red, green, blue, white
};

struct LotDisplay {
  std::string name;
  std::string source;     // "local", "golden", "golden although the identity matched", "none"
  std::string offReason;  // why the tables are not on the panel's own optical data ("" when they are)
  bool fromCache = false;
  std::string note;  // why the cache was not taken
  // xy of red, green, blue, white of the plotted set ("1_max"): the panel's own measurement
  // (when it has a usable one) and the golden data.
  double own[4][2] = {}, golden[4][2] = {};
  bool hasOwn = false, hasGolden = false;
  std::vector<LotTarget> targets;  // the standard (full-brightness) targets
};

struct LotPanelResult {
  std::string name;  // the tree's folder name
  std::string path;
  std::string error;  // the tree could not be read at all
  double maxDe = kDefaultMaxDe;
  std::vector<LotDisplay> displays;
  std::vector<LotMode> modes;
  LotVerdict verdict() const;
  std::string reason() const;  // why the verdict is not pass ("" when it is)
  double worst() const;        // largest 95th percentile of any mode
};

struct LotOutlier {
  std::string panel;
  LotVerdict verdict = LotVerdict::Fail;
  std::string display, mode;  // the worst mode
  double p95 = 0;
  double fence = 0;  // > 0 for a passing panel far above the lot
  std::string text;  // "panel-0007: fails ... , p95 dE00 2.32"
};

struct LotSummary {
  double maxDe = kDefaultMaxDe;
  double xyTolerance = kDefaultXyTolerance;
  size_t panels = 0;
  size_t counts[kLotVerdicts] = {};  // panels by verdict
  size_t passed() const { return counts[0]; }
  double yield = 0;  // passed / panels
  // The 95th percentiles of the modes of panels on their own data, in fixed bins of kBinWidth
  // from 0; the last bin is open-ended. Split by the mode's own result.
  static constexpr double kBinWidth = 0.25;
  static constexpr size_t kBins = 17;
  size_t binPass[kBins] = {}, binFail[kBins] = {};
  std::vector<LotOutlier> outliers;  // failing panels, and passing ones far above the lot
  std::map<std::string, size_t> sources;  // displays by the data source of their tables
  size_t fromCache = 0, generated = 0;    // displays with tables, by where they came from
};

// Device trees named by `dirs`: a DIR that is a tree itself (it has
// odm/etc/PanelCorvane/panelcorvane), or every sub-folder of it but hidden ones, sorted by
// name: each is a panel of the lot, whether or not it can be read. False with "DIR: reason"
// when a DIR is not a folder or none of its sub-folders is a tree.
bool findLotTrees(const std::vector<std::string>& dirs, std::vector<std::string>& trees, std::string& error);

// One tree. Thread-safe: nothing shared is touched.
LotPanelResult verifyPanel(const std::string& tree, double maxDe);

// Every tree, `threads` at a time (0: one per hardware thread), results in the trees' order.
std::vector<LotPanelResult> verifyLot(const std::vector<std::string>& trees, double maxDe, unsigned threads,
                                      const std::function<void()>& done = {});

LotSummary summariseLot(const std::vector<LotPanelResult>& results, double maxDe,
                        double xyTolerance = kDefaultXyTolerance);

// One row per panel and mode; a display without tables and an unreadable tree get one row each.
std::string lotCsvText(const std::vector<LotPanelResult>& results, const LotSummary& summary);
// {"summary": ..., "panels": [one record per panel]}.
std::string lotJsonText(const std::vector<LotPanelResult>& results, const LotSummary& summary);
std::string lotSummaryText(const std::vector<LotPanelResult>& results, const LotSummary& summary);

}  // namespace pctool
