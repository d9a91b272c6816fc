// `verify --lot DIR...`: a production lot's predicted colour error, panel by panel, with its
// yield, distribution and outliers (tools/lib/lot/LotVerify.h).
#include <pchost/host.h>

#include <cstdio>

#include "tools/cli/Command.h"
#include "tools/cli/LotCommands.h"
#include "tools/lib/common/CliArgs.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/common/ProgressBar.h"
#include "tools/lib/lot/LotPage.h"
#include "tools/lib/lot/LotVerify.h"

namespace pctool {

const char kVerifyLotHelp[] =
    "\nusage: panelcorvane verify --lot DIR... [--max-de X] [--xy-tolerance D] [--csv OUT] [--json OUT]\n"
    "                           [--png OUT] [-j N]\n"
    "\n"
    "With --lot, checks every panel of the lot: DIR itself when it is a device tree (it has\n"
    "odm/etc/PanelCorvane/panelcorvane), else every sub-folder of DIR (hidden ones aside) in name\n"
    "order; a sub-folder that is not a readable tree is listed as one that cannot be judged.\n"
    "Each display's tables come from the tree's table cache when the plugin would take it, else\n"
    "they are generated in memory exactly as the plugin would generate them, from the local\n"
    "optical data when the identity stamp matches and every local file passes its CRC, else\n"
    "from the golden data. Each table is paired with its mode's target and the optical data it\n"
    "was made from (100-nit or full) and gets the predicted CIEDE2000 of the calibrated panel on\n"
    "the 21 reference colours and the grey ramp: mean, 95th percentile and maximum, judged on\n"
    "the panel's own measurements when its identity matches and the file passes its CRC, else\n"
    "on the golden data. A mode passes when its 95th percentile is at most X (--max-de, default\n"
    "2.0): the one or two worst colours of a wide-gamut mode lie outside the panel's gamut.\n"
    "Each panel is in one class: pass (every mode passes), fail, not on its own optical data\n"
    "(its tables come from golden data: the reason is given, its figures say nothing of its\n"
    "calibration), or cannot be judged (named with the reason). The yield is the share of all\n"
    "panels that pass. Prints the classes, the distribution of the modes' 95th percentiles and\n"
    "the outliers (failing panels, and passing ones far above the lot).\n"
    "\n"
    "  --max-de X        the pass limit of a mode's 95th-percentile predicted dE00 (default 2.0)\n"
    "  --xy-tolerance D  drawn on the page around the golden primaries and white (default 0.005)\n"
    "  --csv OUT         one row per panel and mode (class, data source, cache or generated,\n"
    "                    figures, result, note)\n"
    "  --json OUT        the summary and one record per panel\n"
    "  --png OUT         a summary page: the distribution and the lot's primaries on the xy\n"
    "                    diagram (needs cairo: without it the command says so and exits 1)\n"
    "  -j N              panels checked at a time (default: one per hardware thread)\n"
    "\n"
    "Failing panels do not fail the command: it exits 0 and says the yield. It exits 1 when a\n"
    "DIR holds no device tree, a panel cannot be judged or an output cannot be written.\n";

namespace {

int usage(const std::string& why) {
  fprintf(stderr, "panelcorvane verify: %s\n", why.c_str());
  return kUsage;
}

bool parseLimit(const std::string& s, double top, double& out) {
  return parseNumber(s, out) && out > 0 && out <= top;
}

}  // namespace

int runVerifyLot(const std::vector<std::string>& args) {
  ParsedArgs a;
  std::string err;
  if (!parseArgs(args, {"--max-de", "--xy-tolerance", "--csv", "--json", "--png", "-j"}, {"--lot"}, a, err)) return usage(err);
  if (a.positional.empty()) return usage("--lot needs at least one DIR");
  double maxDe = kDefaultMaxDe, xyTolerance = kDefaultXyTolerance;
  int jobs = 0;
  if (a.has("--max-de") && !parseLimit(a.value("--max-de"), 100, maxDe))
    return usage("--max-de wants a dE00 above 0 and at most 100, not '" + a.value("--max-de") + "'");
  if (a.has("--xy-tolerance") && !parseLimit(a.value("--xy-tolerance"), 0.1, xyTolerance))
    return usage("--xy-tolerance wants an xy distance above 0 and at most 0.1, not '" + a.value("--xy-tolerance") + "'");
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
  const LotSummary summary = summariseLot(results, maxDe, xyTolerance);
  fputs(lotSummaryText(results, summary).c_str(), stdout);

  int status = kOk;
  for (const auto& r : results) {
    if (r.verdict() != LotVerdict::Unjudged) continue;
    fprintf(stderr, "panelcorvane verify: %s: cannot be judged: %s\n", r.name.c_str(), r.reason().c_str());
    status = kBadInput;
  }
  const std::pair<const char*, std::string (*)(const std::vector<LotPanelResult>&, const LotSummary&)> texts[] = {
      {"--csv", lotCsvText}, {"--json", lotJsonText}};
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
