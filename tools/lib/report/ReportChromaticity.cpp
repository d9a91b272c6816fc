// The page's xy diagram: spectral locus, every target's and measured set's triangle, and a
// zoom on the whites, where targets and panel whites that sit a few pixels apart separate.
#ifdef PC_HAVE_CAIRO

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "tools/lib/colour/CieLocus.h"
#include "tools/lib/drawing/Canvas.h"
#include "tools/lib/report/ReportSections.h"

namespace pctool {

namespace {

// Hollow marks of the measured whites: circle, square, triangle, diamond by set.
void whiteMarker(cairo_t* cr, double x, double y, int shape, double r) {
  cairo_set_dash(cr, nullptr, 0, 0);
  cairo_set_line_width(cr, 2);
  cairo_new_sub_path(cr);
  switch (shape % 4) {
    case 0: cairo_arc(cr, x, y, r, 0, 2 * M_PI); break;
    case 1: cairo_rectangle(cr, x - r, y - r, 2 * r, 2 * r); break;
    case 2:
      cairo_move_to(cr, x, y - r * 1.2);
      cairo_line_to(cr, x + r * 1.1, y + r * 0.8);
      cairo_line_to(cr, x - r * 1.1, y + r * 0.8);
      cairo_close_path(cr);
      break;
    default:
      cairo_move_to(cr, x, y - r * 1.3);
      cairo_line_to(cr, x + r, y);
      cairo_line_to(cr, x, y + r * 1.3);
      cairo_line_to(cr, x - r, y);
      cairo_close_path(cr);
  }
  cairo_stroke(cr);
}

void triangle(cairo_t* cr, const Frame& f, const PlanTriangle& t) {
  applyStyle(cr, t.style);
  cairo_move_to(cr, f.px(t.rgbw[0].x), f.py(t.rgbw[0].y));
  cairo_line_to(cr, f.px(t.rgbw[1].x), f.py(t.rgbw[1].y));
  cairo_line_to(cr, f.px(t.rgbw[2].x), f.py(t.rgbw[2].y));
  cairo_close_path(cr);
  cairo_stroke(cr);
}

void locus(cairo_t* cr, const Frame& f) {
  cairo_set_source_rgb(cr, 0.3, 0.3, 0.3);
  cairo_set_line_width(cr, 1.5);
  bool first = true;
  for (const auto& p : kSpectralLocus) {
    if (first) cairo_move_to(cr, f.px(p.x), f.py(p.y)), first = false;
    else cairo_line_to(cr, f.px(p.x), f.py(p.y));
  }
  cairo_close_path(cr);  // the line of purples
  cairo_stroke(cr);
  for (const auto& p : kSpectralLocus) {
    if (p.nm < 460 || p.nm > 620 || p.nm % 20 != 0) continue;
    const double dx = p.x < 0.25 ? -10 : 10;
    drawText(cr, f.px(p.x) + dx, f.py(p.y) + 4, std::to_string(p.nm), 12, p.x < 0.25 ? Align::Right : Align::Left);
  }
}

void whitesZoom(cairo_t* cr, const ReportPlan& plan) {
  if (plan.gamut.empty()) return;
  const double cx = plan.whiteZoom[0], cy = plan.whiteZoom[1], span = plan.whiteZoom[2];
  const Frame z{830, 150, kWhiteZoomPixels, kWhiteZoomPixels, cx - span, cx + span, cy - span, cy + span};
  drawAxes(cr, z, span / 2, span / 2, "%.3f", "%.3f", "x", "y", "White points (zoom)");
  cairo_save(cr);
  cairo_rectangle(cr, z.x, z.y, z.w, z.h);
  cairo_clip(cr);
  cairo_set_source_rgb(cr, 0.55, 0.55, 0.55);
  cairo_set_line_width(cr, 2);
  cairo_move_to(cr, z.px(0.3127) - 6, z.py(0.3290));
  cairo_line_to(cr, z.px(0.3127) + 6, z.py(0.3290));
  cairo_move_to(cr, z.px(0.3127), z.py(0.3290) - 6);
  cairo_line_to(cr, z.px(0.3127), z.py(0.3290) + 6);
  cairo_stroke(cr);
  drawText(cr, z.px(0.3127) + 8, z.py(0.3290) + 16, "D65", 12);
  // Colour tells the targets apart, the marker's shape the measurement sets: no labels that
  // could overprint when whites sit a few pixels apart.
  int set = 0;
  for (const auto& t : plan.gamut) {
    const double x = z.px(t.rgbw[3].x), y = z.py(t.rgbw[3].y);
    setColour(cr, styleColour(t.style));
    if (t.measured) whiteMarker(cr, x, y, set++, 7);
    else drawCross(cr, x, y, 7, 2.5);
  }
  cairo_restore(cr);
}

}  // namespace

void drawChromaticity(cairo_t* cr, const ReportPlan& plan) {
  const Frame f{110, 150, 0.8 / kXyPixel, 0.9 / kXyPixel, 0.0, 0.8, 0.0, 0.9};
  drawAxes(cr, f, 0.1, 0.1, "%.1f", "%.1f", "x", "y", "CIE 1931 xy: measured panel and mode targets");
  cairo_save(cr);
  cairo_rectangle(cr, f.x, f.y, f.w, f.h);
  cairo_clip(cr);
  locus(cr, f);
  // Measured sets first: the targets' coloured lines stay on top of the ink.
  for (const auto& t : plan.gamut)
    if (t.measured) triangle(cr, f, t);
  for (const auto& t : plan.gamut)
    if (!t.measured) triangle(cr, f, t);
  int set = 0;
  for (const auto& t : plan.gamut) {
    setColour(cr, styleColour(t.style));
    if (t.measured) whiteMarker(cr, f.px(t.rgbw[3].x), f.py(t.rgbw[3].y), set++, 4);
    else drawCross(cr, f.px(t.rgbw[3].x), f.py(t.rgbw[3].y), 4, 2.5);
  }
  cairo_restore(cr);
  whitesZoom(cr, plan);

  double y = 170;
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, 1270, y, "Key", 16, Align::Left, true);
  y += 26;
  set = 0;
  for (const auto& t : plan.gamut) {
    legendLine(cr, 1270, y, t.style, t.label);
    if (t.measured) {
      setColour(cr, styleColour(t.style));
      whiteMarker(cr, 1270 + 18, y - 5, set++, 5);
    }
    y += 22;
  }
  y += 8;
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, 1270, y, "whites: x a target's, in its mode's colour; the measured sets' by", 14);
  drawText(cr, 1270, y + 20, "the marks above; + D65 for reference (zoom)", 14);
  if (plan.gamut.empty()) {
    cairo_set_source_rgb(cr, 0.45, 0.45, 0.45);
    drawText(cr, f.x + f.w / 2, f.y + f.h / 2, "no targets and no optical data", 18, Align::Centre);
  }
}

}  // namespace pctool

#endif  // PC_HAVE_CAIRO
