#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "cache/Lut3DCacheManager.h"
#include "tests/cache/LutFixtures.h"
#include "tests/support/TestSupport.h"

using postblend::lut3d_info;
using M = postblend::Lut3DCacheManager;

namespace {

constexpr const char* kCache0 = "/data/vendor/display/cofc.fw";
constexpr uint32_t kSize6 = 707584, kSize8 = 943440;

class CacheFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    pctest::resetSharedState();
    pctest::resetLutCache();
    root.write("/data/vendor/display/.keep", "");
  }
  void TearDown() override { pctest::resetLutCache(); }
  // Saves panel tables with the trailer, then scribbles over them so that loads must refill.
  lut3d_info* save(unsigned panel, bool cmDebug, uint32_t source, uint32_t paramVersion) {
    lut3d_info* luts = pctest::initFilledPanel(panel, cmDebug);
    M::sPCFGPanel[panel].source = source;
    M::sPCFGPanel[panel].panelId = panel;
    M::sPCFGPanel[panel].paramVersion = paramVersion;
    M::saveCfgToFile(panel);
    std::memset(luts, 0xAB, M::sNumOfLut3D[panel] * sizeof(lut3d_info));
    return luts;
  }
  pctest::TempRoot root;
  pctest::LogCapture log;
};

TEST_F(CacheFileTest, RoundTripIsTheTablesThenTheTrailer) {
  lut3d_info* luts = save(0, false, 0, 7);
  const std::string bytes = root.read(kCache0);
  ASSERT_EQ(kSize6, bytes.size());
  EXPECT_FALSE(root.exists(std::string(kCache0) + ".tmp"));
  EXPECT_EQ(0, M::loadCacheFromFile(0, kSize6, true, 7));
  EXPECT_EQ(0, std::memcmp(bytes.data(), luts, 6 * sizeof(lut3d_info)));
  EXPECT_EQ(5u, luts[5].lut3d_id);
  const uint32_t sum = M::checkSum(luts, 6, 0, 0, 7);
  const uint32_t trailer[4] = {0, 0, 7, sum};
  EXPECT_EQ(0, std::memcmp(bytes.data() + 6 * sizeof(lut3d_info), trailer, sizeof(trailer)));
  char check[80];
  snprintf(check, sizeof(check), "1-loadCacheFromFile: (0)CHECK %#x =? %#x,Golden:0 Mat:1 7(->7)",
           sum, sum);
  EXPECT_TRUE(log.has(check, "PanelCorvaneCache")) << log.dump();
  EXPECT_TRUE(log.has("1-loadCacheFromFile: PANEL(0) FW VERSION 707584 (707584,707584)"));
  EXPECT_TRUE(log.has("1-saveCfgToFile: PANEL(0) FW VERSION 707584"));
}

TEST_F(CacheFileTest, SourceMustAgreeWithTheMatchState) {
  const struct {
    uint32_t source;
    bool matched;
    int32_t expected;
  } cases[] = {{0, true, 0},  {0, false, -1}, {1, true, 1},
               {1, false, 0}, {2, true, 1},   {2, false, -1}};
  for (const auto& c : cases) {
    SetUp();
    save(0, false, c.source, 3);
    EXPECT_EQ(c.expected, M::loadCacheFromFile(0, kSize6, c.matched, 3)) << c.source;
  }
}

TEST_F(CacheFileTest, RejectedFiles) {
  lut3d_info* luts = save(0, false, 1, 4);
  for (uint32_t fw : {kSize6 - 1, kSize6 + 1}) EXPECT_EQ(-1, M::loadCacheFromFile(0, fw, false, 4));
  EXPECT_EQ(2, log.count("1-loadCacheFromFile: FW VERSION MISMATCHING 707584"));
  EXPECT_EQ(0xABABABABu, luts[0].flags) << "rejected before reading";
  EXPECT_EQ(-1, M::loadCacheFromFile(0, kSize6, false, 5)) << "ParamVersion changed";
  std::string bytes = root.read(kCache0);
  bytes[123457] ^= 0x01;
  root.writeBytes(kCache0, bytes.data(), bytes.size());
  EXPECT_EQ(-1, M::loadCacheFromFile(0, kSize6, false, 4)) << "one bit flipped";
  bytes[123457] ^= 0x01;
  root.writeBytes(kCache0, bytes.data(), bytes.size() - 4);
  EXPECT_EQ(-1, M::loadCacheFromFile(0, kSize6 - 4, false, 4)) << "truncated";
}

TEST_F(CacheFileTest, PanelsAreIndependent) {
  lut3d_info* luts0 = save(0, false, 0, 1);
  lut3d_info* luts1 = save(1, true, 1, 1);
  EXPECT_EQ(kSize8, root.read("/data/vendor/display/cofc2.fw").size());
  EXPECT_EQ(0, M::loadCacheFromFile(1, kSize8, false, 1));
  EXPECT_EQ(7u, luts1[7].lut3d_id);
  EXPECT_EQ(0xABABABABu, luts0[0].flags);
}

TEST_F(CacheFileTest, InitDeInitRules) {
  EXPECT_EQ(1, M::loadCacheFromFile(0, kSize6, true, 0)) << "no file";
  EXPECT_TRUE(M::init(0, 0));
  EXPECT_TRUE(log.has("1-init: Num of Lut3D is 6,Panel(0)"));
  lut3d_info *first = nullptr, *second = nullptr;
  M::getLutArrayPointer(0, &first);
  EXPECT_TRUE(M::init(0, 1));
  EXPECT_EQ(6, M::getLutArrayPointer(0, &second));
  EXPECT_EQ(first, second);
  EXPECT_EQ(1, log.count("1-init: panel 0 has initialized"));
  M::deInit(0);
  EXPECT_FALSE(M::init(0, 0));
  EXPECT_EQ(0, M::getLutArrayPointer(0, &second)) << "released tables are never handed out";
  // N = 0: even a well-formed 16-byte file is no cache.
  const uint32_t trailer[4] = {0, 1, 0, 1};
  root.writeBytes("/data/vendor/display/cofc2.fw", trailer, sizeof(trailer));
  EXPECT_EQ(1, M::loadCacheFromFile(1, 16, true, 0));
}

}  // namespace
