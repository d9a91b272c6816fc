// The page's grey ramp: the effective gamma per level (where a dark-end error shows, unlike
// on a luminance plot), the CIEDE2000 each table is predicted to leave per grey level, and the
// luminances in cd/m2 with the targets' gamma-correction offsets.
#ifdef PC_HAVE_CAIRO

#include <algorithm>
#include <cmath>

#include "tools/lib/drawing/Canvas.h"
#include "tools/lib/report/ReportSections.h"

namespace pctool {

namespace {

void gammaPlot(cairo_t* cr, const ReportPlan& plan) {
  const double lo = plan.gammaAxis[0], hi = plan.gammaAxis[1];
  const double step = hi - lo > 0.8 ? 0.2 : hi - lo > 0.3 ? 0.1 : 0.05;
  const Frame f{110, 980, 640, kGammaPlotPixels, 0, 4095, lo, hi};
  drawAxes(cr, f, 512, step, "%.0f", "%.2f", "grey level (12-bit code)", "gamma (exponent)",
           "Grey ramp: effective gamma per level, measured sets and targets");
  for (const auto& c : plan.gammaTargets) drawCurve(cr, f, c);
  for (const auto& c : plan.gammaMeasured) drawCurve(cr, f, c);
  double y = f.y + f.h + 66;
  for (const auto& c : plan.gammaMeasured) {
    legendLine(cr, f.x, y, c.style, c.label, true);
    y += 20;
  }
  y = f.y + f.h + 66;
  for (const auto& c : plan.gammaTargets) {
    legendLine(cr, f.x + 300, y, c.style, c.label);
    y += 20;
  }
}

void dePlot(cairo_t* cr, const ReportPlan& plan) {
  const double x = 900, y = 980, w = 560, h = 400;
  if (plan.greyDe.empty()) {
    drawNotice(cr, x, y, w, 120, "Grey ramp: predicted CIEDE2000 after each table",
               "no prediction: it needs the tables, their targets and the optical data");
    return;
  }
  double hi = 0.5;
  for (const auto& c : plan.greyDe)
    for (const auto& p : c.points) hi = std::max(hi, p.second);
  hi = std::min(std::ceil(hi * 1.15 * 2) / 2, 100.0);
  const double step = hi > 50 ? 10 : hi > 20 ? 5 : hi > 8 ? 2 : hi > 4 ? 1 : 0.5;
  const Frame f{x, y, w, h, 0, 255, 0, hi};
  drawAxes(cr, f, 32, step, "%.0f", "%.1f", "grey level (8-bit signal)", "CIEDE2000 against the target",
           "Grey ramp: predicted CIEDE2000 after each table");
  for (const auto& c : plan.greyDe) drawCurve(cr, f, c);
  double ly = y + 10;
  for (const auto& c : plan.greyDe) {
    legendLine(cr, x + w + 20, ly, c.style, c.label);
    ly += 20;
  }
}

}  // namespace

void drawGrey(cairo_t* cr, const ReportPlan& plan) {
  gammaPlot(cr, plan);
  dePlot(cr, plan);
  double y = 1456;
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, 900, y, "Luminance and gamma-correction offsets", 16, Align::Left, true);
  for (const auto& fact : plan.greyFacts) {
    y += 18;
    drawText(cr, 900, y, fact, 13);
  }
}

}  // namespace pctool

#endif  // PC_HAVE_CAIRO
