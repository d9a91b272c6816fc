#include <gtest/gtest.h>

#include "core/PanelCorvane.h"
#include "tests/core/CoreFixture.h"

using postblend::PanelCorvane;
using postblend::PanelCorvaneBase;
using Vec = PanelCorvane::hidl_vec_i32;

namespace {

class ControlInterfaceTest : public pctest::CoreTest {
 protected:
  void SetUp() override {
    CoreTest::SetUp();
    writeProps();
    panel = make();
    panel->Init("primary");
    PanelCorvaneBase::sDebug = 1 | 0x02;  // refresh requests show as "sendMessage 1"
    log.clear();
  }
  int refreshes() { return log.count("1-sendMessage: sendMessage 1"); }
  // The answer of configureGet, or nullopt-like -999 when the callback was never called.
  int get(int type, const Vec& args) {
    int answer = -999;
    panel->configureGet(type, args, [&](int32_t v, const Vec& r) {
      answer = v;
      EXPECT_EQ(r.size(), 1u);
    });
    return answer;
  }

  PanelCorvane* panel = nullptr;
};

TEST_F(ControlInterfaceTest, BypassBrightnessAndLogLevel) {
  panel->configureSet(101, Vec{0});
  EXPECT_TRUE(PanelCorvaneBase::sIsByPass);
  EXPECT_EQ(get(101, {}), 0);
  EXPECT_EQ(get(666, {}), 0);
  panel->configureSet(101, Vec{1});
  EXPECT_EQ(get(101, {}), 1);
  EXPECT_TRUE(log.has("1-configureSet: sIsByPass: 0"));

  int before = refreshes();
  panel->configureSet(123, Vec{0, 100});
  EXPECT_EQ(PanelCorvaneBase::sBrightness, 100u);
  EXPECT_EQ(refreshes(), before) << "magnitude below 101: stored without refresh";
  panel->configureSet(518, Vec{3, -101});
  EXPECT_EQ(refreshes(), before + 1);
  panel->configureSet(123, Vec{0, 2000});
  EXPECT_EQ(get(123, {}), 2000);
  EXPECT_TRUE(log.has("1-configureSet: HIDL_SET_BRIGHTNESS: disp_id 0, brightness 2000"));
  panel->configureSet(123, Vec{5});
  EXPECT_TRUE(log.has("1-configureSet: cmd(123) arguments error."));

  panel->configureSet(911, Vec{3, 4});
  EXPECT_EQ(PanelCorvaneBase::sDebug, 3u);
  EXPECT_TRUE(log.has("1-configureSet: cmd(911) arguments eror."));
  panel->configureSet(911, Vec{0x12});
  EXPECT_EQ(get(911, {}), 0x12);
}

TEST_F(ControlInterfaceTest, EmptyArgumentListsAreRefused) {
  for (int cmd : {123, 191, 518, 668, 919}) {
    log.clear();
    panel->configureSet(cmd, Vec{});
    EXPECT_EQ(log.countContaining("arguments er"), 1) << cmd;
  }
  EXPECT_EQ(PanelCorvaneBase::sDEStatus, -1);
  EXPECT_EQ(PanelCorvaneBase::sCFGMode, -1);
  EXPECT_EQ(get(518, {}), -999);
  EXPECT_TRUE(log.has("1-configureGet: type(518) arguments error."));
}

TEST_F(ControlInterfaceTest, FodForcesAllOffAndCarriesIntoTheHookCommand) {
  panel->configureSet(919, Vec{0, 1});
  EXPECT_TRUE(panel->fodOn());
  EXPECT_EQ(PanelCorvaneBase::sCFGMode, 100);
  EXPECT_TRUE(PanelCorvaneBase::sNeedUpdate);
  EXPECT_TRUE(log.has("1-configureSet: cmd(919) arguments eror."));
  EXPECT_FALSE(PanelCorvaneBase::sIsLut3dHook);
  EXPECT_EQ(get(919, {}), 1);

  panel->SetScreenColorMode(3);
  EXPECT_EQ(PanelCorvaneBase::sCFGMode, 100);
  EXPECT_TRUE(log.has("1-SetScreenColorMode: fod on!"));
  panel->configureSet(919, Vec{0, 0});
  EXPECT_EQ(PanelCorvaneBase::sCFGMode, -1);
  panel->configureSet(668, Vec{7});
  EXPECT_TRUE(PanelCorvaneBase::sIsLut3dHook);
}

TEST_F(ControlInterfaceTest, ScreenColorModesAndSetRanges) {
  struct Case {
    int mode, cfg, result;
  } cases[] = {{100, 100, 0}, {102, 100, 0}, {110, 100, 0}, {101, -1, 0},
               {105, 105, 0}, {3, 3, 0},     {9999, 3, 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(panel->SetScreenColorMode(c.mode), c.result) << c.mode;
    EXPECT_EQ(PanelCorvaneBase::sCFGMode, c.cfg) << c.mode;
  }
  EXPECT_TRUE(log.has("1-SetScreenColorMode: ignore 101"));
  PanelCorvaneBase::sIsByPass = true;
  EXPECT_EQ(panel->SetScreenColorMode(9999), -1);

  int before = refreshes();
  EXPECT_EQ(panel->set(30050), 0);
  EXPECT_EQ(PanelCorvaneBase::sBrightness, 50u);
  EXPECT_EQ(refreshes(), before + 1);
  EXPECT_EQ(panel->set(20006), 0);
  EXPECT_EQ(PanelCorvaneBase::sDebug, 6u);
  EXPECT_EQ(panel->set(10000), 0);
  EXPECT_FALSE(PanelCorvaneBase::sIsByPass);
  EXPECT_EQ(panel->set(10004), -2);
  EXPECT_EQ(panel->set(10003), 0);
  EXPECT_EQ(PanelCorvaneBase::sDEStatus, 1);
  EXPECT_EQ(panel->set(45000), 0);
  EXPECT_EQ(refreshes(), before + 6) << "every set() refreshes";
}

TEST_F(ControlInterfaceTest, QueriesAndUnsupportedCommands) {
  EXPECT_EQ(get(518, {0, 3}), -999) << "518 answers only for mode 104";
  EXPECT_EQ(get(518, {0, 104}), -1) << "no generation ran yet";
  EXPECT_EQ(get(200, {}), 0);
  EXPECT_EQ(get(4242, {1, 2}), -1);
  EXPECT_TRUE(log.has("1-configureGet: value = 2 "));

  panel->configureSet(105, Vec{8, 9});
  EXPECT_TRUE(log.has("1-configureSet: command = 105 is not supported"));
  EXPECT_TRUE(log.has("1-configureSet: value = 9 "));
  panel->configureSet(991, Vec{});
  EXPECT_TRUE(log.has("1-configureSet: D: 27.971588, 0.000000, 99.416695"));
  panel->configureSet(110, Vec{});
  EXPECT_TRUE(log.has("1-configureSet: sIsCMDebugOn:0"));
  EXPECT_TRUE(log.has("1-dump: " __DATE__ " " __TIME__) || log.countContaining("1-dump: ") == 1);
}

}  // namespace
