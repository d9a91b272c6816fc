// `odf print FILE` and `odf write OUT [MEASUREMENTS.txt]`.
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>

#include "tools/cli/Command.h"
#include "tools/lib/OdfWriter.h"

namespace pctool {
namespace {

const char kHelp[] =
    "usage: panelcorvane odf print FILE\n"
    "       panelcorvane odf write OUT [MEASUREMENTS.txt]\n"
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
    "\n"
    "exit status: 0 ok, 1 unreadable, short or corrupt input file, 2 bad usage\n";

void printXyz(const char* label, const double* xyz) {
  const double sum = xyz[0] + xyz[1] + xyz[2];
  const double x = sum != 0 ? xyz[0] / sum : NAN, y = sum != 0 ? xyz[1] / sum : NAN;
  printf("%-6s X %10.4f  Y %10.4f  Z %10.4f   x %.4f  y %.4f\n", label, xyz[0], xyz[1], xyz[2], x, y);
}

int print(const std::string& path) {
  DecodedOdf odf;
  std::string error;
  if (!readOdfFile(path, &odf, &error)) {
    fprintf(stderr, "panelcorvane odf: %s\n", error.c_str());
    return kBadInput;
  }
  const OdfMeasurements m = measurementsOf(odf.values);
  printf("%s\n", path.c_str());
  printXyz("red", m.red);
  printXyz("green", m.green);
  printXyz("blue", m.blue);
  printXyz("white", m.white);
  printf("grey ramp (level, Y, Y/white, exponent):\n");
  printf("  %4d %10.4f %8.5f\n", 4095, m.white[1], 1.0);
  for (int k = 0; k < 7; ++k) {
    const double rel = m.greyY[k] / m.white[1];
    printf("  %4d %10.4f %8.5f %7.4f\n", kOdfGreyLevels[k], m.greyY[k], rel,
           std::log(rel) / std::log(kOdfGreyLevels[k] / 4095.0));
  }
  const bool ok = odf.crcOk();
  printf("crc: stored %#06x computed %#06x %s\n", odf.storedCrc, odf.computedCrc,
         ok ? "OK" : "MISMATCH");
  if (ok) return kOk;
  fprintf(stderr, "panelcorvane odf: %s: checksum mismatch (stored %#06x, computed %#06x)\n",
          path.c_str(), odf.storedCrc, odf.computedCrc);
  return kBadInput;
}

int write(const std::string& out, const std::string* textPath) {
  OdfValues values;
  std::string error;
  bool parsed;
  if (textPath != nullptr) {
    std::ifstream in(*textPath);
    if (!in) {
      fprintf(stderr, "panelcorvane odf: %s: cannot open\n", textPath->c_str());
      return kBadInput;
    }
    parsed = parseOdfText(in, *textPath, &values, &error);
  } else {
    parsed = parseOdfText(std::cin, "<stdin>", &values, &error);
  }
  if (!parsed || !writeOdfFile(out, values, &error)) {
    fprintf(stderr, "panelcorvane odf: %s\n", error.c_str());
    return kBadInput;
  }
  return kOk;
}

int run(const std::vector<std::string>& args) {
  if (args.size() == 2 && args[0] == "print") return print(args[1]);
  if ((args.size() == 2 || args.size() == 3) && args[0] == "write")
    return write(args[1], args.size() == 3 ? &args[2] : nullptr);
  fprintf(stderr, "panelcorvane odf: expected 'print FILE' or 'write OUT [MEASUREMENTS.txt]'\n");
  return kUsage;
}

Registrar reg({"odf", "print or write an optical data (.odf) file", kHelp, run});

}  // namespace
}  // namespace pctool
