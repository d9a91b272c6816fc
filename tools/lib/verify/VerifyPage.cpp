#include "tools/lib/verify/VerifyPage.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "tools/lib/drawing/Canvas.h"

namespace pctool {

#ifndef PC_HAVE_CAIRO

bool verifyPageSupported() { return false; }

bool drawVerifyPage(const std::string&, const VerifyResult&, std::string& error) {
  error = "built without cairo: no verification page";
  return false;
}

#else

bool verifyPageSupported() { return true; }

namespace {

constexpr int kWidth = 1760, kHeight = 860;
const Colour kPredicted{0.55, 0.68, 0.86}, kMeasured{0.13, 0.28, 0.55}, kWithout{0.75, 0.2, 0.15};

struct Bar {
  std::string name;
  uint32_t rgb[3];
  double predicted, without, measured;  // measured NaN when not measured
};

std::vector<Bar> bars(const std::vector<ColourPrediction>& p, const std::vector<MeasuredColour>* m) {
  std::vector<Bar> out;
  for (const auto& c : p) {
    Bar b{c.name, {c.rgb[0], c.rgb[1], c.rgb[2]}, c.de, c.deUncalibrated, NAN};
    if (m != nullptr)
      for (const auto& mc : *m)
        if (mc.name == c.name) b.measured = mc.de;
    out.push_back(b);
  }
  return out;
}

void rect(cairo_t* cr, const Colour& c, double x, double y0, double w, double y1) {
  setColour(cr, c);
  cairo_rectangle(cr, x, std::min(y0, y1), w, std::abs(y1 - y0));
  cairo_fill(cr);
}

// Bars of one set: predicted (light) and measured (dark) side by side, the error without the
// table as a red tick, and the colour itself as a swatch under each pair with its name.
void chart(cairo_t* cr, double x, double w, const std::vector<Bar>& set, double top, const std::string& title) {
  const Frame f{x, 165, w, 480, 0, static_cast<double>(set.size()), 0, top};
  drawAxes(cr, f, 1e9, top > 8 ? 2 : 1, "", "%.0f", "", "CIEDE2000", title);
  const double slot = w / set.size();
  for (size_t i = 0; i < set.size(); ++i) {
    const Bar& b = set[i];
    const double x0 = f.x + slot * i + slot * 0.12, bw = slot * 0.36;
    rect(cr, kPredicted, x0, f.py(0), bw, f.py(std::min(b.predicted, top)));
    if (std::isfinite(b.measured)) rect(cr, kMeasured, x0 + bw, f.py(0), bw, f.py(std::min(b.measured, top)));
    setColour(cr, kWithout);
    cairo_set_line_width(cr, 2.5);
    cairo_move_to(cr, x0 - 2, f.py(std::min(b.without, top)));
    cairo_line_to(cr, x0 + 2 * bw + 2, f.py(std::min(b.without, top)));
    cairo_stroke(cr);
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
}

void legend(cairo_t* cr, double x, double y, bool measured) {
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
  setColour(cr, kWithout);
  cairo_set_line_width(cr, 2.5);
  cairo_move_to(cr, x, y - 5);
  cairo_line_to(cr, x + 22, y - 5);
  cairo_stroke(cr);
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, x + 30, y, "predicted without the table", 14);
}

}  // namespace

bool drawVerifyPage(const std::string& path, const VerifyResult& r, std::string& error) {
  if (!r.hasPrediction) {
    error = "a verification page needs --odf and --target";
    return false;
  }
  const Prediction& p = r.prediction;
  const std::vector<Bar> ref = bars(p.reference, r.hasMeasured ? &r.measured.reference : nullptr);
  const std::vector<Bar> grey = bars(p.grey, r.hasMeasured ? &r.measured.grey : nullptr);
  double most = 1;
  for (const auto* set : {&ref, &grey})
    for (const Bar& b : *set) most = std::max({most, b.predicted, std::isfinite(b.measured) ? b.measured : 0.0});
  const double top = std::ceil(most * 1.15);

  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
  cairo_t* cr = cairo_create(surface);
  cairo_set_source_rgb(cr, 0.965, 0.965, 0.955);
  cairo_paint(cr);
  cairo_set_source_rgb(cr, 0.05, 0.05, 0.05);
  drawText(cr, 40, 44, "Verification: " + r.label, 26, Align::Left, true);
  char buf[256];
  std::snprintf(buf, sizeof buf, "reference colours: predicted mean %.2f, max %.2f", p.referenceSummary.mean,
                p.referenceSummary.max);
  std::string line = buf;
  if (r.hasMeasured) {
    std::snprintf(buf, sizeof buf, "; measured mean %.2f, max %.2f (%s, white Y %.1f%s)", r.measured.referenceSummary.mean,
                  r.measured.referenceSummary.max, r.measured.source.c_str(), r.measured.whiteY,
                  r.measured.absolute ? " cd/m2" : "");
    line += buf;
  }
  drawText(cr, 40, 74, line, 15);
  legend(cr, 40, 104, r.hasMeasured);
  chart(cr, 90, 1050, ref, top, "21 reference colours");
  chart(cr, 1230, 490, grey, top, "grey ramp (8-bit levels)");
  return finishPng(cr, surface, path, error);
}

#endif  // PC_HAVE_CAIRO

}  // namespace pctool
