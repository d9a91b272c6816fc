// The page's brightness plot: one node's output from the 100-nit table (level 3500) to the
// full-brightness one (8191) by the plugin's Q12 interpolation, as the change from the 100-nit
// codes so pairs of very different codes share one scale. Colour = mode, dash = channel.
#ifdef PC_HAVE_CAIRO

#include <algorithm>

#include "tools/lib/drawing/Canvas.h"
#include "tools/lib/report/ReportSections.h"

namespace pctool {

void drawBrightness(cairo_t* cr, const ReportPlan& plan) {
  const double x = 1340, y = 1760, w = 400, h = 340;
  if (!plan.brightnessDrawn) {
    drawNotice(cr, x, y, w, 120, "Brightness", plan.brightnessNote);
    return;
  }
  double lo = 0, hi = 0;
  for (const auto& l : plan.brightness) {
    const double v = brightnessOutput(l.even, l.odd, 8191) - double(l.even);
    lo = std::min(lo, v), hi = std::max(hi, v);
  }
  const double pad = std::max(4.0, (hi - lo) * 0.08);
  lo -= pad, hi += pad;
  const double span = hi - lo;
  const double step = span > 2000 ? 500 : span > 800 ? 200 : span > 300 ? 50 : span > 80 ? 20 : span > 30 ? 5 : 2;
  const Frame f{x, y, w, h, 3500, 8191, lo, hi};
  drawAxes(cr, f, 1000, step, "%.0f", "%.0f", "brightness level", "change from the 100-nit table (codes)",
           plan.brightnessTitle);
  cairo_save(cr);
  cairo_rectangle(cr, f.x, f.y, f.w, f.h);
  cairo_clip(cr);
  for (const auto& l : plan.brightness) {
    applyStyle(cr, l.style);
    auto py = [&](uint32_t b) { return f.py(brightnessOutput(l.even, l.odd, b) - double(l.even)); };
    cairo_move_to(cr, f.px(3500), py(3500));
    for (uint32_t b = 3507; b < 8191; b += 7) cairo_line_to(cr, f.px(b), py(b));
    cairo_line_to(cr, f.px(8191), py(8191));
    cairo_stroke(cr);
  }
  cairo_restore(cr);
  // Key: the channels' dashes in ink, then one row per pair in its mode's colour.
  double ky = f.y + f.h + 62;
  static const char* const kChannel[3] = {"R", "G", "B"};
  for (int c = 0; c < 3; ++c) {
    PlanStyle s;
    for (const auto& l : plan.brightness)
      if (l.channel == c) s.dash = l.style.dash;
    legendLine(cr, f.x + 130 * c, ky, s, kChannel[c]);
  }
  for (size_t k = 1; k < plan.brightnessKey.size(); ++k) {
    ky += 20;
    PlanStyle s;
    s.colour = plan.brightness[3 * (k - 1)].style.colour;
    legendLine(cr, f.x, ky, s, plan.brightnessKey[k]);
  }
}

}  // namespace pctool

#endif  // PC_HAVE_CAIRO
