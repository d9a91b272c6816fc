// panelcorvane apply: what a table does to a list of colours or to a picture.
#include <cstdio>
#include <string>
#include <vector>

#include "tools/cli/Command.h"
#include "tools/lib/calibration/CalibrationFiles.h"
#include "tools/lib/common/CliArgs.h"
#include "tools/lib/common/FileAccess.h"
#include "tools/lib/tables/ColourCsv.h"
#include "tools/lib/tables/ImageColour.h"
#include "tools/lib/tables/LutApply.h"
#include "tools/lib/tables/PngImage.h"
#include "tools/lib/tables/TableSource.h"

namespace pctool {
namespace {

const char kHelp[] =
    "usage: panelcorvane apply TABLE IN OUT [--table K] [--interp trilinear|tetrahedral]\n"
    "                          [--grid device|uniform] [--target FILE]\n"
    "\n"
    "Puts colours through a table. TABLE is any table (a cache needs --table K when it holds\n"
    "more than one; a .cube of any size is first resampled onto the 17 device nodes). IN is\n"
    "chosen by its extension:\n"
    "  .csv  lines \"r,g,b\": 8-bit values 0..255, or signals 0..1 (written with a '.');\n"
    "        a header line may come first. OUT (CSV) repeats each input and adds the table's\n"
    "        output as 12-bit codes (r12,g12,b12) and as 8-bit values (r8,g8,b8)\n"
    "  .png  an 8- or 16-bit RGB or RGBA image (grey and palette images are expanded to RGB);\n"
    "        OUT, also .png, has the same size, channels and depth, alpha kept as it was. A\n"
    "        sample v is the signal v / 255 (v / 65535); an output code c is written as\n"
    "        round(c / 4095 * 255), or at 16 bits as round(c / 4095 * 65535), which keeps the\n"
    "        12-bit code. An image tagged with a colour space (iCCP, sRGB, gAMA, cHRM) is first\n"
    "        converted to the table's input space by Little CMS (relative colorimetric), or\n"
    "        refused with the reason; an untagged one goes in as it is. OUT holds panel drive\n"
    "        values: it carries no colour chunk, and a Description text names the table\n"
    "\n"
    "  --table K      table K (0-based) of a cache\n"
    "  --interp I     between nodes: tetrahedral (default) or trilinear\n"
    "  --grid G       where the 17 nodes sit: device (default; level i at code 256 i, the last\n"
    "                 at 4095, as the hardware has them) or uniform (i / 16, as a .cube says,\n"
    "                 and as grading tools and ffmpeg's lut3d apply the exported table)\n"
    "  --target FILE  the table's mode target: its primaries, white and exponent are the space\n"
    "                 a tagged image is converted to (default: sRGB)\n";

int fail(const std::string& file, const std::string& why) {
  fprintf(stderr, "panelcorvane apply: %s: %s\n", file.c_str(), why.c_str());
  return kBadInput;
}

int usage(const std::string& why) {
  fprintf(stderr, "panelcorvane apply: %s\n", why.c_str());
  return kUsage;
}

int applyCsv(const postblend::lut3d_info& lut, const std::string& in, const std::string& out,
             Interp interp, NodeGrid grid) {
  std::string error;
  std::string text;
  if (!readInputFile(in, ColourCsv::kMaxBytes, text, error)) return fail(in, error);
  ColourList list;
  if (!ColourCsv::parse(text, list, error)) return fail(in, error);
  if (!writeWholeFile(out, ColourCsv::apply(list, lut, interp, grid), error)) return fail(out, error);
  printf("wrote %s: %zu colours (%s)\n", out.c_str(), list.rows.size(),
         list.fractions ? "signals 0..1" : "8-bit values");
  return kOk;
}

int applyPng(const LoadedTable& t, const std::string& in, const std::string& out, const RgbSpace& space,
             Interp interp, NodeGrid grid) {
  std::string error;
  Image img;
  if (!PngImage::read(in, img, error)) return fail(in, error);
  ImageConversion conversion;
  if (!conversion.prepare(img.colour, space, error)) return fail(in, error);
  const size_t outside = applyLutToImage(*t.lut, img, conversion, interp, grid);
  const std::string what = "panel drive values (12-bit codes / 4095) from " + fileName(in) + " through " + t.label +
                           "; not colours of any colour space";
  if (!PngImage::write(out, img, what, error)) return fail(out, error);
  printf("wrote %s: %u x %u %s, %d-bit\n%s\n", out.c_str(), img.width, img.height,
         img.channels == 4 ? "RGBA" : "RGB", img.depth, conversion.summary().c_str());
  if (outside > 0)
    printf("  %zu of %zu pixels lay outside %s and were clipped\n", outside, size_t(img.width) * img.height,
           space.name.c_str());
  return kOk;
}

int run(const std::vector<std::string>& args) {
  ParsedArgs a;
  std::string err;
  if (!parseArgs(args, {"--table", "--interp", "--grid", "--target"}, {}, a, err) || a.positional.size() != 3) {
    fprintf(stderr, "panelcorvane apply: %s\n%s", err.empty() ? "needs TABLE, IN and OUT" : err.c_str(), kHelp);
    return kUsage;
  }
  const std::string &tablePath = a.positional[0], &in = a.positional[1], &out = a.positional[2];
  int index = -1;
  if (a.has("--table") && !parseIndex(a.value("--table"), 8, index))
    return usage("--table wants 0..7, not '" + a.value("--table") + "'");
  const std::string interpName = a.value("--interp", "tetrahedral"), gridName = a.value("--grid", "device");
  if (interpName != "tetrahedral" && interpName != "trilinear")
    return usage("--interp wants trilinear or tetrahedral, not '" + interpName + "'");
  if (gridName != "device" && gridName != "uniform")
    return usage("--grid wants device or uniform, not '" + gridName + "'");
  const Interp interp = interpName == "trilinear" ? Interp::Trilinear : Interp::Tetrahedral;
  const NodeGrid grid = gridName == "uniform" ? NodeGrid::Uniform : NodeGrid::Device;
  const std::string inExt = lowerExtension(in), outExt = lowerExtension(out);
  if (inExt != ".csv" && inExt != ".png") return usage("IN must end in .csv or .png: " + in);
  if (outExt != inExt) return usage("OUT must end in " + inExt + " like IN: " + out);

  RgbSpace space = srgbSpace();
  if (a.has("--target")) {
    TargetParm target{};
    int count = 0;
    const std::string path = a.value("--target");
    if (!readTargetFile(path, target, count, err)) return fail(path, err);
    space = targetSpace(target, fileName(path));
  }
  std::vector<LoadedTable> tables;
  if (!loadTables(tablePath, tables, err)) return fail(tablePath, err);
  if (index < 0 && tables.size() > 1)
    return usage(tablePath + " holds " + std::to_string(tables.size()) + " tables: pick one with --table K");
  if (index >= static_cast<int>(tables.size()))
    return fail(tablePath, "no table " + std::to_string(index) + ": the file holds " + std::to_string(tables.size()));
  const LoadedTable& t = tables[index < 0 ? 0 : static_cast<size_t>(index)];
  for (const auto& note : t.notes) fprintf(stderr, "panelcorvane apply: %s: note: %s\n", tablePath.c_str(), note.c_str());
  return inExt == ".csv" ? applyCsv(*t.lut, in, out, interp, grid) : applyPng(t, in, out, space, interp, grid);
}

static Registrar reg({"apply", "put a CSV list of colours or a PNG image through a table", kHelp, run});

}  // namespace
}  // namespace pctool
