#include <gtest/gtest.h>

#include <string>

#include "cache/Lut3DCacheManager.h"
#include "base/PanelCorvaneBase.h"
#include "tests/cache/LutFixtures.h"
#include "tests/support/TestSupport.h"

using postblend::lut3d_info;
using M = postblend::Lut3DCacheManager;

namespace {

class BrightnessLutTest : public ::testing::Test {
 protected:
  void SetUp() override {
    pctest::resetSharedState();
    pctest::resetLutCache();
    luts = pctest::initFilledPanel(0, true);
  }
  void TearDown() override { pctest::resetLutCache(); }
  // Pair 1 (tables 2 and 3) with one output value each, deltas taken.
  void setPair(uint32_t even, uint32_t odd) {
    for (auto& e : luts[2].entries) e.out[0] = e.out[1] = e.out[2] = even;
    for (auto& e : luts[3].entries) e.out[0] = e.out[1] = e.out[2] = odd;
    M::calLut3dDelta(0);
  }
  pctest::TempRoot root;
  pctest::LogCapture log;
  lut3d_info* luts = nullptr;
};

TEST_F(BrightnessLutTest, EndsOfTheRangeGiveThePairExactly) {
  pctest::fillTable(luts[3], 3, 4000);
  M::calLut3dDelta(0);
  const lut3d_info high = luts[3];
  M::calLut3d(0, 3, 3499);
  EXPECT_EQ(0, memcmp(&high, &luts[3], sizeof(lut3d_info))) << "below 3500 nothing changes";
  M::calLut3d(0, 3, 3500);
  EXPECT_EQ(0, memcmp(luts[2].entries, luts[3].entries, sizeof(luts[2].entries)))
      << "tables 2 and 3 share their grid inputs";
  M::calLut3d(0, 3, 8191);
  EXPECT_EQ(0, memcmp(&high, &luts[3], sizeof(lut3d_info)));
}

// w = (b * 4096 - 14336000) / 4691; out = even + ((delta * w) >> 12), toward minus infinity.
TEST_F(BrightnessLutTest, Q12InterpolationByHand) {
  const uint32_t cases[][4] = {{1000, 2000, 5000, 1319},  // w 1309: 1309000 >> 12 = 319
                               {2000, 1000, 5000, 1680},  // -1309000 >> 12 = -320, not -319
                               {100, 99, 3505, 99},       // w 4: -4 >> 12 = -1
                               {0, 4095, 6000, 2181}};    // w 2182: 8935290 >> 12
  for (const auto& c : cases) {
    setPair(c[0], c[1]);
    M::calLut3d(0, 3, c[2]);
    EXPECT_EQ(c[3], luts[3].entries[100].out[1]) << c[0] << "->" << c[1] << " at " << c[2];
  }
}

TEST_F(BrightnessLutTest, RefusedIndicesAndMissingTables) {
  M::init(1, 0);  // six tables: 7 is odd but beyond the array
  for (unsigned idx : {0u, 2u, 4u, 6u, 8u, 255u, 7u}) {
    M::calLut3d(idx == 7 ? 1 : 0, idx, 5000);
    EXPECT_TRUE(log.has(
        "1-calLut3d: calLut3d :" + std::to_string(idx) + ",brightness:5000 is not supported",
        "PanelCorvaneCache"))
        << idx;
  }
  pctest::resetLutCache();
  M::calLut3d(0, 1, 5000);
  EXPECT_TRUE(log.has("1-calLut3d: getLutArrayPointer ERROR(0)")) << log.dump();
}

TEST_F(BrightnessLutTest, VerboseLinesAndDumpFiles) {
  root.write("/data/vendor/display/.keep", "");
  setPair(1000, 2000);
  postblend::PanelCorvaneBase::sDebug = 0x12;
  M::calLut3d(0, 3, 3000);
  M::calLut3d(0, 3, 5000);
  EXPECT_TRUE(log.has("1-calLut3d: calLut3d +++ 1309 5000"));
  EXPECT_EQ(2, log.count("1-calLut3d: calLut3d ---"));
  EXPECT_TRUE(log.has("1-calLut3d: /data/vendor/display/cal-lut3d3-5000-p0.txt"));
  EXPECT_EQ(0u, root.read("/data/vendor/display/cal-lut3d3-5000-p0.txt").find("1319 1319 1319\n"));
  M::calLut3dDelta(0);
  EXPECT_TRUE(log.has("1-calLut3dDelta: /data/vendor/display/delta-lut3d7-p0.txt"));
  EXPECT_EQ(0u, root.read("/data/vendor/display/delta1-p0.txt").find("319 319 319\n"));
}

}  // namespace
