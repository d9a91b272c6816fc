#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/PanelCorvane.h"
#include "tests/core/CoreFixture.h"

using postblend::PanelCorvane;
using postblend::PanelCorvaneBase;
using postblend::ScPayload;

namespace {

class LifecycleTest : public pctest::CoreTest {};

TEST_F(LifecycleTest, SharedStateStartsAtItsDefaults) {
  EXPECT_EQ(PanelCorvaneBase::sDebug, 1u);
  EXPECT_EQ(PanelCorvaneBase::sCFGMode, -1);
  EXPECT_EQ(PanelCorvaneBase::sDEStatus, -1);
  EXPECT_TRUE(PanelCorvaneBase::sIsByPass);
  EXPECT_FALSE(PanelCorvaneBase::sIsPanelCalibrationOn || PanelCorvaneBase::sNeedUpdate ||
               PanelCorvaneBase::sIsHidlRegitsered);
  EXPECT_EQ(PanelCorvaneBase::sProp.load(), nullptr);
  PanelCorvane* p = make();
  EXPECT_STREQ(p->mName, "NULL");
  EXPECT_EQ(p->mPanelIndex, 0u);
  const uint32_t black[3] = {0, 0, 0};
  EXPECT_EQ(std::memcmp(p->mRefColors[8], black, sizeof(black)), 0);
  EXPECT_EQ(p->mRefColors[20][2], 128u);
}

TEST_F(LifecycleTest, WithoutPropertyFileInitBypassesAndRegistersHidlDirectly) {
  PanelCorvane* p = make();
  EXPECT_EQ(p->Init("primary"), 0);
  EXPECT_TRUE(PanelCorvaneBase::sIsByPass);
  EXPECT_TRUE(log.has("1-Init: bypass!"));
  EXPECT_TRUE(log.has("1-initHidlService: register hidl done!"));
  EXPECT_EQ(p->queue(), nullptr) << "no worker in bypass";
  EXPECT_STREQ(p->mName, "NULL") << "the name is not taken in bypass";
  ScPayload payload;
  EXPECT_EQ(p->GetProperty(&payload), 0);
}

TEST_F(LifecycleTest, InitStartsWorkerRegistersPanelAndDeInitStopsIt) {
  writeProps("LogLevel=7\n");
  PanelCorvane* p = make();
  p->Init("primary");
  EXPECT_FALSE(PanelCorvaneBase::sIsByPass);
  EXPECT_EQ(PanelCorvaneBase::sDebug, 1u) << "the first LogLevel line wins";
  EXPECT_EQ(PanelCorvaneBase::sPrimaryPanel.load(), static_cast<PanelCorvaneBase*>(p));
  EXPECT_TRUE(log.has("1-Init: init"));
  EXPECT_TRUE(log.has("1-Init: primary DONE(0)! logl:1"));
  EXPECT_EQ(p->modeList().list.size(), 1u);
  EXPECT_EQ(p->modeList().list[0].name, "standard");
  EXPECT_EQ(p->modeList().list[0].intent, 65534u);
  ASSERT_TRUE(pctest::waitFor([&] { return log.has("1-initHidlService: register hidl done!"); }));

  log.clear();
  p->DeInit();
  auto lines = log.lines();
  int unsupported = -1, exitLine = -1;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].text == "1-onMessageReceived: unsupport msg!") unsupported = static_cast<int>(i);
    if (lines[i].text == "1-threadLoop: EXIT!") exitLine = static_cast<int>(i);
  }
  EXPECT_EQ(log.count("1-onMessageReceived: unsupport msg!"), 1);
  EXPECT_GE(unsupported, 0);
  EXPECT_GT(exitLine, unsupported);
  EXPECT_TRUE(log.has("1-DeInit: DeInit done!"));
  EXPECT_EQ(PanelCorvaneBase::sProp.load(), nullptr);

  // A second DeInit only releases the (already released) property file.
  log.clear();
  EXPECT_EQ(p->DeInit(), 0);
  EXPECT_FALSE(log.has("1-DeInit: DeInit done!"));
  EXPECT_EQ(PanelCorvaneBase::sProp.load(), nullptr);
  ScPayload payload;
  EXPECT_EQ(p->GetProperty(&payload), 0);
  EXPECT_TRUE(log.has("1-GetProperty: not init."));
}

