// `odf print FILE`, `odf write OUT [MEASUREMENTS.txt | --ti3 FILE]`, `odf patches --ti1 OUT`.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>

#include "tools/cli/Command.h"
#include "tools/cli/OdfMeasurementFiles.h"
#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/calibration/OdfWriter.h"
#include "tools/lib/calibration/Plausibility.h"
#include "tools/lib/common/CliArgs.h"
#include "tools/lib/common/FileAccess.h"

namespace pctool {
namespace {

const char kHelp[] =
    "usage: panelcorvane odf print FILE\n"
    "       panelcorvane odf write OUT [MEASUREMENTS.txt]\n"
    "       panelcorvane odf write OUT --ti3 FILE\n"
    "       panelcorvane odf patches --ti1 OUT\n"
    "\n"
    "print: shows the measurements the plugin reads from an optical data file (XYZ and\n"
    "chromaticity of red, green, blue and white, the grey ramp with its exponent per level)\n"
    "and the checksum verdict with the stored and the computed value.\n"
    "\n"
    "write: builds a 510-byte optical data file with its checksum from measured values, read\n"
    "from MEASUREMENTS.txt or standard input, one item per line ('#' starts a comment):\n"
    "  red X Y Z | green X Y Z | blue X Y Z | white X Y Z\n"
    "  grey LEVEL Y        LEVEL one of 3584 3072 2560 2048 1536 1024 512 (all seven)\n"
    "  value INDEX NUMBER  raw float position 0..126, applied last\n"
    "With --ti3 the values come from a CGATS .ti3 of colorimeter readings (ArgyllCMS dispread,\n"
    "spotread, fakeread; its CTI3 table, else its first): each patch of 'odf patches' is the row\n"
    "whose RGB_R RGB_G RGB_B are within 0.5 % of its drive values (repeats are averaged), with\n"
    "XYZ from XYZ_X XYZ_Y XYZ_Z. With LUMINANCE_XYZ_CDM2 in the header (absolute readings, XYZ\n"
    "normalised to white Y = 100) the XYZ are scaled to cd/m2; without it they are taken as\n"
    "they are, with a warning. XYZ slightly below zero (within 0.2 % of white's Y) count as 0.\n"
    "\n"
    "patches: writes the patch set an optical data file holds as a CGATS .ti1 for dispread or\n"
    "fakeread: white, red, green, blue and grey levels 3584 .. 512, 12-bit level L driven at\n"
    "100 * L / 4095 %.\n"
    "\n"
    "print and write check that the data describes a panel that can exist, naming the field:\n"
    "  refused (print: exit 1 after the values; write: exit 1, nothing written): a value that\n"
    "    is not finite, a negative XYZ, a primary or white without luminance, a chromaticity\n"
    "    outside the spectral locus, coinciding or collinear primaries, a white outside their\n"
    "    triangle, a grey ramp that does not rise towards white;\n"
    "  warned about (stderr, exit 0): white luminance outside 1..10000 cd/m2, red + green +\n"
    "    blue luminance more than 10 % from white's, a grey exponent outside 1.5..3.2.\n";

std::string number(const char* f, double v) {
  if (!std::isfinite(v)) return "-";
  char buf[32];
  std::snprintf(buf, sizeof buf, f, v);
  return buf;
}

void printXyz(const char* label, const double* xyz) {
  const double sum = xyz[0] + xyz[1] + xyz[2];
  const bool chroma = sum > 0 && std::isfinite(sum);
  printf("%-6s X %10.4f  Y %10.4f  Z %10.4f   x %s  y %s\n", label, xyz[0], xyz[1], xyz[2],
         chroma ? number("%.4f", xyz[0] / sum).c_str() : "-",
         chroma ? number("%.4f", xyz[1] / sum).c_str() : "-");
}

// Prints the findings on stderr; true when none refuses the data.
bool report(const std::string& path, const std::vector<Finding>& findings) {
  for (const auto& f : findings)
    fprintf(stderr, "panelcorvane odf: %s: %s\n", path.c_str(), f.line().c_str());
  return !anyRefused(findings);
}

int print(const std::string& path) {
  OpticalDataFile odf;
  OdfCheck check;
  std::string error;
  // A CRC failure still prints the values, then refuses them below.
  if (!readOdfFile(path, odf, check, error) && !(check.whole && !check.crcOk())) {
    fprintf(stderr, "panelcorvane odf: %s: %s\n", path.c_str(), error.c_str());
    return kBadInput;
  }
  OdfValues values;
  std::copy(std::begin(odf.values), std::end(odf.values), values.v);
  const OdfMeasurements m = measurementsOf(values);
  printf("%s\n", path.c_str());
  printXyz("red", m.red);
  printXyz("green", m.green);
  printXyz("blue", m.blue);
  printXyz("white", m.white);
  printf("grey ramp (level, Y cd/m2, Y/white, exponent):\n");
  printf("  %4d %10.4f %8.5f\n", 4095, m.white[1], 1.0);
  const bool whiteKnown = m.white[1] > 0 && std::isfinite(m.white[1]);
  for (int k = 0; k < 7; ++k) {
    const double rel = whiteKnown ? m.greyY[k] / m.white[1] : NAN;
    const double e = rel > 0 ? std::log(rel) / std::log(kOdfGreyLevels[k] / 4095.0) : NAN;
    printf("  %4d %10.4f %8s %7s\n", kOdfGreyLevels[k], m.greyY[k], number("%.5f", rel).c_str(),
           number("%.4f", e).c_str());
  }
  const bool ok = check.crcOk();
  printf("crc: stored %#06x computed %#06x %s\n", check.stored, check.computed,
         ok ? "OK" : "MISMATCH");
  fflush(stdout);
  if (!ok) {
    fprintf(stderr, "panelcorvane odf: %s: checksum mismatch (stored %#06x, computed %#06x)\n",
            path.c_str(), check.stored, check.computed);
    return kBadInput;
  }
  return report(path, checkOpticalData(values.v)) ? kOk : kBadInput;
}

int write(const std::string& out, const std::string* textPath) {
  OdfValues values;
  std::string error;
  bool parsed;
  if (textPath != nullptr) {
    if (!checkInputFile(*textPath, error)) {
      fprintf(stderr, "panelcorvane odf: %s: %s\n", textPath->c_str(), error.c_str());
      return kBadInput;
    }
    std::ifstream in(*textPath);
    parsed = parseOdfText(in, *textPath, &values, &error);
  } else {
    parsed = parseOdfText(std::cin, "<stdin>", &values, &error);
  }
  if (!parsed) {
    fprintf(stderr, "panelcorvane odf: %s\n", error.c_str());
    return kBadInput;
  }
  if (!report(textPath ? *textPath : "<stdin>", checkOpticalData(values.v))) {
    fprintf(stderr, "panelcorvane odf: %s not written\n", out.c_str());
    return kBadInput;
  }
  if (!writeOdfFile(out, values, &error)) {
    fprintf(stderr, "panelcorvane odf: %s\n", error.c_str());
    return kBadInput;
  }
  return kOk;
}

int run(const std::vector<std::string>& all) {
  ParsedArgs a;
  std::string err;
  const bool parsed = parseArgs(all, {"--ti1", "--ti3"}, {}, a, err);
  const std::vector<std::string>& args = a.positional;
  const size_t options = a.values.size();
  if (parsed && options == 0 && args.size() == 2 && args[0] == "print") return print(args[1]);
  if (parsed && options == 1 && a.has("--ti1") && args.size() == 1 && args[0] == "patches")
    return writeOdfPatchesTi1(a.value("--ti1"));
  if (parsed && options == 1 && a.has("--ti3") && args.size() == 2 && args[0] == "write")
    return writeOdfFromTi3(args[1], a.value("--ti3"));
  if (parsed && options == 0 && (args.size() == 2 || args.size() == 3) && args[0] == "write")
    return write(args[1], args.size() == 3 ? &args[2] : nullptr);
  fprintf(stderr, "panelcorvane odf: expected 'print FILE', 'write OUT [MEASUREMENTS.txt | --ti3 FILE]' or "
          "'patches --ti1 OUT'\n");
  return kUsage;
}

Registrar reg({"odf", "print or write an optical data (.odf) file", kHelp, run});

}  // namespace
}  // namespace pctool
