// The storm: frames on both panels at changing brightness, HIDL and AIDL regenerations of one
// panel at once, the secondary folding and unfolding (DeInit/Init) while commands reach its queue
// and backend, DeInit during a regeneration, a first frame while the other panel's DeInit
// releases the property file. Every table a frame receives must be one the panel may have, a
// regeneration's lines stay together, the caches left equal a clean generation byte for byte,
// and the sanitizers stay quiet, and once an object had a table no frame of it finds none
// because a job is replacing the tables (only a fold takes them away). PC_STRESS_ROUNDS (frames and commands per thread) and
// PC_STRESS_CYCLES (folds) size it; the defaults keep a sanitizer run short.
#include <gtest/gtest.h>

#include <cstdio>
#include <thread>

#include "tests/services/TwoPanelRig.h"

using postblend::Lut3DCacheManager;
using postblend::PanelCorvane;
using postblend::PanelCorvaneBE;
using postblend::ScPayload;
using Vec = PanelCorvane::hidl_vec_i32;

namespace {

class StormTest : public pctest::TwoPanelRig {};

TEST_F(StormTest, FramesCommandsAndFoldsTogether) {
  const int rounds = pctest::envCount("PC_STRESS_ROUNDS", 1500);
  const int cycles = pctest::envCount("PC_STRESS_CYCLES", 30);
  const int intents[] = {1, 256, 258, 303};
  std::atomic<int> frames{0}, badFrames{0}, tablesSeen{0}, notReady{0};
  std::atomic<bool> folding{true};
  std::atomic<int> binders{2};  // frames go on until the binder threads are through
  // `hadTable`: the object got a table since its last Init.
  auto send = [&](PanelCorvane* panel, int intent, bool& hadTable) {
    const int got = frame(panel, intent);
    ++frames;
    badFrames += got < 0 ? 1 : 0;
    tablesSeen += got > 0 ? 1 : 0;
    notReady += got == 0 && hadTable ? 1 : 0;
    hadTable = hadTable || got > 0;
  };

  std::vector<std::thread> threads;
  threads.emplace_back([&] {  // the colour manager's thread of the primary panel
    bool needs = false;
    ScPayload query = pctest::payloadFor(&needs, 2);
    bool hadTable = true;  // the rig started it with its tables
    for (int i = 0; i < rounds || binders > 0; ++i) {
      setLevel(primary, i / 3);
      primary->GetProperty(&query);
      if (i % 50 == 0) PanelCorvaneBE::resetAssetSwitches();  // a first ordinary frame again
      send(primary, intents[i % 4], hadTable);
    }
  });
  threads.emplace_back([&] {  // the secondary panel folds and unfolds, with frames between
    for (int c = 0; c < cycles; ++c) {
      secondary->DeInit();
      {
        // The table memory as a new process finds it, so that the next loading job allocates
        // and loads again and regenerations of this panel have real tables to work on.
        std::lock_guard<std::mutex> tables(Lut3DCacheManager::tablesLock(1));
        Lut3DCacheManager::sNumOfLut3D[1] = 0;
      }
      secondary->generateCfgFile();  // finds no memory: the panel's tables are not ready
      secondary->Init(kSecondaryName);
      bool hadTable = false;
      for (int i = 0; i < rounds / cycles; ++i) send(secondary, intents[(i + c) % 4], hadTable);
    }
    folding = false;
  });
  threads.emplace_back([&] {  // HIDL binder thread: regenerate the current panel, let the
                              // content choose again, set the brightness, ask the backends
    const std::pair<int, Vec> sets[] = {
        {518, {0, 104}}, {518, {0, 101}}, {123, {0, 7000}}, {111, {}}};
    for (int i = 0; i < rounds / 4 || folding; ++i) {
      if (i % 6 < 4) {
        primary->configureSet(sets[i % 6].first, sets[i % 6].second);
      } else {
        primary->configureGet(i % 6 == 4 ? 518 : 112, Vec{0, 104}, [](int32_t, const Vec&) {});
      }
    }
    --binders;
  });
  threads.emplace_back([&] {  // AIDL binder thread: the same through set(), to either panel
    const int sets[][2] = {{0, 104}, {1, 35120}, {1, 104}, {1, 10002}, {1, 10003}, {0, 101}};
    for (int i = 0, r; i < rounds / 4 || folding; ++i) aidl.set(sets[i % 6][0], sets[i % 6][1], &r);
    --binders;
  });
  for (auto& t : threads) t.join();

  EXPECT_EQ(badFrames, 0) << "of " << tablesSeen << " tables received";
  EXPECT_EQ(notReady, 0) << "frames without a table after their object had one";
  std::printf("storm: %d frames, %d with a table, %d without one after their object had one\n",
              frames.load(), tablesSeen.load(), notReady.load());
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
  EXPECT_EQ(interleaved, 0) << "regenerations of the primary panel whose lines interleaved";
  // Once the storm is over the primary panel serves its tables again.
  primary->configureSet(518, Vec{0, 101});
  EXPECT_EQ(frame(primary, 256), 1);
  EXPECT_EQ(cacheNow(0), cleanCache[0]) << "a table saved with a valid check but wrong codes";
  EXPECT_EQ(cacheNow(1), cleanCache[1]);
  EXPECT_TRUE(primary->initDone() && secondary->initDone());
  ASSERT_TRUE(pctest::settle());
  EXPECT_GT(display->refreshes, 0) << "mode changes reach the display service";
  EXPECT_EQ(display->calls, display->refreshes);
}

// Two panels fold at once: each DeInit frees the property file, whoever else reads it (the
// other's Init, a generation's 100-nit switch, a frame's asset switches).
TEST_F(StormTest, PropertyFileOutlivesItsReaders) {
  const int n = pctest::envCount("PC_STRESS_CYCLES", 20);
  std::atomic<int> running{2};
  auto foldAndUnfold = [&](PanelCorvane* panel, const char* name) {
    for (int i = 0; i < n; ++i) {
      panel->DeInit();
      panel->Init(name);
    }
    --running;
  };
  std::thread secondaryFolds(foldAndUnfold, secondary, kSecondaryName);
  std::thread thirdFolds(foldAndUnfold, make(), "PanelCorvane_third");
  std::thread binder([&] {
    while (running > 0) {
      postblend::PanelCorvaneFE::sIn100nits = -1;
      secondary->generateCfgFile();
    }
  });
  while (running > 0) {
    PanelCorvaneBE::resetAssetSwitches();  // the next ordinary frame reads them from the file
    frame(primary, 256);
  }
  secondaryFolds.join();
  thirdFolds.join();
  binder.join();
}

}  // namespace
