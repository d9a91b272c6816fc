#include "tools/lib/report/Report.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <vector>

#include "tools/lib/common/FileAccess.h"
#include "tools/lib/tables/DeviceGrid.h"

#ifdef PC_HAVE_CAIRO
#include "tools/lib/drawing/Canvas.h"
#include "tools/lib/report/ReportPlan.h"
#include "tools/lib/report/ReportSections.h"
#endif

namespace pctool {

std::string reportFileName(const PanelReport& report) {
  std::string name = "report-";
  for (char c : report.displayName.empty() ? report.panelName : report.displayName)
    name += std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' ? c : '_';
  return name + ".png";
}

int32_t brightnessOutput(uint32_t even, uint32_t odd, uint32_t brightness) {
  const uint32_t w = (brightness * 4096u - 14336000u) / 4691u;
  const int32_t delta = static_cast<int32_t>(odd - even);
  // 32-bit product as the plugin forms it; the shift rounds toward minus infinity.
  const int32_t scaled = static_cast<int32_t>(static_cast<uint32_t>(delta) * w);
  return static_cast<int32_t>(even) + (scaled >> 12);
}

int pickBrightnessNode(const PanelReport& report) {
  int best = -1;
  int64_t bestMove = 0;
  for (size_t k = 0; k + 1 < report.tables.size() && k < 8; k += 2) {
    const auto& even = report.tables[k].lut;
    const auto& odd = report.tables[k + 1].lut;
    if (!even || !odd) continue;
    for (uint32_t n = 0; n < kEntries; ++n) {
      int64_t move = 0;
      for (int c = 0; c < 3; ++c)
        move += std::llabs(int64_t(odd->entries[n].out[c]) - int64_t(even->entries[n].out[c]));
      if (move > bestMove) bestMove = move, best = static_cast<int>(n);
    }
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

void drawHeader(cairo_t* cr, const ReportPlan& plan) {
  cairo_set_source_rgb(cr, 0.05, 0.05, 0.05);
  drawText(cr, 40, 44, plan.title, 26, Align::Left, true);
  drawText(cr, 40, 72, plan.sourceLine, 16);
  cairo_set_source_rgb(cr, 0.25, 0.25, 0.25);
  drawText(cr, 40, 96, plan.dataLine, 14);
}

void drawNotes(cairo_t* cr, const ReportPlan& plan) {
  std::vector<std::string> lines(plan.notes.begin(), plan.notes.begin() + std::min<size_t>(plan.notes.size(), 4));
  if (plan.notes.size() > 4)
    lines.back() = "... and " + std::to_string(plan.notes.size() - 3) + " more notes: the report command lists them all";
  cairo_set_source_rgb(cr, 0.55, 0.1, 0.1);
  for (size_t i = 0; i < lines.size(); ++i)
    drawText(cr, 40, kReportHeight - 18.0 * (lines.size() - i) + 4, (i < 3 || plan.notes.size() <= 4 ? "note: " : "") + lines[i], 14);
}

}  // namespace

bool writeReportPng(const PanelReport& rep, const std::string& path, std::string& error) {
  const ReportPlan plan = planReport(rep);
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kReportWidth, kReportHeight);
  cairo_t* cr = cairo_create(surface);
  cairo_set_source_rgb(cr, 0.965, 0.965, 0.955);
  cairo_paint(cr);
  drawHeader(cr, plan);
  drawChromaticity(cr, plan);
  drawGrey(cr, plan);
  drawSwatches(cr, plan);
  drawBrightness(cr, plan);
  drawNotes(cr, plan);

  return finishPng(cr, surface, path, error);
}

#endif  // PC_HAVE_CAIRO

}  // namespace pctool
