// panelcorvane export: any table to a .cube, or to the LUT text format the plugin installs.
#include <cstdio>
#include <string>
#include <vector>

#include "tools/cli/Command.h"
#include "tools/lib/common/CliArgs.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/tables/CubeFile.h"
#include "tools/lib/tables/TableSource.h"

namespace pctool {
namespace {

const char kHelp[] =
    "usage: panelcorvane export INPUT OUTPUT [--table K] [--title TEXT]\n"
    "\n"
    "Converts a 17x17x17 table. INPUT is any table: a table cache (cofc.fw, cofc2.fw), a LUT\n"
    "text file or a .cube (LUT_3D_SIZE 2..65 or LUT_1D_SIZE 2..65536; other sizes than 17 are\n"
    "resampled onto the device grid, tetrahedrally, and say so). OUTPUT ending in .cube gets an\n"
    "Adobe/Resolve .cube (outputs as code / 4095, red fastest); any other name gets the LUT\n"
    "text format that the plugin reads for its hook and debug tables, so a table tuned in a\n"
    "grading tool can be installed, e.g. as /odm/etc/PanelCorvane/3D-Lut_Center_sRGB.txt.\n"
    "\n"
    "A cache holds several tables: without --table every table is written, OUTPUT's name\n"
    "getting -K before its extension (out.cube -> out-0.cube, out-1.cube, ...).\n"
    "\n"
    "  --table K     export only table K (0-based) of a cache\n"
    "  --title TEXT  TITLE of the .cube (default: the source's name)\n"
    "\n"
    "A LUT text file must list its entries red fastest, on the device grid (entry n = 289 b +\n"
    "17 g + r has inputs 256 r, 256 g, 256 b, level 16 being 4095); a file in another order is\n"
    "refused with its first wrong entry.\n";

bool endsWith(const std::string& s, const std::string& tail) {
  return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

std::string numbered(const std::string& path, size_t k) {
  size_t slash = path.find_last_of('/');
  size_t dot = path.find_last_of('.');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return path + "-" + std::to_string(k);
  return path.substr(0, dot) + "-" + std::to_string(k) + path.substr(dot);
}

int run(const std::vector<std::string>& args) {
  ParsedArgs a;
  std::string err;
  if (!parseArgs(args, {"--table", "--title"}, {}, a, err) || a.positional.size() != 2) {
    fprintf(stderr, "panelcorvane export: %s\n%s", err.empty() ? "needs INPUT and OUTPUT" : err.c_str(), kHelp);
    return kUsage;
  }
  const std::string& in = a.positional[0];
  const std::string& outPath = a.positional[1];
  int index = -1;
  if (a.has("--table") && !parseIndex(a.value("--table"), 8, index)) {
    fprintf(stderr, "panelcorvane export: --table wants 0..7, not '%s'\n", a.value("--table").c_str());
    return kUsage;
  }
  std::vector<LoadedTable> tables;
  if (!loadTables(in, tables, err)) {
    fprintf(stderr, "panelcorvane export: %s: %s\n", in.c_str(), err.c_str());
    return kBadInput;
  }
  if (index >= static_cast<int>(tables.size())) {
    fprintf(stderr, "panelcorvane export: %s: no table %d: the file holds %zu\n", in.c_str(), index, tables.size());
    return kBadInput;
  }
  const bool cube = endsWith(outPath, ".cube") || endsWith(outPath, ".CUBE");
  const bool several = index < 0 && tables.size() > 1;
  int written = 0;
  for (size_t k = 0; k < tables.size(); ++k) {
    if (index >= 0 && static_cast<size_t>(index) != k) continue;
    const LoadedTable& t = tables[k];
    for (const auto& note : t.notes) fprintf(stderr, "panelcorvane export: %s: note: %s\n", in.c_str(), note.c_str());
    const std::string out = several ? numbered(outPath, k) : outPath;
    const bool ok = cube ? CubeFile::writeFile(out, *t.lut, a.value("--title", t.label), err)
                         : writeWholeFile(out, lutTextImage(*t.lut), err);
    if (!ok) {
      fprintf(stderr, "panelcorvane export: %s: %s\n", out.c_str(), err.c_str());
      return kBadInput;
    }
    printf("wrote %s (%s, %s)\n", out.c_str(), t.label.c_str(), cube ? ".cube" : "LUT text");
    ++written;
  }
  printf("exported %d table%s from %s\n", written, written == 1 ? "" : "s", in.c_str());
  return kOk;
}

static Registrar reg({"export", "convert a table: cache/LUT text/.cube to .cube or LUT text", kHelp, run});

}  // namespace
}  // namespace pctool
