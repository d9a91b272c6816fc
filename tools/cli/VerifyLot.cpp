// `verify --lot DIR...`: a production lot's predicted colour error, panel by panel, with its
// yield, distribution and outliers (tools/lib/lot/LotVerify.h).
#include <pchost/host.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "tools/cli/Command.h"
#include "tools/cli/LotCommands.h"
#include "tools/lib/common/CliArgs.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/common/ProgressBar.h"
#include "tools/lib/lot/LotVerify.h"

namespace pctool {

const char kVerifyLotHelp[] =
    "\nusage: panelcorvane verify --lot DIR... [--max-de X] [--csv OUT] [--json OUT] [--png OUT] [-j N]\n"
    "\n"
    "With --lot, checks every device tree given: DIR itself when it is one (it has\n"
    "odm/etc/PanelCorvane/panelcorvane), else each of its sub-folders that is one, in name\n"
    "order. Each display's tables come from the tree's table cache when the plugin would take\n"
    "it, else they are generated in memory exactly as the plugin would generate them, from the\n"
    "local optical data when the identity stamp matches and every local file passes its CRC,\n"
    "else from the golden data. Each table is paired with its mode's target and the optical data\n"
    "it was made from (100-nit or full) and gets the predicted CIEDE2000 of the calibrated panel\n"
    "on the 21 reference colours and the grey ramp: mean, 95th percentile and maximum. A mode\n"
    "passes when its 95th percentile is at most X (--max-de, default 2.0): the one or two worst\n"
    "colours of a wide-gamut mode lie outside the panel's gamut. A panel passes when all of its\n"
    "modes do. Prints the yield, the distribution of the modes' 95th percentiles and the\n"
    "outliers (failing panels, and passing ones far above the lot). Each mode is judged on the\n"
    "panel's own measurements when its identity matches and the file passes its CRC, else on\n"
    "the golden data.\n"
    "\n"
    "  --max-de X   the pass limit of a mode's 95th-percentile predicted dE00 (default 2.0)\n"
    "  --csv OUT    one row per panel and mode (data source, cache or generated, figures, result)\n"
    "  --json OUT   the summary and every panel's figures\n"
    "  --png OUT    a summary page: the distribution and the lot's primaries on the xy diagram\n"
    "               (needs cairo: without it the command says so and exits 1)\n"
    "  -j N         panels checked at a time (default: one per hardware thread)\n"
    "\n"
    "Failing panels do not fail the command: it exits 0 and says the yield. It exits 1 when a\n"
    "DIR holds no device tree, a tree cannot be read or an output cannot be written.\n";

namespace {

int usage(const std::string& why) {
  fprintf(stderr, "panelcorvane verify: %s\n", why.c_str());
  return kUsage;
}

bool parseLimit(const std::string& s, double& out) {
  char* end = nullptr;
  out = std::strtod(s.c_str(), &end);
  return !s.empty() && *end == '\0' && std::isfinite(out) && out > 0 && out <= 100;
}

}  // namespace

int runVerifyLot(const std::vector<std::string>& args) {
  ParsedArgs a;
  std::string err;
  if (!parseArgs(args, {"--max-de", "--csv", "--json", "--png", "-j"}, {"--lot"}, a, err)) return usage(err);
  if (a.positional.empty()) return usage("--lot needs at least one DIR");
  double maxDe = kDefaultMaxDe;
  int jobs = 0;
  if (a.has("--max-de") && !parseLimit(a.value("--max-de"), maxDe))
    return usage("--max-de wants a dE00 above 0 and at most 100, not '" + a.value("--max-de") + "'");
  if (a.has("-j") && (!parseIndex(a.value("-j"), 257, jobs) || jobs == 0)) return usage("-j wants 1..256");
  if (a.has("--png") && !lotPageSupported()) {
    fprintf(stderr, "panelcorvane verify: %s: built without cairo: no summary page\n", a.value("--png").c_str());
    return kBadInput;
  }
  std::vector<std::string> trees;
  if (!findLotTrees(a.positional, trees, err)) {
    fprintf(stderr, "panelcorvane verify: %s\n", err.c_str());
    return kBadInput;
  }
  pchost::setLogEcho(false);  // the plugin's identity check logs; the figures are the output
  std::vector<LotPanelResult> results;
  {
    ProgressBar bar("verify", trees.size());
    results = verifyLot(trees, maxDe, static_cast<unsigned>(jobs), [&] { bar.tick(); });
  }
  const LotSummary summary = summariseLot(results, maxDe);
  fputs(lotSummaryText(summary).c_str(), stdout);

  int status = kOk;
  for (const auto& r : results) {
    if (r.error.empty()) continue;
    fprintf(stderr, "panelcorvane verify: %s\n", r.error.c_str());
    status = kBadInput;
  }
  const std::pair<const char*, std::string (*)(const std::vector<LotPanelResult>&, const LotSummary&)> texts[] = {
      {"--csv", [](const std::vector<LotPanelResult>& r, const LotSummary&) { return lotCsvText(r); }},
      {"--json", lotJsonText}};
  for (const auto& [option, render] : texts) {
    if (!a.has(option)) continue;
    if (!writeWholeFile(a.value(option), render(results, summary), err)) {
      fprintf(stderr, "panelcorvane verify: %s: %s\n", a.value(option).c_str(), err.c_str());
      status = kBadInput;
    }
  }
  if (a.has("--png") && !drawLotPage(a.value("--png"), results, summary, err)) {
    fprintf(stderr, "panelcorvane verify: %s: %s\n", a.value("--png").c_str(), err.c_str());
    status = kBadInput;
  }
  return status;
}

}  // namespace pctool
