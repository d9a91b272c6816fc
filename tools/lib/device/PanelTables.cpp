#include "tools/lib/device/PanelTables.h"

#include <fcntl.h>
#include <pchost/host.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>

#include "backend/PanelCorvaneBE.h"
#include "cache/CacheAcceptance.h"
#include "cache/CacheFileReader.h"
#include "cache/Lut3DCacheManager.h"
#include "frontend/Lut3dGeneration.h"
#include "frontend/OdfLayout.h"
#include "frontend/OdfReader.h"
#include "frontend/TargetReader.h"
#include "tarnu_display/panel_ioctl.h"

namespace pctool {

namespace fe = postblend::fe;
using postblend::lut3d_info;
using postblend::PanelSwitches;

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

// PanelCorvaneFE::readTargets / readTargetParm: a target counts as read when its file opens.
void readTargets(const std::string& dir, const std::string& name, const PanelSwitches& sw, TargetParm* targets,
                 bool* read) {
  const int used = postblend::targetValuesUsed(sw.gammaCorrection);
  for (int k = 0; k < fe::targetFilesToRead(sw.use100nits); ++k) {
    std::string text;
    read[k] = readHead(dir + fe::targetPath(name, k), postblend::kMaxTargetBytes, text);
    if (!read[k]) continue;
    const postblend::TargetRead t = postblend::readTarget(text);
    std::copy(t.values, t.values + std::min(t.count, used), targets[k].values);
  }
}

std::string refusalText(postblend::CacheRefusal why, const postblend::CacheCheck& c, uint32_t slots,
                        const std::string& checkSumMessage) {
  using postblend::CacheRefusal;
  switch (why) {
    case CacheRefusal::Length:
      return "length " + std::to_string(c.fileBytes) + " is not FWVersion " + std::to_string(c.fwVersion);
    case CacheRefusal::Truncated:
      return "unreadable, or shorter than the panel's " + std::to_string(slots) + " table slots";
    case CacheRefusal::CheckSum: {
      const uint32_t count = postblend::cacheTableCount(c.fileBytes);
      return count == slots ? checkSumMessage
                            : checkSumMessage + "; the file holds " + std::to_string(count) +
                                  " tables, the panel has " + std::to_string(slots) + " slots";
    }
    case CacheRefusal::ParamVersion:
      return "made with ParamVersion " + std::to_string(c.paramVersion) + ", the device has " +
             std::to_string(c.expectedParamVersion);
    case CacheRefusal::Source:
      return "source " + std::to_string(c.source) + " disagrees with the identity check";
    case CacheRefusal::None:
      break;
  }
  return "";
}

// Lut3DCacheManager::loadCacheFromFile on the tree's cache: its length first, then the panel's
// slots read from the start of the file, then the plugin's acceptance.
bool acceptCache(const std::string& dir, const PanelSwitches& sw, bool matched, DisplayTables& out) {
  const std::string path = postblend::Lut3DCacheManager::cachePath(out.panel == 0 ? 0 : 1);
  struct stat st {};
  if (::stat((dir + path).c_str(), &st) != 0) return false;  // no cache: generated without a word
  postblend::CacheCheck check;
  check.fileBytes = static_cast<uint64_t>(st.st_size);
  check.fwVersion = static_cast<uint32_t>(sw.fwVersion);
  check.expectedParamVersion = static_cast<uint32_t>(sw.paramVersion);
  check.matched = matched;
  const uint32_t slots = postblend::tableSlots(sw.cmDebug);
  std::vector<lut3d_info> tables(slots);
  std::string checkSumMessage;
  if (postblend::cacheLengthAccepted(check.fileBytes, check.fwVersion)) {
    std::ifstream in(dir + path, std::ios::binary);
    const postblend::CacheRead read = postblend::readCacheTables(in, slots, tables.data());
    check.complete = read.complete;
    check.storedCheckSum = read.trailer.checkSum;
    check.computedCheckSum = read.computedCheckSum;
    check.paramVersion = read.trailer.paramVersion;
    check.source = read.trailer.source;
    checkSumMessage = read.diagnosis.message;
  }
  const postblend::CacheRefusal why = postblend::cacheRefusal(check);
  if (why != postblend::CacheRefusal::None) {
    out.note = path + " not taken (" + refusalText(why, check, slots, checkSumMessage) + "): generated";
    return false;
  }
  out.tables = std::move(tables);
  out.source = static_cast<int>(check.source);
  out.fromCache = true;
  return true;
}

void readJudge(const std::string& dir, DisplayTables& out) {
  for (int k = 0; k < fe::kOdfSets; ++k) {
    out.judgeLocal[k] = out.matched && readOdfRecord(dir + fe::opticalDataPath(fe::OdfOrigin::Local, out.panel,
                                                                                  out.displayName, k),
                                                     out.judge[k]);
    if (out.judgeLocal[k]) continue;
    out.judge[k] = OpticalDataFile{};
    if (!readOdfRecord(dir + fe::opticalDataPath(fe::OdfOrigin::Golden, out.panel, out.displayName, k),
                       out.judge[k]))
      out.judge[k] = out.odf[k];
  }
}

// The first local set the plugin would refuse, named with the reader's reason.
std::string firstLocalFault(const std::string& dir, const DisplayTables& t) {
  for (int k = 0; k < fe::kOdfSets; ++k) {
    const std::string path = fe::opticalDataPath(fe::OdfOrigin::Local, t.panel, t.displayName, k);
    OpticalDataFile odf{};
    if (readOdfRecord(dir + path, odf)) continue;
    OdfCheck check;
    std::string why = "unreadable";
    readOdfFile(dir + path, odf, check, why);
    return path + ": " + why;
  }
  return "";
}

void addNote(DisplayTables& out, const std::string& note) { out.note += (out.note.empty() ? "" : "; ") + note; }

}  // namespace

