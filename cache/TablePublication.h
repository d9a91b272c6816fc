// Publication of each panel's current TableSet. A frame pins the set current when it begins and
// never waits, allocates or sees a set being written; a job publishes a new set in one step and
// frees the old one once no pin can still reach it.
//
// Per panel: the set pointer, an epoch and two reader counters. A reader reads the epoch,
// increments the counter of its parity, then loads the set; it decrements when it lets go. A
// writer (serialised by Lut3DCacheManager::tablesLock) exchanges the pointer, then waits out two
// grace phases: flip the epoch (new readers count on the other parity), wait until the old
// parity's counter is zero; twice, so that both counters have drained since the exchange. Any
// reader that could have loaded the old set incremented its counter before the exchange, so it
// is waited for; readers arriving later load the new set and only delay a phase they enter.
//
// Memory order: everything is seq_cst. The reader's increment and its load of the pointer, and
// the writer's exchange and its loads of the counters, form a store-then-load pattern on two
// different variables on each side; only sequential consistency forbids both sides missing the
// other's store (acquire/release would let the reader load the old set after the writer saw its
// counter at zero). The decrement releases the reader's reads of the set to the writer's load
// that sees the counter at zero, before the delete.
#pragma once

#include <atomic>
#include <cstdint>

#include "cache/TableSet.h"

namespace postblend {

class TablePublication {
 public:
  static constexpr int kNumPanels = 2;

  // The set of a panel for the length of a frame; empty when none is published.
  class Pin {
   public:
    Pin() = default;
    Pin(Pin&& other) noexcept : mCounter(other.mCounter), mSet(other.mSet) {
      other.mCounter = nullptr;
    }
    Pin& operator=(Pin&&) = delete;
    Pin(const Pin&) = delete;
    ~Pin() {
      if (mCounter != nullptr) mCounter->fetch_sub(1, std::memory_order_seq_cst);
    }
    const TableSet* get() const { return mSet; }
    const TableSet* operator->() const { return mSet; }
    explicit operator bool() const { return mSet != nullptr; }

   private:
    friend class TablePublication;
    Pin(std::atomic<uint32_t>* counter, const TableSet* set) : mCounter(counter), mSet(set) {}
    std::atomic<uint32_t>* mCounter = nullptr;
    const TableSet* mSet = nullptr;
  };

  // Never blocks. A panel index beyond the panels pins nothing.
  static Pin pin(unsigned panel);
  // The caller holds the panel's tables lock. Takes `set` (may be null: withdraws); returns
  // once the set it replaced is freed.
  static void publish(unsigned panel, TableSet* set);
  static bool published(unsigned panel);

 private:
  struct Slot {
    std::atomic<TableSet*> set{nullptr};
    std::atomic<uint32_t> epoch{0};
    std::atomic<uint32_t> readers[2] = {};
  };
  static Slot sSlots[kNumPanels];
};

}  // namespace postblend
