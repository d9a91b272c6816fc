// Small drawing helpers for the report page (cairo): plot frames with labelled axes, text.
#pragma once

#ifdef PC_HAVE_CAIRO

#include <cairo.h>

#include <string>

namespace pctool {

struct Colour {
  double r, g, b;
};

// A plot area in pixels and the data range it shows.
struct Frame {
  double x, y, w, h;
  double x0, x1, y0, y1;
  double px(double v) const { return x + (v - x0) / (x1 - x0) * w; }
  double py(double v) const { return y + h - (v - y0) / (y1 - y0) * h; }
};

enum class Align { Left, Centre, Right };

void drawText(cairo_t* cr, double x, double y, const std::string& s, double size, Align align = Align::Left,
              bool bold = false);
void setColour(cairo_t* cr, const Colour& c, double alpha = 1.0);
// Background, grid, ticks with labels formatted by `tickFmt` (printf of one double), axis
// names and a title above the frame.
void drawAxes(cairo_t* cr, const Frame& f, double xStep, double yStep, const char* xTickFmt, const char* yTickFmt,
              const std::string& xName, const std::string& yName, const std::string& title);
// A small legend row: colour sample (line, dashed line or dot) and its text.
void legendEntry(cairo_t* cr, double x, double y, const Colour& c, const std::string& label, bool dashed = false,
                 bool dot = false);

// Distinct colours for modes.
const Colour& modeColour(size_t i);

}  // namespace pctool

#endif  // PC_HAVE_CAIRO
