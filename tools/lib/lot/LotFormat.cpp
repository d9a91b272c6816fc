// CSV, JSON and text renderings of a lot's verification.
#include <algorithm>
#include <cstdio>
#include <string>

#include "tools/lib/common/JsonText.h"
#include "tools/lib/lot/LotVerify.h"

namespace pctool {

namespace {

// A CSV field, quoted when it holds a separator, a quote or a line break.
std::string csvField(const std::string& s) {
  if (s.find_first_of(",\"\n\r") == std::string::npos) return s;
  std::string o = "\"";
  for (char c : s) o += c == '"' ? std::string("\"\"") : std::string(1, c);
  return o + "\"";
}

std::string fixed(double v) { return jsonNumber(v, 3); }

const LotDisplay* displayOf(const LotPanelResult& r, const std::string& name) {
  for (const auto& d : r.displays)
    if (d.name == name) return &d;
  return nullptr;
}

std::string tableWord(const LotDisplay* d) { return d == nullptr ? "" : d->fromCache ? "cache" : "generated"; }

}  // namespace

std::string lotCsvText(const std::vector<LotPanelResult>& results) {
  std::string o = "panel,display,table,mode,source,tables,judged_by,mean_de2000,p95_de2000,max_de2000,result,note\n";
  for (const auto& r : results) {
    if (!r.error.empty()) {
      o += csvField(r.name) + ",,,,,,,,,,unreadable," + csvField(r.error) + "\n";
      continue;
    }
    for (const auto& m : r.modes) {
      const LotDisplay* d = displayOf(r, m.display);
      const std::string note = !m.note.empty() ? m.note : d ? d->note : "";
      o += csvField(r.name) + "," + csvField(m.display) + "," + (m.table >= 0 ? std::to_string(m.table) : "") + "," +
           csvField(m.mode) + "," + csvField(d ? d->source : "") + "," + tableWord(d) + "," + m.judgedBy + ",";
      o += m.table >= 0 && m.note.empty() ? fixed(m.mean) + "," + fixed(m.p95) + "," + fixed(m.max) : ",,";
      o += std::string(",") + (m.pass ? "pass" : "fail") + "," + csvField(note) + "\n";
    }
  }
  return o;
}

std::string lotJsonText(const std::vector<LotPanelResult>& results, const LotSummary& s) {
  std::string o = "{\"limit_p95_de2000\":" + jsonNumber(s.maxDe, 3) + ",\"panels\":" + std::to_string(s.panels) +
                  ",\"passed\":" + std::to_string(s.passed) + ",\"unreadable\":" + std::to_string(s.unreadable) +
                  ",\"yield\":" + jsonNumber(s.yield) + ",\n \"histogram\":{\"of\":\"p95_de2000 per mode\",\"bin_width\":" +
                  jsonNumber(s.binWidth) + ",\"counts\":[";
  for (size_t i = 0; i < s.bins.size(); ++i) o += (i ? "," : "") + std::to_string(s.bins[i]);
  o += "]},\n \"sources\":{";
  for (const auto& [source, n] : s.sources)
    o += std::string(o.back() == '{' ? "" : ",") + jsonString(source) + ":" + std::to_string(n);
  o += "},\n \"outliers\":[";
  for (size_t i = 0; i < s.outliers.size(); ++i) o += (i ? "," : "") + jsonString(s.outliers[i]);
  o += "],\n \"off_own_data\":[";
  for (size_t i = 0; i < s.offOwnData.size(); ++i) o += (i ? "," : "") + jsonString(s.offOwnData[i]);
  o += "],\n \"panel_results\":[";
  for (size_t i = 0; i < results.size(); ++i) {
    const LotPanelResult& r = results[i];
    o += std::string(i ? "," : "") + "\n  {\"panel\":" + jsonString(r.name) + ",\"path\":" + jsonString(r.path) +
         ",\"pass\":" + (r.pass() ? "true" : "false");
    if (!r.error.empty()) o += ",\"error\":" + jsonString(r.error);
    o += ",\"displays\":[";
    for (size_t k = 0; k < r.displays.size(); ++k) {
      const LotDisplay& d = r.displays[k];
      o += std::string(k ? "," : "") + "{\"name\":" + jsonString(d.name) + ",\"source\":" + jsonString(d.source) +
           ",\"tables\":" + jsonString(tableWord(&d)) + ",\"note\":" + jsonString(d.note) + "}";
    }
    o += "],\"modes\":[";
    for (size_t k = 0; k < r.modes.size(); ++k) {
      const LotMode& m = r.modes[k];
      o += std::string(k ? "," : "") + "\n    {\"display\":" + jsonString(m.display) + ",\"table\":" +
           std::to_string(m.table) + ",\"mode\":" + jsonString(m.mode) + ",\"judged_by\":" + jsonString(m.judgedBy) + ",\"mean\":" + jsonNumber(m.mean) +
           ",\"p95\":" + jsonNumber(m.p95) + ",\"max\":" + jsonNumber(m.max) + ",\"pass\":" + (m.pass ? "true" : "false");
      if (!m.note.empty()) o += ",\"note\":" + jsonString(m.note);
      o += "}";
    }
    o += "]}";
  }
  return o + "\n ]}\n";
}

std::string lotSummaryText(const LotSummary& s) {
  char buf[200];
  snprintf(buf, sizeof buf, "yield: %zu of %zu panels pass every mode (%.1f %%), limit: 95th percentile dE00 %.2f\n", s.passed,
           s.panels, 100.0 * s.yield, s.maxDe);
  std::string o = buf;
  if (s.unreadable) o += std::to_string(s.unreadable) + " panels unreadable\n";
  o += "data source of the tables:";
  for (const auto& [source, n] : s.sources) o += " " + std::to_string(n) + " " + source + ",";
  o.back() = '\n';
  for (const auto& line : s.offOwnData) o += "  not on its own optical data: " + line + "\n";
  o += "95th percentile dE00 per mode:\n";
  size_t most = 1;
  for (size_t n : s.bins) most = std::max(most, n);
  for (size_t i = 0; i < s.bins.size(); ++i) {
    const double lo = i * s.binWidth;
    if (i + 1 < s.bins.size()) snprintf(buf, sizeof buf, "  %5.2f-%5.2f %6zu ", lo, lo + s.binWidth, s.bins[i]);
    else snprintf(buf, sizeof buf, "  %5.2f-      %6zu ", lo, s.bins[i]);
    o += buf + std::string(s.bins[i] ? std::max<size_t>(1, s.bins[i] * 40 / most) : 0, '#') + "\n";
  }
  o += "outliers: " + (s.outliers.empty() ? std::string("none") : std::to_string(s.outliers.size())) + "\n";
  for (const auto& line : s.outliers) o += "  " + line + "\n";
  return o;
}

}  // namespace pctool
