#include "tools/lib/lot/LotVerify.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "config/Prop.h"
#include "frontend/Lut3dGeneration.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/common/ParallelFor.h"
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

void verifyDisplay(const std::string& tree, const postblend::PanelSwitches& sw, const std::string& name, uint32_t panel,
                   double maxDe, LotPanelResult& r) {
  DisplayTables t;
  loadDisplayTables(tree, sw, name, panel, t);
  LotDisplay d;
  d.name = name;
  d.source = t.source < 0 ? "none" : describeDataSource(t.source, nullptr, panel, name).word();
  d.fromCache = t.fromCache;
  d.note = t.note;
  if (t.source >= 0) {
    const fe::Chromaticities c = fe::panelChromaticities(t.odf[fe::kOdf1max]);
    for (int p = 0; p < 4; ++p)
      for (int k = 0; k < 2; ++k) d.primaries[p][k] = c.xy[p][k];
    d.hasPrimaries = std::isfinite(d.primaries[3][0]) && std::isfinite(d.primaries[3][1]);
  }
  if (t.tables.empty()) r.modes.push_back({name, -1, "no tables", "", 0, 0, 0, false, t.note});
  for (size_t k = 0; k < t.tables.size(); ++k) {
    LotMode m;
    m.display = name;
    m.table = static_cast<int>(k);
    m.mode = cacheTableName(static_cast<uint32_t>(k)).substr(2);
    const fe::TableInputs in = t.inputs(static_cast<int>(k));
    m.judgedBy = t.judgeLocal[in.odf] ? "local" : "golden";
    Prediction p;
    std::string why;
    if (!predict(t.tables[k], t.judge[in.odf], t.targets[in.target], p, why)) {
      m.note = why;
    } else {
      errorStats(p, m);
      m.pass = m.p95 <= maxDe;
    }
    r.modes.push_back(m);
  }
  r.displays.push_back(d);
}

}  // namespace

bool LotPanelResult::pass() const {
  if (!error.empty() || modes.empty()) return false;
  for (const auto& m : modes)
    if (!m.pass) return false;
  return true;
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
    std::vector<std::string> found, names;
    if (!listFolder(dir, names, error)) return error = dir + ": " + error, false;
    for (const auto& name : names)
      if (isTree((fs::path(dir) / name).string())) found.push_back((fs::path(dir) / name).string());
    if (found.empty()) {
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
  PropertyFile prop;
  std::string why;
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
    r.modes.push_back({d.name, -1, "no tables", "", 0, 0, 0, false, d.unjudgedText()});
    r.displays.push_back({d.name, "none", false, d.unjudgedText(), {}, false});
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

LotSummary summariseLot(const std::vector<LotPanelResult>& results, double maxDe) {
  LotSummary s;
  s.maxDe = maxDe;
  s.panels = results.size();
  // Bins of a sixth of the limit up to twice the limit, then one open bin.
  s.binWidth = maxDe / 6;
  s.bins.assign(13, 0);
  std::vector<double> worst;
  for (const auto& r : results) {
    s.passed += r.pass() ? 1 : 0;
    s.unreadable += r.error.empty() ? 0 : 1;
    for (const auto& m : r.modes)
      if (m.table >= 0) ++s.bins[std::min<size_t>(12, static_cast<size_t>(m.p95 / s.binWidth))];
    if (r.error.empty()) worst.push_back(r.worst());
    for (const auto& d : r.displays) {
      ++s.sources[d.source];
      if (d.source != "local") s.offOwnData.push_back(r.name + " " + d.name + ": " + d.source);
    }
  }
  s.yield = s.panels ? static_cast<double>(s.passed) / s.panels : 0;
  // Far out (Tukey): beyond the third quartile by three interquartile ranges.
  double fence = INFINITY;
  if (worst.size() >= 4) {
    std::sort(worst.begin(), worst.end());
    const double q1 = worst[worst.size() / 4], q3 = worst[worst.size() * 3 / 4];
    fence = q3 + 3 * (q3 - q1);
  }
  char buf[160];
  for (const auto& r : results) {
    if (!r.error.empty()) {
      s.outliers.push_back(r.name + ": unreadable: " + r.error);
      continue;
    }
    const LotMode* bad = nullptr;
    for (const auto& m : r.modes)
      if (!m.pass && (bad == nullptr || m.p95 > bad->p95)) bad = &m;
    if (bad != nullptr && bad->table < 0) {
      snprintf(buf, sizeof buf, ": %s has no tables", bad->display.c_str());
      s.outliers.push_back(r.name + buf + (bad->note.empty() ? "" : " (" + bad->note + ")"));
    } else if (bad != nullptr) {
      snprintf(buf, sizeof buf, ": fails %s %s, p95 dE00 %.2f", bad->display.c_str(), bad->mode.c_str(), bad->p95);
      s.outliers.push_back(r.name + buf);
    } else if (r.worst() > fence) {
      snprintf(buf, sizeof buf, ": passes, but p95 dE00 %.2f is far above the lot (fence %.2f)", r.worst(), fence);
      s.outliers.push_back(r.name + buf);
    }
  }
  return s;
}

}  // namespace pctool
