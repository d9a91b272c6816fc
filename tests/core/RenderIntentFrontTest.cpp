#include <gtest/gtest.h>

#include "backend/PanelCorvaneBE.h"
#include "core/PanelCorvane.h"
#include "tests/core/CoreFixture.h"

using postblend::GamutConfig;
using postblend::HwConfigOutputParams;
using postblend::Lut3DCacheManager;
using postblend::ModeRenderInputParams;
using postblend::PanelCorvane;
using postblend::PanelCorvaneBase;
using postblend::ScPayload;

namespace {

class RenderIntentFrontTest : public pctest::CoreTest {
 protected:
  // A running primary panel whose tables come from a valid cache: table i has outputs i.
  PanelCorvane* panelWithTables(bool cmDebug) {
    const unsigned n = cmDebug ? 8 : 6;
    root.write("/data/vendor/display/.keep", "");  // the cache folder exists on a device
    Lut3DCacheManager::init(0, cmDebug);
    postblend::lut3d_info* luts = nullptr;
    Lut3DCacheManager::getLutArrayPointer(0, &luts);
    for (unsigned t = 0; t < n; ++t) {
      luts[t] = {};
      luts[t].lut3d_id = t;
      luts[t].num_entries = 4913;
      for (auto& e : luts[t].entries) e.out[0] = e.out[1] = e.out[2] = t;
    }
    Lut3DCacheManager::sPCFGPanel[0].source = 1;  // no identity files: the panel is unmatched
    Lut3DCacheManager::sPCFGPanel[0].panelId = 0;
    Lut3DCacheManager::sPCFGPanel[0].paramVersion = 0;
    Lut3DCacheManager::saveCfgToFile(0);
    pctest::resetCaches();
    writeProps("PanelCalibration=1\nFWVersion=" + std::to_string(Lut3DCacheManager::fileSizeFor(n)) +
               "\nCMDebug=" + (cmDebug ? "1" : "0") + "\n");
    PanelCorvane* p = make();
    p->Init("primary");
    EXPECT_TRUE(pctest::waitFor([&] { return p->tablesReady(); })) << log.dump();
    EXPECT_TRUE(pctest::settle());
    PanelCorvaneBase::sDebug = 1 | 0x02;  // verbose: refresh and interpolation show in the log
    log.clear();
    return p;
  }

  // Sends one frame; returns the table id the gamut asset got, or -1 when it was left alone.
  int frame(PanelCorvane* p, int gamut, int intent, bool hdr = false) {
    ModeRenderInputParams in;
    in.color_mode.gamut = gamut;
    in.color_mode.intent = intent;
    in.valid_meta_data = hdr;
    HwConfigOutputParams out;
    auto g = std::make_shared<GamutConfig>();
    g->gamut_info.lut3d_id = 999;
    out.payload.emplace_back("PostBlendGamut", g);
    ScPayload inP, outP;
    inP.len = sizeof(in);
    inP.payload = reinterpret_cast<uintptr_t>(&in);
    outP.payload = reinterpret_cast<uintptr_t>(&out);
    p->ProcessOps(postblend::kScModeRenderIntent, inP, &outP);
    return g->gamut_info.lut3d_id == 999 ? -1 : static_cast<int>(g->gamut_info.lut3d_id);
  }
  int refreshes() { return log.count("1-sendMessage: sendMessage 1"); }
  int interpolations() { return log.countContaining("1-calLut3d: calLut3d +++"); }
};

TEST_F(RenderIntentFrontTest, ContentChoosesTheMode) {
  struct Row {
    int gamut, intent;
    bool cmDebug;
    int mode;
    const char* line;
  } rows[] = {
      {1, 1, false, 1, "sRGB-Vivid-1(gamut:1,it:1)"},
      {12, 304, false, 1, "sRGB-Vivid-1(gamut:12,it:304)"},
      {1, 256, false, 3, "sRGB-Nature-3(gamut:1,it:256)"},
      {12, 301, false, 3, "sRGB-Nature-3(gamut:12,it:301)"},
      {1, 258, false, 5, "sRGB-Cinema-5(gamut:1,it:258)"},
      {0, 302, false, 5, "sRGB-Cinema-5(gamut:0,it:302)"},
      {1, 303, true, 7, "sRGB-LsRGB-7(gamut:1,it:303)"},
      {1, 303, false, -1, "NULL bypass(gamut:1,it:303)"},
      {12, 303, false, -1, "hdr bypass(gamut:12,it:303)"},
      {1, 259, false, -1, "colors bypass(gamut:1,it:259)"},
      {1, 306, true, 306, "CM-Blit-by-file(gamut:1,it:306)"},
      {1, 306, false, -1, "NULL bypass(gamut:1,it:306)"},
      {12, 1, false, 5, "P3-Cinema-5(gamut:12,it:1)"},
      {12, 0, false, -1, "hdr bypass(gamut:12,it:0)"},
      {1, 300, false, -1, "cwb bypass(gamut:1,it:300)"},
      {1, 264, false, -1, "1000P bypass(gamut:1,it:264)"},
      {1, 0, false, -1, "NULL bypass(gamut:1,it:0)"},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.line);
    TearDown();
    SetUp();
    PanelCorvane* p = panelWithTables(r.cmDebug);
    frame(p, 1, r.mode == 3 ? 1 : 256);  // a different mode first: lines tell changes only
    log.clear();
    int table = frame(p, r.gamut, r.intent);
    EXPECT_EQ(p->previousMode(), r.mode);
    EXPECT_TRUE(log.has(std::string("1-ProcessModeRenderIntent: ") + r.line)) << log.dump();
    if (r.mode >= 0 && r.mode <= 7) {
      EXPECT_EQ(table, r.mode);
    } else if (r.mode < 0) {
      EXPECT_EQ(table, -1) << "bypass leaves the output alone";
    }
    EXPECT_FALSE(PanelCorvaneBase::sNeedUpdate);
  }
}

