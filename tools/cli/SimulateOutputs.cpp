#include "tools/cli/SimulateOutputs.h"

#include <pchost/host.h>

#include <cstdio>

#include "tools/lib/device/DeviceFolder.h"
#include "tools/lib/report/Report.h"
#include "tools/lib/tables/CubeFile.h"

namespace pctool {

namespace {
// FNV-1a over the table's entries: tells distinct tables apart.
uint64_t fingerprint(const postblend::lut3d_info& lut) {
  uint64_t h = 1469598103934665603ULL;
  const auto* bytes = reinterpret_cast<const unsigned char*>(&lut.entries);
  for (size_t i = 0; i < sizeof(lut.entries); ++i) {
    h ^= bytes[i];
    h *= 1099511628211ULL;
  }
  return h ^ lut.lut3d_id;
}
}  // namespace

std::string SimulateOutputs::recordTable(int panel, const postblend::lut3d_info& lut) {
  uint64_t key = fingerprint(lut) ^ (static_cast<uint64_t>(panel) << 63);
  auto it = mTables.find(key);
  if (it != mTables.end()) return it->second.file;
  char name[64];
  snprintf(name, sizeof(name), "panel%d-table%u-%08x.cube", panel, lut.lut3d_id,
           static_cast<unsigned>(key & 0xffffffffu));
  auto& t = mTables[key];
  t.panel = panel;
  t.file = name;
  t.lut = lut;
  return t.file;
}

bool SimulateOutputs::finish(const std::vector<PluginLogLine>& log) {
  bool ok = true;
  int written = 0;
  for (const auto& [key, t] : mTables) {
    std::string error;
    const std::string path = (mOut / t.file).string();
    std::string title = "PanelCorvane panel " + std::to_string(t.panel) + " table " + std::to_string(t.lut.lut3d_id);
    if (CubeFile::writeFile(path, t.lut, title, error)) {
      ++written;
    } else {
      fprintf(stderr, "panelcorvane simulate: %s: %s\n", path.c_str(), error.c_str());
      ok = false;
    }
  }
  printf("tables: %d distinct table(s) applied, written as .cube files in %s\n", written, mOut.string().c_str());

  if (!reportSupported()) {
    printf("report: not drawn (built without cairo; run scripts/install-deps.sh and build again)\n");
    return ok;
  }
  std::vector<PanelReport> reports;
  std::vector<std::string> unjudged;
  std::string error;
  const std::vector<TableJob> jobs = tableJobs(log);
  pchost::setLogEcho(false);  // the report's identity check must not add to the plugin's session log
  const bool any = collectDeviceReports((mOut / "device").string(), reports, unjudged, error, &jobs);
  for (const auto& u : unjudged) {
    fprintf(stderr, "panelcorvane simulate: %s: display %s: no report page\n", (mOut / "device").c_str(), u.c_str());
    ok = false;
  }
  if (!any) {
    printf("report: not drawn (%s)\n", error.c_str());
    return ok;
  }
  for (const PanelReport& r : reports) {
    const std::string path = (mOut / reportFileName(r)).string();
    if (writeReportPng(r, path, error)) {
      printf("report: %s\n", path.c_str());
    } else {
      fprintf(stderr, "panelcorvane simulate: %s: %s\n", path.c_str(), error.c_str());
      ok = false;
    }
  }
  return ok;
}

}  // namespace pctool
