#include "tools/lib/PanelTables.h"

#include <algorithm>
#include <cstring>
#include <fstream>

#include "backend/PanelCorvaneBE.h"
#include "frontend/Lut3dGeneration.h"
#include "frontend/OdfLayout.h"
#include "frontend/OdfReader.h"
#include "frontend/TargetReader.h"
#include "tarnu_display/panel_ioctl.h"
#include "tools/lib/DataSource.h"
#include "tools/lib/TableSource.h"

namespace pctool {

namespace fe = postblend::fe;
using postblend::lut3d_info;

namespace {

constexpr size_t kIdBuf = postblend::PanelCorvaneBE::kTextBufSize;

// At most `limit` bytes of a file; false when it cannot be opened.
bool readHead(const std::string& path, size_t limit, std::string& out) {
  std::ifstream in(path, std::ios::binary);
  if (!in.is_open()) return false;
  out.assign(limit, '\0');
  in.read(&out[0], static_cast<std::streamsize>(limit));
  out.resize(static_cast<size_t>(in.gcount()));
  return true;
}

// PanelCorvaneFE::readODF without the log: laid over the record as the plugin lays it.
bool readOdfRecord(const std::string& path, OpticalDataFile& odf) {
  std::string bytes;
  if (!readHead(path, postblend::odf::kBytes, bytes)) return false;
  return postblend::readOdf(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), odf).crcOk();
}

std::string localPath(uint32_t panel, int set) { return fe::kLocalOdf[panel == 0 ? 0 : 1][set]; }
std::string goldenPath(const std::string& name, int set) {
  return std::string(fe::kOdmDir) + name + fe::kGoldenOdfSuffix[set];
}

// PanelCorvaneFE::readOpticalData: 0 local, 1 golden, -1 neither. The records are shared by
// both attempts, as in the plugin.
int readOpticalData(const std::string& dir, bool matched, uint32_t panel, const std::string& name,
                    OpticalDataFile* odf) {
  auto readAll = [&](auto pathOf) {
    for (int k = 0; k < fe::kOdfSets; ++k)
      if (!readOdfRecord(dir + pathOf(k), odf[k])) return false;
    return true;
  };
  if (matched && readAll([&](int k) { return localPath(panel, k); })) return 0;
  if (readAll([&](int k) { return goldenPath(name, k); })) return 1;
  return -1;
}

// PanelCorvaneFE::readTargets / readTargetParm: a target counts as read when its file opens.
void readTargets(const std::string& dir, const std::string& name, const DeviceSwitches& sw, TargetParm* targets,
                 bool* read) {
  const int wanted = sw.gammaCorrection ? postblend::kTargetValues : postblend::kTargetBaseValues;
  for (int k = 0; k < fe::targetFilesToRead(sw.use100nits); ++k) {
    std::string text;
    read[k] = readHead(dir + fe::kOdmDir + name + fe::kTargetSuffix[k], postblend::kMaxTargetBytes, text);
    if (!read[k]) continue;
    const postblend::TargetRead t = postblend::readTarget(text);
    std::copy(t.values, t.values + std::min(t.count, wanted), targets[k].values);
  }
}

// Lut3DCacheManager::loadCacheFromFile's acceptance, on a copy read by the workbench's reader.
bool acceptCache(const std::string& dir, const DeviceSwitches& sw, bool matched, DisplayTables& out) {
  const std::string path = cacheFilePath(out.panel);
  std::ifstream present(dir + path);
  if (!present.is_open()) return false;  // no cache: the plugin generates without a word
  CacheContents c;
  std::string why;
  if (!readCacheFile(dir + path, c, why)) {
    out.note = path + " not taken (" + why + "): generated";
    return false;
  }
  const uint32_t slots = sw.cmDebug ? 8 : 6;
  if (c.fileBytes != sw.fwVersion) why = "length " + std::to_string(c.fileBytes) + " is not FWVersion";
  else if (c.count != slots) why = std::to_string(c.count) + " tables for " + std::to_string(slots) + " slots";
  else if (!c.checkSumOk()) why = c.checkSumMessage;
  else if (c.paramVersion != sw.paramVersion) why = "ParamVersion " + std::to_string(c.paramVersion) + " is stale";
  else if (c.source != (matched ? 0u : 1u)) why = "source " + std::to_string(c.source) + " disagrees with the identity";
  if (!why.empty()) {
    out.note = path + " not taken (" + why + "): generated";
    return false;
  }
  out.tables = std::move(c.tables);
  out.source = static_cast<int>(c.source);
  out.fromCache = true;
  return true;
}

void readJudge(const std::string& dir, DisplayTables& out) {
  for (int k = 0; k < fe::kOdfSets; ++k) {
    out.judgeLocal[k] = out.matched && readOdfRecord(dir + localPath(out.panel, k), out.judge[k]);
    if (out.judgeLocal[k]) continue;
    out.judge[k] = OpticalDataFile{};
    if (!readOdfRecord(dir + goldenPath(out.displayName, k), out.judge[k])) out.judge[k] = out.odf[k];
  }
}

}  // namespace

