// The lot's summary page, drawn from its plan (LotPage.h): a drifting batch shows as a smear
// on the diagram, a stray panel as a lone dot, and a panel that is not on its own data as a
// ring, never as a dot at the golden point.
#include "tools/lib/lot/LotPage.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "tools/lib/colour/CieLocus.h"
#include "tools/lib/common/PrintfString.h"
#include "tools/lib/drawing/Canvas.h"

namespace pctool {

#ifndef PC_HAVE_CAIRO

bool lotPageSupported() { return false; }

bool drawLotPage(const std::string&, const std::vector<LotPanelResult>&, const LotSummary&, std::string& error) {
  error = "built without cairo: no summary page";
  return false;
}

#else

bool lotPageSupported() { return true; }

namespace {

constexpr int kWidth = 1760, kHeight = 1490;
constexpr double kKeyTop = 700, kListTop = 960, kListLine = 17;
const Colour kPassBar{0.3, 0.5, 0.75}, kFailBar{0.8, 0.3, 0.25}, kLimit{0.7, 0.1, 0.1};
const Colour kInk[4] = {{0.85, 0.1, 0.1}, {0.1, 0.6, 0.15}, {0.15, 0.2, 0.85}, {0.2, 0.2, 0.2}};
const char* const kPointNames[4] = {"red", "green", "blue", "white"};

// 1, 2 or 5 times a power of ten, near `raw`.
double niceStep(double raw) {
  const double p = std::pow(10.0, std::floor(std::log10(raw)));
  for (double m : {1.0, 2.0, 5.0})
    if (m * p >= raw) return m * p;
  return 10 * p;
}

void swatch(cairo_t* cr, double x, double y, const Colour& c, const std::string& label) {
  setColour(cr, c);
  cairo_rectangle(cr, x, y - 10, 14, 12);
  cairo_fill(cr);
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, x + 20, y, label, 13);
}

// Fixed bins, whatever the limit: lots checked against different limits compare at a glance.
void histogram(cairo_t* cr, const LotSummary& s) {
  const size_t bins = LotSummary::kBins;
  size_t most = 1;
  for (size_t i = 0; i < bins; ++i) most = std::max(most, s.binPass[i] + s.binFail[i]);
  const double top = static_cast<double>(most) * 1.15, right = LotSummary::kBinWidth * bins;
  const Frame f{90, 160, 540, 450, 0, right, 0, top};
  drawAxes(cr, f, 0.5, std::max(1.0, niceStep(top / 5)), "%.1f", "%.0f",
           "95th percentile of a mode's predicted dE00 (the last bin: 4 and above)", "modes",
           "Modes of the panels on their own optical data");
  for (size_t i = 0; i < bins; ++i) {
    const double x0 = f.px(i * LotSummary::kBinWidth) + 1, w = f.px(LotSummary::kBinWidth) - f.px(0) - 2;
    const double pass = static_cast<double>(s.binPass[i]), all = pass + static_cast<double>(s.binFail[i]);
    setColour(cr, kPassBar);
    cairo_rectangle(cr, x0, f.py(pass), w, f.py(0) - f.py(pass));
    cairo_fill(cr);
    setColour(cr, kFailBar);
    cairo_rectangle(cr, x0, f.py(all), w, f.py(pass) - f.py(all));
    cairo_fill(cr);
  }
  const bool beyond = s.maxDe > right;
  const double lx = f.px(std::min(s.maxDe, right));
  setColour(cr, kLimit);
  cairo_set_line_width(cr, 2);
  cairo_move_to(cr, lx, f.py(0));
  cairo_line_to(cr, lx, f.py(top));
  cairo_stroke(cr);
  drawText(cr, lx + (beyond ? -6 : 6), f.py(top) + 16, "limit " + exactFigure(s.maxDe) + (beyond ? " (off the axis)" : ""),
           13, beyond ? Align::Right : Align::Left);
  swatch(cr, f.x + f.w - 190, f.y + 40, kPassBar, "modes that pass");
  swatch(cr, f.x + f.w - 190, f.y + 60, kFailBar, "modes that fail");
}

void goldenMark(cairo_t* cr, double x, double y, double r) {
  cairo_set_source_rgb(cr, 0, 0, 0);
  drawCross(cr, x, y, r, 2);
}

void toleranceCircle(cairo_t* cr, double x, double y, double r) {
  const double dash[] = {5, 4};
  cairo_set_source_rgb(cr, 0.3, 0.3, 0.3);
  cairo_set_line_width(cr, 1.2);
  cairo_set_dash(cr, dash, 2, 0);
  cairo_new_sub_path(cr);
  cairo_arc(cr, x, y, r, 0, 2 * M_PI);
  cairo_stroke(cr);
  cairo_set_dash(cr, nullptr, 0, 0);
}

void mark(cairo_t* cr, double x, double y, LotVerdict v, int point, double radius) {
  cairo_new_sub_path(cr);
  if (v == LotVerdict::OffOwnData) {
    setColour(cr, kInk[point]);
    cairo_set_line_width(cr, 1.5);
    cairo_arc(cr, x, y, radius * 2, 0, 2 * M_PI);
    cairo_stroke(cr);
    return;
  }
  const bool fails = v == LotVerdict::Fail;
  setColour(cr, kInk[point], fails ? 0.9 : 0.35);
  cairo_arc(cr, x, y, fails ? radius * 1.8 : radius, 0, 2 * M_PI);
  cairo_fill(cr);
}

void marks(cairo_t* cr, const Frame& f, const LotPagePlan& p, int point, double radius) {
  cairo_save(cr);
  cairo_rectangle(cr, f.x, f.y, f.w, f.h);
  cairo_clip(cr);
  // Passing panels first: the ones that need a look stay on top.
  for (LotVerdict v : {LotVerdict::Pass, LotVerdict::OffOwnData, LotVerdict::Fail})
    for (const auto& m : p.marks)
      if (m.verdict == v) mark(cr, f.px(m.xy[point][0]), f.py(m.xy[point][1]), v, point, radius);
  if (p.hasGolden) goldenMark(cr, f.px(p.golden[point][0]), f.py(p.golden[point][1]), 6);
  cairo_restore(cr);
}

void diagram(cairo_t* cr, const LotPagePlan& p) {
  const Frame f{730, 160, kLotDiagramPixels, 450, 0, 0.8, 0, 0.9};
  drawAxes(cr, f, 0.2, 0.2, "%.1f", "%.1f", "x", "y", "Primaries and white, set " + p.setName);
  cairo_save(cr);
  cairo_rectangle(cr, f.x, f.y, f.w, f.h);
  cairo_clip(cr);
  cairo_set_source_rgb(cr, 0.3, 0.3, 0.3);
  cairo_set_line_width(cr, 1.2);
  cairo_move_to(cr, f.px(kSpectralLocus[0].x), f.py(kSpectralLocus[0].y));
  for (const auto& l : kSpectralLocus) cairo_line_to(cr, f.px(l.x), f.py(l.y));
  cairo_close_path(cr);
  cairo_stroke(cr);
  for (size_t i = 0; i < p.targets.size(); ++i) {
    const LotTarget& t = p.targets[i];
    applyStyle(cr, p.targetStyles[i]);
    cairo_move_to(cr, f.px(t.xy[0][0]), f.py(t.xy[0][1]));
    for (int c = 1; c < 3; ++c) cairo_line_to(cr, f.px(t.xy[c][0]), f.py(t.xy[c][1]));
    cairo_close_path(cr);
    cairo_stroke(cr);
  }
  cairo_restore(cr);
  for (int point = 0; point < 4; ++point) marks(cr, f, p, point, 1.5);
}

// Each point around the golden one (else the lot's median), wide enough for the tolerance
// circle and every mark.
void zooms(cairo_t* cr, const LotPagePlan& p, double tolerance) {
  for (int point = 0; point < 4; ++point) {
    std::vector<double> xs, ys;
    for (const auto& m : p.marks) xs.push_back(m.xy[point][0]), ys.push_back(m.xy[point][1]);
    double cx = p.golden[point][0], cy = p.golden[point][1];
    if (!p.hasGolden) {
      if (xs.empty()) return;
      std::vector<double> sx = xs, sy = ys;
      std::nth_element(sx.begin(), sx.begin() + sx.size() / 2, sx.end());
      std::nth_element(sy.begin(), sy.begin() + sy.size() / 2, sy.end());
      cx = sx[sx.size() / 2], cy = sy[sy.size() / 2];
    }
    double half = std::max(0.002, tolerance);
    for (size_t i = 0; i < xs.size(); ++i) half = std::max({half, std::abs(xs[i] - cx), std::abs(ys[i] - cy)});
    half *= 1.15;
    const Frame f{1240.0 + (point % 2) * 280, 160.0 + (point / 2) * 330, 200, 200, cx - half, cx + half, cy - half,
                  cy + half};
    const std::string beyond =
        p.hasGolden ? ": " + std::to_string(p.beyond[point]) + " outside" : "";
    drawAxes(cr, f, niceStep(half / 2), niceStep(half / 2), "%.3f", "%.3f", "x", "y",
             std::string(kPointNames[point]) + beyond);
    if (p.hasGolden) toleranceCircle(cr, f.px(cx), f.py(cy), f.px(cx + tolerance) - f.px(cx));
    marks(cr, f, p, point, 2.2);
  }
}

void key(cairo_t* cr, const LotPagePlan& p) {
  using Mark = LotKeyLine::Mark;
  double y = kKeyTop;
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, 40, y, "Key: " + p.setTitle, 16, Align::Left, true);
  for (const auto& line : p.key) {
    y += 20;
    const double x = 60, my = y - 5;
    switch (line.mark) {
      case Mark::Pass: mark(cr, x, my, LotVerdict::Pass, 3, 3); break;
      case Mark::Fail: mark(cr, x, my, LotVerdict::Fail, 3, 3); break;
      case Mark::OffOwnData: mark(cr, x, my, LotVerdict::OffOwnData, 3, 3); break;
      case Mark::Golden: goldenMark(cr, x, my, 5); break;
      case Mark::Tolerance: toleranceCircle(cr, x, my, 7); break;
      case Mark::Target: {
        applyStyle(cr, line.style);
        cairo_move_to(cr, x - 12, my);
        cairo_line_to(cr, x + 36, my);
        cairo_stroke(cr);
        break;
      }
      case Mark::None: break;
    }
    cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
    drawText(cr, x + (line.mark == Mark::Target ? 44 : 20), y, line.text, 13);
  }
}

