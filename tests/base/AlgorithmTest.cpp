#include "base/Algorithm.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "tests/support/TestSupport.h"

using postblend::Algorithm;
using postblend::lut3d_info;

namespace {

float unit(uint32_t code) { return static_cast<float>(code / 4095.0); }

// Codes whose distance is 50.0f exactly (found by a search over 12-bit codes).
constexpr uint32_t kAt50[2][3] = {{2739, 2475, 2490}, {501, 1029, 2659}};

TEST(Algorithm, DeltaE76KnownValues) {
  EXPECT_EQ(0.0f, Algorithm::DeltaE76(1, 1, 1, 1, 1, 1));
  EXPECT_NEAR(100.0f, Algorithm::DeltaE76(1, 1, 1, 0, 0, 0), 1e-4f);
  EXPECT_EQ(50.0f, Algorithm::DeltaE76(unit(kAt50[0][0]), unit(kAt50[0][1]), unit(kAt50[0][2]),
                                       unit(kAt50[1][0]), unit(kAt50[1][1]), unit(kAt50[1][2])));
  EXPECT_NEAR(0.0f, Algorithm::DeltaE76(0, 0, 0, 1e-6f, 1e-6f, 1e-6f), 0.01f) << "linear branch";
}

// The report bins every entry by its dE76 in tens, lists those of 50 and more, and passes a
// table with at least 80 % of its entries below 50.
TEST(Algorithm, Check3DLutBinsListsAndPassesAtEightyPercent) {
  pctest::resetSharedState();
  pctest::LogCapture log;
  auto lut = std::make_unique<lut3d_info>();
  for (uint32_t i = 0; i < postblend::kLut3dEntries; ++i)
    for (int c = 0; c < 3; ++c) lut->entries[i].in[c] = lut->entries[i].out[c] = (i * 7 + c) % 4096;
  for (int c = 0; c < 3; ++c) lut->entries[7].in[c] = kAt50[0][c], lut->entries[7].out[c] = kAt50[1][c];
  const struct {
    int black;  // entries [0, black) map white to black (dE 100)
    int result;
    const char* percent;
  } cases[] = {{0, 0, "99%"}, {1, 0, "99%"}, {982, 0, "80%"}, {983, -1, "79%"}, {4913, -1, "0%"}};
  for (const auto& c : cases) {
    for (int i = 0; i < c.black; ++i)
      for (int k = 0; k < 3; ++k) lut->entries[i].in[k] = 4095, lut->entries[i].out[k] = 0;
    log.clear();
    EXPECT_EQ(c.result, Algorithm::check3DLut(*lut)) << c.black;
    // The format ends in "%d%\n"; the host's printf shows the lone '%'.
    EXPECT_TRUE(log.has(std::string("1-check3DLut: < 50 : ") + c.percent, "PanelCorvane")) << log.dump();
    if (c.black != 1) continue;
    char line[96];
    snprintf(line, sizeof(line), "1-check3DLut: [0] [4095, 4095,4095 --> 0,0,0]    %f",
             static_cast<double>(Algorithm::DeltaE76(1, 1, 1, 0, 0, 0)));
    EXPECT_TRUE(log.has(line)) << log.dump();
    EXPECT_EQ(0, log.countContaining("[7] [")) << "exactly 50 is not listed";
    for (const char* bin : {"[0] = 4911", "[5] = 1", "[9] = 1"})
      EXPECT_TRUE(log.has(std::string("1-check3DLut: ") + bin)) << bin;
  }
}

}  // namespace
