// Text and JSON of a measured verification, beside the prediction's columns in `verify`.
#include <cmath>
#include <cstdio>

#include "tools/lib/common/JsonText.h"
#include "tools/lib/common/PrintfString.h"
#include "tools/lib/verify/MeasuredVerify.h"

namespace pctool {

namespace {

std::string labJson(const Lab& l) {
  return "[" + jsonNumber(l.L) + "," + jsonNumber(l.a) + "," + jsonNumber(l.b) + "]";
}

std::string coloursJson(const std::vector<MeasuredColour>& v, bool grey) {
  std::string o = "[";
  for (size_t i = 0; i < v.size(); ++i) {
    const auto& c = v[i];
    o += std::string(i ? "," : "") + "{\"name\":" + jsonString(c.name) + ",\"rgb\":" + jsonArray(c.rgb) +
         ",\"percent\":[" + jsonNumber(c.percent[0]) + "," + jsonNumber(c.percent[1]) + "," + jsonNumber(c.percent[2]) +
         "],\"target_lab\":" + labJson(c.target) + ",\"measured_lab\":" + labJson(c.measured) +
         ",\"de2000\":" + jsonNumber(c.de) + ",\"predicted_de2000\":" + jsonNumber(c.predictedDe) +
         ",\"relative_Y\":" + jsonNumber(c.relY, 6) + ",\"readings\":" + std::to_string(c.readings);
    if (grey)
      o += ",\"gamma\":" + jsonNumber(greyGamma(c.rgb[0], c.relY)) +
           ",\"predicted_gamma\":" + jsonNumber(greyGamma(c.rgb[0], c.predictedY));
    o += "}";
  }
  return o + "]";
}

std::string summaryJson(const MeasuredSummary& s, const std::vector<MeasuredColour>& v) {
  std::string worst;
  for (size_t i : s.worst) worst += (worst.empty() ? "" : ",") + jsonString(v[i].name);
  return "{\"mean\":" + jsonNumber(s.mean) + ",\"p95\":" + jsonNumber(s.p95) + ",\"max\":" + jsonNumber(s.max) +
         ",\"worst\":[" + worst + "]}";
}

std::string readingsText(int n) { return n == 1 ? "1" : std::to_string(n); }

void colourLines(std::string& o, const std::vector<MeasuredColour>& v, bool chart) {
  for (const auto& c : v) {
    const std::string predicted = std::isfinite(c.predictedDe) ? printfString("%.2f", c.predictedDe) : "-";
    const std::string drive = chart ? printfString("%6.6g %6.6g %6.6g %%", c.percent[0], c.percent[1], c.percent[2])
                                    : printfString("%3u %3u %3u", c.rgb[0], c.rgb[1], c.rgb[2]);
    o += printfString("    %-13s %s   %6.1f %6.1f %6.1f   %6.2f   %9s   %5s\n", c.name.c_str(), drive.c_str(),
                      c.measured.L, c.measured.a, c.measured.b, c.de, predicted.c_str(), readingsText(c.readings).c_str());
  }
}

std::string whiteAndBlack(const MeasuredCheck& c) {
  const char* unit = c.absolute ? " cd/m2" : " (relative)";
  std::string o = printfString("  white: Y %.2f%s, x %.4f y %.4f, ", c.white.Y, unit, c.white.x, c.white.y) +
                  (std::isfinite(c.white.cct) ? printfString("%.0f K, duv %+.4f\n", c.white.cct, c.white.duv)
                                              : std::string("no correlated colour temperature\n"));
  if (!c.hasBlack) return o + "  black: not read: contrast not known\n";
  if (!(c.blackY > 0)) return o + "  black: Y 0 (below the instrument's floor): contrast not known\n";
  return o + printfString("  black: Y %.4g%s, contrast %.0f:1\n", c.blackY, unit, c.white.Y / c.blackY);
}

// Gamma per grey level, measured beside the model's and the target's, and where they part.
std::string gammaLines(const MeasuredCheck& c, const Prediction& p) {
  std::string o = printfString("  grey gamma per level (log Y / log level; target %.3f):\n", p.targetDecodeExponent);
  o += "    level   measured   predicted   dE00 measured   predicted\n";
  std::string parted;
  for (const auto* set : {&c.nearBlack, &c.grey})
    for (const auto& g : *set) {
      if (g.rgb[0] == 0 || g.rgb[0] == 255) continue;
      const double mg = greyGamma(g.rgb[0], g.relY), pg = greyGamma(g.rgb[0], g.predictedY);
      o += printfString("    %5u   %8s   %9s   %13.2f   %9s\n", g.rgb[0], std::isfinite(mg) ? printfString("%.3f", mg).c_str() : "-",
                        std::isfinite(pg) ? printfString("%.3f", pg).c_str() : "-", g.de,
                        std::isfinite(g.predictedDe) ? printfString("%.2f", g.predictedDe).c_str() : "-");
      if (std::isfinite(g.predictedDe) && std::fabs(g.de - g.predictedDe) > kPartDe00) parted += printfString(", %u", g.rgb[0]);
    }
  o += printfString("  below 8-bit 32 (12-bit 512, the optical data's lowest grey level) the panel model carries that "
                    "level's exponent (%.3f) down to black\n",
                    p.lowestLevelExponent);
  o += parted.empty() ? printfString("  prediction and measurement agree within %.1f dE00 at every grey level\n", kPartDe00)
                      : printfString("  prediction and measurement part by more than %.1f dE00 at grey", kPartDe00) +
                            parted.substr(1) + "\n";
  return o;
}

}  // namespace

std::string measuredText(const MeasuredCheck& c, const Prediction* p) {
  std::string o = "measured error of the calibrated panel against the target (CIEDE2000, " + c.source +
                  (c.chart.empty() ? "" : ", chart " + c.chart) + "):\n" + whiteAndBlack(c);
  o += c.chart.empty() ? "    colour        R   G   B    measured L*a*b*          dE00   predicted   reads\n"
                       : "    patch         drive (R G B %)          measured L*a*b*          dE00   predicted   reads\n";
  if (!c.chart.empty()) {
    colourLines(o, c.chartPatches, true);
    const MeasuredSummary& s = c.chartSummary;
    o += printfString("  chart: %zu patches, mean %.2f, 95th percentile %.2f, max %.2f\n  worst:\n", c.chartPatches.size(),
                      s.mean, s.p95, s.max);
    for (size_t i : s.worst) {
      const MeasuredColour& w = c.chartPatches[i];
      o += printfString("    RGB %.6g %.6g %.6g %%  dE00 %.2f  (%s)\n", w.percent[0], w.percent[1], w.percent[2], w.de,
                        w.name.c_str());
    }
    return o;
  }
  colourLines(o, c.reference, false);
  colourLines(o, c.grey, false);
  colourLines(o, c.nearBlack, false);
  o += printfString("  reference colours: mean %.2f, max %.2f\n  grey ramp: mean %.2f, max %.2f\n", c.referenceSummary.mean,
                    c.referenceSummary.max, c.greySummary.mean, c.greySummary.max);
  if (p != nullptr) o += gammaLines(c, *p);
  return o;
}

std::string measuredJson(const MeasuredCheck& c) {
  const WhitePoint& w = c.white;
  std::string o = "{\"white_Y\":" + jsonNumber(w.Y) + ",\"absolute\":" + (c.absolute ? "true" : "false") +
                  ",\"white\":{\"Y\":" + jsonNumber(w.Y) + ",\"x\":" + jsonNumber(w.x, 5) + ",\"y\":" + jsonNumber(w.y, 5) +
                  ",\"cct\":" + jsonNumber(w.cct, 1) + ",\"duv\":" + jsonNumber(w.duv, 5) + "}" +
                  ",\"black_Y\":" + (c.hasBlack ? jsonNumber(c.blackY, 6) : "null") + ",\"contrast\":" +
                  (c.hasBlack ? jsonNumber(w.Y / c.blackY, 1) : "null");
  if (!c.chart.empty())
    return o + ",\"chart\":" + jsonString(c.chart) + ",\n  \"patches\":" + coloursJson(c.chartPatches, false) +
           ",\n  \"summary\":" + summaryJson(c.chartSummary, c.chartPatches) + "}";
  return o + ",\n  \"reference\":" + coloursJson(c.reference, false) +
         ",\n  \"reference_summary\":" + summaryJson(c.referenceSummary, c.reference) +
         ",\n  \"grey\":" + coloursJson(c.grey, true) + ",\n  \"grey_summary\":" + summaryJson(c.greySummary, c.grey) +
         ",\n  \"near_black\":" + coloursJson(c.nearBlack, true) + "}";
}

}  // namespace pctool
