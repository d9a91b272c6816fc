#include <gtest/gtest.h>

#include <cstring>

#include "core/PanelCorvane.h"
#include "tests/core/CoreFixture.h"

using postblend::PanelCorvane;
using B = postblend::PanelCorvaneBase;

namespace {

// The shared state as the process found it, read before any test (or reset) touched it.
const std::string kAtStart =
    std::to_string(B::sDebug.load()) + " " + std::to_string(B::sCFGMode.load()) + " " +
    std::to_string(B::sDEStatus.load()) + " " + std::to_string(B::sIsByPass.load()) + " " +
    std::to_string(B::sNeedUpdate || B::sIsPanelCalibrationOn || B::sBrightness != 0 ||
                   B::sProp.load() != nullptr);

class LifecycleTest : public pctest::CoreTest {};

TEST_F(LifecycleTest, SharedStateAndANewObjectStartAtTheirDefaults) {
  EXPECT_EQ(kAtStart, "1 -1 -1 1 0") << "sDebug, sCFGMode, sDEStatus, bypass on, the rest off";
  PanelCorvane* fresh = make();
  fresh->refresh();  // never initialised: no queue, nothing is sent
  const uint32_t black[3] = {0, 0, 0};
  EXPECT_EQ(std::memcmp(fresh->mRefColors[8], black, sizeof(black)), 0);
}

TEST_F(LifecycleTest, InitStartsTheWorkerAndDeInitStopsIt) {
  PanelCorvane* p = running();
  EXPECT_TRUE(log.has("1-Init: primary DONE(0)! logl:1"));
  ASSERT_TRUE(pctest::settle());

  // The plugin's delay is in milliseconds, the looper's in nanoseconds.
  p->queue()->sendMessageDelayed(30, 7);
  const auto pending = p->queue()->looper()->pendingMessages();
  ASSERT_EQ(pending.size(), 1u);
  EXPECT_EQ(pending[0].what, 7);
  EXPECT_EQ(pending[0].uptime - pending[0].sentAt, 30000000);

  log.clear();
  p->DeInit();
  const std::string all = log.dump();  // one wake-up message, then the loop ends
  EXPECT_EQ(log.count("1-onMessageReceived: unsupport msg!") + log.count("1-threadLoop: EXIT!"), 2);
  EXPECT_LT(all.find("1-onMessageReceived: unsupport msg!"), all.find("1-threadLoop: EXIT!"));
  EXPECT_TRUE(log.has("1-DeInit: DeInit done!"));
  EXPECT_EQ(B::sProp.load(), nullptr);

  // A second DeInit only releases the (already released) property file.
  log.clear();
  EXPECT_EQ(p->DeInit(), 0);
  EXPECT_FALSE(log.has("1-DeInit: DeInit done!"));
  postblend::ScPayload payload;
  EXPECT_EQ(p->GetProperty(&payload), 0);
  EXPECT_TRUE(log.has("1-GetProperty: not init."));

  // The object may be initialised again: the property file is read again, a worker started.
  log.clear();
  EXPECT_EQ(p->Init("primary"), 0);
  EXPECT_NE(B::sProp.load(), nullptr);
  EXPECT_TRUE(log.has("1-Init: primary DONE(0)! logl:1"));
  EXPECT_EQ(p->modeList().list.size(), 2u) << "every Init appends the standard mode";
}

TEST_F(LifecycleTest, PanelRegistryTakesTheFirstObjectOfAnIndexUntilItIsDestroyed) {
  writeProps("other=50\nsecond=150\n");
  PanelCorvane* gone = new PanelCorvane();
  PanelCorvane* keeper = make();
  gone->Init("primary");
  make()->Init("other");  // index 0 too: warned about, not registered
  keeper->Init("second");
  EXPECT_EQ(B::sPrimaryPanel.load(), static_cast<B*>(gone));
  EXPECT_EQ(B::sSecondaryPanel.load(), static_cast<B*>(keeper));
  EXPECT_EQ(keeper->mPanelIndex, 1u);
  EXPECT_EQ(log.count("1-Init: warning: reinit panel, cfg error!"), 1);

  gone->DeInit();
  delete gone;
  EXPECT_EQ(B::sPrimaryPanel.load(), nullptr);
  // Commands that reach both panels through the registry now find only the one that lives.
  keeper->configureSet(110, PanelCorvane::hidl_vec_i32{});
  keeper->configureSet(111, PanelCorvane::hidl_vec_i32{});
  B::sCurrentPanel = 0;
  EXPECT_EQ(keeper->SetScreenColorMode(104), 0);
  PanelCorvane* next = make();  // the slot is free again for the next primary object
  next->Init("primary");
  EXPECT_EQ(B::sPrimaryPanel.load(), static_cast<B*>(next));
}

}  // namespace
