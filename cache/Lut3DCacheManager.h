// Per-panel arrays of computed 3D tables, their brightness deltas, and the on-disk cache.
//
// Cache file ("/data/vendor/display/cofc.fw" for panel 0, "cofc2.fw" for panel 1), native
// little-endian, no header or padding: the N lut3d_info records byte for byte, then the u32
// words source, panelId, paramVersion, checkSum. Its length, 16 + N * 117928, is its only
// version mark and must equal the configured FWVersion.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "cache/TableSet.h"
#include "postblend/color_records.h"

namespace postblend {

struct PanelCfgCache {
  lut3d_info* lutArray = nullptr;
  uint32_t source = 0;  // 0 matched/local, 1 unmatched/golden, 2 matched but golden
  uint32_t panelId = 0;
  uint32_t paramVersion = 0;
  uint32_t checkSum = 0;
};

class Lut3DCacheManager {
 public:
  static constexpr int kNumPanels = 2;
  static constexpr uint32_t kTrailerBytes = 16;

  static bool init(unsigned panel, unsigned cmDebug);
  static void deInit(unsigned panel);
  static int32_t loadCacheFromFile(unsigned panel, unsigned fwVersion, bool matched,
                                   unsigned paramVersion);
  static int getLutArrayPointer(unsigned panel, lut3d_info** out);
  static void saveCfgToFile(unsigned panel);
  static void calLut3dDelta(unsigned panel);
  // Recomputes odd table `lutIndex` of the build area; the second form writes `tables.odd`.
  static void calLut3d(unsigned panel, unsigned lutIndex, unsigned brightness);
  static void calLut3d(unsigned panel, unsigned lutIndex, unsigned brightness,
                       const FrameTables& tables);

  // The build area as a frame would see it, for single-threaded callers (tools and tests).
  static FrameTables buildAreaTables(unsigned panel);
  // Copies the build area's tables and deltas into a new set and publishes it
  // (cache/TablePublication.h); false, publishing nothing, when the panel has no tables.
  static bool publish(unsigned panel);

  // Sum mod 2^32 of every word of the tables plus source, panelId and paramVersion.
  static uint32_t checkSum(const lut3d_info* luts, uint32_t count, uint32_t source,
                           uint32_t panelId, uint32_t paramVersion);
  static uint32_t fileSizeFor(uint32_t count) { return kTrailerBytes + count * sizeof(lut3d_info); }
  static const char* cachePath(unsigned panel);

  // The owner of a panel's build area (the arrays below) and of publishing its sets: loading,
  // generation, saving, the delta computation, publication and the release by DeInit hold it.
  // Frames never take it: they read published sets. The operations here take no lock of their
  // own, their callers do. An index beyond the panels shares a spare lock.
  static std::mutex& tablesLock(unsigned panel);

  // The build area, guarded by tablesLock(panel); N is atomic because "not initialised" is
  // asked without it.
  static std::atomic<uint32_t> sNumOfLut3D[kNumPanels];
  static PanelCfgCache sPCFGPanel[kNumPanels];
  static int32_t* slut3dDeltaPanel[kNumPanels];
  // Tables 0..made-1 of the array were generated or loaded whole by the last job; the rest hold
  // whatever an earlier job or a refused cache left there.
  static uint32_t sTablesMade[kNumPanels];
};

}  // namespace postblend
