#include "tools/lib/DeviceFolder.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "tools/lib/TableSource.h"

namespace pctool {

namespace fs = std::filesystem;

namespace {

constexpr const char* kOdm = "/odm/etc/PanelCorvane/";
constexpr const char* kModes[4] = {"Vivid", "Nature", "Cinema", "LsRGB"};
constexpr size_t kMaxPropertyBytes = 64 * 1024;

// The panel a display name maps to in the property file; 0 when absent (as the plugin does).
uint32_t panelIndexOf(const std::string& dir, const std::string& name) {
  std::ifstream in(dir + kOdm + "panelcorvane", std::ios::binary);
  std::string line;
  size_t read = 0;
  while (in && read < kMaxPropertyBytes && std::getline(in, line)) {
    read += line.size() + 1;
    if (in.eof()) break;  // a line without its line feed is not used
    if (line.compare(0, name.size() + 1, name + "=") != 0) continue;
    unsigned long v = std::strtoul(line.c_str() + name.size() + 1, nullptr, 10);
    return (v >= 100 && v <= 199) ? 1u : 0u;
  }
  return 0;
}

}  // namespace

std::string cacheTableName(uint32_t index) {
  std::string s = std::to_string(index) + " " + (index / 2 < 4 ? kModes[index / 2] : "table");
  return index % 2 == 0 ? s + " 100-nit" : s;
}

bool collectDeviceReports(const std::string& dir, std::vector<PanelReport>& out, std::string& error) {
  out.clear();
  std::error_code ec;
  std::vector<std::string> names;
  const std::string suffix = "_1_max.odf";
  for (fs::directory_iterator it(dir + kOdm, ec), end; !ec && it != end; it.increment(ec)) {
    std::string f = it->path().filename().string();
    if (f.size() > suffix.size() && f.compare(f.size() - suffix.size(), suffix.size(), suffix) == 0)
      names.push_back(f.substr(0, f.size() - suffix.size()));
  }
  if (names.empty()) {
    error = "no panel found (no " + std::string(kOdm) + "<name>_1_max.odf)";
    return false;
  }
  std::sort(names.begin(), names.end());
  for (const auto& name : names) {
    PanelReport rep;
    const uint32_t panel = panelIndexOf(dir, name);
    rep.panelName = name + " (panel " + std::to_string(panel) + ")";

    const std::string local =
        std::string("/mnt/vendor/persist/display/Loading_ON_1_max") + (panel ? "_d1" : "") + ".odf";
    const std::string golden = kOdm + name + "_1_max.odf";
    OdfCheck check;
    std::string why;
    if (readOdfFile(dir + local, rep.odf, check, why)) {
      rep.hasOdf = true;
      rep.odfLabel = local + " (local)";
    } else {
      if (fs::exists(dir + local)) rep.notes.push_back(local + ": " + why);
      if (readOdfFile(dir + golden, rep.odf, check, why)) {
        rep.hasOdf = true;
        rep.odfLabel = golden + " (golden)";
      } else {
        rep.notes.push_back(golden + ": " + why);
      }
    }

    for (const char* mode : kModes) {
      const std::string path = kOdm + name + "_" + mode + ".txt";
      if (!fs::exists(dir + path)) continue;
      ReportTarget t;
      t.name = mode;
      int count = 0;
      if (readTargetFile(dir + path, t.target, count, why)) rep.targets.push_back(t);
      else rep.notes.push_back(path + ": " + why);
    }

    const std::string cache = panel ? "/data/vendor/display/cofc2.fw" : "/data/vendor/display/cofc.fw";
    if (fs::exists(dir + cache)) {
      std::vector<LoadedTable> tables;
      if (loadTables(dir + cache, tables, why)) {
        for (uint32_t k = 0; k < tables.size(); ++k) rep.tables.push_back({cacheTableName(k), tables[k].lut});
      } else {
        rep.notes.push_back(cache + ": " + why);
      }
    } else {
      rep.notes.push_back(cache + " not found: no tables (run the plugin once to fill the cache)");
    }
    out.push_back(std::move(rep));
  }
  return true;
}

}  // namespace pctool
