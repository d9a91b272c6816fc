// One fault class each: what a control command sent while frames run, or while a panel comes
// and goes, may do to the tables, the property file and the worker's queue. Counts come from
// PC_STRESS_ROUNDS / PC_STRESS_CYCLES; what matters is that the sanitizers stay quiet and every
// table a frame or the cache file receives is one the panel can legitimately have.
#include <gtest/gtest.h>

#include <thread>

#include "tests/services/TwoPanelRig.h"

using postblend::PanelCorvane;
using postblend::PanelCorvaneBase;
using postblend::PanelCorvaneBE;
using postblend::PanelCorvaneFE;
using Vec = PanelCorvane::hidl_vec_i32;

namespace {

class ConcurrencyTest : public pctest::TwoPanelRig {
 protected:
  int rounds(int def) const { return pctest::envCount("PC_STRESS_ROUNDS", def); }
  int cycles(int def) const { return pctest::envCount("PC_STRESS_CYCLES", def); }
};

TEST_F(ConcurrencyTest, RegenerationNeverHandsAFrameAHalfWrittenTable) {
  const int n = rounds(40);
  std::atomic<bool> done{false};
  std::thread binder([&] {
    for (int i = 0; i < n; ++i) {
      primary->configureSet(518, Vec{0, 104});  // regenerate the current panel's tables
      primary->configureSet(518, Vec{0, 101});  // and let the content choose again
    }
    done = true;
  });
  pctest::FrameSender frames;
  int bad = 0;
  for (int i = 0; !done || i < 50; ++i) {
    pctest::setBrightnessFraction(primary, fractionFor(level(i)));
    if (!frames.send(primary, i % 2 ? 1 : 256, witness[0])) ++bad;
  }
  binder.join();
  EXPECT_EQ(bad, 0) << "of " << frames.tablesSeen << " tables received";
  EXPECT_EQ(cacheNow(0), cleanCache[0]);
}

TEST_F(ConcurrencyTest, TwoRegenerationsOfOnePanelLeaveAValidCache) {
  const int n = rounds(20);
  std::thread hidl([&] {
    for (int i = 0; i < n; ++i) primary->configureSet(518, Vec{0, 104});
  });
  std::thread aidlThread([&] {
    for (int i = 0; i < n; ++i) aidlSet(0, 104);
  });
  hidl.join();
  aidlThread.join();
  EXPECT_EQ(cacheNow(0), cleanCache[0]) << "a table saved with a valid check but wrong codes";
  EXPECT_TRUE(primary->tablesReady());
  EXPECT_EQ(log.count("1-generateCfgFile: generateCfgFile -1"), 0);
  // Each regeneration's lines stay together: its name line is followed by its own outcome.
  int open = 0, interleaved = 0;
  for (const auto& l : log.lines()) {
    if (l.tag == "PanelCorvane" && l.text == "1-generateCfgFile: PanelCorvane_primary") {
      interleaved += open;
      open = 1;
    } else if (l.text == "1-saveCfgToFile: PANEL(0) FW VERSION 943440") {
      open = 0;
    }
  }
  EXPECT_EQ(interleaved, 0) << "regenerations whose lines interleaved";
}

TEST_F(ConcurrencyTest, DeInitWaitsForARunningRegeneration) {
  const int n = rounds(20);
  std::atomic<int> started{0};
  std::thread binder([&] {
    for (int i = 0; i < n; ++i) {
      ++started;
      aidlSet(0, 104);
    }
  });
  while (started < n / 2) std::this_thread::yield();
  primary->DeInit();  // releases panel 0's table memory while regenerations keep coming
  binder.join();
  EXPECT_FALSE(primary->initDone());
  // Whatever was saved was saved whole.
  EXPECT_EQ(cacheNow(0), cleanCache[0]);
}

TEST_F(ConcurrencyTest, PropertyFileOutlivesItsReaders) {
  const int n = cycles(20);
  std::atomic<int> running{2};
  auto foldAndUnfold = [&](PanelCorvane* panel, const char* name) {
    for (int i = 0; i < n; ++i) {
      panel->DeInit();    // frees the property file, whoever else reads it
      panel->Init(name);  // looks its panel index up in it (or a new one)
    }
    --running;
  };
  PanelCorvane* third = make();
  std::thread secondaryFolds(foldAndUnfold, secondary, kSecondaryName);
  std::thread thirdFolds(foldAndUnfold, third, "PanelCorvane_third");
  std::thread binder([&] {  // generations read their 100-nit switch from the file
    while (running > 0) {
      PanelCorvaneFE::sIn100nits = -1;
      secondary->generateCfgFile();
    }
  });
  pctest::FrameSender frames;
  while (running > 0) {
    PanelCorvaneBE::resetAssetSwitches();  // the next ordinary frame reads them from the file
    frames.send(primary, 256, witness[0]);
  }
  secondaryFolds.join();
  thirdFolds.join();
  binder.join();
}

TEST_F(ConcurrencyTest, SendersNeverReachAQueueInitReplaces) {
  const int n = cycles(40);
  std::atomic<bool> done{false};
  std::thread binder([&] {
    for (int i = 0; !done; ++i) {
      aidlSet(1, 30000 + static_cast<int>(level(i)));  // reaches the secondary's queue
      secondary->IsPaneIdMatched();                    // and its backend
      primary->configureSet(111, Vec{});
    }
  });
  for (int i = 0; i < n; ++i) {
    secondary->DeInit();
    secondary->Init(kSecondaryName);
  }
  done = true;
  binder.join();
  EXPECT_TRUE(secondary->initDone());
}

}  // namespace
