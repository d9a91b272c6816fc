#include "tools/lib/device/DeviceFolder.h"

#include <algorithm>
#include <memory>

#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "frontend/TablePlan.h"
#include "tools/lib/calibration/Plausibility.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/device/DataSource.h"
#include "tools/lib/device/DeviceDisplays.h"
#include "tools/lib/device/PanelTables.h"
#include "tools/lib/device/PropertyFile.h"
#include "tools/lib/device/StaleCache.h"

namespace pctool {

namespace fe = postblend::fe;

namespace {

void addTargets(const std::string& dir, const std::string& name, PanelReport& rep) {
  std::string why;
  for (int file = 0; file < fe::kTargetFiles; ++file) {
    const std::string path = fe::targetPath(name, file);
    if (!pathExists(dir + path, why)) {
      if (!why.empty()) rep.notes.push_back(path + ": " + why);
      continue;
    }
    ReportTarget t;
    t.path = path;
    t.mode = fe::kModeNames[file % fe::kModes];
    t.nits100 = file >= fe::kModes;
    if (!readTargetFile(dir + path, t.target, t.count, why)) {
      rep.notes.push_back(path + ": " + why);
      continue;
    }
    for (const auto& f : checkTarget(t.target, t.count)) rep.notes.push_back(path + ": " + f.line());
    rep.targets.push_back(t);
  }
}

int targetIndex(const PanelReport& rep, const std::string& mode, bool nits100) {
  for (size_t i = 0; i < rep.targets.size(); ++i)
    if (rep.targets[i].mode == mode && rep.targets[i].nits100 == nits100) return static_cast<int>(i);
  return -1;
}

// The four measurement sets the tables came from, or - when the plugin would make none - the
// golden ones.
void addOpticalData(const std::string& dir, const DataSource& source, uint32_t panel, const std::string& name,
                    PanelReport& rep) {
  std::vector<std::string> paths = source.odfPaths;
  if (paths.empty())
    for (int s = 0; s < fe::kOdfSets; ++s) paths.push_back(fe::opticalDataPath(fe::OdfOrigin::Golden, panel, name, s));
  std::string why;
  for (int s = 0; s < fe::kOdfSets; ++s) {
    ReportOdf o;
    o.set = fe::kOdfSetNames[s];
    o.setIndex = s;
    o.path = paths[static_cast<size_t>(s)];
    OdfCheck check;
    if (!readOdfFile(dir + o.path, o.odf, check, why)) {
      rep.notes.push_back(o.path + ": " + why);
      continue;
    }
    if (!odfLengthWarning(check).empty()) rep.notes.push_back(o.path + ": " + odfLengthWarning(check));
    for (const auto& f : checkOpticalData(o.odf.values)) rep.notes.push_back(o.path + ": " + f.line());
    rep.odfs.push_back(o);
  }
}

// The tables the plugin runs with: its cache when it would take it, else made in memory as it
// would make them (PanelTables.h).
void addTables(const std::string& dir, const DisplayTables& dt, PanelReport& rep) {
  const std::string cache = postblend::Lut3DCacheManager::cachePath(dt.panel == 0 ? 0 : 1);
  if (dt.tables.empty()) {
    rep.tablesText = "tables: none (" + dt.note + ")";
    return;
  }
  rep.tablesText = dt.fromCache ? "tables: from the cache " + cache
                                : "tables: generated in memory as the plugin would (" +
                                      (dt.note.empty() ? cache + " not found" : dt.note) + ")";
  rep.tablesText += ", " + std::to_string(dt.tables.size()) + " tables";
  if (dt.fromCache) {
    const std::string stale = staleCacheNote(dir, rep.displayName, dt.panel);
    if (!stale.empty()) rep.notes.push_back(cache + ": " + stale);
  }
  for (uint32_t k = 0; k < dt.tables.size(); ++k) {
    ReportTable t{cacheTableName(k), std::make_shared<postblend::lut3d_info>(dt.tables[k])};
    const fe::TableInputs in = dt.inputs(static_cast<int>(k));
    for (size_t o = 0; o < rep.odfs.size(); ++o)
      if (rep.odfs[o].setIndex == in.odf) t.odf = static_cast<int>(o);
    t.target = targetIndex(rep, fe::kModeNames[in.target % fe::kModes], in.target >= fe::kModes);
    rep.tables.push_back(t);
  }
}

}  // namespace

bool collectDeviceReports(const std::string& dir, std::vector<PanelReport>& out, std::vector<std::string>& unjudged,
                          std::string& error, const std::vector<TableJob>* jobs) {
  out.clear();
  unjudged.clear();
  PropertyFile prop;
  if (!prop.load(dir + postblend::Prop::kPath, error)) {
    error = std::string(postblend::Prop::kPath) + ": " + error;
    return false;
  }
  for (const DeviceDisplay& display : deviceDisplays(dir, prop)) {
    if (!display.error.empty()) {
      unjudged.push_back(display.unjudgedText());
      continue;
    }
    const std::string& name = display.name;
    const uint32_t panel = display.panel;
    PanelReport rep;
    rep.displayName = name;
    rep.panelName = name + " (panel " + std::to_string(panel) + ")";
    DisplayTables dt;
    loadDisplayTables(dir, prop.switches(), name, panel, dt);
    // The plugin's log says why only of the tables it made and cached itself.
    DataSource source =
        describeDataSource(dt.source, jobs && dt.fromCache ? lastJobOf(*jobs, name) : nullptr, panel, name);
    if (dt.source >= 0 && (!dt.fromCache || jobs == nullptr || lastJobOf(*jobs, name) == nullptr))
      source.why = dt.sourceWhy();
    rep.sourceText = "optical data: " + (dt.source < 0 ? "none the plugin can use" : source.statement());
    addTargets(dir, name, rep);
    addOpticalData(dir, source, panel, name, rep);
    addTables(dir, dt, rep);
    out.push_back(std::move(rep));
  }
  if (out.empty() && !unjudged.empty()) {
    error = "no panel can be reported: " + unjudged.front();
    return false;
  }
  if (out.empty()) {
    error = "no panel found (no display name of the property file has " + std::string(fe::kOdmDir) + "<name>_1_max.odf)";
    return false;
  }
  return true;
}

}  // namespace pctool
