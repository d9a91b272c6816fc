#include "config/Prop.h"
#include "tests/frontend/FeFixtures.h"

namespace fetest {
namespace {

using postblend::lut3d_info;
using postblend::Lut3DCacheManager;

const char* const kTargets[8] = {"Vivid", "Nature", "Cinema", "LsRGB", "Vivid_100nits",
                                 "Nature_100nits", "Cinema_100nits", "LsRGB_100nits"};
const char* const kOdfNames[4] = {"1_max", "2_max", "1_100nit", "2_100nit"};
const std::string kOdm = "/odm/etc/PanelCorvane/tpanel_";

class CfgGen : public FeTest {
 protected:
  void TearDown() override {
    resetCache();
    FeTest::TearDown();
  }
  static void resetCache() {
    Lut3DCacheManager::deInit(0);
    Lut3DCacheManager::sNumOfLut3D[0] = 0;
  }
  // Panel 0's cache slots, filled with a pattern no generated table has.
  static lut3d_info* initCache(int slots) {
    resetCache();
    Lut3DCacheManager::init(0, slots == 8);
    lut3d_info* luts = nullptr;
    EXPECT_EQ(Lut3DCacheManager::getLutArrayPointer(0, &luts), slots);
    std::memset(luts, 0xFF, slots * sizeof(lut3d_info));
    return luts;
  }
  static std::string local(int k) { return std::string("/mnt/vendor/persist/display/Loading_ON_") + kOdfNames[k] + ".odf"; }
  static Odf odfFor(int k, bool isLocal) { return makeOdf(kPanel, 100 + 150 * k + (isLocal ? 7 : 0), 2.15 + 0.03 * k); }
  static Target targetFor(int k) { return makeTarget(k % 2 ? kSrgb : kP3, 1 / (2.2f + 0.01f * k)); }

  void writeDevice(unsigned targetMask) {
    for (int k = 0; k < 8; ++k) {
      root.remove(kOdm + kTargets[k] + ".txt");
      if (targetMask & (1u << k)) root.write(kOdm + kTargets[k] + ".txt", textOf(targetFor(k)));
    }
    for (int k = 0; k < 4; ++k) {
      root.write(local(k), bytesOf(odfFor(k, true)));
      root.write(kOdm + kOdfNames[k] + ".odf", bytesOf(odfFor(k, false)));
    }
  }
};

TEST_F(CfgGen, TableCountRules) {
  struct Case {
    int in100nits;
    unsigned targets;  // bit k: kTargets[k] present
    int slots, result, generated;
  } cases[] = {
      {0, 0x0F, 8, 0, 8},  {0, 0x07, 8, 0, 6},  {0, 0x0B, 8, -1, 0}, {0, 0xF0, 8, -1, 0},
      {1, 0xFF, 8, 0, 8},  {1, 0x7F, 8, -1, 0}, {1, 0x77, 8, 0, 6},  {1, 0xF7, 8, -1, 0},
      {1, 0x3F, 8, -1, 0}, {0, 0x0F, 6, 0, 6},  {1, 0xFF, 6, 0, 6},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.in100nits << " " << std::hex << c.targets << " " << c.slots);
    writeDevice(c.targets);
    PanelCorvaneFE::sIn100nits = c.in100nits;
    lut3d_info* luts = initCache(c.slots);
    EXPECT_EQ(fe.generateCfgFile(1), c.result);
    int n = 0;
    while (n < c.slots && luts[n].lut3d_id == (uint32_t)n && luts[n].uniform == 1) ++n;
    EXPECT_EQ(n, c.generated);
    EXPECT_EQ(root.exists("/data/vendor/display/cofc.fw"), c.result >= 0);
    root.remove("/data/vendor/display/cofc.fw");
  }
}

TEST_F(CfgGen, LocalGoldenFallbackAndSource) {
  struct Case {
    int match;
    bool dropLocal3, golden1;  // golden1: 0 normal, else the golden _1_max file is empty
    int result;
    const char* line;
  } cases[] = {
      {1, false, false, 0, "1-generateCfgFile: matched,local."},
      {1, true, false, 1, "1-generateCfgFile: matched,golden."},
      {1, true, true, 1, "1-generateCfgFile: matched,golden."},  // keeps the local 1max image
      {-1, false, false, 1, "1-generateCfgFile: unmatched,golden."},
      {-1, false, true, -1, "1-generateCfgFile: failed to open golden odf"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    writeDevice(0x0F);
    if (c.dropLocal3) root.remove(local(2));
    if (c.golden1) root.write(kOdm + "1_max.odf", "");
    PanelCorvaneFE::sIn100nits = 0;
    PanelCorvaneBase::sParamVersion = 7;
    initCache(8);
    log.clear();
    EXPECT_EQ(fe.generateCfgFile(c.match), c.result);
    EXPECT_TRUE(log.has(c.line)) << log.dump();
    EXPECT_EQ(log.has("1-generateCfgFile: failed to open local odf"), c.dropLocal3);
    EXPECT_EQ(log.countContaining("1-readODF: open /mnt/"), c.match == 1 ? (c.dropLocal3 ? 3 : 4) : 0);
    if (c.result < 0) continue;
    // Source 0 (local) reloads when matched, 1 when unmatched; 2 (matched, golden) never.
    const uint32_t source = c.match == -1 ? 1 : c.result == 1 ? 2 : 0;
    EXPECT_EQ(Lut3DCacheManager::sPCFGPanel[0].source, source);
    EXPECT_EQ(Lut3DCacheManager::loadCacheFromFile(0, Lut3DCacheManager::fileSizeFor(8), c.match == 1, 7),
              source == 2 ? 1 : 0);
  }
}

TEST_F(CfgGen, MatchZeroDoesNothingButFetchesTheSwitchOnce) {
  root.write("/odm/etc/PanelCorvane/panelcorvane", "inParam100nits=1\n");
  auto* prop = new postblend::Prop();
  ASSERT_TRUE(prop->Init());
  PanelCorvaneBase::sProp = prop;
  writeDevice(0xFF);
  log.clear();
  EXPECT_EQ(fe.generateCfgFile(0), 0);
  EXPECT_EQ(PanelCorvaneFE::sIn100nits, 1);
  EXPECT_EQ(log.countContaining("1-read"), 0);
  EXPECT_FALSE(root.exists("/data/vendor/display/cofc.fw"));
}

}  // namespace
}  // namespace fetest