std::string DisplayTables::sourceWhy() const {
  switch (source) {
    case 0: return "identity matched, every local file read";
    case 1: return std::string("identity not matched: ") + postblend::identityStampPath(panel) +
                   " does not match the panel's serial number";
    case 2: return "identity matched, local data unusable: " + (localFault.empty() ? "as the cache says" : localFault);
    default: return note.empty() ? "no tables" : note;
  }
}

bool identityMatches(const std::string& dir, uint32_t panel) {
  char sn[kIdBuf + 1] = {};
  char factoryId[kIdBuf + 1] = {};
  std::string text;
  if (!readHead(dir + postblend::identityStampPath(panel), kIdBuf, text)) return false;
  std::memcpy(factoryId, text.data(), text.size());
  // The serial number as the host platform's driver hands it to the plugin.
  const int fd = ::open((dir + "/dev/tarnu_display").c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  unsigned char arg[tarnu_display::kSerialArgSize] = {};
  std::memcpy(arg, &panel, sizeof panel);
  pchost::ioctlDevice(fd, tarnu_display::kPanelIoctlGetSerialNumber, arg);
  ::close(fd);
  arg[sizeof arg - 1] = 0;
  std::memcpy(sn, arg, std::strlen(reinterpret_cast<const char*>(arg)));
  postblend::PanelCorvaneBE backend(nullptr);
  return backend.transferAndCmp(sn, factoryId);
}

void loadDisplayTables(const std::string& dir, const PanelSwitches& sw, const std::string& name, uint32_t panel,
                       DisplayTables& out, const bool* assumedMatch) {
  out = DisplayTables{};
  out.displayName = name;
  out.panel = panel;
  out.use100nits = sw.use100nits;
  if (!sw.calibration) {
    out.note = "PanelCalibration is off: the plugin makes no tables";
    return;
  }
  out.matched = assumedMatch ? *assumedMatch : identityMatches(dir, panel);
  if (out.matched) out.localFault = firstLocalFault(dir, out);
  bool read[fe::kTargetFiles] = {};
  readTargets(dir, name, sw, out.targets, read);
  if (!assumedMatch && acceptCache(dir, sw, out.matched, out)) {
    // The data the cached tables came from, for the prediction.
    const fe::OdfOrigin origin = out.source == 0 ? fe::OdfOrigin::Local : fe::OdfOrigin::Golden;
    for (int k = 0; k < fe::kOdfSets; ++k)
      readOdfRecord(dir + fe::opticalDataPath(origin, panel, name, k), out.odf[k]);
    readJudge(dir, out);
    return;
  }
  const int match = out.matched ? 1 : -1;
  const fe::OdfOrigin origin = fe::readOpticalData(
      match,
      [&](fe::OdfOrigin o, int set) {
        return readOdfRecord(dir + fe::opticalDataPath(o, panel, name, set), out.odf[set]);
      },
      [](fe::OdfOrigin) {});
  if (origin == fe::OdfOrigin::None) {
    addNote(out, "no usable optical data: no tables");
    return;
  }
  const fe::TablePlan plan = fe::planTables(read, sw.use100nits, static_cast<int>(postblend::tableSlots(sw.cmDebug)));
  if (plan.count < 0) {
    addNote(out, "the targets read allow no tables");
    return;
  }
  fe::Lut3dSwitches switches;
  switches.gammaCorrection = sw.gammaCorrection;
  switches.shortProtectWhite = sw.verbose();
  out.tables.assign(static_cast<size_t>(plan.count), lut3d_info{});
  for (int i = 0; i < plan.count; ++i) {
    lut3d_info& lut = out.tables[static_cast<size_t>(i)];
    lut.flags = 0;
    lut.lut3d_id = static_cast<uint32_t>(i);
    lut.uniform = 1;
    lut.num_entries = postblend::kLut3dEntries;
    fe::generateLut3D(out.odf[plan.table[i].odf], out.targets[plan.table[i].target], switches, lut);
  }
  out.source = static_cast<int>(fe::recordedSource(match, origin == fe::OdfOrigin::Golden));
  readJudge(dir, out);
}

}  // namespace pctool
