// A production lot per panel: writing a panel's tree, and verifying it (its eight tables
// generated in memory and judged). The command target is 1,000 panels written and verified in
// under 30 s on two cores, so a panel must stay well under 30 ms of one core.
#include <benchmark/benchmark.h>
#include <pchost/host.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

#include "tools/lib/lot/LotVerify.h"
#include "tools/lib/lot/ProductionLot.h"

namespace {

constexpr unsigned kPanels = 8;

// A throw-away folder, removed with the benchmark.
struct Scratch {
  Scratch() {
    path = (std::filesystem::temp_directory_path() / "pclot-XXXXXX").string();
    if (mkdtemp(&path[0]) == nullptr) path.clear();
  }
  ~Scratch() {
    std::error_code ec;
    if (!path.empty()) std::filesystem::remove_all(path, ec);
  }
  std::string path;
};

void BM_LotWritePanel(benchmark::State& state) {
  Scratch dir;
  const auto lot = pctool::planLot(kPanels, 1);
  std::string error;
  size_t round = 0;
  for (auto _ : state) {
    const std::string where = dir.path + "/r" + std::to_string(round++);
    if (!pctool::writeLot(where, lot, 1, error)) state.SkipWithError(error.c_str());
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kPanels));
}
BENCHMARK(BM_LotWritePanel)->Unit(benchmark::kMillisecond);

void BM_LotVerifyPanel(benchmark::State& state) {
  pchost::setLogEcho(getenv("PC_BENCH_LOG") != nullptr);
  Scratch dir;
  std::string error;
  if (!pctool::writeLot(dir.path, pctool::planLot(kPanels, 1), 1, error)) state.SkipWithError(error.c_str());
  std::vector<std::string> trees;
  if (!pctool::findLotTrees({dir.path}, trees, error)) state.SkipWithError(error.c_str());
  for (auto _ : state) {
    for (const auto& t : trees) benchmark::DoNotOptimize(pctool::verifyPanel(t, pctool::kDefaultMaxDe).modes.size());
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * trees.size()));
}
BENCHMARK(BM_LotVerifyPanel)->Unit(benchmark::kMillisecond);

}  // namespace
