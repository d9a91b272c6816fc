// panelcorvane inspect: what a file is and what matters in it.
#include <cstdio>
#include <string>
#include <vector>

#include "tools/cli/Command.h"
#include "tools/lib/device/FileInfo.h"

namespace pctool {
namespace {

const char kHelp[] =
    "usage: panelcorvane inspect FILE\n"
    "\n"
    "Recognises the file and prints what matters:\n"
    "  optical data (.odf)  CRC verdict with both values, primaries and white (XYZ, xy), the\n"
    "                       grey ramp with its exponents\n"
    "  table cache          tables, trailer (source, panel, parameter version), checksum verdict\n"
    "                       with both values, the FWVersion the property file needs; per table\n"
    "                       its header, output ranges and the plugin's dE76 verdict\n"
    "  LUT text file, .cube the table's header, grid, output ranges and dE76 verdict\n"
    "  mode target          chromaticities, exponent, gamma-correction parameters\n"
    "\n"
    "Optical data and targets are checked for data that cannot exist, naming the field: such\n"
    "a file is refused (exit 1 after the description), e.g. a white without luminance, a\n"
    "chromaticity outside the spectral locus, coinciding primaries, a grey ramp that does not\n"
    "rise, a target exponent that decodes with a power outside 1..4. Implausible values\n"
    "(white outside 1..10000 cd/m2, a grey exponent outside 1.5..3.2, a target gamma outside\n"
    "1.6..3.0, ...) are listed as warnings and keep the status 0. A LUT text file must list\n"
    "its entries red fastest on the device grid; another order is refused.\n";

int run(const std::vector<std::string>& args) {
  if (args.size() != 1 || (args[0].size() > 1 && args[0][0] == '-')) {
    fprintf(stderr, "panelcorvane inspect: needs exactly one FILE\n%s", kHelp);
    return kUsage;
  }
  std::string text, error;
  bool ok = inspectFile(args[0], text, error);
  fputs(text.c_str(), stdout);
  if (!ok) {
    fflush(stdout);
    fprintf(stderr, "panelcorvane inspect: %s: %s\n", args[0].c_str(), error.c_str());
    return kBadInput;
  }
  return kOk;
}

static Registrar reg({"inspect", "tell what a file is (.odf, table cache, LUT text, .cube, target)", kHelp, run});

}  // namespace
}  // namespace pctool
