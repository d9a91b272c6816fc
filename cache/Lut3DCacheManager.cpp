#define LOG_TAG "PanelCorvaneCache"

#include "cache/Lut3DCacheManager.h"

#include <cstring>

#include "base/Log.h"
#include "cache/CacheAcceptance.h"
#include "cache/TablePublication.h"

namespace postblend {

std::atomic<uint32_t> Lut3DCacheManager::sNumOfLut3D[kNumPanels] = {};
PanelCfgCache Lut3DCacheManager::sPCFGPanel[kNumPanels];
int32_t* Lut3DCacheManager::slut3dDeltaPanel[kNumPanels] = {};
uint32_t Lut3DCacheManager::sTablesMade[kNumPanels] = {};

std::mutex& Lut3DCacheManager::tablesLock(unsigned panel) {
  static std::mutex locks[kNumPanels + 1];
  return locks[panel < kNumPanels ? panel : kNumPanels];
}

bool Lut3DCacheManager::init(unsigned panel, unsigned cmDebug) {
  if (panel >= kNumPanels) return false;
  PanelCfgCache& cfg = sPCFGPanel[panel];
  if (sNumOfLut3D[panel].load(std::memory_order_relaxed) != 0) {
    PC_LOGE("panel %d has initialized\n", static_cast<int>(panel));
    return cfg.lutArray != nullptr && slut3dDeltaPanel[panel] != nullptr;
  }
  const uint32_t n = tableSlots(cmDebug != 0);
  sTablesMade[panel] = 0;
  // Zeroed although nothing relies on it: keeps memory checkers quiet about a never-filled pair.
  cfg.lutArray = new lut3d_info[n]();
  slut3dDeltaPanel[panel] = new int32_t[static_cast<size_t>(n) * 3 * kLut3dEntries]();
  sNumOfLut3D[panel].store(n, std::memory_order_relaxed);
  PC_LOGD("Num of Lut3D is %d,Panel(%d)\n", static_cast<int>(n), static_cast<int>(panel));
  return true;
}

void Lut3DCacheManager::deInit(unsigned panel) {
  if (panel >= kNumPanels) return;
  // N is deliberately kept: a later init of this panel reports it and allocates nothing.
  delete[] sPCFGPanel[panel].lutArray;
  sPCFGPanel[panel].lutArray = nullptr;
  delete[] slut3dDeltaPanel[panel];
  slut3dDeltaPanel[panel] = nullptr;
  sTablesMade[panel] = 0;
  TablePublication::publish(panel, nullptr);  // frames then find no set
}

bool Lut3DCacheManager::publish(unsigned panel) {
  if (panel >= kNumPanels) return false;
  const uint32_t n = sNumOfLut3D[panel].load(std::memory_order_relaxed);
  const lut3d_info* luts = sPCFGPanel[panel].lutArray;
  const int32_t* deltas = slut3dDeltaPanel[panel];
  if (n == 0 || n > kMaxTables || luts == nullptr || deltas == nullptr) return false;
  static std::atomic<uint64_t> generations{0};
  auto* set = new TableSet(n);
  set->generation = generations.fetch_add(1, std::memory_order_relaxed) + 1;
  set->made = sTablesMade[panel] < n ? sTablesMade[panel] : n;
  std::memcpy(set->tables.get(), luts, n * sizeof(lut3d_info));
  std::memcpy(set->deltas.get(), deltas, sizeof(int32_t) * (n / 2) * 3 * kLut3dEntries);
  for (uint32_t k = 0; k < n; ++k) set->verdict[k] = tableVerdict(luts[k]);
  TablePublication::publish(panel, set);
  return true;
}

FrameTables Lut3DCacheManager::buildAreaTables(unsigned panel) {
  FrameTables t;
  if (panel >= kNumPanels) return t;
  lut3d_info* luts = sPCFGPanel[panel].lutArray;
  t.slots = sNumOfLut3D[panel].load(std::memory_order_relaxed);
  t.present = luts != nullptr && slut3dDeltaPanel[panel] != nullptr && t.slots <= kMaxTables;
  t.deltas = slut3dDeltaPanel[panel];
  for (uint32_t k = 0; t.present && k < t.slots; ++k) {
    t.table[k] = &luts[k];
    if (k % 2 == 1) t.odd[k] = &luts[k];
  }
  return t;
}

int Lut3DCacheManager::getLutArrayPointer(unsigned panel, lut3d_info** out) {
  if (panel >= kNumPanels) {
    if (out != nullptr) *out = nullptr;
    return 0;
  }
  lut3d_info* arr = sPCFGPanel[panel].lutArray;
  if (out != nullptr) *out = arr;
  // After deInit the count survives but the tables do not: report nothing to copy from.
  return arr == nullptr ? 0 : static_cast<int>(sNumOfLut3D[panel].load(std::memory_order_relaxed));
}

uint32_t Lut3DCacheManager::checkSum(const lut3d_info* luts, uint32_t count, uint32_t source,
                                     uint32_t panelId, uint32_t paramVersion) {
  uint32_t sum = 0;  // unsigned: wraps modulo 2^32 by definition
  for (uint32_t t = 0; luts != nullptr && t < count; ++t) {
    const lut3d_info& l = luts[t];
    sum += l.flags + l.lut3d_id + l.uniform + l.num_entries;
    for (const lut3d_entry& e : l.entries) {
      sum += e.in[0] + e.in[1] + e.in[2] + e.out[0] + e.out[1] + e.out[2];
    }
  }
  return sum + source + panelId + paramVersion;
}

const char* Lut3DCacheManager::cachePath(unsigned panel) {
  return panel == 0 ? "/data/vendor/display/cofc.fw" : "/data/vendor/display/cofc2.fw";
}

}  // namespace postblend
