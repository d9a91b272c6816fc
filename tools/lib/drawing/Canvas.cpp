#ifdef PC_HAVE_CAIRO

#include "tools/lib/drawing/Canvas.h"

#include <cmath>
#include <cstdio>
#include <vector>

#include "tools/lib/common/FileAccess.h"

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

std::string fitText(cairo_t* cr, std::string s, double size, double width) {
  cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(cr, size);
  cairo_text_extents_t ext;
  cairo_text_extents(cr, s.c_str(), &ext);
  if (ext.x_advance <= width) return s;
  while (!s.empty()) {
    s.pop_back();
    cairo_text_extents(cr, (s + "...").c_str(), &ext);
    if (ext.x_advance <= width) break;
  }
  return s + "...";
}

void drawCross(cairo_t* cr, double x, double y, double r, double width) {
  cairo_set_dash(cr, nullptr, 0, 0);
  cairo_set_line_width(cr, width);
  cairo_move_to(cr, x - r, y - r);
  cairo_line_to(cr, x + r, y + r);
  cairo_move_to(cr, x - r, y + r);
  cairo_line_to(cr, x + r, y - r);
  cairo_stroke(cr);
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

const Colour& styleColour(const PlanStyle& s) {
  static const Colour kInk{0.1, 0.1, 0.1};
  static const Colour kModes[] = {{0.85, 0.33, 0.10}, {0.00, 0.45, 0.74}, {0.47, 0.67, 0.19}, {0.49, 0.18, 0.56},
                                  {0.93, 0.69, 0.13}, {0.30, 0.75, 0.93}, {0.64, 0.08, 0.18}, {0.4, 0.4, 0.4}};
  return s.colour < 0 ? kInk : kModes[static_cast<size_t>(s.colour) % (sizeof kModes / sizeof kModes[0])];
}

void applyStyle(cairo_t* cr, const PlanStyle& s) {
  setColour(cr, styleColour(s));
  cairo_set_line_width(cr, s.width);
  cairo_set_dash(cr, s.dash.empty() ? nullptr : s.dash.data(), static_cast<int>(s.dash.size()), s.dashOffset);
}

void legendLine(cairo_t* cr, double x, double y, const PlanStyle& s, const std::string& label, bool marker) {
  cairo_save(cr);
  applyStyle(cr, s);
  cairo_set_line_width(cr, s.width < 2 ? 2 : s.width);
  cairo_move_to(cr, x, y - 5);
  cairo_line_to(cr, x + 36, y - 5);
  cairo_stroke(cr);
  if (marker) {
    cairo_arc(cr, x + 18, y - 5, 4, 0, 2 * M_PI);
    cairo_fill(cr);
  }
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, x + 44, y, label, 14);
  cairo_restore(cr);
}

void drawCurve(cairo_t* cr, const Frame& f, const PlanCurve& c) {
  if (c.points.empty()) return;
  cairo_save(cr);
  cairo_rectangle(cr, f.x, f.y, f.w, f.h);
  cairo_clip(cr);
  applyStyle(cr, c.style);
  for (size_t i = 0; i < c.points.size(); ++i) {
    const double x = f.px(c.points[i].first), y = f.py(c.points[i].second);
    if (i == 0) cairo_move_to(cr, x, y);
    else cairo_line_to(cr, x, y);
  }
  cairo_stroke(cr);
  if (c.markers) {
    for (const auto& p : c.points) {
      cairo_arc(cr, f.px(p.first), f.py(p.second), 3.5, 0, 2 * M_PI);
      cairo_fill(cr);
    }
  }
  cairo_restore(cr);
}

void drawNotice(cairo_t* cr, double x, double y, double w, double h, const std::string& title,
                const std::string& text) {
  cairo_save(cr);
  cairo_set_source_rgb(cr, 0.92, 0.92, 0.90);
  cairo_rectangle(cr, x, y, w, h);
  cairo_fill(cr);
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, x, y - 12, title, 18, Align::Left, true);
  cairo_set_source_rgb(cr, 0.35, 0.35, 0.35);
  // Word-wrapped to the box.
  const size_t perLine = static_cast<size_t>((w - 32) / 7.5);
  std::vector<std::string> lines(1);
  size_t pos = 0;
  while (pos < text.size()) {
    size_t sp = text.find(' ', pos);
    const std::string word = text.substr(pos, sp == std::string::npos ? std::string::npos : sp - pos);
    if (!lines.back().empty() && lines.back().size() + 1 + word.size() > perLine) lines.emplace_back();
    lines.back() += (lines.back().empty() ? "" : " ") + word;
    pos = sp == std::string::npos ? text.size() : sp + 1;
  }
  double ty = y + h / 2 - 9.0 * (lines.size() - 1) + 5;
  for (const auto& l : lines) {
    drawText(cr, x + 16, ty, l, 14);
    ty += 18;
  }
  cairo_restore(cr);
}

namespace {
cairo_status_t appendPng(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}
}  // namespace

bool finishPng(cairo_t* cr, cairo_surface_t* surface, const std::string& path, std::string& error) {
  std::string png;
  cairo_status_t st = cairo_status(cr);
  if (st == CAIRO_STATUS_SUCCESS) st = cairo_surface_write_to_png_stream(surface, appendPng, &png);
  cairo_destroy(cr);
  cairo_surface_destroy(surface);
  if (st != CAIRO_STATUS_SUCCESS) {
    error = std::string("cannot draw the page: ") + cairo_status_to_string(st);
    return false;
  }
  return writeWholeFile(path, png, error);
}

}  // namespace pctool

#endif  // PC_HAVE_CAIRO
