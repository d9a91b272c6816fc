// The page's swatches: per table, each reference colour as its target asks for it (left half)
// and as the panel shows it through the table (right half: the drive values through the panel
// model), with the CIEDE2000 between them below.
#ifdef PC_HAVE_CAIRO

#include <cmath>
#include <cstdio>

#include "tools/lib/drawing/Canvas.h"
#include "tools/lib/report/ReportSections.h"

namespace pctool {

void drawSwatches(cairo_t* cr, const ReportPlan& plan) {
  const double x0 = 40, label = 175, cell = 49, top = 1700, rowH = 64, swatchH = 42;
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, x0, top, "Reference colours: left half the target, right half what the panel shows with the table",
           18, Align::Left, true);
  cairo_set_source_rgb(cr, 0.3, 0.3, 0.3);
  drawText(cr, x0, top + 22,
           "number: CIEDE2000 between the halves (red from 3); shown as sRGB, colours outside sRGB clipped", 14);
  const double heads = top + 104;
  for (size_t i = 0; i < plan.colourNames.size(); ++i) {
    cairo_save(cr);
    cairo_translate(cr, x0 + label + i * cell + 14, heads - 6);
    cairo_rotate(cr, -M_PI / 4);
    cairo_set_source_rgb(cr, 0.15, 0.15, 0.15);
    drawText(cr, 0, 0, plan.colourNames[i], 13);
    cairo_restore(cr);
  }
  if (plan.swatches.empty()) {
    cairo_set_source_rgb(cr, 0.45, 0.45, 0.45);
    drawText(cr, x0 + 20, heads + 40, "no tables: run the plugin once to fill the table cache", 16);
    return;
  }
  for (size_t r = 0; r < plan.swatches.size() && r < 8; ++r) {
    const PlanSwatchRow& row = plan.swatches[r];
    const double y = heads + r * rowH;
    cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
    drawText(cr, x0, y + swatchH / 2, row.table, 14);
    cairo_set_source_rgb(cr, 0.35, 0.35, 0.35);
    drawText(cr, x0, y + swatchH / 2 + 17, fitText(cr, row.made, 11, label - 8), 11);
    if (row.cells.empty()) {
      cairo_set_source_rgb(cr, 0.45, 0.45, 0.45);
      drawText(cr, x0 + label, y + swatchH / 2 + 5, row.note, 14);
      continue;
    }
    for (size_t i = 0; i < row.cells.size(); ++i) {
      const PlanSwatch& s = row.cells[i];
      const double x = x0 + label + i * cell;
      const double half = (cell - 4) / 2;
      cairo_set_source_rgb(cr, s.target[0], s.target[1], s.target[2]);
      cairo_rectangle(cr, x, y, half, swatchH);
      cairo_fill(cr);
      cairo_set_source_rgb(cr, s.shown[0], s.shown[1], s.shown[2]);
      cairo_rectangle(cr, x + half, y, half, swatchH);
      cairo_fill(cr);
      char buf[16];
      std::snprintf(buf, sizeof buf, "%.1f", s.de);
      if (s.de >= 3) cairo_set_source_rgb(cr, 0.75, 0.1, 0.1);
      else cairo_set_source_rgb(cr, 0.2, 0.2, 0.2);
      drawText(cr, x + half, y + swatchH + 15, buf, 12, Align::Centre, s.de >= 3);
    }
  }
}

}  // namespace pctool

#endif  // PC_HAVE_CAIRO
