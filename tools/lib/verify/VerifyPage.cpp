#include "tools/lib/verify/VerifyPage.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "tools/lib/common/PrintfString.h"
#include "tools/lib/drawing/Canvas.h"

namespace pctool {

#ifndef PC_HAVE_CAIRO

bool verifyPageSupported() { return false; }

bool drawVerifyPage(const std::string&, const VerifyResult&, double, std::string& error) {
  error = "built without cairo: no verification page";
  return false;
}

#else

bool verifyPageSupported() { return true; }

namespace {

constexpr int kWidth = 1760, kHeight = 900;
const Colour kPredicted{0.55, 0.68, 0.86}, kMeasured{0.13, 0.28, 0.55}, kWithout{0.75, 0.2, 0.15};
const Colour kPredictedInk{0.3, 0.45, 0.7};  // the predicted bars' colour, dark enough for text

void rect(cairo_t* cr, const Colour& c, double x, double y0, double w, double y1) {
  setColour(cr, c);
  cairo_rectangle(cr, x, std::min(y0, y1), w, std::abs(y1 - y0));
  cairo_fill(cr);
}

// A value beyond the axis: a triangle over its edge and, the `k`-th of its bar, the value below
// it on a white ground.
void beyondMark(cairo_t* cr, const Frame& f, double x, double v, const Colour& c, int k) {
  setColour(cr, c);
  cairo_move_to(cr, x - 5, f.py(f.y1) - 1);
  cairo_line_to(cr, x + 5, f.py(f.y1) - 1);
  cairo_line_to(cr, x, f.py(f.y1) - 9);
  cairo_close_path(cr);
  cairo_fill(cr);
  const double y = f.py(f.y1) + 22 + 15 * k;
  cairo_set_source_rgb(cr, 1, 1, 1);
  cairo_rectangle(cr, x - 17, y - 11, 34, 14);
  cairo_fill(cr);
  setColour(cr, c);
  drawText(cr, x, y, printfString("%.2f", v), 11, Align::Centre, true);
}

// Bars of one set: predicted (light) and measured (dark) side by side, the error without the
// table as a red tick, and the colour itself as a swatch under each pair with its name. Values
// beyond the axis stand at its edge with their value; the pass limit runs across, dashed.
void chart(cairo_t* cr, double x, double w, const VerifyPagePlan::Chart& set, const VerifyPagePlan& plan) {
  const double top = plan.top;
  const size_t n = std::max<size_t>(set.bars.size(), 1);
  const Frame f{x, 270, w, 400, 0, static_cast<double>(n), 0, top};
  drawAxes(cr, f, 1e9, top > 8 ? 2 : top > 3 ? 1 : 0.5, "", top > 3 ? "%.0f" : "%.1f", "", "CIEDE2000", set.title);
  const double slot = w / n;
  for (size_t i = 0; i < set.bars.size(); ++i) {
    const VerifyBar& b = set.bars[i];
    const double x0 = f.x + slot * i + slot * 0.12, bw = slot * 0.36;
    if (std::isfinite(b.predicted)) rect(cr, kPredicted, x0, f.py(0), bw, f.py(std::min(b.predicted, top)));
    if (std::isfinite(b.measured)) rect(cr, kMeasured, x0 + bw, f.py(0), bw, f.py(std::min(b.measured, top)));
    if (std::isfinite(b.without) && b.without <= top) {
      setColour(cr, kWithout);
      cairo_set_line_width(cr, 2.5);
      cairo_move_to(cr, x0 - 2, f.py(b.without));
      cairo_line_to(cr, x0 + 2 * bw + 2, f.py(b.without));
      cairo_stroke(cr);
    }
    int k = 0;
    if (std::isfinite(b.predicted) && b.predicted > top) beyondMark(cr, f, x0 + bw / 2, b.predicted, kPredictedInk, k++);
    if (std::isfinite(b.measured) && b.measured > top) beyondMark(cr, f, x0 + 1.5 * bw, b.measured, kMeasured, k++);
    if (std::isfinite(b.without) && b.without > top) beyondMark(cr, f, x0 + bw, b.without, kWithout, k++);
    cairo_set_source_rgb(cr, b.rgb[0] / 255.0, b.rgb[1] / 255.0, b.rgb[2] / 255.0);
    cairo_rectangle(cr, x0, f.py(0) + 8, 2 * bw, 14);
    cairo_fill_preserve(cr);
    cairo_set_source_rgb(cr, 0.6, 0.6, 0.6);
    cairo_set_line_width(cr, 0.8);
    cairo_stroke(cr);
    cairo_save(cr);
    cairo_translate(cr, x0 + bw + 4, f.py(0) + 30);
    cairo_rotate(cr, M_PI / 2);
    cairo_set_source_rgb(cr, 0.15, 0.15, 0.15);
    drawText(cr, 0, 0, b.name, 12);
    cairo_restore(cr);
  }
  cairo_set_source_rgb(cr, 0.1, 0.5, 0.2);
  cairo_set_line_width(cr, 1.5);
  const double dash[2] = {7, 4};
  cairo_set_dash(cr, dash, 2, 0);
  cairo_move_to(cr, f.x, f.py(plan.limit));
  cairo_line_to(cr, f.x + w, f.py(plan.limit));
  cairo_stroke(cr);
  cairo_set_dash(cr, nullptr, 0, 0);
  drawText(cr, f.x + w - 4, f.py(plan.limit) - 5, printfString("pass limit %.2f", plan.limit), 12, Align::Right);
}

void legend(cairo_t* cr, double x, double y, bool measured, bool without) {
  rect(cr, kPredicted, x, y - 11, 22, y + 1);
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, x + 30, y, "predicted from the optical data", 14);
  x += 290;
  if (measured) {
    rect(cr, kMeasured, x, y - 11, 22, y + 1);
    cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
    drawText(cr, x + 30, y, "measured with the table applied", 14);
    x += 290;
  }
  if (!without) return;
  setColour(cr, kWithout);
  cairo_set_line_width(cr, 2.5);
  cairo_move_to(cr, x, y - 5);
  cairo_line_to(cr, x + 22, y - 5);
  cairo_stroke(cr);
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, x + 30, y, "predicted without the table", 14);
}

}  // namespace

bool drawVerifyPage(const std::string& path, const VerifyResult& r, double limit, std::string& error) {
  if (!r.hasPrediction) {
    error = "a verification page needs --odf and --target";
    return false;
  }
  const VerifyPagePlan plan = planVerifyPage(r, limit);
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
  cairo_t* cr = cairo_create(surface);
  cairo_set_source_rgb(cr, 0.965, 0.965, 0.955);
  cairo_paint(cr);
  cairo_set_source_rgb(cr, 0.05, 0.05, 0.05);
  drawText(cr, 40, 44, plan.title, 26, Align::Left, true);
  const size_t lines = std::min<size_t>(plan.subtitle.size(), 8);
  for (size_t i = 0; i < lines; ++i) drawText(cr, 40, 72 + 20 * i, plan.subtitle[i], 15);
  legend(cr, 40, 80 + 20 * lines, r.hasMeasured, !(r.hasMeasured && !r.measured.chart.empty()));
  chart(cr, 90, 1050, plan.charts[0], plan);
  chart(cr, 1230, 490, plan.charts[1], plan);
  return finishPng(cr, surface, path, error);
}

#endif  // PC_HAVE_CAIRO

}  // namespace pctool
