// What a report page says, worked out before anything is drawn: legends with their styles,
// the curves, the swatches with their CIEDE2000, the brightness lines and the notes. The page
// is drawn from this plan (Report.cpp and its sections), and tests check a page's structure here, without
// pixels.
//
// Styles: a mode has one colour on every page (Vivid, Nature, Cinema and LsRGB fixed, other
// names after them); modes whose targets coincide share a line with interleaved dashes, so
// each stays visible, and their legend says "same as ...". Measured data is drawn in ink, one
// dash pattern per measurement set.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/lib/drawing/PlanStyle.h"
#include "tools/lib/report/PanelReport.h"
#include "tools/lib/verify/PanelModel.h"

namespace pctool {

struct PlanTriangle {
  std::string label;  // legend text
  Chroma rgbw[4];
  PlanStyle style;
  bool measured = false;
};

struct PlanSwatch {
  std::string colour;  // "dark cyan"
  double target[3] = {}, shown[3] = {};  // sRGB 0..1 for the screen the page is viewed on
  double de = 0;
};

struct PlanSwatchRow {
  std::string table;
  std::string made;  // what the table was made from: "Vivid_100nits.txt, 2_100nit"
  std::string note;  // why a row has no swatches
  std::vector<PlanSwatch> cells;
};

struct PlanBrightnessLine {
  PlanStyle style;
  int channel = 0;  // 0 R, 1 G, 2 B
  uint32_t even = 0, odd = 0;  // the node's output in the 100-nit and the full-brightness table
};

// The page's plots in pixels (the xy diagram 620 wide for x 0..0.8, the whites' zoom and the
// gamma plot 400 high): lines closer than a pixel coincide, and only those say "same as".
constexpr double kXyPixel = 0.8 / 620;
constexpr double kWhiteZoomPixels = 400, kGammaPlotPixels = 400;

struct ReportPlan {
  // The page names what it shows: the panel, the optical data and why, where the tables come
  // from, the measurement sets and the modes each feeds, the target files.
  std::string title, sourceLine, dataLine, setsLine, targetsLine;

  std::vector<PlanTriangle> gamut;  // targets, then the measured sets
  double whiteZoom[3] = {0.3127, 0.329, 0.006};  // centre x, y and half its span
  std::vector<std::string> colourNames;  // the 21 reference colours

  double gammaAxis[2] = {1.8, 2.6};      // the gamma plot's range
  std::vector<PlanCurve> gammaMeasured;  // x grey code, y exponent
  std::vector<PlanCurve> gammaTargets;   // horizontal: the target's exponent
  std::vector<PlanCurve> greyDe;         // x 8-bit grey level, y CIEDE2000
  std::vector<std::string> greyFacts;    // luminance per set (cd/m2), offsets per target

  std::vector<PlanSwatchRow> swatches;

  bool brightnessDrawn = false;
  std::string brightnessTitle;  // when drawn
  std::string brightnessNote;   // when not drawn: why
  std::vector<PlanBrightnessLine> brightness;
  std::vector<std::string> brightnessKey;  // channel key, then one line per pair

  std::vector<std::string> notes;
};

// Colour index of a mode name: Vivid 0, Nature 1, Cinema 2, LsRGB 3, others 4 and up.
int modeColourIndex(const std::string& mode);
// The modes whose tables a measurement set (frontend/TablePlan.h) feeds: "Nature and Cinema"
// for 1_max and 1_100nit (their full-brightness and 100-nit tables); "" for none.
std::string modesOfSet(int set);
// The mode of a table name such as "3 Nature" or "0 Vivid 100-nit" ("" when none).
std::string modeOfTable(const std::string& tableName);

ReportPlan planReport(const PanelReport& report);

// The full-brightness table's output at `brightness` (3500..8191 and above), by the plugin's
// interpolation rule (cache/DeltaApply.h), signed so a plot can show it against the 100-nit one.
int32_t brightnessOutput(uint32_t even, uint32_t odd, uint32_t brightness);

// The entry whose output differs most between the tables of a pair, over all pairs; -1 when
// there is no pair or no entry differs.
int pickBrightnessNode(const PanelReport& report);

// An L*a*b* colour (relative to a white taken as D65) as sRGB 0..1, clipped.
void labToScreen(const Lab& lab, double (&rgb)[3]);

}  // namespace pctool
