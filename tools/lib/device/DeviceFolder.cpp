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
#include "tools/lib/device/PropertyFile.h"
#include "tools/lib/device/StaleCache.h"
#include "tools/lib/tables/TableSource.h"

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

// The four measurement sets the tables came from, or - without a cache - the ones the plugin
// would try first.
void addOpticalData(const std::string& dir, const DataSource& source, uint32_t panel, const std::string& name,
                    PanelReport& rep) {
  std::vector<std::string> paths = source.odfPaths;
  if (paths.empty()) {
    std::string why;
    const bool local = pathExists(dir + fe::opticalDataPath(fe::OdfOrigin::Local, panel, name, 0), why);
    for (int s = 0; s < fe::kOdfSets; ++s)
      paths.push_back(fe::opticalDataPath(local ? fe::OdfOrigin::Local : fe::OdfOrigin::Golden, panel, name, s));
    rep.sourceText += local ? "; shown: the local data, which the plugin tries first"
                            : "; shown: the golden data (no local data)";
  }
  std::string why;
  for (int s = 0; s < fe::kOdfSets; ++s) {
    ReportOdf o;
    o.set = fe::kOdfSetNames[s];
    o.path = paths[static_cast<size_t>(s)];
    OdfCheck check;
    if (!readOdfFile(dir + o.path, o.odf, check, why)) {
      rep.notes.push_back(o.path + ": " + why);
      continue;
    }
    for (const auto& f : checkOpticalData(o.odf.values)) rep.notes.push_back(o.path + ": " + f.line());
    rep.odfs.push_back(o);
  }
}

void addTables(const std::string& dir, uint32_t panel, bool use100nits, PanelReport& rep) {
  const std::string cache = postblend::Lut3DCacheManager::cachePath(panel == 0 ? 0 : 1);
  std::string why;
  if (!pathExists(dir + cache, why)) {
    rep.notes.push_back(cache + (why.empty() ? " not found: no tables (run the plugin once to fill the cache)" : ": " + why));
    return;
  }
  std::vector<LoadedTable> tables;
  if (!loadTables(dir + cache, tables, why)) {
    rep.notes.push_back(cache + ": " + why);
    return;
  }
  rep.tablesText = "tables: " + cache + ", " + std::to_string(tables.size()) + " tables";
  const std::string stale = staleCacheNote(dir, rep.displayName, panel);
  if (!stale.empty()) rep.notes.push_back(cache + ": " + stale);
  for (uint32_t k = 0; k < tables.size(); ++k) {
    ReportTable t{cacheTableName(k), tables[k].lut};
    if (k < fe::kMaxTables) {
      const fe::TableInputs in = fe::tableInputs(static_cast<int>(k), use100nits);
      for (size_t o = 0; o < rep.odfs.size(); ++o)
        if (rep.odfs[o].set == fe::kOdfSetNames[in.odf]) t.odf = static_cast<int>(o);
      t.target = targetIndex(rep, fe::kModeNames[in.target % fe::kModes], in.target >= fe::kModes);
    }
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
  const bool use100nits = prop.switches().use100nits;
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
    uint32_t trailer = 0;
    std::string why;
    const bool haveCache = readCacheSource(dir, panel, trailer, why);
    const DataSource source = describeDataSource(haveCache ? static_cast<int>(trailer) : -1,
                                                 jobs ? lastJobOf(*jobs, name) : nullptr, panel, name);
    rep.sourceText = "optical data: " + source.statement();
    addTargets(dir, name, rep);
    addOpticalData(dir, source, panel, name, rep);
    addTables(dir, panel, use100nits, rep);
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
