#define LOG_TAG "PanelCorvane"

#include "base/Hardening.h"

#include <atomic>

#include "base/LutGrid.h"
#include "base/Log.h"

namespace postblend {

namespace {
std::atomic<bool> sNoticed[static_cast<uint32_t>(HardenedCause::kCount)];
}  // namespace

bool hardenedFirst(HardenedCause cause) {
  return !sNoticed[static_cast<uint32_t>(cause)].exchange(true, std::memory_order_relaxed);
}

void resetHardenedNotices() {
  for (std::atomic<bool>& n : sNoticed) n.store(false, std::memory_order_relaxed);
}

TableVerdict tableVerdict(const lut3d_info& table) {
  // Two running ORs over the words: one pass the compiler vectorises, no branch per entry.
  uint32_t any = 0, outputs = 0;
  for (const lut3d_entry& e : table.entries) {
    any |= e.in[0] | e.in[1] | e.in[2];
    outputs |= e.out[0] | e.out[1] | e.out[2];
  }
  if (((any | outputs) & ~kLutMaxCode) != 0) return TableVerdict::kCodeBeyondRange;
  return outputs == 0 ? TableVerdict::kAllZero : TableVerdict::kSound;
}

void noticeUnsoundTable(const char* fn, TableVerdict verdict, int mode) {
  if (verdict == TableVerdict::kCodeBeyondRange && hardenedFirst(HardenedCause::kCodeBeyondRange)) {
    PC_LOGE_AS(fn, "hardened: table of mode %d has a code above 4095, not applied\n", mode);
  } else if (verdict == TableVerdict::kAllZero && hardenedFirst(HardenedCause::kAllZero)) {
    PC_LOGE_AS(fn, "hardened: table of mode %d is all zero, not applied\n", mode);
  }
}

}  // namespace postblend
