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
#include "tools/lib/verify/PanelProfile.h"

namespace pctool {
namespace {

const char kHelp[] =
    "usage: panelcorvane odf print FILE\n"
    "       panelcorvane odf write OUT [MEASUREMENTS.txt]\n"
    "       panelcorvane odf write OUT --ti3 FILE\n"
    "       panelcorvane odf patches --ti1 OUT\n"
    "       panelcorvane odf icc FILE OUT.icc\n"
    "\n"
    "print: shows the measurements the plugin reads from an optical data file (XYZ and\n"
    "chromaticity of red, green, blue and white, the grey ramp with its exponent per level)\n"
    "and the checksum verdict with the stored and the computed value. A file longer than 510\n"
    "bytes is warned about (the plugin reads its first 510), as is a float outside the\n"
    "measured fields that is not finite.\n"
    "\n"
    "write: builds a 510-byte optical data file with its checksum from measured values, read\n"
    "from MEASUREMENTS.txt or standard input, one item per line ('#' starts a comment):\n"
    "  red X Y Z | green X Y Z | blue X Y Z | white X Y Z\n"
    "  grey LEVEL Y        LEVEL one of 3584 3072 2560 2048 1536 1024 512 (all seven)\n"
    "  value INDEX NUMBER  raw float position 0..126, applied last\n"
    "Every number must round to a finite float, as the file stores it (not 5e39).\n"
    "With --ti3 the values come from the CTI3 table of a CGATS .ti3 of a display's readings\n"
    "(ArgyllCMS dispread, spotread, fakeread; a CTI1 of nominal values or a DEVICE_CLASS other\n"
    "than DISPLAY is refused). Every row must read a patch of 'odf patches' - its RGB_R RGB_G\n"
    "RGB_B the patch's drive values at the precision written - and every patch but the optional\n"
    "black and near-black ones needs a reading; repeats are averaged when they agree within\n"
    "1.0 dE00, else refused. XYZ from XYZ_X XYZ_Y XYZ_Z; with LUMINANCE_XYZ_CDM2 in the header\n"
    "(absolute readings, XYZ normalised to white Y = 100) they are scaled to cd/m2; without it\n"
    "they are taken as they are, with a warning. XYZ slightly below zero (within 0.2 % of\n"
    "white's Y) count as 0. Black, the contrast and the near-black exponents are printed: the\n"
    "file cannot hold them.\n"
    "\n"
    "patches: writes the patch set an optical data file holds as a CGATS .ti1 for dispread or\n"
    "fakeread: white, red, green, blue, grey levels 3584 .. 512, black and near-black levels\n"
    "256 128 64 (12-bit level L driven at 100 * L / 4095 %).\n"
    "\n"
    "icc: writes the panel's ICC display profile (version 2.4, matrix and tone curves, with\n"
    "Little CMS) from one measurement set: its primaries, white, luminance and the grey ramp\n"
    "through the panel model.\n"
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
  const std::string padded = odfLengthWarning(check);
  printf("%s%s\n", path.c_str(), padded.empty() ? "" : " (the first 510 bytes, as the plugin reads them)");
  if (!padded.empty()) fprintf(stderr, "panelcorvane odf: %s: %s\n", path.c_str(), padded.c_str());
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
    // An optical data file is no measurement text: re-stamping one (a padded one, say) would
    // carry bytes the plugin never reads.
    std::string head(4096, '\0');
    head.resize(static_cast<size_t>(in.read(&head[0], static_cast<std::streamsize>(head.size())).gcount()));
    if (head.find('\0') != std::string::npos) {
      fprintf(stderr, "panelcorvane odf: %s: binary data (an optical data file?), not measurement text; %s not written\n",
              textPath->c_str(), out.c_str());
      return kBadInput;
    }
    in.clear();
    in.seekg(0);
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

// The panel's display profile from one measurement set, through the panel model.
int writeIcc(const std::string& path, const std::string& out) {
  OpticalDataFile odf;
  OdfCheck check;
  std::string error;
  if (!readOdfFile(path, odf, check, error)) {
    fprintf(stderr, "panelcorvane odf: %s: %s\n", path.c_str(), error.c_str());
    return kBadInput;
  }
  if (!odfLengthWarning(check).empty())
    fprintf(stderr, "panelcorvane odf: %s: %s\n", path.c_str(), odfLengthWarning(check).c_str());
  if (!report(path, checkOpticalData(odf.values))) {
    fprintf(stderr, "panelcorvane odf: %s not written\n", out.c_str());
    return kBadInput;
  }
  const PanelModel panel(odf);
  for (const auto& n : panel.notes()) fprintf(stderr, "panelcorvane odf: %s: note: %s\n", path.c_str(), n.c_str());
  if (!writeIccProfile(out, panelProfile(panel, "panel: " + fileName(path)), error)) {
    fprintf(stderr, "panelcorvane odf: %s: %s\n", out.c_str(), error.c_str());
    return kBadInput;
  }
  printf("wrote %s: the panel of %s, white %.2f cd/m2\n", out.c_str(), path.c_str(), panel.whiteXyz().Y);
  return kOk;
}

int run(const std::vector<std::string>& all) {
  ParsedArgs a;
  std::string err;
  const bool parsed = parseArgs(all, {"--ti1", "--ti3"}, {}, a, err);
  const std::vector<std::string>& args = a.positional;
  const size_t options = a.values.size();
  if (parsed && options == 0 && args.size() == 2 && args[0] == "print") return print(args[1]);
  if (parsed && options == 0 && args.size() == 3 && args[0] == "icc") return writeIcc(args[1], args[2]);
  if (parsed && options == 1 && a.has("--ti1") && args.size() == 1 && args[0] == "patches")
    return writeOdfPatchesTi1(a.value("--ti1"));
  if (parsed && options == 1 && a.has("--ti3") && args.size() == 2 && args[0] == "write")
    return writeOdfFromTi3(args[1], a.value("--ti3"));
  if (parsed && options == 0 && (args.size() == 2 || args.size() == 3) && args[0] == "write")
    return write(args[1], args.size() == 3 ? &args[2] : nullptr);
  fprintf(stderr, "panelcorvane odf: expected 'print FILE', 'write OUT [MEASUREMENTS.txt | --ti3 FILE]', "
          "'patches --ti1 OUT' or 'icc FILE OUT.icc'\n");
  return kUsage;
}

Registrar reg({"odf", "print or write an optical data (.odf) file", kHelp, run});

}  // namespace
}  // namespace pctool
