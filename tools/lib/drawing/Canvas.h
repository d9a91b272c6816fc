// Small drawing helpers for the workbench's pages (cairo): plot frames with labelled axes, text,
// styled lines and their legend rows.
#pragma once

#ifdef PC_HAVE_CAIRO

#include <cairo.h>

#include <string>

#include "tools/lib/drawing/PlanStyle.h"

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
// `s` cut to `width` pixels at `size`, with an ellipsis when cut.
std::string fitText(cairo_t* cr, std::string s, double size, double width);
// An x of half-size `r` at (x, y), solid, in the current colour.
void drawCross(cairo_t* cr, double x, double y, double r, double width);
void setColour(cairo_t* cr, const Colour& c, double alpha = 1.0);
// Background, grid, ticks with labels formatted by `tickFmt` (printf of one double), axis
// names and a title above the frame.
void drawAxes(cairo_t* cr, const Frame& f, double xStep, double yStep, const char* xTickFmt, const char* yTickFmt,
              const std::string& xName, const std::string& yName, const std::string& title);

// The colour of a plan style: its mode's colour, or ink.
const Colour& styleColour(const PlanStyle& s);
// Sets colour, width and dashes of `s` on `cr`.
void applyStyle(cairo_t* cr, const PlanStyle& s);
// A legend row: a line sample in the style (and a dot when `marker`), then the text.
void legendLine(cairo_t* cr, double x, double y, const PlanStyle& s, const std::string& label, bool marker = false);
// A curve of the plan through the frame (clipped to it), with dots at its points on request.
void drawCurve(cairo_t* cr, const Frame& f, const PlanCurve& c);
// A grey box with a sentence, where a plot has nothing to show.
void drawNotice(cairo_t* cr, double x, double y, double w, double h, const std::string& title,
                const std::string& text);

// Encodes what `cr` drew on `surface` as PNG and writes it to `path`; destroys both.
bool finishPng(cairo_t* cr, cairo_surface_t* surface, const std::string& path, std::string& error);

}  // namespace pctool

#endif  // PC_HAVE_CAIRO
