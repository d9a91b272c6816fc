#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "base/PanelCorvaneBase.h"
#include "cache/Lut3DCacheManager.h"
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
    root.write("/data/vendor/display/.keep", "");
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

// w = (b * 4096 - 14336000) / 4691; out = even + ((delta * w) >> 12), toward minus infinity;
// below 3500 the odd table stays as it is, at 3500 it is the even one, at 8191 itself.
TEST_F(BrightnessLutTest, Q12InterpolationOverTheRange) {
  const uint32_t cases[][4] = {{1000, 2000, 5000, 1319},  // w 1309: 1309000 >> 12 = 319
                               {2000, 1000, 5000, 1680},  // -1309000 >> 12 = -320, not -319
                               {100, 99, 3505, 99},       // w 4: -4 >> 12 = -1
                               {0, 4095, 6000, 2181},     // w 2182: 8935290 >> 12
                               {1000, 2000, 3499, 2000},  {1000, 2000, 3500, 1000},
                               {1000, 2000, 8191, 2000}};
  for (const auto& c : cases) {
    setPair(c[0], c[1]);
    M::calLut3d(0, 3, c[2]);
    EXPECT_EQ(c[3], luts[3].entries[100].out[1]) << c[0] << "->" << c[1] << " at " << c[2];
    EXPECT_EQ(0, std::memcmp(luts[2].entries[7].in, luts[3].entries[7].in, 12)) << "grid inputs kept";
  }
}

TEST_F(BrightnessLutTest, RefusedIndicesAndMissingTables) {
  M::init(1, 0);  // six tables: 7 is odd but beyond the array
  for (unsigned idx : {0u, 2u, 4u, 6u, 8u, 255u, 7u}) {
    M::calLut3d(idx == 7 ? 1 : 0, idx, 5000);
    EXPECT_TRUE(log.has("1-calLut3d: calLut3d :" + std::to_string(idx) + ",brightness:5000 is not supported",
                        "PanelCorvaneCache")) << idx;
  }
  M::calLut3d(M::kNumPanels, 1, 5000);  // no third panel
  pctest::resetLutCache();
  M::calLut3d(0, 1, 5000);
  EXPECT_EQ(2, log.count("1-calLut3d: getLutArrayPointer ERROR(0)")) << log.dump();
}

TEST_F(BrightnessLutTest, DebugDumpFiles) {
  setPair(1000, 2000);
  postblend::PanelCorvaneBase::sDebug = 0x12;
  M::calLut3d(0, 3, 5000);
  EXPECT_EQ(0u, root.read("/data/vendor/display/cal-lut3d3-5000-p0.txt").find("1319 1319 1319\n"));
  M::calLut3dDelta(0);
  EXPECT_EQ(0u, root.read("/data/vendor/display/delta1-p0.txt").find("319 319 319\n"));
  EXPECT_TRUE(root.exists("/data/vendor/display/delta-lut3d7-p0.txt"));
}

}  // namespace
