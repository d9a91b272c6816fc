#include "tools/cli/SimulateOutputs.h"

#include <cctype>
#include <cstdio>

#include "tools/lib/CubeFile.h"
#include "tools/lib/DeviceFolder.h"
#include "tools/lib/Report.h"

namespace pctool {

namespace {
// FNV-1a over the table's entries: tells distinct tables apart.
uint64_t fingerprint(const snapdragoncolor::lut3d_info& lut) {
  uint64_t h = 1469598103934665603ULL;
  const auto* bytes = reinterpret_cast<const unsigned char*>(&lut.entries);
  for (size_t i = 0; i < sizeof(lut.entries); ++i) {
    h ^= bytes[i];
    h *= 1099511628211ULL;
  }
  return h ^ lut.lut3d_id;
}
}  // namespace

std::string SimulateOutputs::recordTable(int panel, const snapdragoncolor::lut3d_info& lut) {
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

void SimulateOutputs::finish(const std::vector<std::string>& /*logLines*/,
                             const std::string& /*primary*/, const std::string& /*secondary*/) {
  int written = 0;
  for (const auto& [key, t] : mTables) {
    std::string error;
    std::string title = "PanelCorvane panel " + std::to_string(t.panel) + " table " +
                        std::to_string(t.lut.lut3d_id);
    if (CubeFile::writeFile((mOut / t.file).string(), t.lut, title, error)) {
      ++written;
    } else {
      fprintf(stderr, "simulate: %s\n", error.c_str());
    }
  }
  printf("tables: %d distinct table(s) applied, written as .cube files in %s\n", written,
         mOut.string().c_str());

  if (!reportSupported()) {
    printf("report: not drawn (built without cairo; install libcairo2-dev and rebuild)\n");
    return;
  }
  std::vector<PanelReport> reports;
  std::string error;
  if (!collectDeviceReports((mOut / "device").string(), reports, error)) {
    printf("report: not drawn (%s)\n", error.c_str());
    return;
  }
  for (const PanelReport& r : reports) {
    std::string file = "report-";
    for (char c : r.panelName) {
      char k = std::isalnum(static_cast<unsigned char>(c)) || c == '_' ? c : '-';
      if (k != '-' || file.back() != '-') file += k;
    }
    while (file.back() == '-') file.pop_back();
    std::string path = (mOut / (file + ".png")).string();
    if (writeReportPng(r, path, error)) {
      printf("report: %s\n", path.c_str());
    } else {
      fprintf(stderr, "simulate: report of %s: %s\n", r.panelName.c_str(), error.c_str());
    }
  }
}

}  // namespace pctool
