// Readers pin a panel's set while a writer publishes new ones and withdraws them: every set a
// reader holds is whole (each word as its writer made it) and alive until it lets go (the
// sanitizer builds report a set read after it was freed, or written while it was read).
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "cache/TablePublication.h"

using postblend::kLut3dEntries;
using postblend::TablePublication;
using postblend::TableSet;

TEST(TablePublication, ReadersSeeWholeLiveSetsWhileAWriterPublishesAndWithdraws) {
  constexpr unsigned kPanel = 1;
  constexpr size_t kLastDelta = 3 * kLut3dEntries - 1;
  std::atomic<bool> done{false};
  std::atomic<int> torn{0};
  std::vector<std::thread> readers;
  for (int r = 0; r < 2; ++r) {
    readers.emplace_back([&] {
      while (!done) {
        const TablePublication::Pin pin = TablePublication::pin(kPanel);
        if (!pin) continue;
        const uint32_t g = static_cast<uint32_t>(pin->generation);
        torn += pin->tables[0].lut3d_id != g || pin->tables[1].entries[4912].out[2] != g ||
                pin->deltas[kLastDelta] != static_cast<int32_t>(g);
      }
    });
  }
  for (uint32_t g = 1; g <= 400; ++g) {
    auto* set = new TableSet(2);
    set->generation = g;
    set->tables[0].lut3d_id = set->tables[1].entries[4912].out[2] = g;
    set->deltas[kLastDelta] = static_cast<int32_t>(g);
    TablePublication::publish(kPanel, set);
    if (g % 7 == 0) TablePublication::publish(kPanel, nullptr);  // as DeInit withdraws it
  }
  done = true;
  for (auto& t : readers) t.join();
  EXPECT_TRUE(TablePublication::published(kPanel));
  TablePublication::publish(kPanel, nullptr);
  EXPECT_FALSE(TablePublication::published(kPanel));
  EXPECT_EQ(torn, 0);
}
