#include "cache/TablePublication.h"

#include <thread>

namespace postblend {

TablePublication::Slot TablePublication::sSlots[kNumPanels];

TableSet::TableSet(uint32_t n)
    : count(n),
      tables(new lut3d_info[n]),
      deltas(new int32_t[static_cast<size_t>(n / 2) * 3 * kLut3dEntries]) {}

TablePublication::Pin TablePublication::pin(unsigned panel) {
  if (panel >= kNumPanels) return Pin();
  Slot& s = sSlots[panel];
  std::atomic<uint32_t>* counter = &s.readers[s.epoch.load(std::memory_order_seq_cst) & 1];
  counter->fetch_add(1, std::memory_order_seq_cst);
  return Pin(counter, s.set.load(std::memory_order_seq_cst));
}

void TablePublication::publish(unsigned panel, TableSet* set) {
  if (panel >= kNumPanels) {
    delete set;
    return;
  }
  Slot& s = sSlots[panel];
  TableSet* old = s.set.exchange(set, std::memory_order_seq_cst);
  if (old == nullptr) return;
  for (int phase = 0; phase < 2; ++phase) {
    const uint32_t parity = s.epoch.fetch_add(1, std::memory_order_seq_cst) & 1;
    while (s.readers[parity].load(std::memory_order_seq_cst) != 0) std::this_thread::yield();
  }
  delete old;
}

bool TablePublication::published(unsigned panel) {
  return panel < kNumPanels && sSlots[panel].set.load(std::memory_order_seq_cst) != nullptr;
}

}  // namespace postblend
