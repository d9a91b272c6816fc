#include "tools/lib/DeviceFolder.h"

#include <algorithm>
#include <filesystem>
#include <memory>

#include "tools/lib/DataSource.h"
#include "tools/lib/Plausibility.h"
#include "tools/lib/PropertyFile.h"
#include "tools/lib/TableSource.h"

namespace pctool {

namespace fs = std::filesystem;

namespace {

constexpr const char* kOdm = "/odm/etc/PanelCorvane/";
constexpr const char* kModes[4] = {"Vivid", "Nature", "Cinema", "LsRGB"};
// The optical data set (index into kOdfSetNames) each cache table is generated from.
constexpr int kTableOdfSet[8] = {3, 1, 2, 0, 2, 0, 3, 1};

void addTargets(const std::string& dir, const std::string& name, PanelReport& rep) {
  std::string why;
  for (bool nits : {false, true}) {
    for (const char* mode : kModes) {
      const std::string path = kOdm + name + "_" + mode + (nits ? "_100nits" : "") + ".txt";
      if (!fs::exists(dir + path)) continue;
      ReportTarget t;
      t.mode = mode;
      t.nits100 = nits;
      if (!readTargetFile(dir + path, t.target, t.count, why)) {
        rep.notes.push_back(path + ": " + why);
        continue;
      }
      for (const auto& f : checkTarget(t.target, t.count)) rep.notes.push_back(path + ": " + f.line());
      rep.targets.push_back(t);
    }
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
    const bool local = fs::exists(dir + localOdfPath(panel, 0));
    for (int s = 0; s < kOdfSets; ++s) paths.push_back(local ? localOdfPath(panel, s) : goldenOdfPath(name, s));
    rep.sourceText += local ? "; shown: the local data, which the plugin tries first"
                            : "; shown: the golden data (no local data)";
  }
  std::string why;
  for (int s = 0; s < kOdfSets; ++s) {
    ReportOdf o;
    o.set = kOdfSetNames[s];
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
  const std::string cache = cacheFilePath(panel);
  if (!fs::exists(dir + cache)) {
    rep.notes.push_back(cache + " not found: no tables (run the plugin once to fill the cache)");
    return;
  }
  std::vector<LoadedTable> tables;
  std::string why;
  if (!loadTables(dir + cache, tables, why)) {
    rep.notes.push_back(cache + ": " + why);
    return;
  }
  rep.tablesText = "tables: " + cache + ", " + std::to_string(tables.size()) + " tables";
  for (uint32_t k = 0; k < tables.size(); ++k) {
    ReportTable t{cacheTableName(k), tables[k].lut};
    if (k < 8) {
      const std::string set = kOdfSetNames[kTableOdfSet[k]];
      for (size_t o = 0; o < rep.odfs.size(); ++o)
        if (rep.odfs[o].set == set) t.odf = static_cast<int>(o);
      t.target = targetIndex(rep, kModes[k / 2], use100nits && k % 2 == 0);
    }
    rep.tables.push_back(t);
  }
}

}  // namespace

std::string cacheTableName(uint32_t index) {
  std::string s = std::to_string(index) + " " + (index / 2 < 4 ? kModes[index / 2] : "table");
  return index % 2 == 0 ? s + " 100-nit" : s;
}

bool collectDeviceReports(const std::string& dir, std::vector<PanelReport>& out, std::string& error,
                          const std::vector<TableJob>* jobs) {
  out.clear();
  PropertyFile prop;
  if (!prop.load(dir + kOdm + "panelcorvane", error)) {
    error = std::string(kOdm) + "panelcorvane: " + error;
    return false;
  }
  const bool use100nits = prop.intOr("inParam100nits", 0) == 1;
  for (const auto& [name, panel] : prop.displayNames()) {
    if (!fs::exists(dir + goldenOdfPath(name, 0))) continue;
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
  if (out.empty()) {
    error = "no panel found (no display name of the property file has " + std::string(kOdm) + "<name>_1_max.odf)";
    return false;
  }
  return true;
}

}  // namespace pctool
