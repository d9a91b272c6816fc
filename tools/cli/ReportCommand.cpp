// panelcorvane report: one PNG page per panel.
#include <pchost/host.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tools/cli/Command.h"
#include "tools/lib/calibration/Plausibility.h"
#include "tools/lib/common/CliArgs.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/device/DeviceFolder.h"
#include "tools/lib/report/Report.h"
#include "tools/lib/report/ReportPlan.h"
#include "tools/lib/tables/TableSource.h"

namespace pctool {
namespace {

const char kHelp[] =
    "usage: panelcorvane report DEVICE_DIR [-o OUTDIR] [--log FILE] [--node N]\n"
    "       panelcorvane report --odf FILE [--target NAME=FILE]... [--tables FILE] [--name NAME]\n"
    "                           [--node N] -o OUT.png\n"
    "\n"
    "Draws one PNG page per panel:\n"
    "  - the CIE 1931 xy diagram with every measurement set the tables use (_1_ and _2_, max\n"
    "    and 100-nit), each mode's target (coinciding targets share their line in turns and\n"
    "    say 'same as'), and a zoom on the white points;\n"
    "  - the grey ramp as effective gamma per level (measured sets against the targets), the\n"
    "    CIEDE2000 each table is predicted to leave per grey level, the luminances in cd/m2\n"
    "    and the targets' gamma-correction offsets;\n"
    "  - the 21 reference colours per table: the target colour beside what the panel shows\n"
    "    (the table's drive values through the panel model), with their CIEDE2000;\n"
    "  - one node's output across brightness 3500..8191 for each table pair, by the plugin's\n"
    "    Q12 interpolation (colour: the mode; dash: the channel).\n"
    "A mode has the same colour on every page.\n"
    "\n"
    "DEVICE_DIR is a device tree as `mkdevice` writes it: its panels are the display names of\n"
    "the property file. The optical data shown is the set the tables were made from, as the\n"
    "table cache's trailer says (local, golden, or golden although the identity matched); the\n"
    "reason is taken from the plugin's log: --log FILE, or the session.log beside DEVICE_DIR\n"
    "when `simulate` left one there. Pages go to OUTDIR (created when missing; default: the\n"
    "current folder) as report-<name>.png.\n"
    "\n"
    "  -o PATH              output folder (device tree) or PNG file (files)\n"
    "  --log FILE           the plugin's log of the session that made the tables\n"
    "  --odf FILE           optical data of the panel\n"
    "  --target NAME=FILE   a mode's target, repeatable (e.g. --target Vivid=panel_Vivid.txt);\n"
    "                       a cache's table is compared with the target of its mode's NAME\n"
    "  --tables FILE        a table cache, LUT text file or .cube\n"
    "  --name NAME          panel name on the page (default: the optical data's file name)\n"
    "  --node N             entry (0..4912) for the brightness plot (default: the one that moves most)\n"
    "\n"
    "Implausible optical data or targets are named in notes at the foot of the page. A tool\n"
    "built without cairo draws nothing and exits 1.\n";

int bad(const std::string& file, const std::string& why) {
  fprintf(stderr, "panelcorvane report: %s: %s\n", file.c_str(), why.c_str());
  return kBadInput;
}

int fromFiles(const ParsedArgs& a, PanelReport& rep) {
  std::string err;
  ReportOdf odf;
  odf.path = a.value("--odf");
  odf.set = fileName(odf.path);
  OdfCheck check;
  if (!readOdfFile(odf.path, odf.odf, check, err)) return bad(odf.path, err);
  if (!odfLengthWarning(check).empty()) rep.notes.push_back(odf.set + ": " + odfLengthWarning(check));
  for (const auto& f : checkOpticalData(odf.odf.values)) rep.notes.push_back(odf.set + ": " + f.line());
  rep.odfs.push_back(odf);
  rep.panelName = a.value("--name", odf.set);
  rep.displayName = rep.panelName;
  rep.sourceText = "optical data: " + odf.path;
  auto it = a.values.find("--target");
  if (it != a.values.end()) {
    for (const auto& pairArg : it->second) {
      size_t eq = pairArg.find('=');
      if (eq == std::string::npos || eq == 0) {
        fprintf(stderr, "panelcorvane report: --target wants NAME=FILE, not '%s'\n", pairArg.c_str());
        return kUsage;
      }
      ReportTarget t;
      t.mode = pairArg.substr(0, eq);
      const std::string path = pairArg.substr(eq + 1);
      t.path = path;
      if (!readTargetFile(path, t.target, t.count, err)) return bad(path, err);
      for (const auto& f : checkTarget(t.target, t.count)) rep.notes.push_back(fileName(path) + ": " + f.line());
      rep.targets.push_back(t);
    }
  }
  if (a.has("--tables")) {
    const std::string path = a.value("--tables");
    std::vector<LoadedTable> tables;
    if (!loadTables(path, tables, err)) return bad(path, err);
    rep.tablesText = std::string("tables: ") + kindName(tables[0].kind) + " " + path + ", " +
                     std::to_string(tables.size()) + (tables.size() == 1 ? " table" : " tables");
    for (size_t k = 0; k < tables.size(); ++k) {
      // A lone table is named by the mode of its lone target.
      const std::string lone = fileName(path) + (rep.targets.size() == 1 ? " (" + rep.targets[0].mode + ")" : "");
      ReportTable t{tables.size() > 1 ? cacheTableName(static_cast<uint32_t>(k)) : lone, tables[k].lut};
      t.odf = 0;
      // A lone table goes with a lone target; a cache's tables with their mode's target.
      const std::string mode = modeOfTable(t.name);
      for (size_t i = 0; i < rep.targets.size(); ++i)
        if (rep.targets[i].mode == mode || (tables.size() == 1 && rep.targets.size() == 1)) t.target = static_cast<int>(i);
      rep.tables.push_back(t);
    }
  }
  return kOk;
}

int fromDevice(const ParsedArgs& a, std::vector<std::pair<PanelReport, std::string>>& pages,
               std::vector<std::string>& unjudged) {
  const std::string& dir = a.positional[0];
  std::string err;
  std::error_code ec;
  if (!std::filesystem::is_directory(dir, ec))
    return bad(dir, std::filesystem::exists(dir, ec) ? "not a folder" : "no such folder");
  pchost::setLogEcho(false);  // the identity check logs as the plugin does; the pages are the output
  std::vector<TableJob> jobs;
  bool haveLog = false;
  std::string logPath = a.value("--log");
  if (logPath.empty()) {
    const std::string beside = parentFolder(dir.back() == '/' ? dir.substr(0, dir.size() - 1) : dir);
    logPath = (beside.empty() ? "." : beside) + "/session.log";
    std::string ignored;
    if (!checkInputFile(logPath, ignored)) logPath.clear();
  }
  if (!logPath.empty()) {
    std::vector<PluginLogLine> lines;
    if (!readPluginLog(logPath, lines, err)) return bad(logPath, err);
    jobs = tableJobs(lines);
    haveLog = true;
  }
  std::vector<PanelReport> reps;
  if (!collectDeviceReports(dir, reps, unjudged, err, haveLog ? &jobs : nullptr)) return bad(dir, err);
  for (auto& u : unjudged) u = dir + ": display " + u;
  const std::string outDir = a.value("-o", ".");
  if (!makeFolders(outDir, err)) return bad(outDir, err);
  for (auto& r : reps) {
    const std::string file = reportFileName(r);
    pages.emplace_back(std::move(r), outDir + "/" + file);
  }
  return kOk;
}

int run(const std::vector<std::string>& args) {
  ParsedArgs a;
  std::string err;
  if (!parseArgs(args, {"-o", "--odf", "--target", "--tables", "--name", "--node", "--log"}, {}, a, err)) {
    fprintf(stderr, "panelcorvane report: %s\n", err.c_str());
    return kUsage;
  }
  const bool files = a.has("--odf");
  if ((files && !a.positional.empty()) || (!files && a.positional.size() != 1) || (files && !a.has("-o"))) {
    fprintf(stderr, "panelcorvane report: give a DEVICE_DIR, or --odf FILE with -o OUT.png\n");
    return kUsage;
  }
  int node = -1;
  if (a.has("--node") && !parseIndex(a.value("--node"), 4913, node)) {
    fprintf(stderr, "panelcorvane report: --node wants 0..4912, not '%s'\n", a.value("--node").c_str());
    return kUsage;
  }
  if (!reportSupported()) {
    fprintf(stderr, "panelcorvane report: built without cairo (run scripts/install-deps.sh and build again)\n");
    return kBadInput;
  }

  std::vector<std::pair<PanelReport, std::string>> pages;
  std::vector<std::string> unjudged;  // displays of the tree that got no page, with the reason
  int rc = kOk;
  if (files) {
    PanelReport rep;
    if ((rc = fromFiles(a, rep)) != kOk) return rc;
    const std::string out = a.value("-o");
    if (!makeFolders(parentFolder(out), err)) return bad(parentFolder(out), err);
    pages.emplace_back(std::move(rep), out);
  } else if ((rc = fromDevice(a, pages, unjudged)) != kOk) {
    return rc;
  }
  int written = 0;
  for (auto& [rep, out] : pages) {
    rep.node = node;
    fprintf(stderr, "drawing %s: %zu targets, %zu tables\n", rep.panelName.c_str(), rep.targets.size(),
            rep.tables.size());
    for (const auto& n : rep.notes) fprintf(stderr, "  note: %s\n", n.c_str());
    if (!writeReportPng(rep, out, err)) return bad(out, err);
    printf("wrote %s\n", out.c_str());
    ++written;
  }
  printf("%d report page%s written\n", written, written == 1 ? "" : "s");
  fflush(stdout);
  for (const auto& u : unjudged) fprintf(stderr, "panelcorvane report: %s\n", u.c_str());
  return unjudged.empty() ? kOk : kBadInput;
}

static Registrar reg({"report", "PNG pages per panel: gamut, grey ramp, swatches, brightness", kHelp, run});

}  // namespace
}  // namespace pctool
