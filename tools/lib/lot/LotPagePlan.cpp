#include <algorithm>
#include <cmath>
#include <cstddef>

#include "frontend/TablePlan.h"
#include "tools/lib/common/PrintfString.h"
#include "tools/lib/lot/LotPage.h"
#include "tools/lib/report/ReportPlan.h"

namespace pctool {

namespace fe = postblend::fe;

namespace {

bool sameTargets(const std::vector<LotTarget>& a, const std::vector<LotTarget>& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (a[i].mode != b[i].mode || !std::equal(&a[i].xy[0][0], &a[i].xy[0][0] + 8, &b[i].xy[0][0])) return false;
  return true;
}

void addKey(LotPagePlan& p, bool present, LotKeyLine::Mark mark, const std::string& text) {
  if (present) p.key.push_back({mark, text, {}});
}

}  // namespace

LotPagePlan planLotPage(const std::vector<LotPanelResult>& results, const LotSummary& s) {
  LotPagePlan p;
  p.title = printfString("Production lot: %zu panels, yield %.1f %% (%zu pass every mode on their own optical data)",
                         s.panels, 100.0 * s.yield, s.passed());
  p.classes = printfString("%zu pass, %zu fail, %zu not on their own optical data, %zu cannot be judged", s.counts[0],
                           s.counts[1], s.counts[2], s.counts[3]) +
              "; a mode passes when the 95th percentile of its predicted dE00 (21 reference colours, grey ramp) is "
              "at most " + exactFigure(s.maxDe);
  p.sources = printfString("tables: %zu from the cache, %zu generated in memory; data source:", s.fromCache, s.generated);
  for (const auto& [source, n] : s.sources) p.sources += " " + std::to_string(n) + " " + source + ",";
  p.sources.pop_back();
  p.setName = fe::kOdfSetNames[fe::kOdf1max];
  p.setTitle = "Own measurement of set " + p.setName + " (full brightness; the tables of " + modesOfSet(fe::kOdf1max) + ")";

  bool kinds[kLotVerdicts] = {};
  std::string otherTargets;
  for (const auto& r : results) {
    const LotVerdict v = r.verdict();
    for (const auto& d : r.displays) {
      if (!p.hasGolden && d.hasGolden) std::copy(&d.golden[0][0], &d.golden[0][0] + 8, &p.golden[0][0]), p.hasGolden = true;
      if (p.targets.empty()) p.targets = d.targets;
      if (otherTargets.empty() && !d.targets.empty() && !sameTargets(d.targets, p.targets)) otherTargets = r.name;
      if (!d.hasOwn || v == LotVerdict::Unjudged) {
        ++p.notDrawn;
        continue;
      }
      LotMark m;
      m.verdict = v;
      std::copy(&d.own[0][0], &d.own[0][0] + 8, &m.xy[0][0]);
      p.marks.push_back(m);
      kinds[static_cast<int>(v)] = true;
      for (int c = 0; c < 4 && d.hasGolden; ++c)
        p.beyond[c] += std::hypot(d.own[c][0] - d.golden[c][0], d.own[c][1] - d.golden[c][1]) > s.xyTolerance;
    }
  }
  using Mark = LotKeyLine::Mark;
  addKey(p, kinds[0], Mark::Pass, "a panel that passes");
  addKey(p, kinds[1], Mark::Fail, "a panel that fails");
  addKey(p, kinds[2], Mark::OffOwnData, "a panel not on its own optical data, at its own measurement");
  addKey(p, p.hasGolden, Mark::Golden, "the golden data of set " + p.setName);
  addKey(p, p.hasGolden, Mark::Tolerance, "in the zooms: xy distance " + exactFigure(s.xyTolerance) + " around it (the titles count the panels outside)");
  const auto first = coincidenceGroups(p.targets.size(), [&](size_t a, size_t b) {
    for (int c = 0; c < 3; ++c)
      for (int k = 0; k < 2; ++k)
        if (std::fabs(p.targets[a].xy[c][k] - p.targets[b].xy[c][k]) > 0.8 / kLotDiagramPixels) return false;
    return true;
  });
  for (size_t i = 0; i < p.targets.size(); ++i) {
    size_t j = 0, k = 0;
    groupPlace(first, i, j, k);
    const LotTarget& t = p.targets[i];
    p.targetStyles.push_back(sharedLineStyle(modeColourIndex(t.mode), j, k));
    p.targetStyles.back().width = 1.5;
    const std::string as = first[i] == i ? "" : ": primaries as " + p.targets[first[i]].mode;
    p.key.push_back({Mark::Target, "target " + t.mode + " (" + t.file + ")" + as, p.targetStyles.back()});
  }
  addKey(p, !otherTargets.empty(), Mark::None, "targets differ between panels (first in " + otherTargets + "): one set drawn");
  addKey(p, p.notDrawn > 0, Mark::None,
         std::to_string(p.notDrawn) + " display(s) without a usable measurement of their own: not drawn");

  // What needs a look first: panels that cannot be judged, failing ones and outliers, then
  // those on golden data.
  std::vector<std::string> lines;
  const auto addClass = [&](LotVerdict verdict, const char* what) {
    for (const auto& r : results)
      if (r.verdict() == verdict) lines.push_back(r.name + ": " + what + ": " + r.reason());
  };
  addClass(LotVerdict::Unjudged, "cannot be judged");
  for (const auto& o : s.outliers) lines.push_back(o.text);
  addClass(LotVerdict::OffOwnData, "not on its own optical data");
  const size_t room = kLotListRows;
  const size_t shown = lines.size() <= room ? lines.size() : room - 1;
  p.listed.assign(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(shown));
  p.notListed = lines.size() - shown;
  return p;
}

}  // namespace pctool
