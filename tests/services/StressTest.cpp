// Binder threads, the worker and the colour manager's thread at once. Bounded in count; the
// point is that ThreadSanitizer stays quiet and nothing deadlocks or crashes.
#include <gtest/gtest.h>

#include <pchost/host.h>

#include <thread>

#include "core/PanelCorvane.h"
#include "services/MixLut3DAidl.h"
#include "tests/core/CoreFixture.h"
#include "tools/lib/SyntheticDevice.h"

using snapdragoncolor::GamutConfig;
using snapdragoncolor::HwConfigOutputParams;
using snapdragoncolor::ModeRenderInputParams;
using snapdragoncolor::PanelCorvane;
using snapdragoncolor::PanelCorvaneBase;
using snapdragoncolor::ScPayload;
using Vec = PanelCorvane::hidl_vec_i32;

namespace {

class StressTest : public pctest::CoreTest {
};

void frame(PanelCorvane* panel, int intent) {
  ModeRenderInputParams in;
  in.color_mode.gamut = 1;
  in.color_mode.intent = intent;
  HwConfigOutputParams out;
  out.payload.emplace_back("PostBlendGamut", std::make_shared<GamutConfig>());
  out.payload.emplace_back("PostBlendGC", std::make_shared<snapdragoncolor::HwConfigPayload>());
  ScPayload inP, outP;
  inP.payload = reinterpret_cast<uintptr_t>(&in);
  outP.payload = reinterpret_cast<uintptr_t>(&out);
  panel->ProcessOps(snapdragoncolor::kScModeRenderIntent, inP, &outP);
}

TEST_F(StressTest, ServicesFramesAndLifecycleTogether) {
  std::string error;
  ASSERT_TRUE(pctool::writeSyntheticDevice(root.path(), {}, &error)) << error;
  root.write("/data/vendor/display/.keep", "");
  auto display = addDisplayService();
  PanelCorvane* primary = make();
  PanelCorvane* secondary = make();
  primary->Init("PanelCorvane_primary");
  ASSERT_TRUE(pctest::waitFor([&] { return primary->tablesReady(); }));
  ASSERT_TRUE(pctest::waitFor([&] { return PanelCorvaneBase::sIsHidlRegitsered.load(); }));
  frame(primary, 256);  // the once-per-process property reads happen before the storm

  constexpr int kRounds = 300;
  std::atomic<bool> stop{false};
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kRounds && !stop; ++i) {
        switch ((i + t) % 6) {
          case 0: primary->configureSet(123, Vec{0, 3500 + i}); break;
          case 1: primary->configureSet(518, Vec{0, i % 8}); break;
          case 2: primary->configureGet(101, Vec{}, [](int32_t, const Vec&) {}); break;
          case 3: primary->configureSet(911, Vec{1}); break;
          case 4: primary->set(30000 + i); break;
          default: {
            PanelCorvane::MixLut3DAidl aidl;
            int32_t r = 0;
            aidl.set(i % 3, 10002 + (i % 2), &r);
          }
        }
      }
    });
  }
  threads.emplace_back([&] {  // the colour manager's frames on the primary panel
    for (int i = 0; i < kRounds; ++i) {
      bool needs = false;
      ScPayload q;
      q.prop = 2;
      q.len = 1;
      q.payload = reinterpret_cast<uintptr_t>(&needs);
      primary->GetProperty(&q);
      double b = (i % 10) / 10.0;
      ScPayload bp;
      bp.prop = 769;
      bp.payload = reinterpret_cast<uintptr_t>(&b);
      primary->SetProperty(bp);
      frame(primary, (i % 2) ? 1 : 256);
    }
  });
  threads.emplace_back([&] {  // the secondary panel comes and goes
    for (int i = 0; i < 20; ++i) {
      secondary->Init("PanelCorvane_secondary");
      secondary->DeInit();
    }
  });
  for (auto& th : threads) th.join();
  stop = true;
  EXPECT_TRUE(primary->initDone());
  EXPECT_TRUE(primary->tablesReady());
}

}  // namespace
