// The storm: frames on both panels at changing brightness, HIDL and AIDL regenerations of the
// same panel at once, the secondary panel folding and unfolding (DeInit/Init) while AIDL and
// HIDL commands reach it, DeInit during a regeneration, and a panel's first frame while the
// other panel's DeInit releases the property file. Every table a frame receives must be one the
// panel can legitimately have at that moment, and the cache files left at the end must equal a
// clean generation byte for byte.
//
// PC_STRESS_ROUNDS (frames and commands per thread) and PC_STRESS_CYCLES (secondary folds) size
// it; the defaults keep a sanitizer run of the suite short.
#include <gtest/gtest.h>

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
  std::atomic<int> badFrames{0};
  std::atomic<int> tablesSeen{0};
  std::atomic<bool> folding{true};
  std::atomic<int> binders{2};  // frames go on until the binder threads are through

  std::vector<std::thread> threads;
  threads.emplace_back([&] {  // the colour manager's thread of the primary panel
    pctest::FrameSender frames;
    for (int i = 0; i < rounds || binders > 0; ++i) {
      pctest::setBrightnessFraction(primary, fractionFor(level(i / 3)));
      bool needs = false;
      ScPayload q;
      q.prop = 2;
      q.len = 1;
      q.payload = reinterpret_cast<uintptr_t>(&needs);
      primary->GetProperty(&q);
      if (i % 50 == 0) PanelCorvaneBE::resetAssetSwitches();  // a first ordinary frame again
      if (!frames.send(primary, intents[i % 4], witness[0])) ++badFrames;
    }
    tablesSeen += frames.tablesSeen;
  });
  threads.emplace_back([&] {  // the secondary panel folds and unfolds, with frames between
    pctest::FrameSender frames;
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
      for (int i = 0; i < rounds / cycles; ++i) {
        if (!frames.send(secondary, intents[(i + c) % 4], witness[1])) ++badFrames;
      }
    }
    tablesSeen += frames.tablesSeen;
    folding = false;
  });
  threads.emplace_back([&] {  // HIDL binder thread
    for (int i = 0; i < rounds / 4 || folding; ++i) {
      switch (i % 6) {
        case 0:
          primary->configureSet(518, Vec{0, 104});
          break;  // regenerate the current panel
        case 1:
          primary->configureSet(518, Vec{0, 101});
          break;  // content chooses again
        case 2:
          primary->configureSet(123, Vec{0, static_cast<int>(level(i))});
          break;
        case 3:
          primary->configureGet(518, Vec{0, 104}, [](int32_t, const Vec&) {});
          break;
        case 4:
          primary->configureSet(111, Vec{});
          break;
        default:
          primary->configureGet(112, Vec{}, [](int32_t, const Vec&) {});
          break;
      }
    }
    --binders;
  });
  threads.emplace_back([&] {  // AIDL binder thread
    for (int i = 0; i < rounds / 4 || folding; ++i) {
      switch (i % 5) {
        case 0:
          aidlSet(0, 104);
          break;
        case 1:
          aidlSet(1, 30000 + static_cast<int>(level(i)));
          break;
        case 2:
          aidlSet(1, 104);
          break;
        case 3:
          aidlSet(1, 10002 + i % 2);
          break;
        default:
          aidlSet(0, 101);
          break;
      }
    }
    --binders;
  });
  for (auto& t : threads) t.join();

  EXPECT_EQ(badFrames, 0) << "of " << tablesSeen << " tables received";
  // Once the storm is over the primary panel serves its tables again.
  PanelCorvane::hidl_vec_i32 contentChooses{0, 101};
  primary->configureSet(518, contentChooses);
  pctest::FrameSender last;
  EXPECT_TRUE(last.send(primary, 256, witness[0]));
  EXPECT_EQ(last.tablesSeen, 1);
  EXPECT_EQ(cacheNow(0), cleanCache[0]);
  EXPECT_EQ(cacheNow(1), cleanCache[1]);
  EXPECT_TRUE(primary->initDone() && secondary->initDone());
}

}  // namespace
