#include "tools/lib/Report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/lib/DeviceGrid.h"
#include "tools/lib/LutApply.h"
#include "tools/lib/PanelModel.h"
#include "tools/lib/ReportCanvas.h"
#include "tools/lib/CieLocus.h"
#include "tools/lib/Verify.h"

namespace pctool {

int32_t brightnessOutput(uint32_t even, uint32_t odd, uint32_t brightness) {
  const uint32_t w = (brightness * 4096u - 14336000u) / 4691u;
  const int32_t delta = static_cast<int32_t>(odd - even);
  // 32-bit product as the plugin forms it; the shift rounds toward minus infinity.
  const int32_t scaled = static_cast<int32_t>(static_cast<uint32_t>(delta) * w);
  return static_cast<int32_t>(even) + (scaled >> 12);
}

uint32_t pickBrightnessNode(const PanelReport& report) {
  if (report.tables.size() < 2 || !report.tables[0].lut || !report.tables[1].lut) return 0;
  const auto& even = *report.tables[0].lut;
  const auto& odd = *report.tables[1].lut;
  uint32_t best = 0;
  int64_t bestMove = -1;
  for (uint32_t n = 0; n < kEntries; ++n) {
    int64_t move = 0;
    for (int c = 0; c < 3; ++c) move += std::llabs(int64_t(odd.entries[n].out[c]) - int64_t(even.entries[n].out[c]));
    if (move > bestMove) bestMove = move, best = n;
  }
  return best;
}

#ifndef PC_HAVE_CAIRO

bool reportSupported() { return false; }

bool writeReportPng(const PanelReport&, const std::string&, std::string& error) {
  error = "built without cairo";
  return false;
}

#else

bool reportSupported() { return true; }

namespace {

const Colour kInk{0.1, 0.1, 0.1};

void noData(cairo_t* cr, const Frame& f, const std::string& what) {
  cairo_set_source_rgb(cr, 0.45, 0.45, 0.45);
  drawText(cr, f.x + f.w / 2, f.y + f.h / 2, what, 18, Align::Centre);
}

void marker(cairo_t* cr, double x, double y, double r, bool cross) {
  if (cross) {
    cairo_set_line_width(cr, 2);
    cairo_move_to(cr, x - r, y - r);
    cairo_line_to(cr, x + r, y + r);
    cairo_move_to(cr, x - r, y + r);
    cairo_line_to(cr, x + r, y - r);
    cairo_stroke(cr);
  } else {
    cairo_arc(cr, x, y, r, 0, 2 * M_PI);
    cairo_fill(cr);
  }
}

void triangle(cairo_t* cr, const Frame& f, const Chroma (&c)[4], bool dashed) {
  if (dashed) {
    const double d[] = {7, 5};
    cairo_set_dash(cr, d, 2, 0);
  }
  cairo_set_line_width(cr, 2);
  cairo_move_to(cr, f.px(c[0].x), f.py(c[0].y));
  cairo_line_to(cr, f.px(c[1].x), f.py(c[1].y));
  cairo_line_to(cr, f.px(c[2].x), f.py(c[2].y));
  cairo_close_path(cr);
  cairo_stroke(cr);
  cairo_set_dash(cr, nullptr, 0, 0);
}

void drawChromaticity(cairo_t* cr, const PanelReport& rep) {
  const Frame f{110, 110, 640, 720, 0.0, 0.8, 0.0, 0.9};
  drawAxes(cr, f, 0.1, 0.1, "%.1f", "%.1f", "x", "y", "CIE 1931 xy: measured panel and mode targets");
  cairo_save(cr);
  cairo_rectangle(cr, f.x, f.y, f.w, f.h);
  cairo_clip(cr);
  cairo_set_source_rgb(cr, 0.3, 0.3, 0.3);
  cairo_set_line_width(cr, 1.5);
  bool first = true;
  for (const auto& p : kSpectralLocus) {
    if (first) cairo_move_to(cr, f.px(p.x), f.py(p.y)), first = false;
    else cairo_line_to(cr, f.px(p.x), f.py(p.y));
  }
  cairo_close_path(cr);  // the line of purples
  cairo_stroke(cr);
  for (const auto& p : kSpectralLocus) {
    if (p.nm < 460 || p.nm > 620 || p.nm % 20 != 0) continue;
    double dx = p.x < 0.25 ? -10 : 10;
    drawText(cr, f.px(p.x) + dx, f.py(p.y) + 4, std::to_string(p.nm), 12, p.x < 0.25 ? Align::Right : Align::Left);
  }
  double ly = f.py(0.88);
  for (size_t i = 0; i < rep.targets.size(); ++i) {
    TargetModel t(rep.targets[i].target);
    setColour(cr, modeColour(i));
    triangle(cr, f, t.chroma(), false);
    marker(cr, f.px(t.chroma()[3].x), f.py(t.chroma()[3].y), 5, true);
    legendEntry(cr, f.px(0.47), ly, modeColour(i), "target " + rep.targets[i].name);
    ly += 22;
  }
  PanelModel panel(rep.odf);
  if (rep.hasOdf && panel.valid()) {
    cairo_set_source_rgb(cr, 0, 0, 0);
    triangle(cr, f, panel.chroma(), true);
    for (int i = 0; i < 3; ++i) marker(cr, f.px(panel.chroma()[i].x), f.py(panel.chroma()[i].y), 5, false);
    marker(cr, f.px(panel.chroma()[3].x), f.py(panel.chroma()[3].y), 6, false);
    legendEntry(cr, f.px(0.47), ly, kInk, "panel as measured", true);
    legendEntry(cr, f.px(0.47), ly + 22, kInk, "white (x: targets)", false, true);
    char buf[96];
    std::snprintf(buf, sizeof buf, "panel white x %.4f y %.4f", panel.chroma()[3].x, panel.chroma()[3].y);
    cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
    drawText(cr, f.px(0.47), ly + 48, buf, 13);
  }
  cairo_restore(cr);
}

void drawGreyRamp(cairo_t* cr, const PanelReport& rep) {
  const Frame f{980, 110, 760, 560, 0, 4095, 0, 1};
  drawAxes(cr, f, 512, 0.1, "%.0f", "%.1f", "grey level (12-bit code)", "relative luminance",
           "Grey ramp: measured panel against target curves");
  double ly = f.y + 24;
  for (size_t i = 0; i < rep.targets.size(); ++i) {
    TargetModel t(rep.targets[i].target);
    setColour(cr, modeColour(i));
    cairo_set_line_width(cr, 2);
    const double d[] = {7, 4};
    cairo_set_dash(cr, d, 2, 0);
    for (int c = 0; c <= 4095; c += 15) {
      double v = std::pow(c / 4095.0, t.decodeExponent());
      if (c == 0) cairo_move_to(cr, f.px(c), f.py(v));
      else cairo_line_to(cr, f.px(c), f.py(v));
    }
    cairo_line_to(cr, f.px(4095), f.py(1));
    cairo_stroke(cr);
    cairo_set_dash(cr, nullptr, 0, 0);
    char buf[96];
    std::snprintf(buf, sizeof buf, "target %s (exponent %.3f)", rep.targets[i].name.c_str(), t.decodeExponent());
    legendEntry(cr, f.x + 16, ly, modeColour(i), buf, true);
    ly += 22;
  }
  if (!rep.hasOdf) return noData(cr, f, "no optical data");
  PanelModel panel(rep.odf);
  cairo_set_source_rgb(cr, 0, 0, 0);
  cairo_set_line_width(cr, 2);
  for (int c = 0; c <= 4095; c += 15) {
    if (c == 0) cairo_move_to(cr, f.px(0), f.py(0));
    else cairo_line_to(cr, f.px(c), f.py(panel.toneCurve(c)));
  }
  cairo_line_to(cr, f.px(4095), f.py(panel.toneCurve(4095)));
  cairo_stroke(cr);
  const GreyRamp& ramp = panel.ramp();
  for (int k = 0; k < GreyRamp::kKnots; ++k) {
    double rel = panel.whiteXyz().Y > 0 ? ramp.Y[k] / panel.whiteXyz().Y : 0;
    if (std::isfinite(rel)) marker(cr, f.px(ramp.code[k]), f.py(std::clamp(rel, 0.0, 1.0)), 5, false);
  }
  legendEntry(cr, f.x + 16, ly, kInk, "panel: measured levels and model", false);
  legendEntry(cr, f.x + 16, ly + 22, kInk, "measured grey levels", false, true);
  char buf[96];
  std::snprintf(buf, sizeof buf, "white luminance Y = %.2f", panel.whiteXyz().Y);
  cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
  drawText(cr, f.x + 16, ly + 48, buf, 13);
}

void drawSwatches(cairo_t* cr, const PanelReport& rep) {
  const double x0 = 40, y0 = 920, label = 170, sw = 44, gap = 2, rowH = 46;
  drawText(cr, x0, y0 - 14, "Reference colours: left half as sent, right half after the table", 18,
           Align::Left, true);
  const auto colours = referenceColours();
  cairo_set_source_rgb(cr, 0.3, 0.3, 0.3);
  for (size_t i = 0; i < colours.size(); ++i)
    drawText(cr, x0 + label + i * (sw + gap) + sw / 2, y0 + 12, std::to_string(i), 11, Align::Centre);
  if (rep.tables.empty()) {
    cairo_set_source_rgb(cr, 0.45, 0.45, 0.45);
    drawText(cr, x0 + 20, y0 + 60, "no tables", 18);
    return;
  }
  std::vector<uint8_t> in, out(colours.size() * 3);
  for (const auto& c : colours)
    for (uint32_t v : c.rgb) in.push_back(static_cast<uint8_t>(v));
  for (size_t t = 0; t < rep.tables.size() && t < 9; ++t) {
    double y = y0 + 20 + t * rowH;
    cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
    drawText(cr, x0, y + rowH / 2 + 4, rep.tables[t].name, 14);
    if (!rep.tables[t].lut) continue;
    applyLut8(*rep.tables[t].lut, in.data(), out.data(), colours.size(), Interp::Trilinear, NodeGrid::Device);
    for (size_t i = 0; i < colours.size(); ++i) {
      double x = x0 + label + i * (sw + gap);
      cairo_set_source_rgb(cr, in[3 * i] / 255.0, in[3 * i + 1] / 255.0, in[3 * i + 2] / 255.0);
      cairo_rectangle(cr, x, y, sw / 2, rowH - 6);
      cairo_fill(cr);
      cairo_set_source_rgb(cr, out[3 * i] / 255.0, out[3 * i + 1] / 255.0, out[3 * i + 2] / 255.0);
      cairo_rectangle(cr, x + sw / 2, y, sw / 2, rowH - 6);
      cairo_fill(cr);
    }
  }
}

// Change of one node's output from the 100-nit table, per pair, so pairs of very different
// codes share one scale; the 100-nit codes themselves are in the legend.
void drawBrightness(cairo_t* cr, const PanelReport& rep) {
  const size_t pairs = std::min<size_t>(rep.tables.size() / 2, 4);
  const uint32_t node = rep.node >= 0 && rep.node < int(kEntries) ? uint32_t(rep.node) : pickBrightnessNode(rep);
  auto usable = [&](size_t k) { return rep.tables[2 * k].lut && rep.tables[2 * k + 1].lut; };
  double lo = 0, hi = 0;
  for (size_t k = 0; k < pairs; ++k) {
    if (!usable(k)) continue;
    for (int c = 0; c < 3; ++c) {
      uint32_t even = rep.tables[2 * k].lut->entries[node].out[c];
      double v = brightnessOutput(even, rep.tables[2 * k + 1].lut->entries[node].out[c], 8191) - double(even);
      lo = std::min(lo, v), hi = std::max(hi, v);
    }
  }
  double pad = std::max(4.0, (hi - lo) * 0.08);
  lo -= pad, hi += pad;
  double span = hi - lo;
  double step = span > 2000 ? 500 : span > 800 ? 200 : span > 300 ? 50 : span > 80 ? 20 : span > 30 ? 5 : 2;
  const Frame f{1310, 930, 430, 360, 3500, 8191, lo, hi};
  char title[96];
  std::snprintf(title, sizeof title, "Brightness: entry %u, levels (%u,%u,%u)", node, node % kGrid,
                node / kGrid % kGrid, node / (kGrid * kGrid));
  drawAxes(cr, f, 1000, step, "%.0f", "%.0f", "brightness level", "change from the 100-nit table (codes)", title);
  if (pairs == 0) return noData(cr, f, "no table pair");
  static const Colour kChannel[3] = {{0.85, 0.1, 0.1}, {0.1, 0.6, 0.1}, {0.1, 0.25, 0.85}};
  static const double kDash[4][2] = {{1, 0}, {8, 4}, {2, 3}, {12, 3}};
  cairo_save(cr);
  cairo_rectangle(cr, f.x, f.y, f.w, f.h);
  cairo_clip(cr);
  for (size_t k = 0; k < pairs; ++k) {
    if (!usable(k)) continue;
    const auto& even = rep.tables[2 * k].lut->entries[node];
    const auto& odd = rep.tables[2 * k + 1].lut->entries[node];
    for (int c = 0; c < 3; ++c) {
      setColour(cr, kChannel[c]);
      cairo_set_line_width(cr, 2);
      cairo_set_dash(cr, kDash[k], k ? 2 : 0, 0);
      auto y = [&](uint32_t b) { return f.py(brightnessOutput(even.out[c], odd.out[c], b) - double(even.out[c])); };
      cairo_move_to(cr, f.px(3500), y(3500));
      for (uint32_t b = 3507; b < 8191; b += 7) cairo_line_to(cr, f.px(b), y(b));
      cairo_line_to(cr, f.px(8191), y(8191));
      cairo_stroke(cr);
    }
  }
  cairo_restore(cr);
  for (size_t k = 0; k < pairs; ++k) {
    const double y = f.y + f.h + 62 + 19.0 * k;
    cairo_save(cr);
    cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
    cairo_set_line_width(cr, 2);
    cairo_set_dash(cr, kDash[k], k ? 2 : 0, 0);
    cairo_move_to(cr, f.x, y - 5);
    cairo_line_to(cr, f.x + 24, y - 5);
    cairo_stroke(cr);
    cairo_restore(cr);
    std::string label = "tables " + std::to_string(2 * k) + " -> " + std::to_string(2 * k + 1);
    if (usable(k)) {
      const auto& e = rep.tables[2 * k].lut->entries[node];
      label += ", 100-nit output " + std::to_string(e.out[0]) + " " + std::to_string(e.out[1]) + " " +
               std::to_string(e.out[2]);
    }
    cairo_set_source_rgb(cr, 0.1, 0.1, 0.1);
    drawText(cr, f.x + 32, y, label, 13);
  }
}

}  // namespace

bool writeReportPng(const PanelReport& rep, const std::string& path, std::string& error) {
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kReportWidth, kReportHeight);
  cairo_t* cr = cairo_create(surface);
  cairo_set_source_rgb(cr, 0.965, 0.965, 0.955);
  cairo_paint(cr);
  cairo_set_source_rgb(cr, 0.05, 0.05, 0.05);
  drawText(cr, 40, 44, "PanelCorvane calibration report: " + rep.panelName, 26, Align::Left, true);
  std::string sub = "optical data: " + (rep.hasOdf ? rep.odfLabel : std::string("none")) + "   targets: " +
                    std::to_string(rep.targets.size()) + "   tables: " + std::to_string(rep.tables.size());
  drawText(cr, 40, 70, sub, 15);
  drawChromaticity(cr, rep);
  drawGreyRamp(cr, rep);
  drawSwatches(cr, rep);
  drawBrightness(cr, rep);
  double ny = kReportHeight - 14.0 - 18.0 * (rep.notes.size() > 3 ? 3 : rep.notes.size());
  cairo_set_source_rgb(cr, 0.5, 0.1, 0.1);
  for (size_t i = 0; i < rep.notes.size() && i < 3; ++i) drawText(cr, 40, ny + 18 * (i + 1), "note: " + rep.notes[i], 13);

  cairo_status_t st = cairo_status(cr);
  if (st == CAIRO_STATUS_SUCCESS) st = cairo_surface_write_to_png(surface, path.c_str());
  cairo_destroy(cr);
  cairo_surface_destroy(surface);
  if (st != CAIRO_STATUS_SUCCESS) {
    error = std::string("cannot write PNG: ") + cairo_status_to_string(st);
    return false;
  }
  return true;
}

#endif  // PC_HAVE_CAIRO

}  // namespace pctool
