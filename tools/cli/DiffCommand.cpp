// panelcorvane diff: what changed between two tables or two caches, in codes and in CIEDE2000.
#include <cstdio>
#include <string>
#include <vector>

#include "tools/cli/Command.h"
#include "tools/lib/common/CliArgs.h"
#include "tools/lib/tables/TableDiff.h"

namespace pctool {
namespace {

const char kHelp[] =
    "usage: panelcorvane diff A B [--table K] [--tolerance CODES] [--json]\n"
    "\n"
    "Compares two tables node by node. A and B are any tables: table caches (cofc.fw, cofc2.fw),\n"
    "LUT text files or .cube files (of any size: see export). Two caches are compared table i\n"
    "with table i; a different table count is a difference of its own. For each pair:\n"
    "  - per channel the largest and the mean absolute code difference and the count of nodes\n"
    "    that differ;\n"
    "  - the CIEDE2000 between the two outputs of each node (codes read as sRGB signals, D65):\n"
    "    mean, 95th percentile, maximum, and the ten worst nodes with their input and both\n"
    "    outputs.\n"
    "\n"
    "  --table K          compare only table K (0-based) of each side; a file of one table\n"
    "                    gives its one, so a cache's table can be held against a .cube\n"
    "  --tolerance CODES  code differences up to CODES (0..4095, default 0) count as equal\n"
    "  --json             JSON on stdout instead of text\n"
    "\n"
    "Exit 0 when every code difference is within the tolerance and the table counts agree, 1\n"
    "when they differ (one line on stderr says how) or a file cannot be read.\n";

int run(const std::vector<std::string>& args) {
  ParsedArgs a;
  std::string err;
  if (!parseArgs(args, {"--table", "--tolerance"}, {"--json"}, a, err) || a.positional.size() != 2) {
    fprintf(stderr, "panelcorvane diff: %s\n%s", err.empty() ? "needs two tables A and B" : err.c_str(), kHelp);
    return kUsage;
  }
  int index = -1, tolerance = 0;
  if (a.has("--table") && !parseIndex(a.value("--table"), 8, index)) {
    fprintf(stderr, "panelcorvane diff: --table wants 0..7, not '%s'\n", a.value("--table").c_str());
    return kUsage;
  }
  if (a.has("--tolerance") && !parseIndex(a.value("--tolerance"), 4096, tolerance)) {
    fprintf(stderr, "panelcorvane diff: --tolerance wants a code count 0..4095, not '%s'\n",
            a.value("--tolerance").c_str());
    return kUsage;
  }
  DiffReport report;
  if (!diffFiles(a.positional[0], a.positional[1], index, static_cast<uint32_t>(tolerance), report, err)) {
    fprintf(stderr, "panelcorvane diff: %s\n", err.c_str());
    return kBadInput;
  }
  fputs((a.has("--json") ? diffJson(report) : diffText(report)).c_str(), stdout);
  if (report.withinTolerance()) return kOk;
  fflush(stdout);
  fprintf(stderr, "panelcorvane diff: %s\n", report.verdict().c_str());
  return kBadInput;
}

static Registrar reg({"diff", "compare two tables or caches node by node (codes, CIEDE2000)", kHelp, run});

}  // namespace
}  // namespace pctool
