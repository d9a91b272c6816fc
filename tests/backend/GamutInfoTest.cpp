#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "backend/LutTextFile.h"
#include "backend/PanelCorvaneBE.h"
#include "tests/cache/LutFixtures.h"
#include "tests/support/TestSupport.h"

using namespace postblend;

namespace {

constexpr const char* kCenterP3 = "/odm/etc/PanelCorvane/3D-Lut_Center_P3.txt";

class GamutInfoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    pctest::resetSharedState();
    pctest::resetLutCache();
    std::memset(target.get(), 0x77, sizeof(lut3d_info));
  }
  void TearDown() override { pctest::resetLutCache(); }
  pctest::TempRoot root;
  pctest::LogCapture log;
  PanelCorvaneBase owner;
  PanelCorvaneBE be{&owner};
  std::unique_ptr<lut3d_info> target{new lut3d_info()};
};

TEST_F(GamutInfoTest, HookTableFromItsFileOnce) {
  std::unique_ptr<lut3d_info> file(new lut3d_info());
  pctest::fillTable(*file, 0, 1234);
  root.write(kCenterP3, "");
  ASSERT_TRUE(LutTextFile::writeFile(root.host(kCenterP3).c_str(), *file));
  be.fillGamutInfo(target.get(), 306);
  EXPECT_EQ(0, std::memcmp(file->entries, target->entries, sizeof(file->entries)));
  const uint32_t header[4] = {0, 301, 1, 4913};
  EXPECT_EQ(0, std::memcmp(header, target.get(), sizeof(header)));
  EXPECT_TRUE(log.has(std::string("1-init3dlutByTxt: - ") + kCenterP3, "PanelCorvaneBE"));
  root.write(kCenterP3, "1 2 3");
  be.fillGamutInfo(target.get(), 306);
  EXPECT_EQ(1234u, target->entries[0].out[0]) << "a changed file is not read again";
  EXPECT_EQ(-1, LutTextFile::readFile(root.host("/none.txt").c_str(), target.get()));
}

TEST_F(GamutInfoTest, MissingHookFileFirstAndSecondCall) {
  pctest::initFilledPanel(0, true);
  be.fillGamutInfo(target.get(), 305);
  EXPECT_TRUE(log.has("1-init3dlutByTxt: fail to open output file!"));
  EXPECT_TRUE(log.has("1-fillGamutInfo: GAMUT INFO is NULL."));
  EXPECT_EQ(0x77777777u, target->lut3d_id);
  PanelCorvaneBase::sDebug = 0x02;
  be.fillGamutInfo(target.get(), 305);
  EXPECT_TRUE(log.has("1-fillGamutInfo: isLut3dHook 305"));
  EXPECT_EQ(300u, target->lut3d_id);
  EXPECT_EQ(0u, target->entries[100].out[1]) << "header-only table";
  EXPECT_EQ(1, log.countContaining("init3dlutByTxt: -"));
}

TEST_F(GamutInfoTest, OrdinaryModesIndexThePanelsTables) {
  pctest::initFilledPanel(0, true);
  be.fillGamutInfo(target.get(), 7);
  EXPECT_EQ(7u, target->lut3d_id);
  for (int mode : {8, -1, 50}) be.fillGamutInfo(target.get(), mode);
  owner.mPanelIndex = 1;  // no tables there
  be.fillGamutInfo(target.get(), 0);
  EXPECT_EQ(4, log.count("1-fillGamutInfo: GAMUT INFO is NULL."));
  EXPECT_EQ(7u, target->lut3d_id);
}

TEST_F(GamutInfoTest, LoadCfgFileAndBrightness) {
  std::strcpy(owner.mName, "primary");
  EXPECT_EQ(-1, be.loadCfgFile(false));
  EXPECT_EQ(1, be.loadCfgFile(true));
  lut3d_info* luts = nullptr;
  Lut3DCacheManager::getLutArrayPointer(0, &luts);
  pctest::fillTable(luts[0], 0, 1000);
  pctest::fillTable(luts[1], 1, 2000);
  Lut3DCacheManager::sPCFGPanel[0] = {luts, 0, 0, 9, 0};
  root.write("/data/vendor/display/.keep", "");
  Lut3DCacheManager::saveCfgToFile(0);
  PanelCorvaneBase::sFWVersion = Lut3DCacheManager::fileSizeFor(6);
  PanelCorvaneBase::sParamVersion = 9;
  EXPECT_EQ(0, be.loadCfgFile(true));  // loaded, deltas taken
  EXPECT_EQ(0, be.calLut3d(1, 5000));
  EXPECT_EQ(1319u, luts[1].entries[0].out[0]);
  EXPECT_EQ(0, be.calLut3d(-1, 5000));
  EXPECT_TRUE(log.has("1-calLut3d: calLut3d :-1,brightness:5000 is not supported"));
}

}  // namespace
