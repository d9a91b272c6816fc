// Loading and saving a panel's table cache file; the format and its reader are in
// CacheFileReader.h.
#define LOG_TAG "PanelCorvaneCache"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "base/DeviceIo.h"
#include "base/Hardening.h"
#include "base/Log.h"
#include "cache/CacheAcceptance.h"
#include "cache/CacheFileReader.h"
#include "cache/Lut3DCacheManager.h"

namespace postblend {

namespace {
constexpr size_t kTrailerWords = Lut3DCacheManager::kTrailerBytes / sizeof(uint32_t);
}  // namespace

int32_t Lut3DCacheManager::loadCacheFromFile(unsigned panel, unsigned fwVersion, bool matched,
                                             unsigned paramVersion) {
  const int32_t failed = matched ? 1 : -1;
  if (panel >= kNumPanels) return failed;
  const char* path = cachePath(panel);

  int fd = devio::open(path, O_RDONLY | O_CLOEXEC);
  if (fd < 0) return failed;
  struct stat st {};
  const int statRc = fstat(fd, &st);
  close(fd);
  if (statRc != 0) return failed;

  const uint32_t n = sNumOfLut3D[panel].load(std::memory_order_relaxed);
  const uint64_t length = static_cast<uint64_t>(st.st_size);
  PC_LOGE("PANEL(%d) FW VERSION %u (%u,%u)\n", static_cast<int>(panel),
          static_cast<unsigned>(length), fwVersion, fileSizeFor(n));
  // The length check comes before any read: a file of another layout is never parsed.
  if (!cacheLengthAccepted(length, fwVersion)) {
    PC_LOGE("FW VERSION MISMATCHING %u\n", static_cast<unsigned>(length));
    return failed;
  }

  std::ifstream in(devio::path(path), std::ios::binary);
  if (!in) return failed;
  PanelCfgCache& cfg = sPCFGPanel[panel];
  // Nothing to read into: an uninitialised (or released) panel never accepts a cache.
  if (n == 0 || cfg.lutArray == nullptr) return failed;

  // Read straight into the live array: after a rejection it holds the rejected file until the
  // caller regenerates the tables.
  const CacheRead read = readCacheTables(in, n, cfg.lutArray);
  in.close();
  cfg.source = read.trailer.source;
  cfg.panelId = read.trailer.panelId;
  cfg.paramVersion = read.trailer.paramVersion;
  cfg.checkSum = read.trailer.checkSum;

  const uint32_t computed = read.computedCheckSum;
  PC_LOGD("input check  %#x,PanelId:%d\n", computed, static_cast<int>(panel));
  PC_LOGD("(%d)CHECK %#x =? %#x,Golden:%d Mat:%d %u(->%u)\n", static_cast<int>(panel), cfg.checkSum,
          computed, static_cast<int>(cfg.source), matched ? 1 : 0, cfg.paramVersion, paramVersion);

  CacheCheck check;
  check.fileBytes = length;
  check.fwVersion = fwVersion;
  check.complete = read.complete;
  check.storedCheckSum = cfg.checkSum;
  check.computedCheckSum = computed;
  check.paramVersion = cfg.paramVersion;
  check.expectedParamVersion = paramVersion;
  check.source = cfg.source;
  check.matched = matched;
  const bool taken = cacheRefusal(check) == CacheRefusal::None;
  sTablesMade[panel] = taken ? n : 0;  // a refused file's bytes are no table of ours
  return taken ? 0 : failed;
}

void Lut3DCacheManager::saveCfgToFile(unsigned panel) {
  if (panel >= kNumPanels) return;
  PanelCfgCache& cfg = sPCFGPanel[panel];
  const uint32_t n = sNumOfLut3D[panel].load(std::memory_order_relaxed);
  const char* path = cachePath(panel);
  if (hardened() && sTablesMade[panel] < n) {
    // The slots beyond the tables made hold what an earlier job or a refused cache left.
    if (hardenedFirst(HardenedCause::kCacheIncomplete)) {
      PC_LOGE("hardened: %u of %u tables made, cache not written\n", sTablesMade[panel], n);
    }
    return;
  }
  // Written beside the cache and renamed over it, so a reader never sees half a file.
  const std::string tmpPath = std::string(path) + ".tmp";
  const std::string hostTmp = devio::path(tmpPath.c_str());

  std::ofstream out(hostTmp, std::ios::binary | std::ios::trunc);
  const uint32_t count = cfg.lutArray != nullptr ? n : 0;
  cfg.checkSum = checkSum(cfg.lutArray, count, cfg.source, cfg.panelId, cfg.paramVersion);
  PC_LOGD("output check  %#x,PanelId:%d\n", cfg.checkSum, static_cast<int>(panel));

  if (out.good() && count != 0) {
    out.write(reinterpret_cast<const char*>(cfg.lutArray),
              static_cast<std::streamsize>(count * sizeof(lut3d_info)));
    const uint32_t trailer[kTrailerWords] = {cfg.source, cfg.panelId, cfg.paramVersion,
                                             cfg.checkSum};
    out.write(reinterpret_cast<const char*>(trailer), sizeof(trailer));
    out.close();
    if (out.fail() || std::rename(hostTmp.c_str(), devio::path(path).c_str()) != 0) {
      std::remove(hostTmp.c_str());
    }
  } else if (out.is_open()) {
    out.close();
    std::remove(hostTmp.c_str());
  }
  PC_LOGE("PANEL(%d) FW VERSION %u\n", static_cast<int>(panel), fileSizeFor(n));
}

}  // namespace postblend
