#ifdef PC_HAVE_CAIRO

#include "tools/lib/ReportCanvas.h"

#include <cmath>
#include <cstdio>

namespace pctool {

void drawText(cairo_t* cr, double x, double y, const std::string& s, double size, Align align, bool bold) {
  cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                         bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(cr, size);
  cairo_text_extents_t ext;
  cairo_text_extents(cr, s.c_str(), &ext);
  double dx = align == Align::Left ? 0 : align == Align::Centre ? -ext.x_advance / 2 : -ext.x_advance;
  cairo_move_to(cr, x + dx, y);
  cairo_show_text(cr, s.c_str());
}

void setColour(cairo_t* cr, const Colour& c, double alpha) { cairo_set_source_rgba(cr, c.r, c.g, c.b, alpha); }

void drawAxes(cairo_t* cr, const Frame& f, double xStep, double yStep, const char* xTickFmt, const char* yTickFmt,
              const std::string& xName, const std::string& yName, const std::string& title) {
  cairo_save(cr);
  cairo_set_source_rgb(cr, 1, 1, 1);
  cairo_rectangle(cr, f.x, f.y, f.w, f.h);
  cairo_fill(cr);
  cairo_set_line_width(cr, 1);
  char buf[32];
  // Ticks start at the first multiple of the step inside the range.
  for (double v = std::ceil(f.x0 / xStep - 1e-9) * xStep; v <= f.x1 + 1e-9; v += xStep) {
    double px = std::round(f.px(v)) + 0.5;
    cairo_set_source_rgb(cr, 0.88, 0.88, 0.88);
    cairo_move_to(cr, px, f.y);
    cairo_line_to(cr, px, f.y + f.h);
    cairo_stroke(cr);
    cairo_set_source_rgb(cr, 0.15, 0.15, 0.15);
    std::snprintf(buf, sizeof buf, xTickFmt, std::fabs(v) < 1e-9 ? 0.0 : v);
    drawText(cr, px, f.y + f.h + 18, buf, 13, Align::Centre);
  }
  for (double v = std::ceil(f.y0 / yStep - 1e-9) * yStep; v <= f.y1 + 1e-9; v += yStep) {
    double py = std::round(f.py(v)) + 0.5;
    cairo_set_source_rgb(cr, 0.88, 0.88, 0.88);
    cairo_move_to(cr, f.x, py);
    cairo_line_to(cr, f.x + f.w, py);
    cairo_stroke(cr);
    cairo_set_source_rgb(cr, 0.15, 0.15, 0.15);
    std::snprintf(buf, sizeof buf, yTickFmt, std::fabs(v) < 1e-9 ? 0.0 : v);
    drawText(cr, f.x - 6, py + 4, buf, 13, Align::Right);
  }
  cairo_set_source_rgb(cr, 0.2, 0.2, 0.2);
  cairo_set_line_width(cr, 1.5);
  cairo_rectangle(cr, f.x, f.y, f.w, f.h);
  cairo_stroke(cr);
  drawText(cr, f.x + f.w / 2, f.y + f.h + 40, xName, 15, Align::Centre);
  cairo_save(cr);
  cairo_translate(cr, f.x - 58, f.y + f.h / 2);
  cairo_rotate(cr, -M_PI / 2);
  drawText(cr, 0, 0, yName, 15, Align::Centre);
  cairo_restore(cr);
  drawText(cr, f.x, f.y - 12, title, 18, Align::Left, true);
  cairo_restore(cr);
}

void legendEntry(cairo_t* cr, double x, double y, const Colour& c, const std::string& label, bool dashed, bool dot) {
  cairo_save(cr);
  setColour(cr, c);
  if (dot) {
    cairo_arc(cr, x + 12, y - 5, 5, 0, 2 * M_PI);
    cairo_fill(cr);
  } else {
    cairo_set_line_width(cr, 2.5);
    if (dashed) {
      const double d[] = {6, 4};
      cairo_set_dash(cr, d, 2, 0);
    }
    cairo_move_to(cr, x, y - 5);
    cairo_line_to(cr, x + 24, y - 5);
    cairo_stroke(cr);
  }
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, x + 32, y, label, 13);
  cairo_restore(cr);
}

const Colour& modeColour(size_t i) {
  static const Colour kColours[] = {{0.85, 0.33, 0.10}, {0.00, 0.45, 0.74}, {0.47, 0.67, 0.19}, {0.49, 0.18, 0.56},
                                    {0.93, 0.69, 0.13}, {0.30, 0.75, 0.93}, {0.64, 0.08, 0.18}, {0.4, 0.4, 0.4}};
  return kColours[i % (sizeof kColours / sizeof kColours[0])];
}

}  // namespace pctool

#endif  // PC_HAVE_CAIRO
