// A render-intent operation end to end through ProcessOps, for an ordinary mode at a steady
// brightness: the per-frame cost the colour manager pays, alone and while a binder thread
// regenerates the panel's tables in a loop (where every frame must still find its table).
#include <benchmark/benchmark.h>
#include <pchost/host.h>
#include <pchost/services.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <thread>

#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "core/PanelCorvane.h"
#include "tools/lib/device/SyntheticDevice.h"

namespace {

using namespace postblend;

// The primary panel of the workbench's synthetic eight-table device, its tables ready. Shared
// by the benchmarks: a panel is initialised once per process.
struct RunningPanel {
  RunningPanel() {
    root = std::filesystem::temp_directory_path() / ("pc-bench-" + std::to_string(getpid()));
    std::string error;
    ready = pctool::writeSyntheticDevice(root.string(), {}, &error);
    std::filesystem::create_directories(root / "data/vendor/display");
    pchost::setRootOverride(root.c_str());
    pchost::setSleepScale(0);
    pchost::setLogEcho(getenv("PC_BENCH_LOG") != nullptr);
    Lut3DCacheManager::deInit(0);  // other benchmarks may have used panel 0
    Lut3DCacheManager::sNumOfLut3D[0] = 0;
    {
      // Other benchmarks may have left a property object with other switches behind.
      std::lock_guard<std::mutex> lock(PanelCorvaneBase::base_lock_);
      delete PanelCorvaneBase::sProp.exchange(nullptr);
    }
    panel.Init("PanelCorvane_primary");
    pchost::waitForIdleLoopers();  // the loading job has generated the tables
    ready = ready && panel.tablesReady();
  }
  ~RunningPanel() {
    panel.DeInit();
    pchost::clearServices();
    std::filesystem::remove_all(root);
  }
  std::filesystem::path root;
  PanelCorvane panel;
  bool ready = false;
};

RunningPanel& runningPanel() {
  static RunningPanel running;
  return running;
}

// One frame of sRGB content in the Nature intent (table 3), with the assets a device offers.
struct Frame {
  Frame() {
    input.color_mode.gamut = 1;
    input.color_mode.intent = 256;
    output.payload.emplace_back("PostBlendGamut", gamut);
    output.payload.emplace_back("PostBlendGC", std::make_shared<HwConfigPayload>());
    output.payload.emplace_back("PostBlendIGC", std::make_shared<HwConfigPayload>());
    output.payload.emplace_back("PostBlendPa", std::make_shared<HwConfigPayload>());
    in.len = sizeof(input);
    in.payload = reinterpret_cast<uintptr_t>(&input);
    out.payload = reinterpret_cast<uintptr_t>(&output);
  }
  // True when the frame's gamut record received a table.
  bool send(PanelCorvane& panel) {
    gamut->gamut_info.lut3d_id = kNone;
    panel.ProcessOps(kScModeRenderIntent, in, &out);
    return gamut->gamut_info.lut3d_id != kNone;
  }
  static constexpr uint32_t kNone = 0xFFFFFFFFu;
  ModeRenderInputParams input;
  HwConfigOutputParams output;
  std::shared_ptr<GamutConfig> gamut = std::make_shared<GamutConfig>();
  ScPayload in, out;
};

void BM_RenderIntentOp(benchmark::State& state) {
  RunningPanel& running = runningPanel();
  if (!running.ready) {
    state.SkipWithError("the panel's tables did not load");
    return;
  }
  Frame frame;
  for (auto _ : state) {
    frame.send(running.panel);
    benchmark::DoNotOptimize(frame.gamut->gamut_info.entries[4912].out[2]);
  }
}
BENCHMARK(BM_RenderIntentOp);

void BM_RenderIntentOpDuringRegeneration(benchmark::State& state) {
  RunningPanel& running = runningPanel();
  if (!running.ready) {
    state.SkipWithError("the panel's tables did not load");
    return;
  }
  std::atomic<bool> stop{false};
  std::atomic<int> regenerations{0};
  std::thread binder([&] {  // as set(104) from a binder thread, again and again
    while (!stop) {
      running.panel.generateCfgFile();
      ++regenerations;
    }
  });
  Frame frame;
  int64_t withoutTable = 0;
  for (auto _ : state) withoutTable += frame.send(running.panel) ? 0 : 1;
  stop = true;
  binder.join();
  state.counters["regenerations"] = regenerations.load();
  state.counters["frames_without_table"] = static_cast<double>(withoutTable);
}
BENCHMARK(BM_RenderIntentOpDuringRegeneration)->UseRealTime();

}  // namespace