TEST_F(LifecycleTest, SecondObjectOnTakenIndexIsWarnedAbout) {
  writeProps("other=50\nsecond=150\n");
  PanelCorvane* a = make();
  PanelCorvane* b = make();
  PanelCorvane* c = make();
  a->Init("primary");
  b->Init("other");
  c->Init("second");
  EXPECT_EQ(PanelCorvaneBase::sPrimaryPanel.load(), static_cast<PanelCorvaneBase*>(a));
  EXPECT_EQ(PanelCorvaneBase::sSecondaryPanel.load(), static_cast<PanelCorvaneBase*>(c));
  EXPECT_EQ(c->mPanelIndex, 1u);
  EXPECT_EQ(log.count("1-Init: warning: reinit panel, cfg error!"), 1);
}

// Every object of panel index 0 starts the services on its own worker: they must be published
// once however the workers interleave (TSan saw two of them write the AIDL service at once).
TEST_F(LifecycleTest, ObjectsOfThePrimaryIndexPublishTheServicesOnce) {
  writeProps("a=10\nb=20\nc=30\n");
  const std::string names[4] = {"primary", "a", "b", "c"};
  for (int round = 0; round < 10; ++round) {
    std::vector<PanelCorvane*> objects;
    for (int i = 0; i < 4; ++i) objects.push_back(make());
    for (int i = 0; i < 4; ++i) objects[i]->Init(names[i]);
    ASSERT_TRUE(pctest::settle());
    EXPECT_EQ(log.count("1-initAidlService: AIDL:start"), 4) << "every object tries";
    EXPECT_EQ(log.count("1-initHidlService: register hidl done!"), 1) << "round " << round;
    EXPECT_EQ(log.count("1-initAidlService: AIDL:vendor.tarnu.hardware.display.MixLut3D.IMixLut3D/default OK!"), 1)
        << "round " << round;
    for (PanelCorvane* p : objects) p->DeInit();
    resetAidl();
    PanelCorvaneBase::sIsHidlRegitsered = false;
    log.clear();
  }
}

TEST_F(LifecycleTest, DestroyedObjectLeavesThePanelRegistry) {
  writeProps();
  PanelCorvane* keeper = make();
  PanelCorvane* gone = new PanelCorvane();
  gone->Init("primary");
  keeper->Init("secondary");
  ASSERT_EQ(PanelCorvaneBase::sPrimaryPanel.load(), static_cast<PanelCorvaneBase*>(gone));
  gone->DeInit();
  delete gone;
  EXPECT_EQ(PanelCorvaneBase::sPrimaryPanel.load(), nullptr);
  EXPECT_EQ(PanelCorvaneBase::sSecondaryPanel.load(), static_cast<PanelCorvaneBase*>(keeper));
  // Commands that reach both panels through the registry now find only the one that lives.
  keeper->configureSet(110, PanelCorvane::hidl_vec_i32{});
  keeper->configureSet(111, PanelCorvane::hidl_vec_i32{});
  PanelCorvaneBase::sCurrentPanel = 0;
  EXPECT_EQ(keeper->SetScreenColorMode(104), 0);

  // The slot is free again for the next primary object.
  PanelCorvane* next = make();
  next->Init("primary");
  EXPECT_EQ(PanelCorvaneBase::sPrimaryPanel.load(), static_cast<PanelCorvaneBase*>(next));
}

TEST_F(LifecycleTest, ManyInitDeInitCyclesNeitherLeakNorHang) {
  writeProps();
  PanelCorvane* p = make();
  for (int i = 0; i < 200; ++i) {
    ASSERT_EQ(p->Init("primary"), 0);
    ASSERT_EQ(p->DeInit(), 0);
  }
  EXPECT_EQ(log.count("1-threadLoop: EXIT!"), 200);
  EXPECT_EQ(p->modeList().list.size(), 200u) << "every Init appends the standard mode";
}

}  // namespace