void list(cairo_t* cr, const LotPagePlan& p) {
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, 40, kListTop - 24, "Panels that do not pass, and outliers", 16, Align::Left, true);
  cairo_set_source_rgb(cr, 0.55, 0.1, 0.1);
  for (size_t i = 0; i < p.listed.size(); ++i)
    drawText(cr, 40, kListTop + kListLine * static_cast<double>(i), fitText(cr, p.listed[i], 12, kWidth - 80.0), 12);
  if (p.notListed > 0)
    drawText(cr, 40, kListTop + kListLine * static_cast<double>(p.listed.size()),
             "... and " + std::to_string(p.notListed) + " more in the text output, the CSV and the JSON", 12);
  if (p.listed.empty()) drawText(cr, 40, kListTop, "none", 12);
}

}  // namespace

bool drawLotPage(const std::string& path, const std::vector<LotPanelResult>& results, const LotSummary& s,
                 std::string& error) {
  const LotPagePlan p = planLotPage(results, s);
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
  cairo_t* cr = cairo_create(surface);
  cairo_set_source_rgb(cr, 0.965, 0.965, 0.955);
  cairo_paint(cr);
  cairo_set_source_rgb(cr, 0.05, 0.05, 0.05);
  drawText(cr, 40, 44, p.title, 26, Align::Left, true);
  drawText(cr, 40, 72, p.classes, 15);
  drawText(cr, 40, 94, p.sources, 15);
  histogram(cr, s);
  diagram(cr, p);
  zooms(cr, p, s.xyTolerance);
  key(cr, p);
  list(cr, p);
  return finishPng(cr, surface, path, error);
}

#endif  // PC_HAVE_CAIRO

}  // namespace pctool
