// panelcorvane verify: what a table does to colours, and how far the calibrated panel is
// predicted to land from its target.
#include <cstdio>
#include <string>
#include <vector>

#include "tools/cli/Command.h"
#include "tools/cli/LotCommands.h"
#include "tools/cli/VerifyMeasurementFiles.h"
#include "tools/lib/calibration/Plausibility.h"
#include "tools/lib/common/CliArgs.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/tables/TableSource.h"
#include "tools/lib/verify/Verify.h"
#include "tools/lib/lot/LotVerify.h"
#include "tools/lib/verify/PanelProfile.h"
#include "tools/lib/verify/VerifyPage.h"

namespace pctool {
namespace {

const char kHelp[] =
    "usage: panelcorvane verify TABLE [--table K] [--json] [--odf FILE --target FILE\n"
    "                              [--measured POST.ti3 [--chart CHART.ti1]] [--png OUT]\n"
    "                              [--max-de X] [--mode NAME] [--icc OUT.icc]]\n"
    "       panelcorvane verify --patches-ti1 OUT\n"
    "\n"
    "TABLE is a table cache (every table, or table K), a LUT text file or a .cube. Reports:\n"
    "  - the plugin's own dE76 check: histogram in steps of 10, share of entries below 50\n"
    "    (pass from 80 %), entries moved by more than 50;\n"
    "  - CIEDE2000 between each entry's input and output (codes read as sRGB signals, D65):\n"
    "    mean, 95th percentile, maximum and the ten worst nodes;\n"
    "  - with --odf and --target: the predicted CIEDE2000 of the calibrated panel against the\n"
    "    mode's target on the 21 reference colours and the grey ramp. The panel is modelled\n"
    "    from its measured primaries, white and grey ramp, the target from its chromaticities\n"
    "    and exponent; the table is applied trilinearly on the device grid. The error without\n"
    "    the table is shown beside it.\n"
    "\n"
    "  --table K      only table K (0-based) of a cache\n"
    "  --json         JSON on stdout instead of text\n"
    "  --odf FILE     the panel's optical data (.odf)\n"
    "  --target FILE  the mode's target (.txt)\n"
    "  --measured F   a CGATS .ti3 of the verification patches measured on the panel with\n"
    "                 the table applied: the measured CIEDE2000 against the target is shown\n"
    "                 beside the predicted one, with the white's luminance, CCT and duv, black,\n"
    "                 contrast and the gamma of each grey level. Every row must read a patch\n"
    "                 (its RGB the patch's at the precision written) and every patch but the\n"
    "                 near-black ones needs a reading; repeats are averaged within 1.0 dE00.\n"
    "                 XYZ are taken relative to the measured white.\n"
    "  --chart F      the readings are of your own chart, a CGATS .ti1 (any patches, one of\n"
    "                 them white): per patch, mean, 95th percentile, maximum and the worst ten\n"
    "  --png OUT      a page (PNG) with the predicted and, with --measured, the measured\n"
    "                 CIEDE2000 of each reference colour and grey level (needs cairo)\n"
    "  --max-de X     the pass limit the page draws (95th percentile dE00; default 2.0)\n"
    "  --mode NAME    the mode's name for the page, where the cache index or the target's\n"
    "                 file name do not tell it\n"
    "  --icc OUT      the calibrated panel's ICC profile: primaries, white, luminance and grey\n"
    "                 ramp as the table is predicted to make the panel show them (Little CMS)\n"
    "  --patches-ti1 OUT  writes those verification patches (the 21 reference colours and the\n"
    "                 grey ramp, 8-bit code C driven at 100 * C / 255 %) as a CGATS .ti1\n"
    "\n"
    "The figures themselves never fail the command. The optical data and the target must\n"
    "describe something that can exist: impossible data is refused (exit 1) naming the field -\n"
    "a value that is not finite, a negative XYZ, a primary or white without luminance, a\n"
    "chromaticity outside the spectral locus, coinciding or collinear primaries, a white\n"
    "outside their triangle, a grey ramp that does not rise, a target exponent that decodes\n"
    "with a power outside 1..4 (the file holds 1/gamma: 0.4545 for gamma 2.2). Implausible\n"
    "data (white outside 1..10000 cd/m2, R+G+B luminance 10 % off white, a grey exponent\n"
    "outside 1.5..3.2, a target gamma outside 1.6..3.0, an offset beyond +-0.5) is warned\n"
    "about on stderr. A LUT text file must list its entries red fastest on the device grid.\n";

int bad(const std::string& file, const std::string& why) {
  fprintf(stderr, "panelcorvane verify: %s: %s\n", file.c_str(), why.c_str());
  return kBadInput;
}

int run(const std::vector<std::string>& args) {
  for (const auto& arg : args)
    if (arg == "--lot") return runVerifyLot(args);
  ParsedArgs a;
  std::string err;
  if (parseArgs(args, {"--patches-ti1"}, {}, a, err) && a.has("--patches-ti1") && a.positional.empty())
    return writeVerifyPatchesTi1(a.value("--patches-ti1"));
  a = ParsedArgs{};
  err.clear();
  if (!parseArgs(args, {"--table", "--odf", "--target", "--measured", "--png", "--chart", "--max-de", "--mode", "--icc"},
                 {"--json"}, a, err) ||
      a.positional.size() != 1) {
    fprintf(stderr, "panelcorvane verify: %s\n%s", err.empty() ? "needs one TABLE" : err.c_str(), kHelp);
    return kUsage;
  }
  if (a.has("--odf") != a.has("--target")) {
    fprintf(stderr, "panelcorvane verify: --odf and --target go together\n");
    return kUsage;
  }
  if (a.has("--chart") && !a.has("--measured")) {
    fprintf(stderr, "panelcorvane verify: --chart needs --measured\n");
    return kUsage;
  }
  double limit = kDefaultMaxDe;
  if (a.has("--max-de") && !(parseNumber(a.value("--max-de"), limit) && limit > 0 && limit <= 100)) {
    fprintf(stderr, "panelcorvane verify: --max-de wants a dE00 above 0, not '%s'\n", a.value("--max-de").c_str());
    return kUsage;
  }
  for (const char* needsTarget : {"--measured", "--png", "--icc", "--mode", "--max-de"})
    if (a.has(needsTarget) && !a.has("--odf")) {
      fprintf(stderr, "panelcorvane verify: %s needs --odf and --target\n", needsTarget);
      return kUsage;
    }
  int index = -1;
  if (a.has("--table") && !parseIndex(a.value("--table"), 8, index)) {
    fprintf(stderr, "panelcorvane verify: --table wants 0..7, not '%s'\n", a.value("--table").c_str());
    return kUsage;
  }
  const std::string& path = a.positional[0];
  std::vector<LoadedTable> tables;
  if (!loadTables(path, tables, err)) return bad(path, err);
  if (index >= static_cast<int>(tables.size()))
    return bad(path, "no table " + std::to_string(index) + ": the file holds " + std::to_string(tables.size()));
  const bool predicting = a.has("--odf");
  if (predicting && index < 0 && tables.size() > 1) {
    fprintf(stderr, "panelcorvane verify: --odf/--target describe one mode: pick its table with --table K\n");
    return kUsage;
  }
  OpticalDataFile odf{};
  TargetParm target{};
  if (predicting) {
    OdfCheck check;
    if (!readOdfFile(a.value("--odf"), odf, check, err)) return bad(a.value("--odf"), err);
    if (!odfLengthWarning(check).empty())
      fprintf(stderr, "panelcorvane verify: %s: %s\n", a.value("--odf").c_str(), odfLengthWarning(check).c_str());
    int count = 0;
    if (!readTargetFile(a.value("--target"), target, count, err)) return bad(a.value("--target"), err);
    const std::pair<std::string, std::vector<Finding>> checked[2] = {
        {a.value("--odf"), checkOpticalData(odf.values)}, {a.value("--target"), checkTarget(target, count)}};
    for (const auto& [file, findings] : checked) {
      for (const auto& f : findings)
        if (!f.refused) fprintf(stderr, "panelcorvane verify: %s: %s\n", file.c_str(), f.line().c_str());
      if (anyRefused(findings)) return bad(file, firstRefusal(findings));
    }
  }

  MeasuredCheck measured;
  if (a.has("--measured") && !readMeasuredCheck(a.value("--measured"), a.value("--chart"), target, measured))
    return kBadInput;

  std::vector<VerifyResult> results;
  for (size_t k = 0; k < tables.size(); ++k) {
    if (index >= 0 && static_cast<size_t>(index) != k) continue;
    if (tables.size() > 1) fprintf(stderr, "verifying %s\n", tables[k].label.c_str());
    VerifyResult r;
    r.label = tables[k].label;
    r.notes = tables[k].notes;
    r.de76 = de76Report(*tables[k].lut);
    r.de2000 = de2000Stats(*tables[k].lut);
    if (predicting) {
      if (!predict(*tables[k].lut, odf, target, r.prediction, err))
        return bad(a.value("--odf") + " / " + a.value("--target"), err);
      r.hasPrediction = true;
      r.subject = describeSubject(tables[k], tables.size() > 1 ? static_cast<int>(k) : index, a.value("--target"),
                                  a.value("--odf"), a.value("--mode"));
      for (const auto& n : r.subject.notes) r.notes.push_back(n);
      const Predictor predictor(*tables[k].lut, odf, target);
      if (a.has("--measured")) {
        r.measured = measured;
        addPredicted(r.prediction, &r.measured, &predictor);
        r.hasMeasured = true;
      }
      if (a.has("--icc") &&
          !writeIccProfile(a.value("--icc"), calibratedProfile(predictor, "calibrated panel: " + r.subject.mode + " (" +
                                                                              fileName(a.value("--target")) + ")"),
                           err))
        return bad(a.value("--icc"), err);
    }
    results.push_back(std::move(r));
  }
  if (a.has("--png") && !drawVerifyPage(a.value("--png"), results.front(), limit, err))
    return bad(a.value("--png"), err);
  if (a.has("--json")) {
    fputs(toJson(results).c_str(), stdout);
  } else {
    for (size_t i = 0; i < results.size(); ++i) printf("%s%s", i ? "\n" : "", toText(results[i]).c_str());
    if (results.size() > 1) {
      int passed = 0;
      for (const auto& r : results) passed += r.de76.pass ? 1 : 0;
      printf("\nsummary: %d of %zu tables pass the dE76 check\n", passed, results.size());
    }
  }
  return kOk;
}

const std::string kFullHelp = std::string(kHelp) + kVerifyLotHelp;
static Registrar reg({"verify", "colour error of a table (dE76 check, CIEDE2000, predicted panel error), or of a lot",
                      kFullHelp.c_str(), run});

}  // namespace
}  // namespace pctool
