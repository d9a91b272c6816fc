// panelcorvane report: one PNG page per panel.
#include <sys/stat.h>

#include <cctype>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "tools/cli/Command.h"
#include "tools/lib/CliArgs.h"
#include "tools/lib/DeviceFolder.h"
#include "tools/lib/Report.h"
#include "tools/lib/TableSource.h"

namespace pctool {
namespace {

const char kHelp[] =
    "usage: panelcorvane report DEVICE_DIR [-o OUTDIR]\n"
    "       panelcorvane report --odf FILE [--target NAME=FILE]... [--tables FILE] [--name NAME] -o OUT.png\n"
    "\n"
    "Draws one PNG page per panel: the CIE 1931 xy diagram with the measured primaries and white\n"
    "and every mode's target triangle; the measured grey ramp against the target curves; the 21\n"
    "reference colours before and after each table; and one node's output across brightness\n"
    "3500..8191 for each table pair, by the plugin's Q12 interpolation.\n"
    "\n"
    "DEVICE_DIR is a device tree as `mkdevice` writes it (panels are found by their golden\n"
    "<name>_1_max.odf; the local optical data is preferred; tables come from the panel's table\n"
    "cache when the plugin has written one). Pages go to OUTDIR (default: the current folder) as\n"
    "report-<name>.png.\n"
    "\n"
    "  -o PATH              output folder (device tree) or PNG file (files)\n"
    "  --odf FILE           optical data of the panel\n"
    "  --target NAME=FILE   a mode's target, repeatable (e.g. --target Vivid=panel_Vivid.txt)\n"
    "  --tables FILE        a table cache, LUT text file or .cube\n"
    "  --name NAME          panel name on the page (default: the optical data's file name)\n"
    "  --node N             entry (0..4912) for the brightness plot (default: the one that moves most)\n"
    "\n"
    "Exit status: 0 done, 1 an input file is unusable or the tool was built without cairo, 2 bad usage.\n";

int bad(const std::string& file, const std::string& why) {
  fprintf(stderr, "panelcorvane report: %s: %s\n", file.c_str(), why.c_str());
  return kBadInput;
}

std::string baseName(const std::string& p) {
  size_t s = p.find_last_of('/');
  return s == std::string::npos ? p : p.substr(s + 1);
}

std::string safeName(const std::string& s) {
  std::string o;
  for (char c : s) o += (isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_') ? c : '_';
  return o;
}

int fromFiles(const ParsedArgs& a, PanelReport& rep) {
  std::string err;
  const std::string odfPath = a.value("--odf");
  OdfCheck check;
  if (!readOdfFile(odfPath, rep.odf, check, err)) return bad(odfPath, err);
  rep.hasOdf = true;
  rep.odfLabel = odfPath;
  rep.panelName = a.value("--name", baseName(odfPath));
  auto it = a.values.find("--target");
  if (it != a.values.end()) {
    for (const auto& pairArg : it->second) {
      size_t eq = pairArg.find('=');
      if (eq == std::string::npos || eq == 0) {
        fprintf(stderr, "panelcorvane report: --target wants NAME=FILE, not '%s'\n", pairArg.c_str());
        return kUsage;
      }
      ReportTarget t;
      t.name = pairArg.substr(0, eq);
      int count = 0;
      if (!readTargetFile(pairArg.substr(eq + 1), t.target, count, err)) return bad(pairArg.substr(eq + 1), err);
      rep.targets.push_back(t);
    }
  }
  if (a.has("--tables")) {
    std::vector<LoadedTable> tables;
    if (!loadTables(a.value("--tables"), tables, err)) return bad(a.value("--tables"), err);
    for (size_t k = 0; k < tables.size(); ++k) {
      std::string name = tables.size() > 1 ? cacheTableName(static_cast<uint32_t>(k)) : baseName(a.value("--tables"));
      rep.tables.push_back({name, tables[k].lut});
    }
  }
  return kOk;
}

int run(const std::vector<std::string>& args) {
  ParsedArgs a;
  std::string err;
  if (!parseArgs(args, {"-o", "--odf", "--target", "--tables", "--name", "--node"}, {}, a, err)) {
    fprintf(stderr, "panelcorvane report: %s\n%s", err.c_str(), kHelp);
    return kUsage;
  }
  const bool files = a.has("--odf");
  if ((files && !a.positional.empty()) || (!files && a.positional.size() != 1) || (files && !a.has("-o"))) {
    fprintf(stderr, "panelcorvane report: give a DEVICE_DIR, or --odf FILE with -o OUT.png\n%s", kHelp);
    return kUsage;
  }
  int node = -1;
  if (a.has("--node") && !parseIndex(a.value("--node"), 4913, node)) {
    fprintf(stderr, "panelcorvane report: --node wants 0..4912, not '%s'\n", a.value("--node").c_str());
    return kUsage;
  }
  if (!reportSupported()) {
    fprintf(stderr, "panelcorvane report: built without cairo\n");
    return kBadInput;
  }

  std::vector<std::pair<PanelReport, std::string>> pages;
  if (files) {
    PanelReport rep;
    int rc = fromFiles(a, rep);
    if (rc != kOk) return rc;
    pages.emplace_back(std::move(rep), a.value("-o"));
  } else {
    const std::string& dir = a.positional[0];
    struct stat st;
    if (stat(dir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) return bad(dir, "not a folder");
    std::vector<PanelReport> reps;
    if (!collectDeviceReports(dir, reps, err)) return bad(dir, err);
    const std::string outDir = a.value("-o", ".");
    for (auto& r : reps) {
      std::string stem = r.panelName.substr(0, r.panelName.find(" (panel"));
      pages.emplace_back(std::move(r), outDir + "/report-" + safeName(stem) + ".png");
    }
  }
  int written = 0;
  for (auto& [rep, out] : pages) {
    rep.node = node;
    fprintf(stderr, "drawing %s: %zu targets, %zu tables\n", rep.panelName.c_str(), rep.targets.size(),
            rep.tables.size());
    for (const auto& n : rep.notes) fprintf(stderr, "  note: %s\n", n.c_str());
    if (!writeReportPng(rep, out, err)) {
      fprintf(stderr, "panelcorvane report: %s: %s\n", out.c_str(), err.c_str());
      return kUsage;
    }
    printf("wrote %s\n", out.c_str());
    ++written;
  }
  printf("%d report page%s written\n", written, written == 1 ? "" : "s");
  return kOk;
}

static Registrar reg({"report", "PNG pages per panel: gamut, grey ramp, swatches, brightness", kHelp, run});

}  // namespace
}  // namespace pctool
