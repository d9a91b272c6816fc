// A render-intent operation end to end through ProcessOps, for an ordinary mode at a steady
// brightness: the per-frame cost the colour manager pays.
#include <benchmark/benchmark.h>
#include <pchost/host.h>
#include <pchost/services.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <thread>

#include "cache/Lut3DCacheManager.h"
#include "config/Prop.h"
#include "core/PanelCorvane.h"

namespace {

using namespace postblend;

// A running primary panel whose eight tables come from a cache written here.
struct RunningPanel {
  RunningPanel() {
    root = std::filesystem::temp_directory_path() / ("pc-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(root / "data/vendor/display");
    std::filesystem::create_directories(root / "odm/etc/PanelCorvane");
    std::ofstream(root / "odm/etc/PanelCorvane/panelcorvane")
        << "PanelCalibration=1\nCMDebug=1\nFWVersion=" << Lut3DCacheManager::fileSizeFor(8)
        << "\nbench=0\n";
    pchost::setRootOverride(root.c_str());
    pchost::setSleepScale(0);
    pchost::setLogEcho(getenv("PC_BENCH_LOG") != nullptr);
    Lut3DCacheManager::deInit(0);  // other benchmarks may have used panel 0
    Lut3DCacheManager::sNumOfLut3D[0] = 0;
    Lut3DCacheManager::init(0, 1);
    lut3d_info* luts = nullptr;
    Lut3DCacheManager::getLutArrayPointer(0, &luts);
    for (unsigned t = 0; t < 8; ++t) {
      luts[t] = {};
      luts[t].lut3d_id = t;
      luts[t].num_entries = kLut3dEntries;
    }
    Lut3DCacheManager::sPCFGPanel[0].source = 1;  // no identity files: unmatched
    Lut3DCacheManager::sPCFGPanel[0].panelId = 0;
    Lut3DCacheManager::sPCFGPanel[0].paramVersion = 0;
    Lut3DCacheManager::saveCfgToFile(0);
    Lut3DCacheManager::deInit(0);
    Lut3DCacheManager::sNumOfLut3D[0] = 0;
    {
      // Other benchmarks may have left a property object with other switches behind.
      std::lock_guard<std::mutex> lock(PanelCorvaneBase::base_lock_);
      delete PanelCorvaneBase::sProp.exchange(nullptr);
    }
    panel.Init("bench");
    auto until = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!panel.tablesReady() && std::chrono::steady_clock::now() < until) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    pchost::waitForIdleLoopers();  // the loading job has let go of the tables
  }
  ~RunningPanel() {
    panel.DeInit();
    pchost::clearServices();
    std::filesystem::remove_all(root);
  }
  std::filesystem::path root;
  PanelCorvane panel;
};

void BM_RenderIntentOp(benchmark::State& state) {
  static RunningPanel running;
  if (!running.panel.tablesReady()) {
    state.SkipWithError("the panel's tables did not load");
    return;
  }
  ModeRenderInputParams input;
  input.color_mode.gamut = 1;
  input.color_mode.intent = 256;  // Nature: table 3
  HwConfigOutputParams output;
  auto gamut = std::make_shared<GamutConfig>();
  output.payload.emplace_back("PostBlendGamut", gamut);
  output.payload.emplace_back("PostBlendGC", std::make_shared<HwConfigPayload>());
  output.payload.emplace_back("PostBlendIGC", std::make_shared<HwConfigPayload>());
  output.payload.emplace_back("PostBlendPa", std::make_shared<HwConfigPayload>());
  ScPayload in, out;
  in.len = sizeof(input);
  in.payload = reinterpret_cast<uintptr_t>(&input);
  out.payload = reinterpret_cast<uintptr_t>(&output);
  for (auto _ : state) {
    running.panel.ProcessOps(kScModeRenderIntent, in, &out);
    benchmark::DoNotOptimize(gamut->gamut_info.entries[4912].out[2]);
  }
}
BENCHMARK(BM_RenderIntentOp);

}  // namespace
