#include "tools/lib/device/FileInfo.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <vector>

#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/calibration/Plausibility.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/tables/TableIndex.h"
#include "tools/lib/tables/TableSource.h"
#include "tools/lib/verify/PanelModel.h"
#include "tools/lib/verify/Verify.h"

namespace pctool {

using postblend::lut3d_info;

namespace {

void add(std::string& o, const char* f, ...) __attribute__((format(printf, 2, 3)));
void add(std::string& o, const char* f, ...) {
  char buf[512];
  va_list ap;
  va_start(ap, f);
  std::vsnprintf(buf, sizeof buf, f, ap);
  va_end(ap);
  o += buf;
}

const char* sourceMeaning(uint32_t s) {
  switch (s) {
    case 0:
      return "panel matched, local data";
    case 1:
      return "panel not matched, golden data";
    case 2:
      return "panel matched but golden data used; never accepted on reload";
  }
  return "unknown";
}

// Output ranges, identity distance and the dE76 verdict of one table.
void describeTable(std::string& o, const lut3d_info& lut) {
  uint32_t lo[3] = {~0u, ~0u, ~0u}, hi[3] = {0, 0, 0};
  int64_t maxMove = 0;
  uint32_t offGrid = 0;
  for (uint32_t n = 0; n < kEntries; ++n) {
    const auto& e = lut.entries[n];
    if (e.in[0] != gridCode(n % kGrid) || e.in[1] != gridCode(n / kGrid % kGrid) ||
        e.in[2] != gridCode(n / (kGrid * kGrid)))
      ++offGrid;
    for (int c = 0; c < 3; ++c) {
      lo[c] = std::min(lo[c], e.out[c]);
      hi[c] = std::max(hi[c], e.out[c]);
      maxMove = std::max<int64_t>(maxMove, std::llabs(int64_t(e.out[c]) - int64_t(e.in[c])));
    }
  }
  De76Report d = de76Report(lut);
  add(o, "  header: flags %u, lut3d_id %u, uniform %u, num_entries %u%s\n", lut.flags, lut.lut3d_id,
      lut.uniform, lut.num_entries, lut.num_entries == kEntries ? "" : " (expected 4913)");
  add(o, "  inputs: %s", offGrid ? "" : "on the device grid\n");
  if (offGrid) add(o, "%u entries off the device grid\n", offGrid);
  add(o, "  outputs: R %u..%u, G %u..%u, B %u..%u; largest move from the input %lld codes%s\n",
      lo[0], hi[0], lo[1], hi[1], lo[2], hi[2], static_cast<long long>(maxMove),
      maxMove == 0 ? " (identity)" : "");
  add(o, "  dE76 check: %u%% of entries below 50: %s (%zu above 50)\n", d.passPercent,
      d.pass ? "pass" : "FAIL", d.far.size());
}

// Lists the findings; false (with the first refusal as the reason) when one refuses the data.
bool plausible(const std::vector<Finding>& findings, std::string& o, std::string& error) {
  for (const auto& f : findings) add(o, "%s\n", f.line().c_str());
  if (!anyRefused(findings)) return true;
  error = firstRefusal(findings);
  return false;
}

bool inspectOdf(const std::string& path, std::string& o, std::string& error) {
  OpticalDataFile odf{};
  OdfCheck check;
  bool ok = readOdfFile(path, odf, check, error);
  add(o, "%s: optical data (.odf), %llu bytes%s\n", path.c_str(),
      static_cast<unsigned long long>(check.fileBytes),
      check.fileBytes > 510 ? " (only the first 510 are read)" : "");
  if (check.fileBytes < 510) return false;
  if (!odfLengthWarning(check).empty()) add(o, "%s\n", odfLengthWarning(check).c_str());
  add(o, "CRC: stored 0x%04x, computed 0x%04x: %s\n", check.stored, check.computed,
      check.crcOk() ? "ok" : "MISMATCH");
  PanelModel panel(odf);
  static const char* const kNames[4] = {"red", "green", "blue", "white"};
  static const int kAt[4] = {kOdfRedAt, kOdfGreenAt, kOdfBlueAt, kOdfWhiteAt};
  add(o, "           X          Y          Z          x        y\n");
  for (int i = 0; i < 4; ++i)
    add(o, "%-6s %10.4f %10.4f %10.4f   %.4f   %.4f\n", kNames[i], odf.values[kAt[i]],
        odf.values[kAt[i] + 1], odf.values[kAt[i] + 2], panel.chroma()[i].x, panel.chroma()[i].y);
  add(o, "grey ramp:  level        Y   relative   exponent\n");
  const GreyRamp& r = panel.ramp();
  for (int k = GreyRamp::kKnots - 1; k >= 1; --k) {
    double rel = r.Y[8] > 0 ? r.Y[k] / r.Y[8] : 0;
    add(o, "            %5.0f %10.4f   %.5f", r.code[k], r.Y[k], rel);
    if (k < 8 && rel > 0) add(o, "    %.3f", std::log(rel) / std::log(r.code[k] / 4095.0));
    o += "\n";
  }
  for (const auto& n : panel.notes()) add(o, "note: %s\n", n.c_str());
  return ok && plausible(checkOpticalData(odf.values), o, error);
}

bool inspectCache(const std::string& path, std::string& o, std::string& error) {
  CacheContents c;
  if (!readCacheFile(path, c, error)) {
    add(o, "%s: table cache, %llu bytes\n", path.c_str(),
        static_cast<unsigned long long>(c.fileBytes));
    return false;
  }
  add(o, "%s: table cache, %llu bytes, %u tables\n", path.c_str(),
      static_cast<unsigned long long>(c.fileBytes), c.count);
  add(o, "needs FWVersion=%llu in the property file (the file's length is its only version mark)\n",
      static_cast<unsigned long long>(c.fwVersion()));
  add(o, "trailer: source %u (%s), panelId %u, paramVersion %u (must equal ParamVersion)\n",
      c.source, sourceMeaning(c.source), c.panelId, c.paramVersion);
  add(o, "checksum: stored 0x%08x, computed 0x%08x: %s\n", c.storedCheckSum, c.computedCheckSum,
      c.checkSumOk() ? "ok" : "MISMATCH");
  for (uint32_t k = 0; k < c.count; ++k) {
    add(o, "table %s:\n", cacheTableName(k).c_str());
    describeTable(o, c.tables[k]);
  }
  if (!c.checkSumOk()) {
    error = c.checkSumMessage;
    return false;
  }
  return true;
}

bool inspectTable(const std::string& path, FileKind kind, std::string& o, std::string& error) {
  std::vector<LoadedTable> t;
  add(o, "%s: %s\n", path.c_str(), kindName(kind));
  if (!loadTables(path, t, error)) return false;
  add(o, "%s\n", t[0].label.c_str());
  describeTable(o, *t[0].lut);
  for (const auto& n : t[0].notes) add(o, "note: %s\n", n.c_str());
  return true;
}

bool inspectTarget(const std::string& path, std::string& o, std::string& error) {
  TargetParm t{};
  int count = 0;
  add(o, "%s: mode target\n", path.c_str());
  if (!readTargetFile(path, t, count, error)) return false;
  add(o, "%d numbers (%s)\n", count,
      count >= 20 ? "with gamma-correction parameters" : "without gamma correction");
  static const char* const kColour[4] = {"red", "green", "blue", "white"};
  for (int i = 0; i < 4; ++i)
    add(o, "%-6s x %.4f  y %.4f\n", kColour[i], t.values[2 * i], t.values[2 * i + 1]);
  add(o, "exponent parameter %.5f: signals decode with power %.4f\n", t.values[8],
      1.0 / t.values[8]);
  if (count > 9) {
    o += "gamma correction:";
    for (int i = 9; i < count; ++i) add(o, " [%d] %g", i, t.values[i]);
    o += "\n";
  }
  if (count != 9 && count != 20)
    add(o, "note: %d numbers; the plugin reads 9 (gamma correction off) or 20 (on)\n", count);
  return plausible(checkTarget(t, count), o, error);
}

}  // namespace

bool inspectFile(const std::string& path, std::string& text, std::string& error) {
  text.clear();
  FileKind kind = detectKind(path, error);
  switch (kind) {
    case FileKind::Odf:
      return inspectOdf(path, text, error);
    case FileKind::Cache:
      return inspectCache(path, text, error);
    case FileKind::LutText:
    case FileKind::Cube:
      return inspectTable(path, kind, text, error);
    case FileKind::Target:
      return inspectTarget(path, text, error);
    case FileKind::Unknown:
      break;
  }
  return false;
}

}  // namespace pctool
