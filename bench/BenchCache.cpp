// Cost of the per-frame brightness recomputation of one table, against the plain copy of a
// table that the frame path does anyway.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>

#include "cache/Lut3DCacheManager.h"

using postblend::kLut3dEntries;
using postblend::lut3d_info;
using postblend::Lut3DCacheManager;

namespace {

// The secondary panel, so that benchmarks working on the primary one do not interfere.
constexpr unsigned kPanel = 1;

// Eight tables (the debug switch on) whose pairs differ, with their deltas taken. Once: the
// benchmark function runs several times and a panel is initialised once per process.
void preparePanel() {
  static bool prepared = false;
  if (prepared) return;
  prepared = true;
  Lut3DCacheManager::init(kPanel, 1);
  lut3d_info* luts = nullptr;
  const int n = Lut3DCacheManager::getLutArrayPointer(kPanel, &luts);
  for (int k = 0; k < n; ++k) {
    for (uint32_t i = 0; i < kLut3dEntries; ++i) {
      for (int c = 0; c < 3; ++c) {
        luts[k].entries[i].out[c] = (i * 7 + static_cast<uint32_t>(c * 131 + k * 600)) % 4096;
      }
    }
  }
  Lut3DCacheManager::calLut3dDelta(kPanel);
}

void BM_PlainCopy117928(benchmark::State& state) {
  std::unique_ptr<lut3d_info> src(new lut3d_info());
  std::unique_ptr<lut3d_info> dst(new lut3d_info());
  for (auto _ : state) {
    std::memcpy(dst.get(), src.get(), sizeof(lut3d_info));
    benchmark::DoNotOptimize(dst.get());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * sizeof(lut3d_info));
}
BENCHMARK(BM_PlainCopy117928);

void BM_CalLut3d(benchmark::State& state) {
  preparePanel();
  unsigned brightness = 3500;
  for (auto _ : state) {
    Lut3DCacheManager::calLut3d(kPanel, 3, brightness);
    brightness = brightness >= 8191 ? 3500 : brightness + 17;  // every call a new weight
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * sizeof(lut3d_info));
}
BENCHMARK(BM_CalLut3d);

}  // namespace

BENCHMARK_MAIN();
