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
  drawText(cr, 40, 70, plan.sourceLine, 16);
  cairo_set_source_rgb(cr, 0.25, 0.25, 0.25);
  drawText(cr, 40, 92, plan.dataLine, 14);
  drawText(cr, 40, 112, plan.setsLine, 14);
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
