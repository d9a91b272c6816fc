#include "tools/lib/lot/LotVerify.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "config/Prop.h"
#include "frontend/Lut3dGeneration.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/common/ParallelFor.h"
#include "tools/lib/common/PrintfString.h"
#include "tools/lib/device/DataSource.h"
#include "tools/lib/device/DeviceDisplays.h"
#include "tools/lib/device/DeviceFolder.h"
#include "tools/lib/device/PanelTables.h"
#include "tools/lib/device/PropertyFile.h"
#include "tools/lib/verify/Verify.h"

namespace pctool {

namespace {

namespace fs = std::filesystem;
namespace fe = postblend::fe;

constexpr const char* kPropertyFile = postblend::Prop::kPath;

// Anything at the property file's place makes a tree: a broken one is reported, not skipped.
bool isTree(const std::string& p) {
  std::string why;
  return pathExists(p + kPropertyFile, why) || !why.empty();
}

std::string folderName(const std::string& path) {
  fs::path p = fs::path(path).lexically_normal();
  if (p.filename().empty()) p = p.parent_path();
  const std::string name = p.filename().string();
  return name.empty() || name == "." ? path : name;
}

// Mean, nearest-rank 95th percentile and maximum over the reference colours and the grey ramp.
void errorStats(const Prediction& p, LotMode& m) {
  std::vector<double> de;
  for (const auto* set : {&p.reference, &p.grey})
    for (const auto& c : *set) de.push_back(c.de);
  std::sort(de.begin(), de.end());
  double sum = 0;
  for (double d : de) sum += d;
  m.mean = sum / de.size();
  m.p95 = de[static_cast<size_t>(std::ceil(0.95 * de.size())) - 1];
  m.max = de.back();
}

void xyOf(const OpticalDataFile& odf, double (&xy)[4][2], bool& ok) {
  const fe::Chromaticities c = fe::panelChromaticities(odf);
  for (int p = 0; p < 4; ++p)
    for (int k = 0; k < 2; ++k) xy[p][k] = c.xy[p][k];
  ok = std::isfinite(xy[3][0]) && std::isfinite(xy[3][1]);
}

// What the page draws of a display: its own and the golden measurement of the plotted set, and
// the standard targets that were read.
void plotData(const std::string& tree, const DisplayTables& t, LotDisplay& d) {
  if (t.judgeLocal[fe::kOdf1max]) xyOf(t.judge[fe::kOdf1max], d.own, d.hasOwn);
  OpticalDataFile golden{};
  OdfCheck check;
  std::string why;
  if (readOdfFile(tree + fe::opticalDataPath(fe::OdfOrigin::Golden, t.panel, t.displayName, fe::kOdf1max), golden,
                  check, why))
    xyOf(golden, d.golden, d.hasGolden);
  for (int k = 0; k < fe::kModes; ++k) {
    const float* v = t.targets[k].values;
    if (v[6] <= 0 || v[7] <= 0) continue;  // not read
    LotTarget target{fe::kModeNames[k], fileName(fe::targetPath(t.displayName, k)), {}};
    for (int i = 0; i < 8; ++i) target.xy[i / 2][i % 2] = v[i];
    d.targets.push_back(target);
  }
}

void verifyDisplay(const std::string& tree, const postblend::PanelSwitches& sw, const std::string& name, uint32_t panel,
                   double maxDe, LotPanelResult& r) {
  DisplayTables t;
  loadDisplayTables(tree, sw, name, panel, t);
  LotDisplay d;
  d.name = name;
  d.source = t.source < 0 ? "none" : describeDataSource(t.source, nullptr, panel, name).word();
  if (t.source > 0) d.offReason = "tables from golden data: " + t.sourceWhy();
  d.fromCache = t.fromCache;
  d.note = t.note;
  plotData(tree, t, d);
  if (t.tables.empty()) {
    LotMode none;
    none.display = name;
    none.mode = "no tables";
    none.note = t.note;
    r.modes.push_back(none);
  }
  for (size_t k = 0; k < t.tables.size(); ++k) {
    LotMode m;
    m.display = name;
    m.table = static_cast<int>(k);
    m.mode = cacheTableName(static_cast<uint32_t>(k)).substr(2);
    const fe::TableInputs in = t.inputs(static_cast<int>(k));
    m.target = fileName(fe::targetPath(name, in.target));
    m.dataSet = fe::kOdfSetNames[in.odf];
    m.judgedBy = t.judgeLocal[in.odf] ? "local" : "golden";
    Prediction p;
    if (!predict(t.tables[k], t.judge[in.odf], t.targets[in.target], p, m.note)) {
      m.note = "no prediction: " + m.note;
    } else {
      errorStats(p, m);
      m.figures = true;
      m.pass = m.p95 <= maxDe;
    }
    r.modes.push_back(m);
  }
  r.displays.push_back(d);
}

const LotMode* worstFailing(const LotPanelResult& r) {
  const LotMode* bad = nullptr;
  for (const auto& m : r.modes)
    if (m.figures && !m.pass && (bad == nullptr || m.p95 > bad->p95)) bad = &m;
  return bad;
}

}  // namespace

const char* verdictWord(LotVerdict v) {
  switch (v) {
    case LotVerdict::Pass: return "pass";
    case LotVerdict::Fail: return "fail";
    case LotVerdict::OffOwnData: return "off-own-data";
    case LotVerdict::Unjudged: break;
  }
  return "unjudged";
}

LotVerdict LotPanelResult::verdict() const {
  if (!error.empty() || modes.empty()) return LotVerdict::Unjudged;
  for (const auto& m : modes)
    if (!m.figures) return LotVerdict::Unjudged;
  for (const auto& d : displays)
    if (!d.offReason.empty()) return LotVerdict::OffOwnData;
  return worstFailing(*this) ? LotVerdict::Fail : LotVerdict::Pass;
}

std::string LotPanelResult::reason() const {
  std::string why;
  const auto add = [&why](const std::string& s) { why += (why.empty() ? "" : "; ") + s; };
  switch (verdict()) {
    case LotVerdict::Pass: break;
    case LotVerdict::Unjudged:
      if (!error.empty()) return error;
      if (modes.empty()) return "no display";
      for (const auto& m : modes)
        if (!m.figures) add(m.display + " " + m.mode + (m.note.empty() ? "" : ": " + m.note));
      break;
    case LotVerdict::OffOwnData:
      for (const auto& d : displays)
        if (!d.offReason.empty()) add(d.name + ": " + d.offReason);
      break;
    case LotVerdict::Fail: {
      const LotMode* bad = worstFailing(*this);
      size_t more = 0;
      for (const auto& m : modes) more += m.figures && !m.pass && &m != bad ? 1 : 0;
      why = "fails " + bad->display + " " + bad->mode + ", p95 dE00 " + decidingFigure(bad->p95, maxDe) + " > " +
            exactFigure(maxDe);
      if (more) why += " and " + std::to_string(more) + " more mode" + (more > 1 ? "s" : "");
    }
  }
  return why;
}

double LotPanelResult::worst() const {
  double w = 0;
  for (const auto& m : modes) w = std::max(w, m.p95);
  return w;
}

bool findLotTrees(const std::vector<std::string>& dirs, std::vector<std::string>& trees, std::string& error) {
  trees.clear();
  for (const auto& dir : dirs) {
    std::error_code ec;
    if (!fs::is_directory(dir, ec)) {
      error = dir + (fs::exists(dir, ec) ? ": not a folder" : ": no such folder");
      return false;
    }
    if (isTree(dir)) {
      trees.push_back(dir);
      continue;
    }
    // Every folder of the lot is a panel: one that cannot be read is named, not skipped.
    std::vector<std::string> found, names;
    bool anyTree = false;
    if (!listFolder(dir, names, error)) return error = dir + ": " + error, false;
    for (const auto& name : names) {
      const std::string path = (fs::path(dir) / name).string();
      if (name.empty() || name[0] == '.' || !fs::is_directory(path, ec)) continue;
      found.push_back(path);
      anyTree = anyTree || isTree(path);
    }
    if (!anyTree) {
      error = dir + ": no device tree in it (no odm/etc/PanelCorvane/panelcorvane in the folder or a sub-folder)";
      return false;
    }
    std::sort(found.begin(), found.end());
    trees.insert(trees.end(), found.begin(), found.end());
  }
  return true;
}

LotPanelResult verifyPanel(const std::string& tree, double maxDe) {
  LotPanelResult r;
  r.path = tree;
  r.name = folderName(tree);
  r.maxDe = maxDe;
  PropertyFile prop;
  std::string why;
  if (!isTree(tree)) {
    r.error = tree + kPropertyFile + ": missing: not a device tree";
    return r;
  }
  if (!prop.load(tree + kPropertyFile, why)) {
    r.error = tree + kPropertyFile + ": " + why;
    return r;
  }
  const postblend::PanelSwitches sw = prop.switches();
  for (const DeviceDisplay& d : deviceDisplays(tree, prop)) {
    if (d.error.empty()) {
      verifyDisplay(tree, sw, d.name, d.panel, maxDe, r);
      continue;
    }
    LotMode m;
    m.display = d.name;
    m.mode = "no tables";
    m.note = d.unjudgedText();
    r.modes.push_back(m);
    LotDisplay display;
    display.name = d.name;
    display.source = "none";
    display.note = d.unjudgedText();
    r.displays.push_back(display);
  }
  if (r.displays.empty())
    r.error = tree + kPropertyFile + ": no display name with golden data (<name>_1_max.odf)";
  return r;
}

std::vector<LotPanelResult> verifyLot(const std::vector<std::string>& trees, double maxDe, unsigned threads,
                                      const std::function<void()>& done) {
  std::vector<LotPanelResult> results(trees.size());
  parallelFor(trees.size(), threads, [&](size_t i) {
    results[i] = verifyPanel(trees[i], maxDe);
    if (done) done();
  });
  return results;
}

LotSummary summariseLot(const std::vector<LotPanelResult>& results, double maxDe, double xyTolerance) {
  LotSummary s;
  s.maxDe = maxDe;
  s.xyTolerance = xyTolerance;
  s.panels = results.size();
  std::vector<double> worst;
  for (const auto& r : results) {
    const LotVerdict v = r.verdict();
    ++s.counts[static_cast<int>(v)];
    for (const auto& d : r.displays) {
      ++s.sources[d.source];
      if (d.source != "none") ++(d.fromCache ? s.fromCache : s.generated);
    }
    // The distribution and the fence are of panels judged on their own data only.
    if (v != LotVerdict::Pass && v != LotVerdict::Fail) continue;
    worst.push_back(r.worst());
    for (const auto& m : r.modes) {
      const size_t bin = std::min(LotSummary::kBins - 1, static_cast<size_t>(m.p95 / LotSummary::kBinWidth));
      ++(m.pass ? s.binPass : s.binFail)[bin];
    }
  }
  s.yield = s.panels ? static_cast<double>(s.passed()) / s.panels : 0;
  // Far out (Tukey): beyond the third quartile by three interquartile ranges, to 0.01.
  double fence = INFINITY;
  if (worst.size() >= 4) {
    std::sort(worst.begin(), worst.end());
    const double q1 = worst[worst.size() / 4], q3 = worst[worst.size() * 3 / 4];
    fence = std::round((q3 + 3 * (q3 - q1)) * 100) / 100;
  }
  for (const auto& r : results) {
    const LotVerdict v = r.verdict();
    LotOutlier o;
    o.panel = r.name;
    o.verdict = v;
    if (v == LotVerdict::Fail) {
      const LotMode* bad = worstFailing(r);
      o.display = bad->display, o.mode = bad->mode, o.p95 = bad->p95;
      o.text = r.name + ": " + r.reason();
    } else if (v == LotVerdict::Pass && r.worst() > fence) {
      o.p95 = r.worst(), o.fence = fence;
      for (const auto& m : r.modes)
        if (m.p95 == o.p95) o.display = m.display, o.mode = m.mode;
      o.text = r.name + ": passes, but " + o.display + " " + o.mode + " p95 dE00 " + decidingFigure(o.p95, fence) +
               " is far above the lot (fence " + exactFigure(fence, 2) + ")";
    } else {
      continue;
    }
    s.outliers.push_back(o);
  }
  return s;
}

}  // namespace pctool
