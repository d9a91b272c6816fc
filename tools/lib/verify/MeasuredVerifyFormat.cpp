// Text and JSON of a measured verification, beside the prediction's columns in `verify`.
#include <cmath>
#include <cstdio>

#include "tools/lib/common/JsonText.h"
#include "tools/lib/verify/MeasuredVerify.h"

namespace pctool {

namespace {

std::string labJson(const Lab& l) {
  return "[" + jsonNumber(l.L) + "," + jsonNumber(l.a) + "," + jsonNumber(l.b) + "]";
}

std::string coloursJson(const std::vector<MeasuredColour>& v) {
  std::string o = "[";
  for (size_t i = 0; i < v.size(); ++i) {
    const auto& c = v[i];
    // Names are the workbench's own plain words: no escaping needed.
    o += std::string(i ? "," : "") + "{\"name\":\"" + c.name + "\",\"rgb\":[" +
         std::to_string(c.rgb[0]) + "," + std::to_string(c.rgb[1]) + "," +
         std::to_string(c.rgb[2]) + "],\"target_lab\":" + labJson(c.target) +
         ",\"measured_lab\":" + labJson(c.measured) + ",\"de2000\":" + jsonNumber(c.de) +
         ",\"predicted_de2000\":" + jsonNumber(c.predictedDe) +
         ",\"readings\":" + std::to_string(c.readings) + "}";
  }
  return o + "]";
}

std::string summaryJson(const MeasuredSummary& s) {
  return "{\"mean\":" + jsonNumber(s.mean) + ",\"max\":" + jsonNumber(s.max) + "}";
}

void colourLines(std::string& o, const std::vector<MeasuredColour>& v) {
  char buf[200];
  for (const auto& c : v) {
    char predicted[16] = "-";
    if (std::isfinite(c.predictedDe))
      std::snprintf(predicted, sizeof predicted, "%.2f", c.predictedDe);
    std::snprintf(buf, sizeof buf, "    %-13s %3u %3u %3u   %6.1f %6.1f %6.1f   %6.2f   %9s\n",
                  c.name.c_str(), c.rgb[0], c.rgb[1], c.rgb[2], c.measured.L, c.measured.a,
                  c.measured.b, c.de, predicted);
    o += buf;
  }
}

}  // namespace

std::string measuredText(const MeasuredCheck& c) {
  char buf[300];
  std::snprintf(buf, sizeof buf,
                "measured error of the calibrated panel against the target (CIEDE2000, %s, white Y "
                "%.2f%s):\n",
                c.source.c_str(), c.whiteY, c.absolute ? " cd/m2" : "");
  std::string o = buf;
  o += "    colour        R   G   B    measured L*a*b*          dE00   predicted\n";
  colourLines(o, c.reference);
  colourLines(o, c.grey);
  std::snprintf(buf, sizeof buf,
                "  reference colours: mean %.2f, max %.2f\n  grey ramp: mean %.2f, max %.2f\n",
                c.referenceSummary.mean, c.referenceSummary.max, c.greySummary.mean,
                c.greySummary.max);
  return o + buf;
}

std::string measuredJson(const MeasuredCheck& c) {
  return "{\"white_Y\":" + jsonNumber(c.whiteY) +
         ",\"absolute\":" + (c.absolute ? "true" : "false") +
         ",\n  \"reference\":" + coloursJson(c.reference) +
         ",\n  \"reference_summary\":" + summaryJson(c.referenceSummary) +
         ",\n  \"grey\":" + coloursJson(c.grey) +
         ",\n  \"grey_summary\":" + summaryJson(c.greySummary) + "}";
}

}  // namespace pctool
