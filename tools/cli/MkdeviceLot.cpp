// `mkdevice --lot N DIR`: a synthetic production lot (tools/lib/lot/ProductionLot.h).
#include <cstdio>
#include <filesystem>

#include "tools/cli/Command.h"
#include "tools/cli/LotCommands.h"
#include "tools/lib/common/CliArgs.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/common/ParallelFor.h"
#include "tools/lib/common/ProgressBar.h"
#include "tools/lib/lot/ProductionLot.h"

namespace pctool {

const char kMkdeviceLotHelp[] =
    "\nusage: panelcorvane mkdevice --lot N DIR [--seed S] [--force] [-j N]\n"
    "\n"
    "With --lot, writes N one-display device trees DIR/panel-0001 ... (N up to 100000) of one\n"
    "panel type (golden data and targets drawn from S, default 1), each unit measured with its\n"
    "own seed, and DIR/lot.csv (panel, seed, fault, detail). About 2 % of the panels are\n"
    "faulty, at least one of each kind from 10 panels on: bad-crc (a local .odf with a flipped\n"
    "bit), mismatched-stamp (panel_id does not match the serial number), missing-local (a\n"
    "local .odf removed). DIR must be empty or missing; --force first removes lot.csv and the\n"
    "panel-* folders in it. -j N writes N panels at a time (default: one per hardware thread).\n";

namespace {

int usage(const std::string& why) {
  fprintf(stderr, "panelcorvane mkdevice: %s\n", why.c_str());
  return kUsage;
}

int fail(const std::string& what) {
  fprintf(stderr, "panelcorvane mkdevice: %s\n", what.c_str());
  return kBadInput;
}

// Removes an earlier lot: lot.csv and panel-* folders; anything else stays and is an error.
bool clearLot(const std::string& dir, size_t& removed, std::string& error) {
  namespace fs = std::filesystem;
  std::vector<std::string> names;
  if (!listFolder(dir, names, error)) return error = dir + ": " + error, false;
  for (const auto& name : names) {
    if (name != "lot.csv" && name.rfind("panel-", 0) != 0) continue;
    const fs::path p = fs::path(dir) / name;
    std::error_code ec;
    fs::remove_all(p, ec);
    if (ec) {
      error = p.string() + ": cannot remove: " + ec.message();
      return false;
    }
    ++removed;
  }
  return true;
}

}  // namespace

int runMkdeviceLot(const std::vector<std::string>& args) {
  ParsedArgs a;
  std::string err;
  if (!parseArgs(args, {"--lot", "--seed", "-j"}, {"--force"}, a, err)) return usage(err);
  if (a.positional.size() != 1) return usage(a.positional.empty() ? "DIR missing" : "only one DIR expected");
  int count = 0, seed = 1, jobs = 0;
  if (!parseIndex(a.value("--lot"), kMaxLotPanels + 1, count) || count == 0)
    return usage("--lot wants a panel count of 1.." + std::to_string(kMaxLotPanels));
  if (a.has("--seed") && !parseIndex(a.value("--seed"), 0x7FFFFFFF, seed)) return usage("--seed needs a number");
  if (a.has("-j") && (!parseIndex(a.value("-j"), 257, jobs) || jobs == 0)) return usage("-j wants 1..256");

  namespace fs = std::filesystem;
  const std::string& dir = a.positional[0];
  std::error_code ec;
  if (fs::exists(dir, ec) && !fs::is_directory(dir, ec)) return fail(dir + ": not a folder");
  if (fs::is_directory(dir, ec) && !fs::is_empty(dir, ec)) {
    if (!a.has("--force"))
      return fail(dir + ": not empty; --force replaces the lot in it (lot.csv and the panel-* folders)");
    size_t removed = 0;
    if (!clearLot(dir, removed, err)) return fail(err);
    printf("removed %zu entries of an earlier lot from %s\n", removed, dir.c_str());
  }
  const std::vector<LotPanel> lot = planLot(static_cast<unsigned>(count), static_cast<unsigned>(seed));
  ProgressBar bar("mkdevice", lot.size());
  if (!writeLot(dir, lot, static_cast<unsigned>(jobs), err, [&] { bar.tick(); })) return fail(err);
  bar.finish();
  size_t faulty = 0;
  for (const auto& p : lot) faulty += p.fault != LotFault::None ? 1 : 0;
  printf("%s: %zu panels, %zu faulty (see %s/lot.csv)\n", dir.c_str(), lot.size(), faulty, dir.c_str());
  return kOk;
}

}  // namespace pctool
