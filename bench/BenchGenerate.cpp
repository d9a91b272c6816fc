// Table generation and cache load timings. Targets: a panel's eight tables with gamma
// correction under 30 ms, the load of a valid eight-table cache under 3 ms.
#include <benchmark/benchmark.h>
#include <pchost/host.h>
#include <stdlib.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "cache/Lut3DCacheManager.h"
#include "base/PanelCorvaneBase.h"
#include "frontend/PanelCorvaneFE.h"

namespace {

using postblend::lut3d_info;
using postblend::Lut3DCacheManager;
using postblend::PanelCorvaneBase;
using postblend::PanelCorvaneFE;

// An OLED-like panel: primaries adding up to a white of `whiteY`, grey ramp near 2.2.
PanelCorvaneBase::OpticalDataFile panel(double whiteY) {
  PanelCorvaneBase::OpticalDataFile odf{};
  const double xy[4][2] = {{0.684, 0.315}, {0.246, 0.712}, {0.140, 0.052}, {0.310, 0.326}};
  double col[4][3];
  for (int p = 0; p < 4; ++p)
    col[p][0] = xy[p][0] / xy[p][1], col[p][1] = 1, col[p][2] = (1 - xy[p][0] - xy[p][1]) / xy[p][1];
  auto det = [](const double* a, const double* b, const double* c) {
    return a[0] * (b[1] * c[2] - b[2] * c[1]) - b[0] * (a[1] * c[2] - a[2] * c[1]) +
           c[0] * (a[1] * b[2] - a[2] * b[1]);
  };
  const double d = det(col[0], col[1], col[2]);
  const double s[3] = {det(col[3], col[1], col[2]) / d, det(col[0], col[3], col[2]) / d,
                       det(col[0], col[1], col[3]) / d};
  const int at[4] = {106, 82, 118, 4};
  for (int p = 0; p < 4; ++p)
    for (int k = 0; k < 3; ++k)
      odf.values[at[p] + k] = (float)(col[p][k] * (p < 3 ? s[p] : 1.0) * whiteY);
  for (int k = 1; k <= 7; ++k)
    odf.values[5 + 6 * (8 - k)] = (float)(whiteY * std::pow(512.0 * k / 4095.0, 2.2 + 0.01 * k));
  return odf;
}

PanelCorvaneBase::TargetParm target(int mode) {
  PanelCorvaneBase::TargetParm t{};
  const float p3[8] = {0.68f, 0.32f, 0.265f, 0.69f, 0.15f, 0.06f, 0.3127f, 0.329f};
  const float srgb[8] = {0.64f, 0.33f, 0.30f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.329f};
  std::memcpy(t.values, mode % 2 ? srgb : p3, sizeof(p3));
  t.values[8] = t.values[15] = 1 / 2.2f;
  t.values[9] = 0.02f;
  t.values[12] = 0.01f;
  t.values[17] = -0.01f;
  return t;
}

struct GammaOn {
  GammaOn() {
    pchost::setLogEcho(getenv("PC_BENCH_LOG") != nullptr);
    PanelCorvaneBase::sDebug = 1;
    PanelCorvaneBase::sIsGammaCorrectionOn = true;
  }
};

void BM_GenerateOneTable(benchmark::State& state) {
  GammaOn on;
  PanelCorvaneBase owner;
  PanelCorvaneFE fe(&owner, 0);
  auto odf = panel(550);
  auto t = target(0);
  auto lut = std::make_unique<lut3d_info>();
  fe.initPreCalLut3D();
  for (auto _ : state) {
    fe.generateLut3D(odf, t, lut.get(), 1);
    benchmark::DoNotOptimize(lut->entries[100].out[0]);
  }
}
BENCHMARK(BM_GenerateOneTable)->Unit(benchmark::kMillisecond);

void BM_GenerateEightTables(benchmark::State& state) {
  GammaOn on;
  PanelCorvaneBase owner;
  PanelCorvaneFE fe(&owner, 0);
  PanelCorvaneBase::OpticalDataFile odf[2] = {panel(100), panel(550)};
  auto luts = std::make_unique<lut3d_info[]>(8);
  for (auto _ : state) {
    fe.initPreCalLut3D();
    for (int i = 0; i < 8; ++i) {
      auto t = target(i / 2);
      fe.generateLut3D(odf[i % 2], t, &luts[i], i);
    }
    benchmark::DoNotOptimize(luts[7].entries[100].out[0]);
  }
}
BENCHMARK(BM_GenerateEightTables)->Unit(benchmark::kMillisecond);

void BM_CacheLoad8(benchmark::State& state) {
  GammaOn on;
  std::string dir = (std::filesystem::temp_directory_path() / "pcbench-XXXXXX").string();
  if (mkdtemp(&dir[0]) == nullptr) {
    state.SkipWithError("no temporary folder");
    return;
  }
  pchost::setRootOverride(dir.c_str());
  std::filesystem::create_directories(dir + "/data/vendor/display");
  Lut3DCacheManager::init(0, 1);
  lut3d_info* luts = nullptr;
  const int n = Lut3DCacheManager::getLutArrayPointer(0, &luts);
  PanelCorvaneBase owner;
  PanelCorvaneFE fe(&owner, 0);
  auto odf = panel(550);
  fe.initPreCalLut3D();
  for (int i = 0; i < n; ++i) {
    auto t = target(i / 2);
    fe.generateLut3D(odf, t, &luts[i], i);
  }
  Lut3DCacheManager::sPCFGPanel[0].source = 0;
  Lut3DCacheManager::sPCFGPanel[0].panelId = 0;
  Lut3DCacheManager::sPCFGPanel[0].paramVersion = 3;
  Lut3DCacheManager::saveCfgToFile(0);
  const unsigned size = Lut3DCacheManager::fileSizeFor(n);
  for (auto _ : state) {
    if (Lut3DCacheManager::loadCacheFromFile(0, size, true, 3) != 0) {
      state.SkipWithError("cache rejected");
      break;
    }
  }
  Lut3DCacheManager::deInit(0);
  Lut3DCacheManager::sNumOfLut3D[0] = 0;  // the harness runs this function more than once
  pchost::setRootOverride(nullptr);
  std::filesystem::remove_all(dir);
}
BENCHMARK(BM_CacheLoad8)->Unit(benchmark::kMillisecond);

}  // namespace
