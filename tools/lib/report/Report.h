// One PNG page per panel for the calibration engineer: the CIE 1931 xy diagram with every
// measurement set the tables use and each mode's target (with a zoom on the whites); the grey
// ramp as effective gamma per level and as predicted CIEDE2000 after each table; the 21
// reference colours as the target asks and as the panel shows them through each table; and
// how one node's output follows the brightness between the two tables of each pair.
#pragma once

#include <string>

#include "tools/lib/report/PanelReport.h"

namespace pctool {

constexpr int kReportWidth = 1800;
constexpr int kReportHeight = 2420;

// "report-<display name>.png", characters other than letters, digits, '-' and '_' as '_'.
std::string reportFileName(const PanelReport& report);

// False with "built without cairo" when the tool was built without it.
bool reportSupported();
// Draws the page and writes it through the checked writer: a failed write names the reason.
bool writeReportPng(const PanelReport& report, const std::string& path, std::string& error);

}  // namespace pctool
