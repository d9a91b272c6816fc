// Brightness-dependent tables. Tables 2k and 2k+1 of a panel are the 100-nit and the
// full-brightness table of pair k. calLut3dDelta keeps, per pair, the difference of the outputs
// (planar: 4913 red, then green, then blue deltas); calLut3d then rewrites table 2k+1 for a
// brightness level in Q12 fixed point: w is 0 at level 3500 and 4096 at 8191.
#define LOG_TAG "PanelCorvaneCache"

#include <cstdio>
#include <memory>
#include <vector>

#include "base/DeviceIo.h"
#include "base/Log.h"
#include "cache/DeltaApply.h"
#include "cache/Lut3DCacheManager.h"

namespace postblend {

namespace {

constexpr uint32_t kOddIndexMask = 0xAA;                     // 1, 3, 5, 7
constexpr size_t kDeltaBlockWords = 3 * static_cast<size_t>(kLut3dEntries);

struct FileCloser {
  void operator()(FILE* f) const {
    if (f != nullptr) fclose(f);
  }
};
using DumpFile = std::unique_ptr<FILE, FileCloser>;

// Opens one debug dump file; a file that cannot be opened is skipped silently.
DumpFile openDump(const char* fn, const char* devicePath) {
  PC_LOGD_AS(fn, "%s\n", devicePath);
  return DumpFile(devio::fopen(devicePath, "w"));
}

}  // namespace

void Lut3DCacheManager::calLut3dDelta(unsigned panel) {
  if (panel >= kNumPanels) return;
  const uint32_t n = sNumOfLut3D[panel].load(std::memory_order_relaxed);
  const lut3d_info* luts = sPCFGPanel[panel].lutArray;
  int32_t* deltas = slut3dDeltaPanel[panel];
  if (n == 0 || luts == nullptr || deltas == nullptr) return;
  const uint32_t pairs = n / 2;

  std::vector<DumpFile> dumps;
  if (dbgOn(kDbgDump)) {
    char path[128];
    for (uint32_t j = 0; j < n + pairs; ++j) {
      if (j < n) {
        snprintf(path, sizeof(path), "/data/vendor/display/delta-lut3d%d-p%d.txt",
                 static_cast<int>(j), static_cast<int>(panel));
      } else {
        snprintf(path, sizeof(path), "/data/vendor/display/delta%d-p%d.txt",
                 static_cast<int>(j - n), static_cast<int>(panel));
      }
      dumps.push_back(openDump(__func__, path));
    }
  }

  for (uint32_t i = 0; i < kLut3dEntries; ++i) {
    for (uint32_t k = 0; k < pairs; ++k) {
      const lut3d_entry& even = luts[2 * k].entries[i];
      const lut3d_entry& odd = luts[2 * k + 1].entries[i];
      int32_t* block = deltas + kDeltaBlockWords * k;
      int32_t d[3];
      for (int c = 0; c < 3; ++c) {
        d[c] = static_cast<int32_t>(odd.out[c] - even.out[c]);  // u32 wrap, stored signed
        block[c * kLut3dEntries + i] = d[c];
      }
      if (dumps.empty()) continue;
      if (FILE* f = dumps[n + k].get()) fprintf(f, "%d %d %d\n", d[0], d[1], d[2]);
      if (FILE* f = dumps[2 * k].get())
        fprintf(f, "%u %u %u\n", even.out[0], even.out[1], even.out[2]);
      if (FILE* f = dumps[2 * k + 1].get())
        fprintf(f, "%u %u %u\n", odd.out[0], odd.out[1], odd.out[2]);
    }
  }
}

void Lut3DCacheManager::calLut3d(unsigned panel, unsigned lutIndex, unsigned brightness) {
  calLut3d(panel, lutIndex, brightness, buildAreaTables(panel));
}

void Lut3DCacheManager::calLut3d(unsigned panel, unsigned lutIndex, unsigned brightness,
                                 const FrameTables& tables) {
  const uint32_t n = panel < kNumPanels ? tables.slots : 0;
  // Only the odd table of a pair is recomputed, and never one beyond the panel's array.
  const bool oddIndex = lutIndex < 8 && ((kOddIndexMask >> lutIndex) & 1) != 0;
  if (!oddIndex || (n != 0 && lutIndex >= n)) {
    PC_LOGD("calLut3d :%d,brightness:%d is not supported\n", static_cast<int>(lutIndex),
            static_cast<int>(brightness));
    return;
  }
  if (brightness < kMinBrightness) {
    if (dbgOn(kDbgVerbose)) PC_LOGD("calLut3d ---\n");
    return;
  }

  DumpFile dump;
  if (dbgOn(kDbgDump)) {
    char path[128];
    snprintf(path, sizeof(path), "/data/vendor/display/cal-lut3d%d-%d-p%d.txt",
             static_cast<int>(lutIndex), static_cast<int>(brightness), static_cast<int>(panel));
    dump = openDump(__func__, path);
  }

  const uint32_t w = brightnessWeightQ12(brightness);
  if (dbgOn(kDbgVerbose)) {
    PC_LOGD("calLut3d +++ %d %d\n", static_cast<int>(w), static_cast<int>(brightness));
  }

  lut3d_info* target = tables.present ? tables.odd[lutIndex] : nullptr;
  const lut3d_info* base = tables.present ? tables.table[lutIndex - 1] : nullptr;
  if (n == 0 || target == nullptr || base == nullptr || tables.deltas == nullptr) {
    PC_LOGE("getLutArrayPointer ERROR(%d)\n", 0);
    return;
  }

  applyDeltaQ12(*base, *target, tables.deltas + kDeltaBlockWords * (lutIndex / 2), w);
  if (dump) {
    for (const lut3d_entry& e : target->entries) {
      fprintf(dump.get(), "%u %u %u\n", e.out[0], e.out[1], e.out[2]);
    }
  }
  if (dbgOn(kDbgVerbose)) PC_LOGD("calLut3d ---\n");
}

}  // namespace postblend
