#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "base/Algorithm.h"
#include "tests/support/TestSupport.h"

using postblend::Algorithm;
using postblend::lut3d_info;

namespace {

float unit(uint32_t code) { return static_cast<float>(code / 4095.0); }

// Codes whose distance is 50.0f exactly (found by a search over 12-bit codes).
constexpr uint32_t kAt50[2][3] = {{2739, 2475, 2490}, {501, 1029, 2659}};

class AlgorithmTest : public ::testing::Test {
 protected:
  void SetUp() override {
    pctest::resetSharedState();
    for (uint32_t i = 0; i < postblend::kLut3dEntries; ++i)
      for (int c = 0; c < 3; ++c)
        lut->entries[i].in[c] = lut->entries[i].out[c] = (i * 7 + c) % 4096;
  }
  // Entries [0, count) map white to black (dE 100).
  void blacken(int count) {
    for (int i = 0; i < count; ++i)
      for (int c = 0; c < 3; ++c) lut->entries[i].in[c] = 4095, lut->entries[i].out[c] = 0;
  }
  std::unique_ptr<lut3d_info> lut{new lut3d_info()};
  pctest::LogCapture log;
};

TEST_F(AlgorithmTest, DeltaE76KnownValues) {
  EXPECT_EQ(0.0f, Algorithm::DeltaE76(1, 1, 1, 1, 1, 1));
  EXPECT_NEAR(100.0f, Algorithm::DeltaE76(1, 1, 1, 0, 0, 0), 1e-4f);
  EXPECT_EQ(50.0f, Algorithm::DeltaE76(unit(kAt50[0][0]), unit(kAt50[0][1]), unit(kAt50[0][2]),
                                       unit(kAt50[1][0]), unit(kAt50[1][1]), unit(kAt50[1][2])));
  EXPECT_NEAR(0.0f, Algorithm::DeltaE76(0, 0, 0, 1e-6f, 1e-6f, 1e-6f), 0.01f) << "linear branch";
}

TEST_F(AlgorithmTest, IdentityTablePasses) {
  EXPECT_EQ(0, Algorithm::check3DLut(*lut));
  EXPECT_TRUE(log.has("1-check3DLut: [0] = 4913", "PanelCorvane"));
  // The format ends in "%d%\n"; the host's printf shows the lone '%'.
  EXPECT_TRUE(log.has("1-check3DLut: < 50 : 100%", "PanelCorvane")) << log.dump();
  EXPECT_EQ(11u, log.lines().size());
}

TEST_F(AlgorithmTest, FarEntriesAreListedAndFiftyIsNot) {
  blacken(1);
  for (int c = 0; c < 3; ++c)
    lut->entries[7].in[c] = kAt50[0][c], lut->entries[7].out[c] = kAt50[1][c];
  EXPECT_EQ(0, Algorithm::check3DLut(*lut));
  char line[96];
  snprintf(line, sizeof(line), "1-check3DLut: [0] [4095, 4095,4095 --> 0,0,0]    %f",
           static_cast<double>(Algorithm::DeltaE76(1, 1, 1, 0, 0, 0)));
  EXPECT_TRUE(log.has(line)) << log.dump();
  EXPECT_EQ(0, log.countContaining("[7] ["));
  for (const char* bin : {"[0] = 4911", "[5] = 1", "[9] = 1"})
    EXPECT_TRUE(log.has(std::string("1-check3DLut: ") + bin)) << bin;
}

TEST_F(AlgorithmTest, PassNeedsEightyPercentBelowFifty) {
  blacken(982);
  EXPECT_EQ(0, Algorithm::check3DLut(*lut));
  EXPECT_TRUE(log.has("1-check3DLut: < 50 : 80%"));
  blacken(983);
  EXPECT_EQ(-1, Algorithm::check3DLut(*lut));
  EXPECT_TRUE(log.has("1-check3DLut: < 50 : 79%"));
  blacken(4913);  // all black
  EXPECT_EQ(-1, Algorithm::check3DLut(*lut));
  EXPECT_TRUE(log.has("1-check3DLut: < 50 : 0%"));
}

}  // namespace
