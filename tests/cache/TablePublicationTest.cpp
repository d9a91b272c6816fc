// Readers pin a panel's set while a writer publishes new ones and withdraws them: every set a
// reader holds is whole and alive until it lets go (the sanitizer builds report a set read after
// it was freed, or written while it was read).
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "cache/TablePublication.h"

using postblend::TablePublication;

TEST(TablePublication, ReadersSeeWholeLiveSetsWhileAWriterPublishesAndWithdraws) {
  std::atomic<bool> done{false};
  std::atomic<int> torn{0};
  auto read = [&] {
    while (!done) {
      const TablePublication::Pin pin = TablePublication::pin(1);
      if (pin) torn += pin->tables[1].entries[4912].out[2] != pin->generation;
    }
  };
  std::thread readers[] = {std::thread(read), std::thread(read)};
  for (uint32_t g = 1; g <= 400; ++g) {
    auto* set = new postblend::TableSet(2);
    set->generation = set->tables[1].entries[4912].out[2] = g;
    TablePublication::publish(1, set);
    if (g % 7 == 0) TablePublication::publish(1, nullptr);  // as DeInit withdraws it
  }
  done = true;
  for (auto& t : readers) t.join();
  EXPECT_TRUE(TablePublication::published(1));
  TablePublication::publish(1, nullptr);
  EXPECT_FALSE(TablePublication::published(1));
  EXPECT_EQ(torn, 0);
}
