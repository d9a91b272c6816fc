// The HardenedTables switch: each rule against the fault it keeps from the hardware.
#include <gtest/gtest.h>

#include <string>

#include "base/Hardening.h"
#include "core/PanelCorvane.h"
#include "tests/core/CoreFixture.h"

using postblend::PanelCorvane;
using B = postblend::PanelCorvaneBase;

namespace {

constexpr uint32_t kUnhanded = 0xFFFFFFFFu;

// `count` numbers of the LUT text format, all `value` but the last, which is `last`.
std::string lutText(uint32_t value, uint32_t last, int count = 29478) {
  std::string text;
  for (int i = 1; i < count; ++i) text += std::to_string(value) + ' ';
  return text + std::to_string(last);
}

class HardenedTablesTest : public pctest::CoreTest {
 protected:
  // The synthetic device with the switch in its property file.
  void writeHardenedDevice() {
    writeDevice();
    root.write(postblend::Prop::kPath, root.read(postblend::Prop::kPath) + "HardenedTables=1\n");
  }
  // A frame in `forced` mode; its gamut record, whose lut3d_id is kUnhanded when it got no table.
  std::shared_ptr<postblend::GamutConfig> frame(PanelCorvane* p, int forced) {
    B::sCFGMode = forced;
    postblend::ModeRenderInputParams in;
    auto g = std::make_shared<postblend::GamutConfig>();
    g->gamut_info.lut3d_id = kUnhanded;
    postblend::HwConfigOutputParams out;
    out.payload.emplace_back("PostBlendGamut", g);
    postblend::ScPayload outP = pctest::payloadFor(&out);
    p->ProcessOps(postblend::kScModeRenderIntent, pctest::payloadFor(&in), &outP);
    return g;
  }
};

TEST_F(HardenedTablesTest, WhatIsNotATableNeverReachesTheHardware) {
  writeHardenedDevice();
  const std::string odm = "/odm/etc/PanelCorvane/";
  // The fault (a file written under odm/etc/PanelCorvane first, if any), the mode and level of
  // the frame, whether a sound table reaches the record (else it stays as it was), the notice.
  const struct {
    const char* file;
    std::string text;
    int mode;
    uint32_t level;
    bool handed;
    const char* line;
  } rows[] = {
      {nullptr, "", 305, 0, false, "hook table 305 missing or short, not applied"},
      {"3D-Lut_Center_P3.txt", "1 2 3", 306, 0, false, "hook table 306 missing or short"},
      {"3D-Lut_Enhance_sRGB.txt", lutText(0, 0), 307, 0, false, "mode 307 is all zero"},
      {"3D-Lut_Enhance_P3.txt", lutText(100, 4096), 308, 0, false, "mode 308 has a code above"},
      {"Lut3D.txt", "1 2 3", 50, 0, false, "debug table short, not applied"},
      {nullptr, "", 3, 20000, true, "level 20000 clamped to 8191"},  // extrapolated
      {nullptr, "", 3, static_cast<uint32_t>(-4000), true, "level -4000 clamped to 0"},  // wrapped
  };
  PanelCorvane* p = start();
  ASSERT_TRUE(p->tablesReady());
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    postblend::resetHardenedNotices();
    if (row.file != nullptr) root.write(odm + row.file, row.text);
    B::sBrightness = row.level;
    log.clear();
    auto got = frame(p, row.mode);
    EXPECT_EQ(got->gamut_info.lut3d_id != kUnhanded, row.handed);
    EXPECT_EQ(got->enabled, row.handed) << "a record that got no table keeps its switch";
    if (row.handed) {
      EXPECT_EQ(postblend::tableVerdict(got->gamut_info), postblend::TableVerdict::kSound);
    }
    EXPECT_EQ(log.countContaining(row.line), 1) << log.dump();
  }
}

TEST_F(HardenedTablesTest, TablesNeverMadeAreNeitherOfferedNorCached) {
  // No LsRGB targets on an eight-table device: tables 6 and 7 are never generated.
  writeHardenedDevice();
  root.remove("/odm/etc/PanelCorvane/PanelCorvane_primary_LsRGB.txt");
  root.remove("/odm/etc/PanelCorvane/PanelCorvane_primary_LsRGB_100nits.txt");
  PanelCorvane* p = start();
  ASSERT_TRUE(p->tablesReady());
  EXPECT_FALSE(root.exists("/data/vendor/display/cofc.fw"));
  EXPECT_TRUE(log.has("1-saveCfgToFile: hardened: 6 of 8 tables made, cache not written"));
  EXPECT_EQ(frame(p, 3)->gamut_info.lut3d_id, 3u);
  EXPECT_EQ(frame(p, 7)->gamut_info.lut3d_id, 3u) << "the previous mode's table again";
  EXPECT_EQ(p->previousMode(), 3);
  EXPECT_TRUE(log.has("1-ProcessModeRenderIntent: hardened: mode 7 has no tables, mode 3 kept"));
}

TEST_F(HardenedTablesTest, AFoldedPanelHasItsTablesAgainAndOnlyItsOwnerReleasesThem) {
  writeHardenedDevice();
  PanelCorvane* primary = start("PanelCorvane_primary");
  PanelCorvane* secondary = start("PanelCorvane_secondary");
  // A third object of the primary's panel is refused the registry slot: its DeInit leaves the
  // panel's tables to the primary.
  PanelCorvane* stray = start("PanelCorvane_third");
  EXPECT_FALSE(stray->tablesReady());
  stray->DeInit();
  EXPECT_EQ(frame(primary, 3)->gamut_info.lut3d_id, 3u);
  EXPECT_TRUE(log.has("1-ownsPanelTables: hardened: PanelCorvane_third does not hold panel 0, its "
                      "tables left alone"));

  secondary->DeInit();  // folded; a new object for the secondary panel, then the same again
  PanelCorvane* unfolded = start("PanelCorvane_secondary");
  EXPECT_TRUE(log.has("1-onLoad3dLut: loadCfgFile done!"));
  EXPECT_EQ(frame(unfolded, 3)->gamut_info.lut3d_id, 3u);
  unfolded->DeInit();
  unfolded->Init("PanelCorvane_secondary");
  ASSERT_TRUE(pctest::settle());
  EXPECT_EQ(frame(unfolded, 5)->gamut_info.lut3d_id, 5u);
  EXPECT_FALSE(log.has("1-Init: warning: reinit panel, cfg error!"));
}

}  // namespace
