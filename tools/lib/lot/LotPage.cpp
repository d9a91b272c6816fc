// The lot's summary page: the distribution of each mode's largest predicted error against the
// limit, and every panel's measured primaries and white on the xy diagram, so a drifting
// batch shows as a smear and a stray panel as a lone dot.
#include <algorithm>
#include <cmath>
#include <vector>
#include <cstdio>

#include "tools/lib/colour/CieLocus.h"
#include "tools/lib/drawing/Canvas.h"
#include "tools/lib/lot/LotVerify.h"

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

constexpr int kWidth = 1760, kHeight = 820;

// 1, 2 or 5 times a power of ten, near `raw`.
double niceStep(double raw) {
  const double p = std::pow(10.0, std::floor(std::log10(raw)));
  for (double m : {1.0, 2.0, 5.0})
    if (m * p >= raw) return m * p;
  return 10 * p;
}

void histogram(cairo_t* cr, const LotSummary& s) {
  size_t most = 1;
  for (size_t n : s.bins) most = std::max(most, n);
  const double top = static_cast<double>(most) * 1.1;
  const Frame f{80, 150, 560, 460, 0, s.binWidth * s.bins.size(), 0, top};
  drawAxes(cr, f, s.maxDe / 3, std::max(1.0, niceStep(top / 5)), "%.1f", "%.0f", "95th percentile of a mode's predicted dE00",
           "modes", "distribution (last bin: everything above)");
  for (size_t i = 0; i < s.bins.size(); ++i) {
    const double x0 = f.px(i * s.binWidth), x1 = f.px((i + 1) * s.binWidth);
    const bool over = (i + 1) * s.binWidth > s.maxDe + 1e-9;
    cairo_set_source_rgb(cr, over ? 0.8 : 0.3, over ? 0.3 : 0.5, over ? 0.25 : 0.75);
    cairo_rectangle(cr, x0 + 1, f.py(static_cast<double>(s.bins[i])), x1 - x0 - 2, f.py(0) - f.py(s.bins[i]));
    cairo_fill(cr);
  }
  cairo_set_source_rgb(cr, 0.7, 0.1, 0.1);
  cairo_set_line_width(cr, 2);
  cairo_move_to(cr, f.px(s.maxDe), f.py(0));
  cairo_line_to(cr, f.px(s.maxDe), f.py(top));
  cairo_stroke(cr);
  char buf[64];
  snprintf(buf, sizeof buf, "limit %.2f", s.maxDe);
  drawText(cr, f.px(s.maxDe) + 6, f.py(top) + 16, buf, 13);
}

const Colour kInk[4] = {{0.85, 0.1, 0.1}, {0.1, 0.6, 0.15}, {0.15, 0.2, 0.85}, {0.2, 0.2, 0.2}};
const char* const kPointNames[4] = {"red", "green", "blue", "white"};

void dots(cairo_t* cr, const Frame& f, const std::vector<LotPanelResult>& results, int point, double radius) {
  for (const auto& r : results)
    for (const auto& d : r.displays) {
      if (!d.hasPrimaries) continue;
      const double x = d.primaries[point][0], y = d.primaries[point][1];
      if (x < f.x0 || x > f.x1 || y < f.y0 || y > f.y1) continue;
      setColour(cr, kInk[point], r.pass() ? 0.35 : 0.9);
      cairo_arc(cr, f.px(x), f.py(y), r.pass() ? radius : radius * 1.8, 0, 6.2832);
      cairo_fill(cr);
    }
}

void primaries(cairo_t* cr, const std::vector<LotPanelResult>& results) {
  const Frame f{740, 150, 380, 380, 0, 0.8, 0, 0.9};
  drawAxes(cr, f, 0.2, 0.2, "%.1f", "%.1f", "x", "y", "measured primaries and white");
  cairo_set_source_rgb(cr, 0.3, 0.3, 0.3);
  cairo_set_line_width(cr, 1.2);
  cairo_move_to(cr, f.px(kSpectralLocus[0].x), f.py(kSpectralLocus[0].y));
  for (const auto& p : kSpectralLocus) cairo_line_to(cr, f.px(p.x), f.py(p.y));
  cairo_close_path(cr);
  cairo_stroke(cr);
  for (int point = 0; point < 4; ++point) dots(cr, f, results, point, 1.5);
}

// Each point of the lot around its median, so the spread from panel to panel shows; faded
// dots pass, strong ones belong to failing panels.
void zooms(cairo_t* cr, const std::vector<LotPanelResult>& results) {
  for (int point = 0; point < 4; ++point) {
    std::vector<double> xs, ys;
    for (const auto& r : results)
      for (const auto& d : r.displays)
        if (d.hasPrimaries) xs.push_back(d.primaries[point][0]), ys.push_back(d.primaries[point][1]);
    if (xs.empty()) return;
    std::vector<double> sx = xs, sy = ys;
    std::sort(sx.begin(), sx.end());
    std::sort(sy.begin(), sy.end());
    const double cx = sx[sx.size() / 2], cy = sy[sy.size() / 2];
    double half = 0.002;
    for (size_t i = 0; i < xs.size(); ++i) half = std::max({half, std::abs(xs[i] - cx), std::abs(ys[i] - cy)});
    half *= 1.15;
    const Frame f{1240.0 + (point % 2) * 290, 150.0 + (point / 2) * 300, 220, 220, cx - half, cx + half, cy - half, cy + half};
    drawAxes(cr, f, half, half, "%.3f", "%.3f", "x", "y", std::string(kPointNames[point]) + " across the lot");
    dots(cr, f, results, point, 2.2);
  }
}

}  // namespace

bool drawLotPage(const std::string& path, const std::vector<LotPanelResult>& results, const LotSummary& s,
                 std::string& error) {
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
  cairo_t* cr = cairo_create(surface);
  cairo_set_source_rgb(cr, 0.965, 0.965, 0.955);
  cairo_paint(cr);
  char buf[200];
  cairo_set_source_rgb(cr, 0.05, 0.05, 0.05);
  snprintf(buf, sizeof buf, "Production lot: %zu panels, yield %.1f %% (%zu pass every mode)", s.panels,
           100.0 * s.yield, s.passed);
  drawText(cr, 40, 44, buf, 26, Align::Left, true);
  snprintf(buf, sizeof buf, "a mode passes when the 95th percentile of its predicted dE00 (21 reference colours, grey ramp) is at most %.2f; strong dots: failing panels",
           s.maxDe);
  drawText(cr, 40, 74, buf, 15);
  histogram(cr, s);
  primaries(cr, results);
  zooms(cr, results);
  cairo_set_source_rgb(cr, 0.55, 0.1, 0.1);
  const size_t shown = std::min<size_t>(s.outliers.size(), 3);
  for (size_t i = 0; i < shown; ++i) drawText(cr, 40, kHeight - 76.0 + 18 * i, "outlier " + s.outliers[i], 13);
  if (s.outliers.size() > shown)
    drawText(cr, 40, kHeight - 4.0, "... and " + std::to_string(s.outliers.size() - shown) + " more in the CSV/JSON", 13);
  return finishPng(cr, surface, path, error);
}

#endif  // PC_HAVE_CAIRO

}  // namespace pctool
