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

TEST_F(CacheFileTest, RoundTripIsTheTablesThenTheTrailerPerPanel) {
  lut3d_info* luts0 = save(0, false, 0, 7);
  const std::string bytes = root.read(kCache0);
  ASSERT_EQ(kSize6, bytes.size());
  EXPECT_FALSE(root.exists(std::string(kCache0) + ".tmp"));
  lut3d_info* luts1 = save(1, true, 1, 7);
  EXPECT_EQ(kSize8, root.read("/data/vendor/display/cofc2.fw").size());
  EXPECT_EQ(0, M::loadCacheFromFile(1, kSize8, false, 7));
  EXPECT_EQ(7u, luts1[7].lut3d_id);
  EXPECT_EQ(0xABABABABu, luts0[0].flags) << "panel 1's load leaves panel 0 alone";

  EXPECT_EQ(0, M::loadCacheFromFile(0, kSize6, true, 7));
  EXPECT_EQ(0, std::memcmp(bytes.data(), luts0, 6 * sizeof(lut3d_info)));
  const uint32_t trailer[4] = {0, 0, 7, M::checkSum(luts0, 6, 0, 0, 7)};
  EXPECT_EQ(0, std::memcmp(bytes.data() + 6 * sizeof(lut3d_info), trailer, sizeof(trailer)));
  EXPECT_TRUE(log.has("1-loadCacheFromFile: PANEL(0) FW VERSION 707584 (707584,707584)"));
}

// The loader applies the acceptance rules to what it read (which rule refuses is CacheAcceptance's
// to test): 0 taken; else 1 when matched (generate from local data), -1 when not.
TEST_F(CacheFileTest, LoaderResults) {
  const struct {
    const char* name;
    uint32_t source;
    bool matched;
    int fwDelta;     // FWVersion asked minus the file's length
    int damage;      // 1 a bit flipped, 2 the last 4 bytes cut (FWVersion follows)
    int32_t expected;
  } cases[] = {
      {"local, matched", 0, true, 0, 0, 0},       {"golden, unmatched", 1, false, 0, 0, 0},
      {"golden, matched", 1, true, 0, 0, 1},      {"local, unmatched", 0, false, 0, 0, -1},
      {"FWVersion one more", 1, false, 1, 0, -1}, {"one bit flipped", 0, true, 0, 1, 1},
      {"truncated", 1, false, 0, 2, -1},
  };
  for (const auto& c : cases) {
    SetUp();
    lut3d_info* luts = save(0, false, c.source, 3);
    std::string bytes = root.read(kCache0);
    if (c.damage == 1) bytes[123457] ^= 0x01;
    if (c.damage == 2) bytes.resize(bytes.size() - 4);
    root.writeBytes(kCache0, bytes.data(), bytes.size());
    EXPECT_EQ(c.expected, M::loadCacheFromFile(0, static_cast<uint32_t>(bytes.size() + c.fwDelta), c.matched, 3))
        << c.name;
    EXPECT_EQ(c.fwDelta != 0, luts[0].flags == 0xABABABABu) << c.name << ": a wrong length is refused unread";
  }
}

TEST_F(CacheFileTest, InitDeInitRules) {
  EXPECT_EQ(1, M::loadCacheFromFile(0, kSize6, true, 0)) << "no file";
  EXPECT_FALSE(M::init(M::kNumPanels, 0)) << "no third panel";
  EXPECT_TRUE(M::init(0, 0));
  EXPECT_TRUE(log.has("1-init: Num of Lut3D is 6,Panel(0)"));
  lut3d_info *first = nullptr, *second = nullptr;
  M::getLutArrayPointer(0, &first);
  EXPECT_TRUE(M::init(0, 1));
  EXPECT_EQ(6, M::getLutArrayPointer(0, &second)) << "a second init keeps the first count";
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