TEST_F(RenderIntentFrontTest, ForcedModeWins) {
  PanelCorvane* p = panelWithTables(false);
  PanelCorvaneBase::sCFGMode = 2;
  EXPECT_EQ(frame(p, 12, 0), 2);
  EXPECT_TRUE(log.has("1-ProcessModeRenderIntent: Be set manually or EM,this mode(2->2) gets "
                      "processed with the highest priority."));
  PanelCorvaneBase::sCFGMode = 104;
  EXPECT_EQ(frame(p, 1, 1), 0);
  EXPECT_FALSE(log.has("1-ProcessModeRenderIntent: 0x146 -> left sRgb 6"));
  PanelCorvaneBase::sIsCMDebugOn = true;
  EXPECT_EQ(frame(p, 1, 1), -1) << "six tables: index 6 is out of range";
  EXPECT_EQ(p->previousMode(), 6);
  EXPECT_TRUE(log.has("1-ProcessModeRenderIntent: 0x146 -> left sRgb 6"));
}

TEST_F(RenderIntentFrontTest, RefreshOnModeChangeInterpolationOnBrightnessChange) {
  PanelCorvane* p = panelWithTables(false);
  PanelCorvaneBase::sBrightness = 5000;
  frame(p, 1, 1);
  frame(p, 1, 1);
  EXPECT_EQ(refreshes(), 1) << "same content twice: one refresh";
  EXPECT_EQ(interpolations(), 1) << "same brightness twice: one interpolation";
  EXPECT_EQ(log.countContaining("1-ProcessModeRenderIntent: Panel(0) primary"), 1);

  PanelCorvaneBase::sBrightness = 6000;
  frame(p, 1, 1);
  EXPECT_EQ(refreshes(), 1) << "a brightness change alone does not refresh";
  EXPECT_EQ(interpolations(), 2);

  frame(p, 12, 0);  // bypass: a mode change refreshes, nothing is interpolated
  EXPECT_EQ(refreshes(), 2);
  EXPECT_EQ(interpolations(), 2);
}

TEST_F(RenderIntentFrontTest, BypassAndMissingTablesSkipTheFrame) {
  PanelCorvane* p = panelWithTables(false);
  PanelCorvaneBase::sNeedUpdate = true;
  PanelCorvaneBase::sIsByPass = true;
  EXPECT_EQ(frame(p, 1, 1), -1);
  PanelCorvaneBase::sIsByPass = false;

  // A panel without tables goes on only for the forced all-off mode.
  PanelCorvane* bare = make();
  bare->Init("secondary");
  PanelCorvaneBase::sDebug = 1 | 0x04;
  EXPECT_EQ(frame(bare, 1, 1), -1);
  EXPECT_TRUE(log.has("1-ProcessModeRenderIntent: init failed"));
  PanelCorvaneBase::sCFGMode = 100;
  frame(bare, 1, 1);
  EXPECT_EQ(bare->previousMode(), 100);
}

}  // namespace