DeviceSwitches deviceSwitches(const PropertyFile& prop) {
  DeviceSwitches s;
  s.calibration = prop.intOr("PanelCalibration", 0) == 1;
  s.gammaCorrection = prop.intOr("GammaCorrection", 0) == 1;
  s.use100nits = prop.intOr("inParam100nits", 0) == 1;
  s.cmDebug = prop.intOr("CMDebug", 0) == 1;
  s.verbose = (static_cast<uint32_t>(prop.intOr("LogLevel", 1)) & 0x02) != 0;
  s.paramVersion = static_cast<uint32_t>(prop.intOr("ParamVersion", 0));
  s.fwVersion = static_cast<uint32_t>(prop.intOr("FWVersion", 0));
  return s;
}

bool identityMatches(const std::string& dir, uint32_t panel) {
  char sn[kIdBuf + 1] = {};
  char factoryId[kIdBuf + 1] = {};
  std::string text;
  if (!readHead(dir + (panel == 0 ? "/mnt/vendor/persist/display/panel_id" : "/mnt/vendor/persist/display/panel_id_d1"),
                kIdBuf, text))
    return false;
  std::memcpy(factoryId, text.data(), text.size());
  // The emulated driver: line k of the device file is panel k's serial number.
  if (!readHead(dir + "/dev/tarnu_display", 64 * 1024, text)) return false;
  size_t start = 0;
  for (uint32_t line = 0; line < panel; ++line) {
    start = text.find('\n', start);
    if (start == std::string::npos) return false;
    ++start;
  }
  std::string serial = text.substr(start, text.find('\n', start) - start);
  if (!serial.empty() && serial.back() == '\r') serial.pop_back();
  // The driver hands over at most its argument's size less the terminator.
  serial = serial.substr(0, std::min(std::strlen(serial.c_str()), tarnu_display::kSerialArgSize - 1));
  if (serial.size() < 40) return false;  // the driver's answer is judged by its length
  std::memcpy(sn, serial.data(), serial.size());
  postblend::PanelCorvaneBE backend(nullptr);
  return backend.transferAndCmp(sn, factoryId);
}

void loadDisplayTables(const std::string& dir, const DeviceSwitches& sw, const std::string& name, uint32_t panel,
                       DisplayTables& out) {
  out = DisplayTables{};
  out.displayName = name;
  out.panel = panel;
  out.use100nits = sw.use100nits;
  if (!sw.calibration) {
    out.note = "PanelCalibration is off: the plugin makes no tables";
    return;
  }
  out.matched = identityMatches(dir, panel);
  bool read[fe::kTargetFiles] = {};
  readTargets(dir, name, sw, out.targets, read);
  if (acceptCache(dir, sw, out.matched, out)) {
    // The data the cached tables came from, for the prediction.
    for (int k = 0; k < fe::kOdfSets; ++k)
      readOdfRecord(dir + (out.source == 0 ? localPath(panel, k) : goldenPath(name, k)), out.odf[k]);
    readJudge(dir, out);
    return;
  }
  const int got = readOpticalData(dir, out.matched, panel, name, out.odf);
  if (got < 0) {
    out.note += std::string(out.note.empty() ? "" : "; ") + "no usable optical data: no tables";
    return;
  }
  const fe::TablePlan plan = fe::planTables(read, sw.use100nits, sw.cmDebug ? 8 : 6);
  if (plan.count < 0) {
    out.note += std::string(out.note.empty() ? "" : "; ") + "the targets read allow no tables";
    return;
  }
  fe::Lut3dSwitches switches;
  switches.gammaCorrection = sw.gammaCorrection;
  switches.shortProtectWhite = sw.verbose;
  out.tables.assign(static_cast<size_t>(plan.count), lut3d_info{});
  for (int i = 0; i < plan.count; ++i) {
    lut3d_info& lut = out.tables[static_cast<size_t>(i)];
    lut.flags = 0;
    lut.lut3d_id = static_cast<uint32_t>(i);
    lut.uniform = 1;
    lut.num_entries = postblend::kLut3dEntries;
    fe::generateLut3D(out.odf[plan.table[i].odf], out.targets[plan.table[i].target], switches, lut);
  }
  out.source = !out.matched ? 1 : got == 1 ? 2 : 0;
  readJudge(dir, out);
}

}  // namespace pctool
