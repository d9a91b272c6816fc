// The lot's summary page, planned before it is drawn so tests read what it says, not pixels:
// the distribution of the modes' 95th percentiles in fixed bins against the limit, each
// panel's own measurement of one set on the xy diagram with the targets, the golden data and
// the tolerance around it, and as many of the panels that do not pass and the outliers as the
// page holds.
#pragma once

#include <string>
#include <vector>

#include "tools/lib/drawing/PlanStyle.h"
#include "tools/lib/lot/LotVerify.h"

namespace pctool {

// One display's own measurement on the diagram, marked by its panel's class.
struct LotMark {
  LotVerdict verdict = LotVerdict::Pass;  // Pass, Fail or OffOwnData
  double xy[4][2] = {};
};

// A line of the diagram's key with the mark it explains.
struct LotKeyLine {
  enum class Mark { Pass, Fail, OffOwnData, Golden, Tolerance, Target, None };
  Mark mark = Mark::None;
  std::string text;
  PlanStyle style;  // a target's line
};

struct LotPagePlan {
  std::string title, classes, sources;  // the header's lines
  std::string setName;                  // the measurement set on the diagram: "1_max"
  std::string setTitle;                 // the diagram's title, naming the set and its modes
  std::vector<LotMark> marks;
  size_t notDrawn = 0;  // displays without a usable measurement of their own of the set
  double golden[4][2] = {};
  bool hasGolden = false;
  size_t beyond[4] = {};  // marks farther than the tolerance from the golden point
  std::vector<LotTarget> targets;  // of the first display that has them
  std::vector<PlanStyle> targetStyles;
  std::vector<LotKeyLine> key;  // one line per kind of mark drawn, in order
  std::vector<std::string> listed;  // panels that do not pass, then the outliers, as far as they fit
  size_t notListed = 0;
};

// The xy diagram's width in pixels for x 0..0.8: targets closer than a pixel share a line.
constexpr double kLotDiagramPixels = 400;
// Lines of the list at the foot of the page.
constexpr size_t kLotListRows = 30;

LotPagePlan planLotPage(const std::vector<LotPanelResult>& results, const LotSummary& summary);

bool lotPageSupported();
bool drawLotPage(const std::string& path, const std::vector<LotPanelResult>& results, const LotSummary& summary,
                 std::string& error);

}  // namespace pctool
