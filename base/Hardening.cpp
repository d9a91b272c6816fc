#include "base/Hardening.h"

#include <atomic>

#include "base/LutGrid.h"

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

}  // namespace postblend
