// The four sections of a report page, each drawn from the page's plan at its fixed place.
#pragma once

#ifdef PC_HAVE_CAIRO

#include <cairo.h>

#include "tools/lib/report/ReportPlan.h"

namespace pctool {

void drawChromaticity(cairo_t* cr, const ReportPlan& plan);  // xy diagram and the whites' zoom
void drawGrey(cairo_t* cr, const ReportPlan& plan);          // effective gamma, grey CIEDE2000
void drawSwatches(cairo_t* cr, const ReportPlan& plan);      // reference colours per table
void drawBrightness(cairo_t* cr, const ReportPlan& plan);    // one node across brightness

}  // namespace pctool

#endif  // PC_HAVE_CAIRO
