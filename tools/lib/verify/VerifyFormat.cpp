// Text and JSON renderings of verification results (JSON written by hand: no dependency).
#include <cmath>
#include <cstdio>
#include <string>

#include "tools/lib/common/JsonText.h"
#include "tools/lib/common/PrintfString.h"
#include "tools/lib/tables/DeviceGrid.h"
#include "tools/lib/verify/Verify.h"

namespace pctool {

namespace {

std::string lab(const Lab& l) { return "[" + jsonNumber(l.L) + "," + jsonNumber(l.a) + "," + jsonNumber(l.b) + "]"; }

std::string summaryJson(const PredictionSummary& s) {
  return "{\"mean\":" + jsonNumber(s.mean) + ",\"max\":" + jsonNumber(s.max) + ",\"mean_without_table\":" +
         jsonNumber(s.meanUncalibrated) + ",\"max_without_table\":" + jsonNumber(s.maxUncalibrated) + "}";
}

std::string coloursJson(const std::vector<ColourPrediction>& v) {
  std::string o = "[";
  for (size_t i = 0; i < v.size(); ++i) {
    const auto& c = v[i];
    o += (i ? "," : "") + std::string("{\"name\":") + jsonString(c.name) + ",\"rgb\":" + jsonArray(c.rgb) +
         ",\"table_out\":[" + jsonNumber(c.outCodes[0]) + "," + jsonNumber(c.outCodes[1]) + "," + jsonNumber(c.outCodes[2]) +
         "],\"target_lab\":" + lab(c.target) + ",\"predicted_lab\":" + lab(c.predicted) +
         ",\"de2000\":" + jsonNumber(c.de) + ",\"de2000_without_table\":" + jsonNumber(c.deUncalibrated) + "}";
  }
  return o + "]";
}

void colourLines(std::string& o, const std::vector<ColourPrediction>& v) {
  char buf[160];
  for (const auto& c : v) {
    std::snprintf(buf, sizeof buf, "    %-13s %3u %3u %3u   %6.1f %6.1f %6.1f   %6.2f   %6.2f\n", c.name.c_str(),
                  c.rgb[0], c.rgb[1], c.rgb[2], c.outCodes[0], c.outCodes[1], c.outCodes[2], c.de,
                  c.deUncalibrated);
    o += buf;
  }
}

std::string whiteLine(const char* what, const WhitePoint& w) {
  return printfString("    %-18s %8s   %.4f %.4f   %s\n", what, std::isfinite(w.Y) ? printfString("%.2f", w.Y).c_str() : "-", w.x,
                      w.y, std::isfinite(w.cct) ? printfString("%5.0f K  %+.4f", w.cct, w.duv).c_str() : "no CCT");
}

std::string whiteText(const WhiteFigures& w) {
  return "  white (Y cd/m2, x y, CCT and duv):\n" + whiteLine("without the table", w.panel) +
         whiteLine("through the table", w.calibrated) + whiteLine("target", w.target) +
         printfString("    the white correction costs %.1f %% of the luminance\n", w.costPercent);
}

std::string whiteJson(const WhitePoint& w) {
  return "{\"Y\":" + jsonNumber(w.Y) + ",\"x\":" + jsonNumber(w.x, 5) + ",\"y\":" + jsonNumber(w.y, 5) +
         ",\"cct\":" + jsonNumber(w.cct, 1) + ",\"duv\":" + jsonNumber(w.duv, 5) + "}";
}

std::string summaryLine(const char* what, const PredictionSummary& s) {
  char buf[200];
  std::snprintf(buf, sizeof buf, "  %s: mean %.2f, max %.2f (without the table: mean %.2f, max %.2f)\n", what,
                s.mean, s.max, s.meanUncalibrated, s.maxUncalibrated);
  return buf;
}

}  // namespace

std::string toText(const VerifyResult& r) {
  std::string o = "table: " + r.label + "\n";
  const De76Report& d = r.de76;
  o += "dE76 check (the plugin's own): " + std::to_string(d.passPercent) + "% of entries below 50: " +
       (d.pass ? "pass" : "FAIL") + "\n  histogram by 10:";
  for (int k = 0; k < 10; ++k) o += " " + std::to_string(d.bins[k]);
  o += "\n  entries above 50: " + std::to_string(d.far.size()) + "\n";
  char buf[200];
  const size_t shown = d.far.size() < 20 ? d.far.size() : 20;
  for (size_t i = 0; i < shown; ++i) {
    const auto& f = d.far[i];
    std::snprintf(buf, sizeof buf, "    [%u] [%u, %u,%u --> %u,%u,%u]    %f\n", f.index, f.in[0], f.in[1], f.in[2],
                  f.out[0], f.out[1], f.out[2], static_cast<double>(f.d));
    o += buf;
  }
  if (d.far.size() > shown) o += "    ... and " + std::to_string(d.far.size() - shown) + " more\n";

  const De2000Stats& s = r.de2000;
  std::snprintf(buf, sizeof buf, "CIEDE2000 input -> output (codes as sRGB signals, D65): mean %.3f, 95th %.3f, max %.3f\n",
                s.mean, s.p95, s.max);
  o += buf;
  o += "  worst nodes:\n";
  for (const auto& n : s.worst) {
    std::snprintf(buf, sizeof buf, "    entry %4u %-12s in %4u %4u %4u -> out %4u %4u %4u   dE00 %.3f\n", n.index,
                  gridLevels(n.index).c_str(), n.in[0], n.in[1], n.in[2], n.out[0], n.out[1], n.out[2], n.de);
    o += buf;
  }

  if (r.hasPrediction) {
    const Prediction& p = r.prediction;
    o += "predicted error of the calibrated panel against the target (CIEDE2000, target decode exponent " +
         printfString("%.3f", p.targetDecodeExponent) + "):\n";
    o += "    colour        R   G   B    table output (codes)     dE00   without table\n";
    colourLines(o, p.reference);
    colourLines(o, p.grey);
    o += summaryLine("reference colours", p.referenceSummary);
    o += summaryLine("grey ramp", p.greySummary);
    o += whiteText(p.white);
    for (const auto& n : p.notes) o += "  note: " + n + "\n";
  }
  if (r.hasMeasured) o += measuredText(r.measured, r.hasPrediction ? &r.prediction : nullptr);
  for (const auto& n : r.notes) o += "note: " + n + "\n";
  return o;
}

std::string toJson(const std::vector<VerifyResult>& results) {
  std::string o = "[";
  for (size_t i = 0; i < results.size(); ++i) {
    const VerifyResult& r = results[i];
    const De76Report& d = r.de76;
    o += i ? ",\n" : "\n";
    o += "{\"table\":" + jsonString(r.label) + ",\n \"de76\":{\"histogram\":" + jsonArray(d.bins) +
         ",\"pass_percent\":" + std::to_string(d.passPercent) + ",\"pass\":" + (d.pass ? "true" : "false") +
         ",\"above_50\":[";
    for (size_t k = 0; k < d.far.size(); ++k) {
      const auto& f = d.far[k];
      o += (k ? "," : "") + std::string("{\"index\":") + std::to_string(f.index) + ",\"in\":" + jsonArray(f.in) +
           ",\"out\":" + jsonArray(f.out) + ",\"de\":" + jsonNumber(f.d) + "}";
    }
    const De2000Stats& s = r.de2000;
    o += "]},\n \"de2000\":{\"mean\":" + jsonNumber(s.mean) + ",\"p95\":" + jsonNumber(s.p95) + ",\"max\":" + jsonNumber(s.max) +
         ",\"worst\":[";
    for (size_t k = 0; k < s.worst.size(); ++k) {
      const auto& n = s.worst[k];
      o += (k ? "," : "") + std::string("{\"index\":") + std::to_string(n.index) + ",\"in\":" + jsonArray(n.in) +
           ",\"out\":" + jsonArray(n.out) + ",\"de\":" + jsonNumber(n.de) + "}";
    }
    o += "]}";
    if (r.hasPrediction) {
      const Prediction& p = r.prediction;
      o += ",\n \"prediction\":{\"target_decode_exponent\":" + jsonNumber(p.targetDecodeExponent) +
           ",\n  \"reference\":" + coloursJson(p.reference) + ",\n  \"reference_summary\":" +
           summaryJson(p.referenceSummary) + ",\n  \"grey\":" + coloursJson(p.grey) +
           ",\n  \"grey_summary\":" + summaryJson(p.greySummary) + ",\n  \"near_black\":" + coloursJson(p.nearBlack) +
           ",\n  \"white\":{\"without_table\":" + whiteJson(p.white.panel) + ",\"through_table\":" +
           whiteJson(p.white.calibrated) + ",\"target\":" + whiteJson(p.white.target) +
           ",\"luminance_cost_percent\":" + jsonNumber(p.white.costPercent, 2) + "},\n  \"notes\":" + jsonStrings(p.notes) + "}";
    }
    if (r.hasMeasured) o += ",\n \"measured\":" + measuredJson(r.measured);
    o += ",\n \"notes\":" + jsonStrings(r.notes) + "}";
  }
  return o + "\n]\n";
}

}  // namespace pctool
