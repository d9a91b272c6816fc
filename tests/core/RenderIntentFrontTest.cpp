#include <gtest/gtest.h>

#include "core/PanelCorvane.h"
#include "tests/core/CoreFixture.h"

using postblend::PanelCorvane;
using postblend::PanelCorvaneBase;

namespace {

class RenderIntentFrontTest : public pctest::CoreTest {
 protected:
  // The primary panel of the synthetic device, with its eight tables, logging verbosely:
  // refresh requests and interpolations show in the log.
  PanelCorvane* panelWithTables() {
    writeDevice();
    PanelCorvane* p = start();
    PanelCorvaneBase::sDebug = 1 | 0x02;
    log.clear();
    return p;
  }
  // Sends one frame; the id (array index) of the table the gamut asset got, -1 when left alone.
  int frame(PanelCorvane* p, int gamut, int intent) {
    auto got = pctest::sendFrame(p, gamut, intent);
    return got ? static_cast<int>(got->gamut_info.lut3d_id) : -1;
  }
  int refreshes() { return log.count("1-sendMessage: sendMessage 1"); }
  int interpolations() { return log.countContaining("1-calLut3d: calLut3d +++"); }
};

TEST_F(RenderIntentFrontTest, ContentOrAForcedModeChoosesTheMode) {
  PanelCorvane* p = panelWithTables();
  for (const auto& r : pctest::dataRows("core/render_intent_modes.txt")) {
    SCOPED_TRACE(r[5]);
    const int mode = std::stoi(r[4]);
    PanelCorvaneBase::sIsCMDebugOn = r[2] == "1";
    PanelCorvaneBase::sCFGMode = -1;
    frame(p, 1, mode == 3 ? 1 : 256);  // a different mode first: lines tell changes only
    log.clear();
    PanelCorvaneBase::sCFGMode = std::stoi(r[3]);
    PanelCorvaneBase::sNeedUpdate = true;
    const int table = frame(p, std::stoi(r[0]), std::stoi(r[1]));
    EXPECT_EQ(p->previousMode(), mode);
    EXPECT_TRUE(log.has("1-ProcessModeRenderIntent: " + r[5])) << log.dump();
    EXPECT_TRUE(mode > 7 || table == mode) << table << ": bypass leaves the output alone";
    EXPECT_FALSE(PanelCorvaneBase::sNeedUpdate);
  }
}

TEST_F(RenderIntentFrontTest, RefreshOnModeChangeInterpolationOnBrightnessChange) {
  PanelCorvane* p = panelWithTables();
  PanelCorvaneBase::sBrightness = 5000;
  frame(p, 1, 1);
  frame(p, 1, 1);
  EXPECT_EQ(refreshes(), 1) << "same content twice: one refresh";
  EXPECT_EQ(interpolations(), 1) << "same brightness twice: one interpolation";
  EXPECT_EQ(log.countContaining("1-ProcessModeRenderIntent: Panel(0) PanelCorvane_primary"), 1);

  PanelCorvaneBase::sBrightness = 6000;
  frame(p, 1, 1);
  EXPECT_EQ(refreshes(), 1) << "a brightness change alone does not refresh";
  EXPECT_EQ(interpolations(), 2);

  frame(p, 12, 0);  // bypass: a mode change refreshes, nothing is interpolated
  EXPECT_EQ(refreshes(), 2);
  EXPECT_EQ(interpolations(), 2);

  PanelCorvaneBase::sIsByPass = true;  // as the control services set it: no frame is seen
  EXPECT_EQ(frame(p, 1, 1), -1);
  EXPECT_EQ(p->previousMode(), -1);
}

TEST_F(RenderIntentFrontTest, WithoutTablesOnlyTheForcedAllOffModeGoesOn) {
  PanelCorvane* p = running();
  PanelCorvaneBase::sDebug = 1 | 0x04;
  EXPECT_EQ(frame(p, 1, 1), -1);
  EXPECT_TRUE(log.has("1-ProcessModeRenderIntent: init failed"));
  EXPECT_EQ(p->previousMode(), -1);
  PanelCorvaneBase::sCFGMode = 100;
  frame(p, 1, 1);
  EXPECT_EQ(p->previousMode(), 100);
}

}  // namespace
